// SPDX-License-Identifier: Apache-2.0

#include "app/commands/ping_command.h"

#include "DeviceDiscover/DeviceDiscover.h"
#include "app/outcome/problem.h"
#include "app/output/json_output.h"
#include "app/program/messages.h"
#include "app/running/awaiting.h"
#include "app/terminal/console.h"
#include "host/PrinterDiscoverAPI/ping_report.h"

namespace App {

namespace {

using PrinterDiscoverAPI::PingOutcome;
using PrinterDiscoverAPI::PingReport;

// The library reports only that no answer came. Another ping shows whether a request could be sent.
PingReport Ask(const std::string& address) {
    constexpr std::uint32_t milliseconds = 100;
    if (DeviceDiscover::PrinterNetInterface::GetInstance().CheckPing(address)) {
        return {PingOutcome::kAnswered, {}};
    }
    return PrinterDiscoverAPI::DescribePing(address, milliseconds);
}

}  // namespace

ExitStatus Ping(const Settings& settings, const std::string& address) {
    const PingReport report =
        Await<PingReport>(settings, "Asking " + address, [address] { return Ask(address); });
    if (report.outcome == PingOutcome::kNotAsked) {
        throw Problem(address + " could not be asked: " + report.problem +
                      "\nWhether a printer is there is not known.");
    }
    const bool answers = report.outcome == PingOutcome::kAnswered;
    if (settings.json) {
        WriteOutput(PingJson(address, answers) + "\n");
    } else if (answers) {
        WriteOutput(address + " answers\n");
    }
    if (!answers) {
        Complain(address + " does not answer.\nIs it switched on, and on this computer's network?");
    }
    return answers ? kFound : kNoneFound;
}

}  // namespace App

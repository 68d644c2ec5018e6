// SPDX-License-Identifier: Apache-2.0

#include "app/commands/ping_command.h"

#include <charconv>
#include <memory>
#include <string>
#include <string_view>

#include "DeviceDiscover/DeviceDiscover.h"
#include "app/commands/common_options.h"
#include "app/outcome/problem.h"
#include "app/output/answer.h"
#include "app/output/json_output.h"
#include "app/program/messages.h"
#include "app/program/settings.h"
#include "app/running/awaiting.h"
#include "host/PrinterDiscoverAPI/ping_report.h"

namespace App {

namespace {

using PrinterDiscoverAPI::PingOutcome;
using PrinterDiscoverAPI::PingReport;

// The library reports only that no answer came. Another ping shows whether a request could be sent.
PingReport PingAddress(const std::string& address) {
    constexpr std::uint32_t milliseconds = 100;
    if (DeviceDiscover::PrinterNetInterface::GetInstance().CheckPing(address)) {
        return {PingOutcome::kAnswered, {}};
    }
    return PrinterDiscoverAPI::DescribePing(address, milliseconds);
}

ExitStatus Ping(const std::string& address) {
    const PingReport report =
        Await<PingReport>("Asking " + address, [address] { return PingAddress(address); });
    if (report.outcome == PingOutcome::kNotAsked) {
        throw Problem("cannot ping " + address + ": " + report.problem +
                      "\nIt is not known whether a printer is there.");
    }
    const bool answers = report.outcome == PingOutcome::kAnswered;
    if (WritesJson()) {
        WriteAnswer(PingJson(address, answers) + "\n");
    } else if (answers) {
        WriteAnswer(address + " answers\n");
    }
    if (!answers) {
        Complain(address + " does not answer.\nIs it switched on, and on this computer's network?");
    }
    return answers ? kFound : kNoneFound;
}

// Whether the text is four numbers from 0 to 255, separated by points.
bool IsIpv4Address(std::string_view text) {
    for (int numbers = 1;; ++numbers) {
        const std::string_view part = text.substr(0, text.find('.'));
        unsigned char number = 0;
        const auto [next, error] = std::from_chars(part.data(), part.data() + part.size(), number);
        if (error != std::errc() || next != part.data() + part.size()) {
            return false;
        }
        if (part.size() == text.size()) {
            return numbers == 4;
        }
        text.remove_prefix(part.size() + 1);
    }
}

std::string CheckAddress(const std::string& text) {
    return IsIpv4Address(text) ? "" : "'" + text + "' is not an IPv4 address";
}

}  // namespace

Command PingCommand() {
    const auto address = std::make_shared<std::string>();
    Command command{
        .name = "ping",
        .summary = "Ask whether a printer answers at an address.",
        .examples = {{"ping 192.168.1.20"}},
        .details = "Sends a few pings and waits 0.1 seconds for each answer. One answer is enough.",
        .exitTexts = ExitTexts("the address answers", "no answer",
                               "could not run; this computer or this user cannot send pings"),
        .run = [address] { return Ping(*address); }};
    command.AddText("ADDRESS", "", *address, "Its IPv4 address, such as 192.168.1.20", CheckAddress)
        .isRequired = true;
    return command;
}

}  // namespace App

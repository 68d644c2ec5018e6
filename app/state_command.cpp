#include "app/state_command.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>

#include "app/console.h"
#include "app/json_output.h"
#include "app/messages.h"
#include "app/printer_table.h"
#include "app/problem.h"
#include "app/scan_session.h"
#include "app/text.h"
#include "app/vendor_survey.h"
#include "host/PrinterUtil/vendor_list.h"

namespace App {

namespace {

using Clock = PrinterList::Clock;

constexpr int kReady = 1;
constexpr int kNothingToCall = -1;

std::optional<Printer> Find(PrinterList& list, const StateOptions& options) {
    const auto end = Clock::now() + std::chrono::duration_cast<Clock::duration>(options.time);
    do {
        for (const Printer& printer : list.WaitForNews(end)) {
            // The serial number may have been copied from the table.
            if (printer.serialNumber == options.serialNumber ||
                DisplayText(printer.serialNumber) == options.serialNumber) {
                return printer;
            }
        }
    } while (!list.IsCancelled() && Clock::now() < end);
    return std::nullopt;
}

// Throws when the printer's vendor has no way to tell the state. A vendor may also answer with the
// broker's own result for that.
void RequireAnswer(const Printer& printer) {
    const auto vendors = PrinterUtil::DescribeVendorList().vendors;
    const auto vendor = std::find_if(vendors.begin(), vendors.end(), [&](const VendorInfo& known) {
        return known.productId == printer.vendor;
    });
    const std::string shown = DisplayText(printer.vendor);
    if (vendor == vendors.end()) {
        throw Problem("the printer names the vendor '" + shown +
                      "', and the vendor list has no such productId"
                      "\n`devicediscover vendors` shows the list.");
    }
    const ModuleSurvey module = SurveyScanModule(*vendor);
    if (!module.Has("GetDeviceConnectState")) {
        throw Problem("vendor " + shown + " cannot tell a printer's state: its module " +
                      module.name +
                      " has no entry point GetDeviceConnectState"
                      "\nAsk the vendor for a module that has it; `devicediscover vendors` shows "
                      "what is there.");
    }
}

std::string StateLine(const Printer& printer, int state) {
    const auto [serialNumber, makeAndModel, address, port, vendor] = RowOf(printer);
    return fmt::format("{}: {} (state {}), {} at {} port {}, vendor {}", serialNumber,
                       state == kReady ? "ready" : "not ready", state, makeAndModel, address, port,
                       vendor);
}

ExitStatus NotFound(const StateOptions& options, std::size_t others, bool cancelled) {
    Complain(fmt::format(
        "{}no printer with the serial number '{}' was found; {} with another were.\n"
        "`devicediscover scan` shows which there are.\n{}",
        cancelled ? "interrupted: " : "", options.serialNumber, others, AdviceAfterScan()));
    return kNoneFound;
}

}  // namespace

ExitStatus State(const Settings& settings, const StateOptions& options) {
    ScanSession session;
    const std::optional<Printer> printer = Find(session.Printers(), options);
    session.Stop();
    if (!printer) {
        const PrinterList& list = session.Printers();
        return NotFound(options, list.GetItems().size(), list.IsCancelled());
    }
    auto& discovery = PrinterDeviceDiscoverSdk::DiscoverScanInterface::GetInstance();
    const int state = discovery.GetDeviceConnectState(printer->record);
    if (state == kNothingToCall) {
        RequireAnswer(*printer);
    }
    const std::string line =
        settings.json ? StateJson(*printer, state) : StateLine(*printer, state);
    WriteOutput(line + "\n");
    return kFound;
}

}  // namespace App

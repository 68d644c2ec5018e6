// SPDX-License-Identifier: Apache-2.0

#include "app/commands/state_command.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "DeviceDiscover/results.h"
#include "app/commands/common_options.h"
#include "app/items/printer_table.h"
#include "app/library/scan_session.h"
#include "app/library/vendor_survey.h"
#include "app/library/vendor_texts.h"
#include "app/outcome/problem.h"
#include "app/output/json_output.h"
#include "app/program/messages.h"
#include "app/program/settings.h"
#include "app/running/awaiting.h"
#include "app/terminal/console.h"
#include "base/text/display_text.h"
#include "host/PrinterUtil/vendor_list.h"

namespace App {

namespace {

using Clock = PrinterList::Clock;

struct StateOptions {
    std::string serialNumber;
    std::string address;  // chooses among printers with this number; empty: any
    Seconds time{5};      // how long to look for the printer
};

constexpr int kReady = 1;
constexpr auto kOthersLimit = std::chrono::milliseconds(500);

// The user may have copied the text from the table.
bool IsText(const std::string& text, const std::string& given) {
    return text == given || Base::DisplayText(text) == given;
}

std::vector<Printer> Matches(const PrinterList& list, const StateOptions& options) {
    std::vector<Printer> printers = list.GetItems();
    const auto others =
        std::remove_if(printers.begin(), printers.end(), [&](const Printer& printer) {
            return !IsText(printer.serialNumber, options.serialNumber) ||
                   (!options.address.empty() && !IsText(printer.address, options.address));
        });
    printers.erase(others, printers.end());
    return printers;
}

void WaitForOne(ScanSession& session, const StateOptions& options) {
    constexpr auto tick = std::chrono::milliseconds(200);
    PrinterList& list = session.Printers();
    const auto end = Clock::now() + std::chrono::duration_cast<Clock::duration>(options.time);
    do {
        list.WaitForNews(std::min(end, Clock::now() + tick));
    } while (Matches(list, options).empty() && !list.IsCancelled() && !session.HasEnded() &&
             Clock::now() < end);
}

// Waits a moment: other printers with the serial number are usually found at once.
void WaitForOthers(PrinterList& list) {
    const auto end = Clock::now() + kOthersLimit;
    while (!list.IsCancelled() && Clock::now() < end) {
        list.WaitForNews(end);
    }
}

// Throws when the printer's vendor cannot tell the state. A vendor may also return the broker's own
// result for that.
void RequireAnswer(const Printer& printer) {
    const auto vendors = PrinterUtil::DescribeVendorList().vendors;
    const auto vendor = std::find_if(vendors.begin(), vendors.end(), [&](const VendorInfo& known) {
        return known.productId == printer.vendor;
    });
    const std::string shown = Base::DisplayText(printer.vendor);
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
    const std::string meaning =
        state == kReady ? "" : MeaningOf(state, printer.vendor, "GetDeviceConnectState");
    return fmt::format("{}: {} (state {}{}), {} at {} port {}, vendor {}", serialNumber,
                       state == kReady ? "ready" : "not ready", state,
                       meaning.empty() ? "" : ": " + meaning, makeAndModel, address, port, vendor);
}

ExitStatus NotFound(const StateOptions& options, std::size_t others, bool cancelled) {
    const bool anywhere = options.address.empty();
    Complain(
        fmt::format("{}no printer with the serial number '{}'{} was found; {} {} were.\n"
                    "`devicediscover scan` shows which there are.\n{}",
                    cancelled ? "interrupted: " : "", options.serialNumber,
                    anywhere ? "" : " at " + options.address, others,
                    anywhere ? "with another" : "others", AdviceAfterScan()));
    return kNoneFound;
}

ExitStatus NotClear(const StateOptions& options, const std::vector<Printer>& printers) {
    std::vector<std::string> places;
    for (const Printer& printer : printers) {
        const auto [serialNumber, makeAndModel, address, port, vendor] = RowOf(printer);
        places.push_back(
            fmt::format("{} at {} port {}, vendor {}", makeAndModel, address, port, vendor));
    }
    Complain(
        fmt::format("{} printers have the serial number '{}', or one was found at several "
                    "places:{}\nName the address: `devicediscover state {} --address {}`.",
                    printers.size(), options.serialNumber, Lines(places), options.serialNumber,
                    printers.front().address));
    return kNoneFound;
}

ExitStatus State(const StateOptions& options) {
    ScanSession session;
    PrinterList& list = session.Printers();
    WaitForOne(session, options);
    if (options.address.empty() && !Matches(list, options).empty()) {
        WaitForOthers(list);
    }
    session.Stop();
    const std::vector<Printer> printers = Matches(list, options);
    if (printers.empty() && session.HasEnded()) {
        ThrowNobodyLooks(session);
    }
    WarnOfAll(session.TakeFailures());
    if (printers.empty()) {
        return NotFound(options, list.GetItems().size(), list.IsCancelled());
    }
    if (options.address.empty() && printers.size() > 1) {
        return NotClear(options, printers);
    }
    const Printer& printer = printers.front();
    const std::function<int()> work = [device = printer.record] {
        auto& discovery = PrinterDeviceDiscoverSdk::DiscoverScanInterface::GetInstance();
        return discovery.GetDeviceConnectState(device);
    };
    const int state = Await("Asking the printer's vendor for its state", work);
    if (state == PrinterDeviceDiscoverSdk::kNothingToCall) {
        RequireAnswer(printer);
    }
    const std::string line = WritesJson() ? StateJson(printer, state) : StateLine(printer, state);
    WriteOutput(line + "\n");
    return kFound;
}

constexpr const char* kStateDetails =
    R"(If several printers share the serial number they are listed and the exit status
is 1; choose one with --address.)";

}  // namespace

Command StateCommand() {
    const auto options = std::make_shared<StateOptions>();
    Command command{.name = "state",
                    .summary = "Find one printer and ask its vendor whether it can take a job.",
                    .examples = {{"state CN12345678", "find it, then ask its vendor"},
                                 {"state CN12345678 --seconds 30 --json"},
                                 {"state CN12345678 --address 192.168.1.20"}},
                    .details = kStateDetails,
                    .exitTexts = ExitTexts("the printer was found, whatever its state",
                                           "not found, or several have the serial number"),
                    .run = [options] { return State(*options); }};
    command.AddText("SERIAL", "", options->serialNumber, "The printer's serial number").isRequired =
        true;
    command.AddText("--address", "ADDRESS", options->address,
                    "The printer's address, if several printers have that serial number: as "
                    "`devicediscover scan` shows it");
    command.AddSeconds("--seconds", options->time, "How long to look for it");
    return command;
}

}  // namespace App

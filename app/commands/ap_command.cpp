// SPDX-License-Identifier: Apache-2.0

#include "app/commands/ap_command.h"

#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <optional>

#include "app/commands/common_options.h"
#include "app/items/printer_table.h"
#include "app/library/access_point_printer.h"
#include "app/library/vendor_texts.h"
#include "app/outcome/problem.h"
#include "app/output/answer.h"
#include "app/output/item_output.h"
#include "app/output/json_output.h"
#include "app/program/messages.h"
#include "app/program/settings.h"
#include "base/text/display_text.h"
#include "host/PrinterUtil/vendor_list.h"

namespace App {

namespace {

using PrinterDeviceDiscoverSdk::DeviceInfo;

struct ApConfigureOptions {
    std::string network;
    PassPhraseOptions passPhrase;
};

struct ApCheckOptions {
    std::string serialNumber;  // empty: the printer whose access point the host is joined to
    std::string vendor;        // empty: all, one after the other
};

template <std::size_t Size>
void Fill(char (&field)[Size], const std::string& text, const char* name) {
    if (text.size() >= Size) {
        throw WrongInput(fmt::format("the {} has {} bytes; a printer's has {} at most", name,
                                     text.size(), Size - 1));
    }
    std::copy(text.begin(), text.end(), field);
}

DeviceInfo RecordOf(const std::string& serialNumber, const std::string& vendor) {
    DeviceInfo record{};
    Fill(record.deviceSN, serialNumber, "serial number");
    Fill(record.modelID, vendor, "vendor's name");
    return record;
}

// The printers to check: one, or one for each vendor.
std::vector<DeviceInfo> Candidates(const ApCheckOptions& options) {
    if (!options.vendor.empty()) {
        return {RecordOf(options.serialNumber, options.vendor)};
    }
    std::vector<DeviceInfo> records;
    for (const VendorInfo& vendor : PrinterUtil::DescribeVendorList().vendors) {
        records.push_back(RecordOf(options.serialNumber, vendor.productId));
    }
    return records;
}

// Reports the failures of an ended scan. Throws Problem unless earlier results count.
void ReportFailures(const std::vector<std::string>& failures, bool counts) {
    if (!counts) {
        throw Problem("every vendor's scan has failed; there may be networks that were not found" +
                      Lines(failures));
    }
    WarnOfAll(failures);
}

void WriteCheck(const Printer& printer, int result) {
    if (WritesJson()) {
        WriteAnswer(
            CheckJson(printer, result, IsAnswer(result, printer.vendor, "IsLocalAreaNetworkOK")) +
            "\n");
    } else if (result == 0) {
        WriteAnswer(fmt::format("{} is on the local network (vendor {})\n",
                                Cell(printer.serialNumber), Cell(printer.vendor)));
    }
}

ExitStatus ScanNetworks(const ScanOptions& options) {
    try {
        NetworkScanSession session;
        const auto view = ViewFor<Network>(NetworkJson);
        const bool isAnyFound = RunScan(session, *view, options);
        if (session.HasEnded()) {
            ReportFailures(session.Failures(), isAnyFound && !options.watch);
        }
        return isAnyFound ? kFound : FailedSeeLog("no network was reported.");
    } catch (const NoScan& noScan) {
        return FailedSeeLog(std::string("no scan was started: ") + noScan.what());
    }
}

ExitStatus Configure(const ApConfigureOptions& options) {
    const std::string& network = options.network;
    options.passPhrase.Require();
    const std::shared_ptr<Base::Secret> passPhrase = GetPassPhrase(options.passPhrase, network);
    RequirePrinterPassPhrase(*passPhrase);
    const int result = ConfigureNetwork(network, passPhrase);
    if (WritesJson()) {
        WriteAnswer(ConfigureJson(network, result) + "\n");
    } else if (result == 0) {
        WriteAnswer("the printer was put on " + Base::DisplayText(network) + "\n");
    }
    if (result == 0) {
        return kFound;
    }
    const std::string known = IsUnconfirmed(result, {}, "PrinterAPNetConfigEvent")
                                  ? "it is not known whether the printer is on "
                                  : "the printer was not put on ";
    return FailedSeeLog(known + network + ": " + Explanation(result, "PrinterAPNetConfigEvent"));
}

ExitStatus ShowApPrinter() {
    const DeviceAnswer answer = AskForDevice();
    if (answer.result != 0) {
        return FailedSeeLog("no printer: " + Explanation(answer.result, "GetDeviceInfoByNet"));
    }
    WriteItems(std::vector<Printer>{Printer(answer.device)}, PrinterJson);
    return kFound;
}

ExitStatus CheckPrinter(const ApCheckOptions& options) {
    std::vector<DeviceInfo> candidates;
    if (options.serialNumber.empty()) {
        const DeviceAnswer answer = AskForDevice();
        if (answer.result != 0) {
            return FailedSeeLog("no printer to ask about: " +
                                Explanation(answer.result, "GetDeviceInfoByNet"));
        }
        candidates = {answer.device};
    } else {
        candidates = Candidates(options);
    }
    std::string reasons;
    bool allAnswered = true;
    for (const DeviceInfo& candidate : candidates) {
        const Printer printer(candidate);
        const int result = CheckLocalNetwork(candidate);
        WriteCheck(printer, result);
        if (result == 0) {
            return kFound;
        }
        allAnswered = allAnswered && IsAnswer(result, printer.vendor, "IsLocalAreaNetworkOK");
        reasons += fmt::format("\n  vendor {}: {}", printer.vendor,
                               Explanation(result, "IsLocalAreaNetworkOK", printer.vendor));
    }
    if (candidates.empty()) {
        Explanation(PrinterDeviceDiscoverSdk::kNothingToCall, "IsLocalAreaNetworkOK");
    }
    if (!allAnswered) {
        throw Problem("could not look for the printer on the local network:" + reasons);
    }
    return FailedSeeLog("the printer is not on the local network:" + reasons);
}

constexpr const char* kJoinFirst = "This computer must be joined to the printer's own network.";

Command ApScanCommand() {
    const auto options = std::make_shared<ScanOptions>();
    Command command{
        .name = "scan",
        .summary = "Show the networks that the printer can be put on.",
        .examples = {{"ap scan", "a live table for 5 seconds"},
                     {"ap scan --json --watch", "one JSON object per line, until Ctrl-C"}},
        .details = std::string(kJoinFirst) + "\nEach vendor measures the signal in its own way.",
        .exitTexts = ExitTexts("at least one network was found",
                               "no network, or this computer is not on a printer's own network",
                               "could not run; the vendor could not look for networks"),
        .run = [options] { return ScanNetworks(*options); }};
    AddScanOptions(command, *options);
    return command;
}

Command ApConfigureCommand() {
    const auto options = std::make_shared<ApConfigureOptions>();
    Command command{
        .name = "configure",
        .summary = "Put the printer on a network.",
        .examples = {{"ap configure --network Office"},
                     {"ap configure --network Office --pass-phrase-file office.txt"}},
        .details = std::string(kJoinFirst) + kPassPhraseDetails,
        .exitTexts = ExitTexts("the printer was put on the network",
                               "it was not; or it closed its own network, and whether it joined "
                               "the other is not known"),
        .run = [options] { return Configure(*options); }};
    AddNetwork(command, options->network);
    AddPassPhrase(command, options->passPhrase);
    return command;
}

Command ApInfoCommand() {
    return {.name = "info",
            .summary = "Show the printer.",
            .examples = {{"ap info"}, {"ap info --json"}},
            .details = "Shows the printer whose own network this computer is joined to.",
            .exitTexts = ExitTexts("there is one", "there is none"),
            .run = ShowApPrinter};
}

Command ApCheckCommand() {
    const auto options = std::make_shared<ApCheckOptions>();
    Command command{
        .name = "check",
        .summary = "Ask whether a printer is on the local network.",
        .examples = {{"ap check CN12345678", "asks each vendor in turn"},
                     {"ap check CN12345678 --vendor acme", "asks this vendor only"},
                     {"ap check", "the printer whose own network this is"}},
        .details = "A UUID works in place of the serial number if the vendor knows printers by it.",
        .exitTexts = ExitTexts("the printer is on the local network", "it is not",
                               "could not run; no vendor could look for the printer"),
        .run = [options] { return CheckPrinter(*options); }};
    command.AddText("SERIAL", "", options->serialNumber,
                    "The printer's serial number, or its UUID");
    command.AddText("--vendor", "ID", options->vendor, "The productId of the printer's vendor")
        .needs = {"SERIAL"};
    return command;
}

}  // namespace

Command AccessPointCommand() {
    return {.name = "ap",
            .summary = "Set up a new printer through the printer's own Wi-Fi network.",
            .examples = {{"ap info", "whose network is this?"},
                         {"ap scan", "which networks does the printer report?"},
                         {"ap configure --network Office"},
                         {"ap check CN12345678", "is it on the local network now?"}},
            .details = "`devicediscover setup` does all of it in one go.",
            .exitTexts = ExitTexts("found or done", "not found or not done"),
            .commands = {ApScanCommand(), ApConfigureCommand(), ApInfoCommand(), ApCheckCommand()}};
}

}  // namespace App

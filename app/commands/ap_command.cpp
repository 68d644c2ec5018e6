// SPDX-License-Identifier: Apache-2.0

#include "app/commands/ap_command.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>

#include "app/items/printer_table.h"
#include "app/library/access_point_printer.h"
#include "app/outcome/problem.h"
#include "app/output/item_output.h"
#include "app/output/json_output.h"
#include "app/program/messages.h"
#include "app/terminal/console.h"
#include "app/terminal/text.h"
#include "host/PrinterUtil/vendor_list.h"

namespace App {

namespace {

using PrinterDeviceDiscoverSdk::DeviceInfo;

ExitStatus Failed(const std::string& what) {
    Complain(what + "\n" + AdviceToReadLog());
    return kNoneFound;
}

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
std::vector<DeviceInfo> Candidates(const CheckOptions& options) {
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
void TellFailures(const std::vector<std::string>& failures, bool counts) {
    if (!counts) {
        throw Problem("nobody looks for networks; whether there are more is not known" +
                      Lines(failures));
    }
    WarnOfAll(failures);
}

void WriteCheck(const Settings& settings, const Printer& printer, int result) {
    if (settings.json) {
        WriteOutput(CheckJson(printer, result, IsAnswer(result, printer.vendor)) + "\n");
    } else if (result == 0) {
        WriteOutput(fmt::format("{} is on the local network (vendor {})\n",
                                Cell(printer.serialNumber), Cell(printer.vendor)));
    }
}

}  // namespace

ExitStatus AccessPointScan(const Settings& settings, const ScanOptions& options) {
    try {
        NetworkScanSession session(settings);
        const auto view = ViewFor<Network>(settings, NetworkJson);
        const bool isAnyFound = RunScan(session, *view, options);
        if (session.HasEnded()) {
            TellFailures(session.Failures(), isAnyFound && !options.watch);
        }
        return isAnyFound ? kFound : Failed("no network was reported.");
    } catch (const NoScan& noScan) {
        return Failed("no scan was started: " + noScan.reason);
    }
}

ExitStatus AccessPointConfigure(const Settings& settings, const std::string& network,
                                const PassPhraseOptions& options) {
    options.Require(settings);
    const std::shared_ptr<Base::Secret> passPhrase = GetPassPhrase(settings, options, network);
    RequirePrinterPassPhrase(*passPhrase);
    const int result = ConfigureNetwork(settings, network, passPhrase);
    if (settings.json) {
        WriteOutput(ConfigureJson(network, result) + "\n");
    } else if (result == 0) {
        WriteOutput("the printer was put on " + DisplayText(network) + "\n");
    }
    if (result == 0) {
        return kFound;
    }
    const std::string known = IsUnconfirmed(result, {})
                                  ? "it is not known whether the printer is on "
                                  : "the printer was not put on ";
    return Failed(known + network + ": " +
                  Explanation(settings, result, "PrinterAPNetConfigEvent"));
}

ExitStatus AccessPointInfo(const Settings& settings) {
    const DeviceAnswer answer = AskForDevice(settings);
    if (answer.result != 0) {
        return Failed("no printer: " + Explanation(settings, answer.result, "GetDeviceInfoByNet"));
    }
    WriteItems(settings, std::vector<Printer>{Printer(answer.device)}, PrinterJson);
    return kFound;
}

ExitStatus AccessPointCheck(const Settings& settings, const CheckOptions& options) {
    std::vector<DeviceInfo> candidates;
    if (options.serialNumber.empty()) {
        const DeviceAnswer answer = AskForDevice(settings);
        if (answer.result != 0) {
            return Failed("no printer to ask about: " +
                          Explanation(settings, answer.result, "GetDeviceInfoByNet"));
        }
        candidates = {answer.device};
    } else {
        candidates = Candidates(options);
    }
    std::string reasons;
    bool allAnswered = true;
    for (const DeviceInfo& candidate : candidates) {
        const Printer printer(candidate);
        const int result = CheckLocalNetwork(settings, candidate);
        WriteCheck(settings, printer, result);
        if (result == 0) {
            return kFound;
        }
        allAnswered = allAnswered && IsAnswer(result, printer.vendor);
        reasons +=
            fmt::format("\n  vendor {}: {}", printer.vendor,
                        Explanation(settings, result, "IsLocalAreaNetworkOK", printer.vendor));
    }
    if (candidates.empty()) {
        Explanation(settings, -1, "IsLocalAreaNetworkOK");
    }
    if (!allAnswered) {
        throw Problem("could not look for the printer on the local network:" + reasons);
    }
    return Failed("the printer is not on the local network:" + reasons);
}

}  // namespace App

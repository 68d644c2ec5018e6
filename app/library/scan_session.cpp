// SPDX-License-Identifier: Apache-2.0

#include "app/library/scan_session.h"

#include "app/library/vendor_survey.h"
#include "app/outcome/problem.h"
#include "app/program/messages.h"
#include "app/program/settings.h"
#include "app/running/awaiting.h"

namespace App {

namespace {

int OnDevice(const PrinterDeviceDiscoverSdk::DeviceInfo* device) {
    PrinterList::GetInstance().Add(Printer(*device));
    return 0;
}

[[noreturn]] void ThrowCouldNotStart(const std::vector<std::string>& problems) {
    throw Problem("no vendor can look for printers" + Lines(problems) +
                  "\nName a vendor list with --vendors FILE, or install the missing modules; "
                  "`devicediscover vendors` shows what is there.");
}

}  // namespace

ScanSession::ScanSession() {
    // The call loads the vendors' modules, which may take long or hang.
    const ScanSurvey survey = Await<ScanSurvey>("Loading the vendors' modules", SurveyScans);
    knownVendors = survey.listed;
    scans.emplace(VendorScans::kForPrinters, survey.vendors);
    auto& discovery = PrinterDeviceDiscoverSdk::DiscoverScanInterface::GetInstance();
    const std::function<int()> start = [&discovery] {
        return discovery.StartDeviceScan({OnDevice, 0});
    };
    // A request to end the program during the start stops the scan properly, unless the start takes
    // too long.
    constexpr int ticksOfGrace = 15;
    int ticks = 0;
    const auto onWait = [&ticks] {
        if (PrinterList::GetInstance().IsCancelled() && ++ticks > ticksOfGrace) {
            throw Interrupted();
        }
    };
    const bool started = AwaitRegardless(start, onWait, AnswerLimitOr(kAnswerLimit)) == 0;
    if (started) {
        scan.emplace("scan", "a vendor has not stopped its scan",
                     [&discovery] { return discovery.StopDeviceScan(); });
    }
    if (!started) {
        ThrowCouldNotStart(survey.problems);
    }
    WarnOfAll(survey.problems);
}

void ScanSession::Stop(const std::function<void()>& onWait) {
    scans->Update();
    scans->Freeze();
    scan->Stop(onWait);
    isStopped = true;
    if (Printers().GetItems().empty()) {
        scans->AwaitReturns();
    }
}

bool ScanSession::HasEnded() {
    scans->Update();
    return scans->HasEnded();
}

std::vector<std::string> ScanSession::TakeRemarks() {
    std::vector<std::string> remarks;
    RemarkStrangers(remarks);
    if (!HasEnded()) {
        for (const std::string& failure : TakeFailures()) {
            if (failureLines.Admits()) {
                remarks.push_back(failure);
            }
        }
    }
    if (isStopped) {
        RemarkRest(remarks);
    }
    return remarks;
}

std::vector<std::string> ScanSession::TakeFailures() {
    const std::vector<std::string>& failures = scans->Failures();
    const auto first = failures.begin() + static_cast<std::ptrdiff_t>(remarked);
    remarked = failures.size();
    return {first, failures.end()};
}

void ScanSession::RemarkRest(std::vector<std::string>& remarks) {
    if (const std::size_t rest = strangerLines.TakeRest(); rest > 0) {
        remarks.push_back("and " + std::to_string(rest) +
                          " more modelIDs that are not in the vendor list");
    }
    if (const std::size_t rest = failureLines.TakeRest(); rest > 0) {
        remarks.push_back("and " + std::to_string(rest) + " more vendors that do not look");
    }
}

void ScanSession::RemarkStrangers(std::vector<std::string>& remarks) {
    for (const Printer& printer : Printers().GetItems()) {
        if (!knownVendors.contains(printer.vendor) && strangers.insert(printer.vendor).second &&
            strangerLines.Admits()) {
            remarks.push_back("a vendor reports printers with the modelID '" + printer.vendor +
                              "', which is not in the vendor list: no vendor can be "
                              "asked about them");
        }
    }
}

void ThrowNobodyLooks(const ScanSession& session) {
    throw Problem("every vendor's scan has failed; there may be printers that were not found" +
                  Lines(session.Failures()));
}

}  // namespace App

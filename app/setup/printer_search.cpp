// SPDX-License-Identifier: Apache-2.0

#include "app/setup/printer_search.h"

#include <algorithm>

#include "app/library/access_point_printer.h"
#include "app/library/scan_session.h"
#include "app/library/vendor_survey.h"
#include "app/program/status_line.h"
#include "app/running/cancellation.h"
#include "host/PrinterUtil/vendor_list.h"

namespace App {

namespace {

using Clock = PrinterList::Clock;

constexpr auto kTick = std::chrono::milliseconds(200);
constexpr auto kPause = std::chrono::seconds(1);  // between two questions to the vendor
constexpr auto kSettling = std::chrono::seconds(1);
constexpr auto kLongestToPlace = std::chrono::seconds(5);

bool CanBeAsked(const std::string& productId) {
    const auto vendors = PrinterUtil::DescribeVendorList().vendors;
    return std::any_of(vendors.begin(), vendors.end(), [&](const VendorInfo& vendor) {
        return vendor.productId == productId &&
               SurveyConfigurationModule(vendor).Has("IsLocalAreaNetworkOK");
    });
}

// A printer on this computer's USB may be announced by this computer itself.
bool IsElsewhere(const Printer& printer) {
    return !printer.address.starts_with("127.");
}

// Where it may be: a printer may move, and others may have its serial number.
std::vector<Printer> Candidates(const Printer& wanted) {
    std::vector<Printer> printers = PrinterList::GetInstance().GetLatestFirst();
    const auto others =
        std::remove_if(printers.begin(), printers.end(), [&](const Printer& printer) {
            return printer.vendor != wanted.vendor || printer.serialNumber != wanted.serialNumber ||
                   !IsElsewhere(printer);
        });
    printers.erase(others, printers.end());
    return printers;
}

void Wait(StatusLine& status, Clock::time_point until) {
    PrinterList::GetInstance().WaitForNews(until);
    Cancellation::GetInstance().Check();
    status.Draw();
}

// The vendor may have seen the printer before the scan did, which so far found another, or none.
void Settle(StatusLine& status, const Printer& wanted, Clock::time_point latest) {
    while (Candidates(wanted).empty() && Clock::now() < latest) {
        Wait(status, std::min(latest, Clock::now() + kTick));
    }
    for (const auto end = Clock::now() + kSettling; Clock::now() < end;) {
        Wait(status, std::min(end, Clock::now() + kTick));
    }
}

}  // namespace

SearchOutcome SearchPrinter(const Settings& settings, const Printer& wanted,
                            std::chrono::duration<double> time) {
    const auto end = Clock::now() + std::chrono::duration_cast<Clock::duration>(time);
    const bool ask = CanBeAsked(wanted.vendor);
    ScanSession session(settings);
    StatusLine status(settings, "Looking for the printer");
    SearchOutcome outcome;
    Clock::time_point nextQuestion{};
    bool hasEnded = false;
    do {
        Wait(status, std::min(end, Clock::now() + kTick));
        hasEnded = session.HasEnded();
        outcome.printers = Candidates(wanted);
        // Once nobody looks any more, the vendor is asked for the last time.
        if ((outcome.printers.empty() && !ask) || (Clock::now() < nextQuestion && !hasEnded)) {
            continue;
        }
        // About the printer as it was set up: what was found may be another of its serial number.
        outcome.vendorsResult = ask ? CheckLocalNetwork(settings, wanted.record) : 0;
        outcome.isOnNetwork = outcome.vendorsResult == 0;
        nextQuestion = Clock::now() + kPause;
    } while (!outcome.isOnNetwork && !hasEnded && Clock::now() < end);
    if (hasEnded) {
        outcome.failures = session.Failures();
    }
    if (outcome.isOnNetwork) {
        Settle(status, wanted, std::min(end, Clock::now() + kLongestToPlace));
    }
    // The vendor may have taken its time over the last question.
    outcome.printers = Candidates(wanted);
    outcome.isOnNetwork = outcome.isOnNetwork || (!ask && !outcome.printers.empty());
    return outcome;
}

}  // namespace App

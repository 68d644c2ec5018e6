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
constexpr auto kPause = std::chrono::seconds(1);  // between two requests to the vendor
constexpr auto kSettling = std::chrono::seconds(1);
constexpr auto kLongestToPlace = std::chrono::seconds(5);

bool CanBeAsked(const std::string& productId) {
    const auto vendors = PrinterUtil::DescribeVendorList().vendors;
    return std::any_of(vendors.begin(), vendors.end(), [&](const VendorInfo& vendor) {
        return vendor.productId == productId &&
               SurveyConfigurationModule(vendor).Has("IsLocalAreaNetworkOK");
    });
}

// False for a printer that this computer announces itself: it may be on USB.
bool IsElsewhere(const Printer& printer) {
    return !printer.address.starts_with("127.");
}

// The found printers that may be the wanted one: it may move, and others may have its serial
// number.
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

// Waits for the scan: the vendor may have found the printer first, while the scan has found
// another, or none.
void Settle(StatusLine& status, const Printer& wanted, Clock::time_point latest) {
    while (Candidates(wanted).empty() && Clock::now() < latest) {
        Wait(status, std::min(latest, Clock::now() + kTick));
    }
    for (const auto end = Clock::now() + kSettling; Clock::now() < end;) {
        Wait(status, std::min(end, Clock::now() + kTick));
    }
}

}  // namespace

SearchOutcome SearchPrinter(const Printer& wanted, std::chrono::duration<double> time) {
    const auto end = Clock::now() + std::chrono::duration_cast<Clock::duration>(time);
    const bool ask = CanBeAsked(wanted.vendor);
    ScanSession session;
    StatusLine status("Looking for the printer");
    SearchOutcome outcome;
    Clock::time_point nextQuestion{};
    bool hasEnded = false;
    do {
        Wait(status, std::min(end, Clock::now() + kTick));
        hasEnded = session.HasEnded();
        outcome.printers = Candidates(wanted);
        // When all scans have failed, ask the vendor for the last time.
        if ((outcome.printers.empty() && !ask) || (Clock::now() < nextQuestion && !hasEnded)) {
            continue;
        }
        // Ask about the printer as it was set up: a found printer may be another with its serial
        // number.
        outcome.vendorsResult = ask ? CheckLocalNetwork(wanted.record) : 0;
        outcome.isOnNetwork = outcome.vendorsResult == 0;
        nextQuestion = Clock::now() + kPause;
    } while (!outcome.isOnNetwork && !hasEnded && Clock::now() < end);
    if (hasEnded) {
        outcome.failures = session.Failures();
    }
    if (outcome.isOnNetwork) {
        Settle(status, wanted, std::min(end, Clock::now() + kLongestToPlace));
    }
    // The vendor's last answer may have taken long.
    outcome.printers = Candidates(wanted);
    outcome.isOnNetwork = outcome.isOnNetwork || (!ask && !outcome.printers.empty());
    return outcome;
}

}  // namespace App

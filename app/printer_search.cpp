#include "app/printer_search.h"

#include <algorithm>

#include "app/access_point_printer.h"
#include "app/cancellation.h"
#include "app/scan_session.h"
#include "app/status_line.h"
#include "app/vendor_survey.h"
#include "host/PrinterUtil/vendor_list.h"

namespace App {

namespace {

using Clock = PrinterList::Clock;

constexpr auto kTick = std::chrono::milliseconds(200);
constexpr auto kPause = std::chrono::seconds(1);  // between two questions to the vendor

bool CanBeAsked(const std::string& productId) {
    const auto vendors = PrinterUtil::DescribeVendorList().vendors;
    return std::any_of(vendors.begin(), vendors.end(), [&](const VendorInfo& vendor) {
        return vendor.productId == productId &&
               SurveyConfigurationModule(vendor).Has("IsLocalAreaNetworkOK");
    });
}

// Where it was found last: it may have moved from one network to the other.
std::optional<Printer> Find(const Printer& wanted) {
    const std::vector<Printer> printers = PrinterList::GetInstance().GetItems();
    const auto found =
        std::find_if(printers.rbegin(), printers.rend(), [&](const Printer& printer) {
            return printer.vendor == wanted.vendor && printer.serialNumber == wanted.serialNumber;
        });
    return found == printers.rend() ? std::nullopt : std::optional(*found);
}

void Wait(StatusLine& status, Clock::time_point until) {
    PrinterList::GetInstance().WaitForNews(until);
    Cancellation::GetInstance().Check();
    status.Draw();
}

}  // namespace

SearchOutcome SearchPrinter(const Settings& settings, const Printer& wanted,
                            std::chrono::duration<double> time) {
    const auto end = Clock::now() + std::chrono::duration_cast<Clock::duration>(time);
    const bool ask = CanBeAsked(wanted.vendor);
    ScanSession session;
    StatusLine status(settings, "Looking for the printer");
    SearchOutcome outcome;
    Clock::time_point nextQuestion{};
    do {
        Wait(status, std::min(end, Clock::now() + kTick));
        outcome.printer = Find(wanted);
        if (!outcome.printer || Clock::now() < nextQuestion) {
            continue;
        }
        outcome.vendorsResult = ask ? CheckLocalNetwork(settings, outcome.printer->record) : 0;
        outcome.isOnNetwork = outcome.vendorsResult == 0;
        nextQuestion = Clock::now() + kPause;
    } while (!outcome.isOnNetwork && Clock::now() < end);
    return outcome;
}

}  // namespace App

#include "app/scan_session.h"

#include "app/cancellation.h"
#include "app/messages.h"
#include "app/problem.h"
#include "app/vendor_survey.h"

namespace App {

namespace {

int OnDevice(const PrinterDeviceDiscoverSdk::DeviceInfo* device) {
    PrinterList::GetInstance().Add(Printer(*device));
    return 0;
}

[[noreturn]] void ThrowCouldNotStart(const std::vector<std::string>& problems) {
    throw Problem("no vendor can look for printers" + Lines(problems) +
                  "\nName a vendor list with --vendors FILE, or put the modules in order; "
                  "`devicediscover vendors` shows what is there.");
}

}  // namespace

ScanSession::ScanSession() {
    CancelOnInterrupt();
    auto& discovery = PrinterDeviceDiscoverSdk::DiscoverScanInterface::GetInstance();
    const bool started = discovery.StartDeviceScan({OnDevice, 0}) == 0;
    if (started) {
        scan.emplace("scan", "a vendor has not stopped its scan",
                     [&discovery] { return discovery.StopDeviceScan(); });
    }
    const std::vector<std::string> problems = ScanProblems();
    if (!started) {
        ThrowCouldNotStart(problems);
    }
    for (const std::string& problem : problems) {
        Warn(problem);
    }
}

}  // namespace App

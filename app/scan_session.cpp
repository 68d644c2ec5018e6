#include "app/scan_session.h"

#include <exception>

#include "app/awaiting.h"
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
    std::string text = "no vendor can look for printers";
    for (const std::string& problem : problems) {
        text += "\n  " + problem;
    }
    throw Problem(text +
                  "\nName a vendor list with --vendors FILE, or put the modules in order; "
                  "`devicediscover vendors` shows what is there.");
}

}  // namespace

ScanSession::ScanSession() {
    CancelOnInterrupt();
    auto& discovery = PrinterDeviceDiscoverSdk::DiscoverScanInterface::GetInstance();
    running = discovery.StartDeviceScan({OnDevice, 0}) == 0;
    const std::vector<std::string> problems = ScanProblems();
    if (!running) {
        ThrowCouldNotStart(problems);
    }
    for (const std::string& problem : problems) {
        Warn(problem);
    }
}

ScanSession::~ScanSession() {
    try {
        Stop();
    } catch (const std::exception& failure) {
        Warn(std::string("the scan was not stopped: ") + failure.what());
    }
    if (isLate) {
        Warn("a vendor has not stopped its scan in time; nobody waits for it any more.");
    }
}

void ScanSession::Stop() {
    if (!running) {
        return;
    }
    running = false;
    isLate = !StopInTime([] {
        return PrinterDeviceDiscoverSdk::DiscoverScanInterface::GetInstance().StopDeviceScan();
    });
}

}  // namespace App

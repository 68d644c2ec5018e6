#include "app/crash_report.h"

#include <atomic>
#include <cstdlib>

#include "DeviceDiscover/vendor_activity.h"
#include "app/crash_system.h"
#include "app/crash_text.h"
#include "app/exit_status.h"
#include "app/interrupt.h"

namespace App {

namespace {

std::atomic<bool> endIsOwn = false;

void OnExit() {
    if (!endIsOwn && IsOwnProcess()) {
        TellEnd(CrashText("the program was ended by a call of exit()").View());
        EndProcess(kCouldNotRun);
    }
}

}  // namespace

void ReportCrashes() {
    CatchCrashes();
    std::atexit(OnExit);
    CatchOtherExits(OnExit);
    ReportCrashesOfThisThread();
    PrinterDeviceDiscoverSdk::PrepareVendorThreads(ReportCrashesOfThisThread);
}

void EndIsOwn() {
    endIsOwn = true;
}

}  // namespace App

#pragma once

// The scans that run in this process.

#include <memory>
#include <mutex>
#include <vector>

#include "scan_session.h"

namespace Driverless {

class ScanRegistry {
public:
    // Runs a scan until it is stopped. One that reports to the same listener ends first: what was
    // started again starts afresh.
    int Run(VendorSdk::DeviceCallbackInfo* listener);

    // Ends all scans; false when one of them is still in its listener after `patience`.
    bool StopAll(std::chrono::milliseconds patience);

private:
    class Listing;
    using Sessions = std::vector<std::shared_ptr<ScanSession>>;

    std::mutex mutex;
    Sessions sessions;
};

// The one registry. Never destroyed: scans run until the process is gone.
ScanRegistry& RunningScans();

}  // namespace Driverless

#pragma once

// The scans that run in this process.

#include <memory>
#include <mutex>
#include <vector>

#include "modules/driverless/common/scan.h"

namespace Driverless {

class ScanRegistry {
public:
    // Runs a scan until it is stopped. One that reports to the same listener ends first: what was
    // started again starts afresh.
    int Run(const void* listener, const std::shared_ptr<Scan>& scan);

    // Ends all scans; false when one of them is still in its listener after `patience`.
    bool StopAll(std::chrono::milliseconds patience);

private:
    class Listing;
    struct Running {
        const void* listener;
        std::shared_ptr<Scan> scan;
    };

    std::mutex mutex;
    std::vector<Running> running;
};

// The scans for printers and those for Wi-Fi networks. Never destroyed: scans run until the process
// is gone.
ScanRegistry& RunningScans();
ScanRegistry& RunningNetworkScans();

// Has the end of the process end what runs then. To be called before anything that a thread may be
// left behind in.
void PrepareForExit();

}  // namespace Driverless

// SPDX-License-Identifier: Apache-2.0

#pragma once

// The running scans of this process.

#include <memory>
#include <mutex>
#include <vector>

#include "modules/driverless/common/scan.h"

namespace Driverless {

class ScanRegistry {
public:
    // Runs a scan until it is stopped. First ends a running scan with the same listener.
    int Run(const void* listener, const std::shared_ptr<Scan>& scan);

    // Ends all scans. False when one of them is still in its listener's callback after `patience`.
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

// Ensures that process exit ends the running scans. Call this before any code in which a thread may
// be abandoned.
void PrepareForExit();

}  // namespace Driverless

// SPDX-License-Identifier: Apache-2.0

#include "modules/driverless/discovery/running_scans.h"

#include <algorithm>
#include <cstdlib>

#include "modules/driverless/ipp/ipp_query.h"

namespace Driverless {

namespace {

// During exit the application's objects are destroyed: no report may reach them any more.
void AtExit() {
    RunningScans().StopAll(std::chrono::milliseconds(0));
    RunningNetworkScans().StopAll(std::chrono::milliseconds(0));
    EndTls();
}

}  // namespace

// Lists a scan until its Run ends, also by an exception.
class ScanRegistry::Listing {
public:
    Listing(ScanRegistry& inRegistry, const void* listener, const std::shared_ptr<Scan>& ofScan)
        : registry(inRegistry), scan(ofScan) {
        const std::lock_guard lock(registry.mutex);
        for (const Running& other : registry.running) {
            if (other.listener == listener) {
                other.scan->Stop(std::chrono::milliseconds(0));
            }
        }
        registry.running.push_back({listener, scan});
    }
    ~Listing() {
        const std::lock_guard lock(registry.mutex);
        std::erase_if(registry.running, [this](const Running& one) { return one.scan == scan; });
    }

    Listing(const Listing&) = delete;
    Listing& operator=(const Listing&) = delete;

private:
    ScanRegistry& registry;
    const std::shared_ptr<Scan> scan;
};

int ScanRegistry::Run(const void* listener, const std::shared_ptr<Scan>& scan) {
    PrepareForExit();
    const Listing listing(*this, listener, scan);
    return scan->Run();
}

bool ScanRegistry::StopAll(std::chrono::milliseconds patience) {
    std::vector<Running> all;
    {
        const std::lock_guard lock(mutex);
        all = running;
    }
    const auto deadline = std::chrono::steady_clock::now() + patience;
    bool silent = true;
    for (const Running& one : all) {
        one.scan->Stop(std::chrono::milliseconds(0));
    }
    for (const Running& one : all) {
        const auto left = deadline - std::chrono::steady_clock::now();
        silent &= one.scan->Stop(std::chrono::duration_cast<std::chrono::milliseconds>(left));
    }
    return silent;
}

ScanRegistry& RunningScans() {
    static ScanRegistry& registry = *new ScanRegistry;
    return registry;
}

ScanRegistry& RunningNetworkScans() {
    static ScanRegistry& registry = *new ScanRegistry;
    return registry;
}

void PrepareForExit() {
    static const int registered = std::atexit(AtExit);
    static_cast<void>(registered);
}

}  // namespace Driverless

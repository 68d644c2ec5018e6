#include "running_scans.h"

#include <algorithm>
#include <cstdlib>

#include "ipp_query.h"

namespace Driverless {

namespace {

// At exit the application's objects go one by one: nothing is reported to them any more.
void AtExit() {
    RunningScans().StopAll(std::chrono::milliseconds(0));
    EndTls();
}

}  // namespace

int ScanRegistry::Run(VendorSdk::DeviceCallbackInfo* listener) {
    static const int registered = std::atexit(AtExit);
    static_cast<void>(registered);
    const auto session = std::make_shared<ScanSession>(listener);
    {
        const std::lock_guard lock(mutex);
        for (const auto& other : sessions) {
            if (other->ReportsTo(listener)) {
                other->Stop(std::chrono::milliseconds(0));
            }
        }
        sessions.push_back(session);
    }
    const int result = session->Run();
    const std::lock_guard lock(mutex);
    std::erase(sessions, session);
    return result;
}

bool ScanRegistry::StopAll(std::chrono::milliseconds patience) {
    Sessions running;
    {
        const std::lock_guard lock(mutex);
        running = sessions;
    }
    const auto deadline = std::chrono::steady_clock::now() + patience;
    bool silent = true;
    for (const auto& session : running) {
        session->Stop(std::chrono::milliseconds(0));
    }
    for (const auto& session : running) {
        const auto left = deadline - std::chrono::steady_clock::now();
        silent &= session->Stop(std::chrono::duration_cast<std::chrono::milliseconds>(left));
    }
    return silent;
}

ScanRegistry& RunningScans() {
    static ScanRegistry& registry = *new ScanRegistry;
    return registry;
}

}  // namespace Driverless

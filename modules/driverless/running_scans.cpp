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

// Keeps a session listed until its Run ends, also by an exception.
class ScanRegistry::Listing {
public:
    Listing(ScanRegistry& inRegistry, const std::shared_ptr<ScanSession>& ofSession)
        : registry(inRegistry), session(ofSession) {
        const std::lock_guard lock(registry.mutex);
        for (const auto& other : registry.sessions) {
            if (other->ReportsToSameAs(*session)) {
                other->Stop(std::chrono::milliseconds(0));
            }
        }
        registry.sessions.push_back(session);
    }
    ~Listing() {
        const std::lock_guard lock(registry.mutex);
        std::erase(registry.sessions, session);
    }

    Listing(const Listing&) = delete;
    Listing& operator=(const Listing&) = delete;

private:
    ScanRegistry& registry;
    const std::shared_ptr<ScanSession> session;
};

int ScanRegistry::Run(VendorSdk::DeviceCallbackInfo* listener) {
    static const int registered = std::atexit(AtExit);
    static_cast<void>(registered);
    const auto session = std::make_shared<ScanSession>(listener);
    const Listing listing(*this, session);
    return session->Run();
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

#include "host_wifi.h"

#include <condition_variable>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

#include "platform/PrinterDiscoverAPI/PrinterWifiAPI.h"
#include "text.h"

namespace Driverless {

namespace {

using PrinterDiscoverAPI::PrinterWifiAPI;

// What a question and who waits for it have in common.
struct Waiting {
    std::mutex mutex;
    std::condition_variable changed;
    std::optional<HostNetwork> network;
};

constexpr std::chrono::milliseconds kPatienceAtExit{300};

// Who uses the library at this moment. Never destroyed: threads run until the process is gone.
class WifiUse {
public:
    // Calls `function`, unless the process is about to end, which takes down what the library
    // stands on.
    template <typename Function>
    void With(Function function) {
        if (Enter()) {
            // The end of the process takes things down in the reverse order of their making: what
            // was made when the library was loaded, and what its first use makes.
            static const int afterLoading = std::atexit(EndUse);
            function();
            static const int afterFirstUse = std::atexit(EndUse);
            static_cast<void>(afterLoading + afterFirstUse);
            Leave();
        }
    }

    static WifiUse& Instance() {
        static WifiUse& use = *new WifiUse;
        return use;
    }

private:
    static void EndUse() { Instance().End(); }

    bool Enter() {
        const std::lock_guard lock(mutex);
        users += over ? 0 : 1;
        return !over;
    }

    void Leave() {
        const std::lock_guard lock(mutex);
        --users;
        changed.notify_all();
    }

    // From here on nobody begins to use it, and those that do have a moment to come to their end.
    void End() {
        std::unique_lock lock(mutex);
        over = true;
        changed.wait_for(lock, kPatienceAtExit, [this] { return users == 0; });
    }

    std::mutex mutex;
    std::condition_variable changed;
    int users = 0;
    bool over = false;
};

HostNetwork AskForCurrent() {
    std::wstring name;
    std::wstring hardwareAddress;
    std::wstring interface;
    PrinterWifiAPI::GetInstance().QueryConnectedAP(name, hardwareAddress, interface);
    return {ToUtf8(name), ToUtf8(interface)};
}

}  // namespace

std::optional<HostNetwork> CurrentNetwork(std::chrono::milliseconds patience) {
    const auto waiting = std::make_shared<Waiting>();
    std::thread([waiting] {
        WifiUse::Instance().With([&] {
            HostNetwork network = AskForCurrent();
            const std::lock_guard lock(waiting->mutex);
            waiting->network = std::move(network);
            waiting->changed.notify_all();
        });
    }).detach();
    std::unique_lock lock(waiting->mutex);
    waiting->changed.wait_for(lock, patience, [&] { return waiting->network.has_value(); });
    return waiting->network;
}

void FindNetworks(std::function<void(std::vector<NetworkInRange>)> take) {
    std::thread([take = std::move(take)] {
        std::vector<PrinterWifiApiStruct::WlanInfoData> inRange;
        WifiUse::Instance().With([&] { PrinterWifiAPI::GetInstance().ScanWifiAPBySsid(inRange); });
        std::vector<NetworkInRange> networks;
        for (const auto& network : inRange) {
            if (!network.excludeFlag && !network.ssid.empty()) {
                networks.push_back({ToUtf8(network.ssid), network.attributes.signalQuality});
            }
        }
        take(std::move(networks));
    }).detach();
}

}  // namespace Driverless

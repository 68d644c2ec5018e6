#include "host_wifi.h"

#include <condition_variable>
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
        HostNetwork network = AskForCurrent();
        const std::lock_guard lock(waiting->mutex);
        waiting->network = std::move(network);
        waiting->changed.notify_all();
    }).detach();
    std::unique_lock lock(waiting->mutex);
    waiting->changed.wait_for(lock, patience, [&] { return waiting->network.has_value(); });
    return waiting->network;
}

void FindNetworks(std::function<void(std::vector<NetworkInRange>)> take) {
    std::thread([take = std::move(take)] {
        std::vector<PrinterWifiApiStruct::WlanInfoData> inRange;
        PrinterWifiAPI::GetInstance().ScanWifiAPBySsid(inRange);
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

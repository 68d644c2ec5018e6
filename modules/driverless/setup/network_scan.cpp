// SPDX-License-Identifier: Apache-2.0

#include "modules/driverless/setup/network_scan.h"

#include <atomic>
#include <condition_variable>
#include <future>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "modules/driverless/common/diagnostics.h"
#include "modules/driverless/common/results.h"
#include "modules/driverless/setup/offered_networks.h"

namespace Driverless {

namespace {

// The pause between two scans.
constexpr std::chrono::milliseconds kPause{3000};
constexpr std::chrono::milliseconds kPatienceForCurrent{1000};

}  // namespace

// Passes the found networks to the thread in Run. Outlives the scan while an abandoned request uses
// it.
class NetworkScan::Inbox {
public:
    void Put(std::future<NetworksFound> found) {
        const std::lock_guard lock(mutex);
        networks = std::move(found);
        changed.notify_all();
    }

    // The found networks; nothing when the inbox was closed. Throws the exception of the request.
    std::optional<NetworksFound> Take() {
        std::unique_lock lock(mutex);
        changed.wait(lock, [this] { return closed || networks.valid(); });
        return closed ? std::nullopt : std::optional(networks.get());
    }

    // False when the inbox was closed meanwhile.
    bool Sleep(std::chrono::milliseconds time) {
        std::unique_lock lock(mutex);
        return !changed.wait_for(lock, time, [this] { return closed; });
    }

    void Close() {
        const std::lock_guard lock(mutex);
        closed = true;
        changed.notify_all();
    }

private:
    std::mutex mutex;
    std::condition_variable changed;
    std::future<NetworksFound> networks;
    bool closed = false;
};

NetworkScan::NetworkScan(VendorSdk::WifiCallbackInfo* listener)
    : info(listener), inbox(std::make_shared<Inbox>()) {}

NetworkScan::~NetworkScan() = default;

int NetworkScan::Run() {
    OfferedNetworks offered;
    std::string current;  // the last known
    bool hasLooked = false;
    for (Look look = Look::Known;; look = Look::Fresh) {
        if (auto network = CurrentNetwork(kPatienceForCurrent)) {
            current = std::move(network->name);
        }
        const auto found = TakeLook(look);
        if (!found) {
            return kOk;
        }
        for (const auto& network : offered.Take(found->networks, current)) {
            Report(network);
        }
        if (look == Look::Known) {
            continue;
        }
        if (!hasLooked && found->problem) {
            ReportProblem("cannot look for networks: " + *found->problem);
            return kNoWifiAnswer;
        }
        hasLooked = true;
        if (!inbox->Sleep(kPause)) {
            return kOk;
        }
    }
}

// Nothing when the scan was stopped.
std::optional<NetworksFound> NetworkScan::TakeLook(Look look) {
    FindNetworks(look, [box = inbox](auto found) { box->Put(std::move(found)); });
    return inbox->Take();
}

void NetworkScan::Report(const NetworkInRange& network) {
    ReportDetail("in range: " + network.name);
    const VendorSdk::WifiConfigInfo record = ToRecord(network);
    // The application may change its registration at any time.
    const auto callback = std::atomic_ref(info->callback).load();
    if (callback != nullptr) {
        gate.Pass([&] { callback(&record); });
    }
}

bool NetworkScan::Stop(std::chrono::milliseconds patience) {
    inbox->Close();
    return gate.Close(patience);
}

}  // namespace Driverless

// SPDX-License-Identifier: Apache-2.0

#include "modules/driverless/setup/host_wifi.h"

#include <dlfcn.h>

#include <array>
#include <condition_variable>
#include <cstdlib>
#include <future>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

#include "base/text/utf8.h"
#include "modules/driverless/discovery/host_network.h"
#include "platform/PrinterDiscoverAPI/PrinterWifiAPI.h"
#include "platform/PrinterDiscoverAPI/PrinterWifiControl.h"

namespace Driverless {

namespace {

using PrinterDiscoverAPI::PrinterWifiAPI;

constexpr std::chrono::milliseconds kPatienceAtExit{300};

// Counts the running uses of the library. Never destroyed: threads run until the process is gone.
class WifiUse {
public:
    // Calls `function` unless the process is ending, which destroys objects that the library needs.
    template <typename Function>
    void With(Function function) {
        if (Enter()) {
            const Leaving leaving{*this};
            // Process exit destroys objects in reverse order of creation: those from the library's
            // first use, and those from its loading.
            static const int afterLoading = std::atexit(EndUse);
            function();
            static const int afterFirstUse = std::atexit(EndUse);
            static_cast<void>(afterLoading + afterFirstUse);
        }
    }

    static WifiUse& Instance() {
        static WifiUse& use = *new WifiUse;
        return use;
    }

private:
    struct Leaving {
        ~Leaving() { use.Leave(); }
        WifiUse& use;
    };

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

    // From now on no use begins, and running uses get a short time to end.
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

// An optional function of the library; a replacement may lack it.
template <class Function>
Function* Optional(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_DEFAULT, name));
}

// The kind of problem of this thread's last request, and the reason in words.
int LastProblem(std::string* reason = nullptr) {
    const auto problem = Optional<decltype(PrinterWifiProblem)>("PrinterWifiProblem");
    if (problem == nullptr) {
        return PRINTER_WIFI_DONE;
    }
    std::array<char, 512> text{};
    const int kind = problem(text.data(), text.size());
    if (reason != nullptr) {
        *reason = text.data();
    }
    return kind;
}

// A visit that takes this much longer is abandoned.
constexpr std::chrono::seconds kMoreForVisits{3};
constexpr std::chrono::seconds kPatienceWithReturn{3};

template <class Result>
std::optional<Result> InTime(std::function<Result()> work, std::chrono::milliseconds patience) {
    std::packaged_task<Result()> task([work = std::move(work)] {
        Result result{};
        WifiUse::Instance().With([&] { result = work(); });
        return result;
    });
    auto answer = task.get_future();
    std::thread(std::move(task)).detach();
    return answer.wait_for(patience) == std::future_status::ready ? std::optional(answer.get())
                                                                  : std::nullopt;
}

// Whether a host with this problem is certainly not joined to a network.
bool IsJoinedToNone(int problem) {
    return problem == PRINTER_WIFI_NO_ADAPTER ||
           (problem == PRINTER_WIFI_NOT_RUNNING && !IsOnWifi());
}

std::optional<HostNetwork> AskForCurrent() {
    std::wstring name;
    std::wstring hardwareAddress;
    std::wstring interface;
    PrinterWifiAPI::GetInstance().QueryConnectedAP(name, hardwareAddress, interface);
    const int problem = LastProblem();
    if (problem != PRINTER_WIFI_DONE && !IsJoinedToNone(problem)) {
        return std::nullopt;
    }
    return HostNetwork{Base::ToUtf8(name), Base::ToUtf8(interface)};
}

using WlanNetworks = std::vector<PrinterWifiApiStruct::WlanInfoData>;

void ListNetworks(Look look, WlanNetworks& networks) {
    if (look == Look::Fresh) {
        PrinterWifiAPI::GetInstance().ScanWifiAPBySsid(networks);
    } else if (const auto known =
                   Optional<decltype(PrinterWifiKnownNetworks)>("PrinterWifiKnownNetworks")) {
        known(&networks);
    }
}

NetworksFound AskForNetworks(Look look) {
    WlanNetworks inRange;
    NetworksFound found;
    WifiUse::Instance().With([&] {
        ListNetworks(look, inRange);
        std::string reason;
        if (LastProblem(&reason) != PRINTER_WIFI_DONE) {
            found.problem = reason;
        }
    });
    for (const auto& network : inRange) {
        if (!network.excludeFlag && !network.ssid.empty()) {
            found.networks.push_back(
                {Base::ToUtf8(network.ssid), network.attributes.signalQuality});
        }
    }
    return found;
}

}  // namespace

std::optional<HostNetwork> CurrentNetwork(std::chrono::milliseconds patience) {
    return InTime<std::optional<HostNetwork>>(AskForCurrent, patience).value_or(std::nullopt);
}

bool Visit(const std::string& network, std::chrono::seconds patience) {
    const auto visit = Optional<decltype(PrinterWifiVisit)>("PrinterWifiVisit");
    const auto seconds = static_cast<int>(patience.count());
    return visit != nullptr && InTime<bool>([=] { return visit(network.c_str(), seconds) != 0; },
                                            patience + kMoreForVisits)
                                   .value_or(false);
}

void EndVisit() {
    if (const auto end = Optional<decltype(PrinterWifiEndVisit)>("PrinterWifiEndVisit")) {
        InTime<bool>(
            [end] {
                end();
                return true;
            },
            kPatienceWithReturn);
    }
}

void FindNetworks(Look look, std::function<void(std::future<NetworksFound>)> take) {
    std::packaged_task<NetworksFound()> question([look] { return AskForNetworks(look); });
    std::thread([take = std::move(take), question = std::move(question)]() mutable {
        auto answer = question.get_future();
        question();
        take(std::move(answer));
    }).detach();
}

std::optional<std::vector<NetworkInRange>> NetworksInRange(std::chrono::milliseconds patience) {
    const auto answer = std::make_shared<std::promise<std::future<NetworksFound>>>();
    auto seen = answer->get_future();
    FindNetworks(Look::Fresh, [answer](std::future<NetworksFound> found) {
        answer->set_value(std::move(found));
    });
    return seen.wait_for(patience) == std::future_status::ready
               ? std::optional(seen.get().get().networks)
               : std::nullopt;
}

}  // namespace Driverless

// SPDX-License-Identifier: Apache-2.0

// Memory that runs out on the threads on which the module asks others.

#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <future>
#include <new>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "VendorSdk/entry_points.h"
#include "modules/driverless/common/results.h"
#include "modules/driverless/discovery/dnssd_browser.h"
#include "modules/driverless/discovery/query_pool.h"
#include "modules/driverless/ipp/ipp_query.h"
#include "modules/driverless/setup/host_wifi.h"
#include "platform/compiler.h"
#include "tests/support/failing_memory.h"

VENDORSDK_EXPORT(IsConnectCurrentWifiAP);
VENDORSDK_EXPORT(PrinterUSBNetConfigEvent);
VENDORSDK_EXPORT(StartDeviceScan);
VENDORSDK_EXPORT(USBWifiScan);

// The thread sanitizer asks for this. The standard library is not built with it, which therefore
// does not see how an exception that two threads hold counts who holds it.
extern "C" PLATFORM_EXPORT const char* __tsan_default_suppressions();
extern "C" const char* __tsan_default_suppressions() {
    return "race:std::__exception_ptr::exception_ptr::_M_release";
}

namespace Driverless {
namespace {

using std::chrono::milliseconds;

// Accepts connections and says nothing.
class Listener {
public:
    Listener() {
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        EXPECT_EQ(bind(listener, reinterpret_cast<sockaddr*>(&address), size), 0);
        EXPECT_EQ(listen(listener, 1), 0);
        EXPECT_EQ(getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size), 0);
    }
    ~Listener() { close(listener); }
    std::uint16_t Port() const { return ntohs(address.sin_port); }
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

private:
    const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
};

class WithoutMemory : public testing::Test {
protected:
    WithoutMemory() { setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere/bus", 1); }
};

TEST_F(WithoutMemory, TheHostsNetworkIsNotFoundAndTheCallerIsToldWhy) {
    const FailingMemory::FailsForOthers memory;
    EXPECT_EQ(IsConnectCurrentWifiAP(), kNoResources);
}

TEST_F(WithoutMemory, ALookAtTheNetworksEndsAndSaysWhy) {
    std::promise<std::future<NetworksFound>> taken;
    const FailingMemory::FailsForOthers memory;
    FindNetworks(Look::Fresh, [&](auto found) { taken.set_value(std::move(found)); });
    EXPECT_THROW(taken.get_future().get().get(), std::bad_alloc);
}

TEST_F(WithoutMemory, AQuestionToAPrinterEndsAndTheCallerIsToldWhy) {
    const Listener listener;
    Printer printer;
    printer.address = printer.host = "127.0.0.1";
    printer.port = listener.Port();
    const FailingMemory::FailsForOthers memory;
    EXPECT_THROW(AskInTime(printer, milliseconds(2000)), std::bad_alloc);
}

TEST_F(WithoutMemory, QuestionsOfAScanHaveNoAnswer) {
    std::array<std::promise<bool>, 3> answered;
    QueryPool queries([&](PrinterTable::QueryId query, const IppAnswer& answer) {
        answered.at(query).set_value(answer.kind == IppAnswer::Kind::Granted);
    });
    const FailingMemory::FailsForOthers memory;
    for (PrinterTable::QueryId id = 0; id < answered.size(); ++id) {
        queries.Start({id, {}, Clock::now() + milliseconds(2000)});
        EXPECT_FALSE(answered.at(id).get_future().get());
    }
}

TEST_F(WithoutMemory, AWatchOfAnnouncementsFailsAndSaysSo) {
    std::promise<int> failed;
    const FailingMemory::FailsForOthers memory;
    const DnssdBrowser browser([&](const DnssdEvent& event) { failed.set_value(event.result); });
    EXPECT_EQ(failed.get_future().get(), kNoBrowsing);
}

TEST_F(WithoutMemory, NoNetworksForUsbAreFoundAndTheCallerIsToldWhy) {
    const VendorSdk::DeviceInfo device{};
    std::vector<VendorSdk::WifiConfigInfo> networks(VendorSdk::kMaxNetworks);
    std::int32_t count = -1;
    const FailingMemory::FailsForOthers memory;
    EXPECT_EQ(USBWifiScan(&device, 0, networks.data(), &count), kNoResources);
    EXPECT_EQ(count, 0);
}

TEST_F(WithoutMemory, NoBridgeIsAskedAndTheCallerIsToldWhy) {
    const Listener listener;
    setenv("DRIVERLESS_USB_BRIDGE_PORTS", std::to_string(listener.Port()).c_str(), 1);
    const VendorSdk::DeviceInfo device{};
    VendorSdk::WifiConfigInfo network{};
    std::strcpy(network.ssid, "Office");
    const FailingMemory::FailsForOthers memory;
    EXPECT_EQ(PrinterUSBNetConfigEvent(&device, &network), kNoResources);
}

TEST_F(WithoutMemory, AScanEndsAtOnceAndSaysSo) {
    VendorSdk::DeviceCallbackInfo info{[](const VendorSdk::DeviceInfo*) { return 0; }, 0};
    const auto start = Clock::now();
    const FailingMemory::FailsForOthers memory;
    EXPECT_EQ(StartDeviceScan(&info), kNoBrowsing);
    EXPECT_LT(Clock::now() - start, milliseconds(2000));
}

}  // namespace
}  // namespace Driverless

// SPDX-License-Identifier: Apache-2.0

// What the access-point family adds to one question to a vendor, and to one network on its way from
// a vendor to the application.

#include <benchmark/benchmark.h>

#include <cstring>

#include "DeviceDiscover/netconn.h"
#include "bench/host/given_vendors.h"
#include "bench/support.h"

namespace {

using PrinterDeviceDiscoverSdk::DeviceInfo;
using PrinterDeviceDiscoverSdk::DiscoverBasic;
using PrinterDeviceDiscoverSdk::DiscoverNetConnInterface;
using PrinterDeviceDiscoverSdk::NetConnInterfaceListener;
using PrinterDeviceDiscoverSdk::WifiConfigInfo;

constexpr const char* kFacade =
    "PrinterDeviceDiscoverSdk::DiscoverNetConnInterface::IsLocalAreaNetworkOK";
constexpr const char* kDispatcher =
    "PrinterDeviceDiscoverSdk::NetConnInterface::IsLocalAreaNetworkOK";
constexpr const char* kRelay = "PrinterDeviceDiscoverSdk::NetConnInterfaceListener::CallBackFunc";
constexpr const char* kConversion =
    "PrinterDeviceDiscoverSdk::DiscoverBasic::GetDiscoverWifoConfigInfo";

VendorSdk::IsLocalAreaNetworkOKFunction* vendorFunction = nullptr;
const DeviceInfo device = Bench::ExampleDevice();
VendorSdk::DeviceInfo vendorDevice;
VendorSdk::WifiConfigInfo reported{-61.5F, "Example Office 5 GHz", ""};
VendorSdk::WifiCallbackInfo* vendorRegistration = nullptr;

int Application(const WifiConfigInfo* network) {
    benchmark::DoNotOptimize(network);
    benchmark::ClobberMemory();
    return 0;
}

int (*volatile applicationCallback)(const WifiConfigInfo*) = Application;

void Prepare() {
    Bench::SupportVendors({Bench::Vendor("bench", Bench::VendorModule())});
    vendorFunction = reinterpret_cast<VendorSdk::IsLocalAreaNetworkOKFunction*>(
        Bench::Symbol(Bench::VendorModule(), "IsLocalAreaNetworkOK"));
    DiscoverBasic::GetVendorSdkDeviceInfo(device, vendorDevice);
    vendorRegistration =
        NetConnInterfaceListener::GetInstance().SetDeviceCallbackInfo({Application, 0});
}

int AskFacade() {
    return DiscoverNetConnInterface::GetInstance().IsLocalAreaNetworkOK(device);
}

int AskByHand() {
    Bench::LogByHand(LOG_LEVEL_DEBUG, kFacade, "deviceSN", device.deviceSN);
    Bench::LogByHand(LOG_LEVEL_DEBUG, kFacade, "modelID", device.modelID);
    const int result = vendorFunction(&vendorDevice);
    Bench::LogByHand(LOG_LEVEL_DEBUG, kDispatcher, "call Func OK");
    return result;
}

WifiConfigInfo CopyOfReported() {
    WifiConfigInfo own;
    static_assert(sizeof own == sizeof reported);
    std::memcpy(&own, &reported, sizeof own);
    return own;
}

void Relay() {
    benchmark::DoNotOptimize(vendorRegistration->callback(&reported));
}

void RelayByHand() {
    Bench::LogByHand(LOG_LEVEL_DEBUG, kRelay, "callback");
    const WifiConfigInfo own = CopyOfReported();
    Bench::LogByHand(LOG_LEVEL_WARNING, kConversion, "rssi = ", own.rssi);
    Bench::LogByHand(LOG_LEVEL_WARNING, kConversion, "memcpy_s1 ret = ", 0);
    Bench::LogByHand(LOG_LEVEL_WARNING, kConversion, "memcpy_s2 ret = ", 0);
    benchmark::DoNotOptimize(applicationCallback(&own));
}

void LocalNetwork(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(AskFacade());
    }
}
BENCHMARK(LocalNetwork);

void LocalNetworkByHand(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(AskByHand());
    }
}
BENCHMARK(LocalNetworkByHand);

void LocalNetworkFloor(benchmark::State& state) {
    for (auto _ : state) {
        Bench::MakeEmptyLine();
        Bench::MakeEmptyLine();
        benchmark::DoNotOptimize(vendorFunction(&vendorDevice));
        Bench::MakeEmptyLine();
    }
}
BENCHMARK(LocalNetworkFloor);

void RelayedNetwork(benchmark::State& state) {
    for (auto _ : state) {
        Relay();
    }
}
BENCHMARK(RelayedNetwork);

void RelayedNetworkByHand(benchmark::State& state) {
    for (auto _ : state) {
        RelayByHand();
    }
}
BENCHMARK(RelayedNetworkByHand);

void RelayedNetworkFloor(benchmark::State& state) {
    for (auto _ : state) {
        Bench::MakeEmptyLine();
        const WifiConfigInfo own = CopyOfReported();
        Bench::MakeEmptyLine();
        Bench::MakeEmptyLine();
        Bench::MakeEmptyLine();
        benchmark::DoNotOptimize(applicationCallback(&own));
    }
}
BENCHMARK(RelayedNetworkFloor);

}  // namespace

int main(int argc, char** argv) {
    return Bench::Run(argc, argv, [] {
        Prepare();
        AskFacade();  // binds
        Bench::RequireSameLines(AskFacade, AskByHand);
        Bench::RequireSameLines(Relay, RelayByHand);
    });
}

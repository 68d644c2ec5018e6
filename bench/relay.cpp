// SPDX-License-Identifier: Apache-2.0

// What the relay adds to one device on its way from a vendor to the application.

#include <benchmark/benchmark.h>

#include <cstring>

#include "DeviceDiscover/scan.h"
#include "bench/support.h"

namespace {

using PrinterDeviceDiscoverSdk::DeviceInfo;
using PrinterDeviceDiscoverSdk::DiscoverBasic;
using PrinterDeviceDiscoverSdk::ScanInterfaceListener;

VendorSdk::DeviceInfo reported;
VendorSdk::DeviceCallbackInfo* vendorRegistration = nullptr;

int Application(const DeviceInfo* device) {
    benchmark::DoNotOptimize(device);
    benchmark::ClobberMemory();
    return 0;
}

int (*volatile applicationCallback)(const DeviceInfo*) = Application;

void Prepare() {
    DiscoverBasic::GetVendorSdkDeviceInfo(Bench::ExampleDevice(), reported);
    vendorRegistration =
        ScanInterfaceListener::GetInstance().SetDeviceCallbackInfo({Application, 0});
}

void Relay() {
    benchmark::DoNotOptimize(vendorRegistration->callback(&reported));
}

void RelayFloor() {
    Bench::MakeEmptyLine();
    DeviceInfo own;
    static_assert(sizeof own == sizeof reported);
    std::memcpy(&own, &reported, sizeof own);
    benchmark::DoNotOptimize(applicationCallback(&own));
}

void LogRelayByHand() {
    Bench::LogByHand(LOG_LEVEL_DEBUG,
                     "PrinterDeviceDiscoverSdk::ScanInterfaceListener::CallBackFunc", "callback");
}

void RelayedDevice(benchmark::State& state) {
    for (auto _ : state) {
        Relay();
    }
}
BENCHMARK(RelayedDevice)->UseRealTime()->Threads(1)->Threads(2);

void RelayedDeviceFloor(benchmark::State& state) {
    for (auto _ : state) {
        RelayFloor();
    }
}
BENCHMARK(RelayedDeviceFloor)->UseRealTime()->Threads(1)->Threads(2);

}  // namespace

int main(int argc, char** argv) {
    return Bench::Run(argc, argv, [] {
        Prepare();
        Bench::RequireSameLines(Relay, LogRelayByHand);
    });
}

// SPDX-License-Identifier: Apache-2.0

// What the facade adds to one query of a device's state.

#include <benchmark/benchmark.h>

#include "DeviceDiscover/scan.h"
#include "bench/host/given_vendors.h"
#include "bench/support.h"

namespace {

using PrinterDeviceDiscoverSdk::DeviceInfo;
using PrinterDeviceDiscoverSdk::DiscoverScanInterface;

constexpr const char* kFacade =
    "PrinterDeviceDiscoverSdk::DiscoverScanInterface::GetDeviceConnectState";
constexpr const char* kDispatcher =
    "PrinterDeviceDiscoverSdk::ScanInterface::GetDeviceConnectState";

VendorSdk::GetDeviceConnectStateFunction* vendorFunction = nullptr;
const DeviceInfo device = Bench::ExampleDevice();
VendorSdk::DeviceInfo vendorDevice;

void Prepare() {
    Bench::SupportVendors({Bench::Vendor("bench", Bench::VendorModule())});
    vendorFunction = reinterpret_cast<VendorSdk::GetDeviceConnectStateFunction*>(
        Bench::Symbol(Bench::VendorModule(), "GetDeviceConnectState"));
    PrinterDeviceDiscoverSdk::DiscoverBasic::GetVendorSdkDeviceInfo(device, vendorDevice);
}

int CallByHand() {
    Bench::LogByHand(LOG_LEVEL_DEBUG, kFacade, "deviceSN", device.deviceSN);
    Bench::LogByHand(LOG_LEVEL_DEBUG, kFacade, "modelID", device.modelID);
    const int result = vendorFunction(&vendorDevice);
    Bench::LogByHand(LOG_LEVEL_DEBUG, kDispatcher, "call Func OK", result);
    return result;
}

int CallFacade() {
    return DiscoverScanInterface::GetInstance().GetDeviceConnectState(device);
}

void Facade(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(CallFacade());
    }
}
BENCHMARK(Facade);

void FacadeByHand(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(CallByHand());
    }
}
BENCHMARK(FacadeByHand);

void FacadeFloor(benchmark::State& state) {
    for (auto _ : state) {
        Bench::MakeEmptyLine();
        Bench::MakeEmptyLine();
        benchmark::DoNotOptimize(vendorFunction(&vendorDevice));
        Bench::MakeEmptyLine();
    }
}
BENCHMARK(FacadeFloor);

}  // namespace

int main(int argc, char** argv) {
    return Bench::Run(argc, argv, [] {
        Prepare();
        CallFacade();  // binds
        Bench::RequireSameLines(CallFacade, CallByHand);
    });
}

// SPDX-License-Identifier: Apache-2.0

// What it costs to find the vendor whose access point the host is joined to, among BENCH_VENDORS of
// them (an environment variable: a process binds its vendors once): the last one asked says yes.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "DeviceDiscover/netconn.h"
#include "bench/host/given_vendors.h"
#include "bench/support.h"

namespace {

using PrinterDeviceDiscoverSdk::DeviceInfo;
using PrinterDeviceDiscoverSdk::NetConnInterface;

constexpr const char* kChooser =
    "PrinterDeviceDiscoverSdk::NetConnInterface::GetCurrentNetConnectWifiAPInterface";
constexpr const char* kOperation = "PrinterDeviceDiscoverSdk::NetConnInterface::GetDeviceInfoByNet";

std::vector<VendorSdk::IsConnectCurrentWifiAPFunction*> questions;
VendorSdk::GetDeviceInfoByNetFunction* getDevice = nullptr;

std::size_t VendorCount() {
    const char* const text = std::getenv("BENCH_VENDORS");
    const int count = text == nullptr ? 1 : std::atoi(text);
    if (count < 1) {
        throw std::runtime_error("BENCH_VENDORS wants a number from 1");
    }
    return static_cast<std::size_t>(count);
}

template <class Function>
Function* FunctionOf(const std::string& module, const char* name) {
    return reinterpret_cast<Function*>(Bench::Symbol(module, name));
}

void Prepare() {
    std::vector<VendorInfo> vendors;
    for (std::size_t number = 1; number <= VendorCount(); ++number) {
        const std::string module =
            number < VendorCount() ? Bench::VendorModuleElsewhere() : Bench::VendorModule();
        char productId[32];
        std::snprintf(productId, sizeof productId, "vendor%06zu", number);
        vendors.push_back(Bench::Vendor(productId, module));
        questions.push_back(FunctionOf<VendorSdk::IsConnectCurrentWifiAPFunction>(
            module, "IsConnectCurrentWifiAP"));
    }
    Bench::SupportVendors(vendors);
    getDevice = FunctionOf<VendorSdk::GetDeviceInfoByNetFunction>(Bench::VendorModule(),
                                                                  "GetDeviceInfoByNet");
}

int Choose() {
    DeviceInfo device;
    return NetConnInterface::GetInstance().GetDeviceInfoByNet(device);
}

int ChooseByHand() {
    for (const auto question : questions) {
        const int result = question();
        if (result == 0) {
            VendorSdk::DeviceInfo vendorDevice;
            const int outcome = getDevice(&vendorDevice);
            Bench::LogByHand(LOG_LEVEL_DEBUG, kOperation, "call Func OK");
            DeviceInfo device;
            PrinterDeviceDiscoverSdk::DiscoverBasic::GetDiscoverDeviceInfo(vendorDevice, device);
            benchmark::DoNotOptimize(&device);
            return outcome;
        }
        Bench::LogByHand(LOG_LEVEL_WARNING, kChooser, "call Func ret =", result);
    }
    return -1;
}

void Choice(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(Choose());
    }
}
BENCHMARK(Choice);

void ChoiceByHand(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(ChooseByHand());
    }
}
BENCHMARK(ChoiceByHand);

}  // namespace

int main(int argc, char** argv) {
    return Bench::Run(argc, argv, [] {
        Prepare();
        Choose();  // binds
        Bench::RequireSameLines(Choose, ChooseByHand);
    });
}

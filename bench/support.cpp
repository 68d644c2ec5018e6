// SPDX-License-Identifier: Apache-2.0

#include "bench/support.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>

namespace Bench {

namespace {

template <std::size_t Width>
void Fill(char (&field)[Width], const char* text) {
    std::strncpy(field, text, Width - 1);
}

}  // namespace

std::string VendorModule() {
    return BENCH_VENDOR;
}

std::string VendorModuleElsewhere() {
    return BENCH_VENDOR_ELSEWHERE;
}

VendorInfo Vendor(const std::string& productId, const std::string& path) {
    VendorInfo vendor;
    vendor.productId = productId;
    vendor.vendorName = path;
    vendor.scanModuleName = path;
    return vendor;
}

FARPROC Symbol(const std::string& path, const char* name) {
    HINSTANCE module = nullptr;
    if (!VendorDllMgr::GetInstance().GetDeviceHandle(module, path)) {
        throw std::runtime_error("cannot load " + path);
    }
    const FARPROC symbol = GetProcAddress(module, name);
    if (symbol == nullptr) {
        throw std::runtime_error(path + " does not export " + name);
    }
    return symbol;
}

PrinterDeviceDiscoverSdk::DeviceInfo ExampleDevice() {
    PrinterDeviceDiscoverSdk::DeviceInfo device{};
    device.code1 = 631;
    device.code2 = 1;
    Fill(device.deviceSN, "VNB3K12345");
    Fill(device.modelID, "bench");
    Fill(device.extra1, "Example LaserPrinter 4000 series");
    Fill(device.extra2, "192.168.178.123");
    Fill(device.extra3, "ipp/print");
    return device;
}

void MakeEmptyLine() {
    std::wstringstream line;
    benchmark::DoNotOptimize(&line);
}

int Run(int argc, char** argv, const std::function<void()>& prepare) {
    try {
        prepare();
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "%s: %s\n", argv[0], problem.what());
        return 1;
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

}  // namespace Bench

#include "bench/support.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>
#include <vector>

#include "bench/host/discarding_logger.h"

namespace Bench {

namespace {

template <std::size_t Width>
void Fill(char (&field)[Width], const char* text) {
    std::strncpy(field, text, Width - 1);
}

std::vector<std::wstring> LinesOf(const std::function<void()>& work) {
    std::vector<std::wstring> lines;
    RecordLines(&lines);
    work();
    RecordLines(nullptr);
    return lines;
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

void RequireSameLines(const std::function<void()>& one, const std::function<void()>& other) {
    const std::vector<std::wstring> lines = LinesOf(one);
    if (lines.empty()) {
        throw std::runtime_error("no line was logged");
    }
    if (lines != LinesOf(other)) {
        throw std::runtime_error("the two sides to be compared do not log the same lines");
    }
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

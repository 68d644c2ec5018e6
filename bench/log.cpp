// SPDX-License-Identifier: Apache-2.0

// What a facade call costs with the real LogHelper, which writes a real file.

#include <benchmark/benchmark.h>
#include <dlfcn.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>
#include <stdlib.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <thread>

#include "DeviceDiscover/scan.h"
#include "bench/host/given_vendors.h"
#include "bench/support.h"
#include "host/LogHelper/log_settings.h"

namespace {

using PrinterDeviceDiscoverSdk::DeviceInfo;
using PrinterDeviceDiscoverSdk::DiscoverScanInterface;

constexpr std::chrono::milliseconds kSlowDisk(10);
// So many calls' lines fit into the queue.
constexpr int kCallsOnASlowDisk = 1000;

// The logger's Log, as the compiler names it.
constexpr const char* kLogSymbol =
    "_ZN8KzLogger3LogE17LOG_MESSAGE_LEVELRNSt7__cxx1118basic_stringstreamIwSt11char_"
    "traitsIwESaIwEEE";

std::atomic<bool> discards{false};
std::atomic<bool> isSlow{false};
std::filesystem::path folder;
const DeviceInfo device = Bench::ExampleDevice();
std::shared_ptr<spdlog::logger> plain;

template <class Function>
Function* Next(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

int CallFacade() {
    return DiscoverScanInterface::GetInstance().GetDeviceConnectState(device);
}

void Write(bool toFile, LOG_MESSAGE_LEVEL level) {
    LogHelper::Settings settings;
    settings.file = toFile;
    settings.level = level;
    settings.filePath = folder / "log";
    LogHelper::Configure(settings);
}

// No line may be lost: the figures would be those of another work.
void RequireAllLines() {
    LogHelper::Flush();
    for (const auto& file : std::filesystem::directory_iterator(folder)) {
        const std::string search = "grep -q 'lost lines' '" + file.path().string() + "'";
        if (std::system(search.c_str()) == 0) {
            throw std::runtime_error("lines were lost");
        }
    }
}

void Repeat(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(CallFacade());
    }
}

void Logged(benchmark::State& state) {
    if (state.thread_index() == 0) {
        Write(true, LOG_LEVEL_DEBUG);
    }
    Repeat(state);
}
BENCHMARK(Logged)->UseRealTime()->MeasureProcessCPUTime()->Threads(1)->Threads(8);

void PlainSpdlog(benchmark::State& state) {
    for (auto _ : state) {
        plain->debug("deviceSN{}({})", device.deviceSN,
                     "PrinterDeviceDiscoverSdk::DiscoverScanInterface::GetDeviceConnectState");
        plain->debug("modelID{}({})", device.modelID,
                     "PrinterDeviceDiscoverSdk::DiscoverScanInterface::GetDeviceConnectState");
        plain->debug("call Func OK{}({})", 1,
                     "PrinterDeviceDiscoverSdk::ScanInterface::GetDeviceConnectState");
    }
}
BENCHMARK(PlainSpdlog)->UseRealTime()->MeasureProcessCPUTime();

void Discarded(benchmark::State& state) {
    discards = true;
    Repeat(state);
    discards = false;
}
BENCHMARK(Discarded);

void Filtered(benchmark::State& state) {
    Write(true, LOG_LEVEL_ERROR);
    Repeat(state);
}
BENCHMARK(Filtered);

void SwitchedOff(benchmark::State& state) {
    Write(false, LOG_LEVEL_DEBUG);
    Repeat(state);
}
BENCHMARK(SwitchedOff);

void FastDisk(benchmark::State& state) {
    Write(true, LOG_LEVEL_DEBUG);
    Repeat(state);
}
BENCHMARK(FastDisk)->UseRealTime()->Iterations(kCallsOnASlowDisk);

void SlowDisk(benchmark::State& state) {
    Write(true, LOG_LEVEL_DEBUG);
    isSlow = true;
    Repeat(state);
    LogHelper::Flush();
    isSlow = false;
}
BENCHMARK(SlowDisk)->UseRealTime()->Iterations(kCallsOnASlowDisk);

}  // namespace

// These two stand before the real ones.
void KzLogger::Log(LOG_MESSAGE_LEVEL level, std::wstringstream& line) {
    using Function = void(KzLogger*, LOG_MESSAGE_LEVEL, std::wstringstream&);
    static Function* const real = Next<Function>(kLogSymbol);
    if (!discards) {
        real(this, level, line);
    }
}

extern "C" PLATFORM_EXPORT size_t fwrite(const void* data, size_t size, size_t count,
                                         std::FILE* file) {
    using Function = size_t(const void*, size_t, size_t, std::FILE*);
    static Function* const real = Next<Function>("fwrite");
    if (isSlow) {
        std::this_thread::sleep_for(kSlowDisk);
    }
    return real(data, size, count, file);
}

int main(int argc, char** argv) {
    char name[] = "/tmp/bench_log_XXXXXX";
    if (mkdtemp(name) == nullptr) {
        std::perror(name);
        return 1;
    }
    folder = name;
    plain = spdlog::basic_logger_mt("plain", folder / "plain");
    plain->set_level(spdlog::level::debug);
    plain->flush_on(spdlog::level::trace);
    int status = Bench::Run(argc, argv, [] {
        Write(true, LOG_LEVEL_DEBUG);
        Bench::SupportVendors({Bench::Vendor("bench", Bench::VendorModule())});
        CallFacade();  // binds
    });
    try {
        RequireAllLines();
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "%s: %s\n", argv[0], problem.what());
        status = 1;
    }
    std::filesystem::remove_all(folder);
    return status;
}

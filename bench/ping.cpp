// SPDX-License-Identifier: Apache-2.0

// CheckPing with the application's real ping service: of BENCH_SILENT_ADDRESS, which never answers,
// and of loopback.

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdlib>
#include <string>

#include "DeviceDiscover/hostnet.h"
#include "bench/support.h"

namespace {

using DeviceDiscover::PrinterNetInterface;

std::string silentAddress;

void Require(const std::string& address, bool answers) {
    if (PrinterNetInterface::GetInstance().CheckPing(address) != answers) {
        throw std::runtime_error(address + (answers ? " does not answer" : " answers"));
    }
}

// An address that cannot be reached is known not to answer at once.
void RequireSilence(const std::string& address) {
    const auto began = std::chrono::steady_clock::now();
    Require(address, false);
    if (std::chrono::steady_clock::now() - began < std::chrono::milliseconds(200)) {
        throw std::runtime_error(address + " cannot be reached: it is not silent");
    }
}

void SilentAddress(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(PrinterNetInterface::GetInstance().CheckPing(silentAddress));
    }
}
BENCHMARK(SilentAddress)->UseRealTime()->Unit(benchmark::kMillisecond);

void Loopback(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(PrinterNetInterface::GetInstance().CheckPing("127.0.0.1"));
    }
}
BENCHMARK(Loopback)->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    return Bench::Run(argc, argv, [] {
        const char* const address = std::getenv("BENCH_SILENT_ADDRESS");
        if (address == nullptr) {
            throw std::runtime_error("BENCH_SILENT_ADDRESS wants an address that does not answer");
        }
        silentAddress = address;
        RequireSilence(silentAddress);
        Require("127.0.0.1", true);
    });
}

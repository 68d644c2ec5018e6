// SPDX-License-Identifier: Apache-2.0

// What binding vendors costs beside loading their modules and looking up their entry points.

#include <benchmark/benchmark.h>
#include <dlfcn.h>

#include <filesystem>
#include <string>
#include <vector>

#include "DeviceDiscover/scan.h"
#include "bench/host/given_vendors.h"
#include "bench/support.h"
#include "broker/binding/vendor_table.h"

namespace PrinterDeviceDiscoverSdk {

namespace {

namespace fs = std::filesystem;
using Entry = ScanInterface::VendorEntry;
using Table = Broker::VendorTable<Entry>;

constexpr int kMaxVendors = 1000;
constexpr const char* kFunction = "PrinterDeviceDiscoverSdk::ScanInterface::GetDeviceFunc";
constexpr const char* kEntryPoints[] = {"StartDeviceScan",           "StopDeviceScan",
                                        "GetDeviceConnectState",     "BeforeConnectEventNotify",
                                        "ConnectSuccessNotifyEvent", "ConnectFailNotifyEvent"};

// One copy of the vendor module for each vendor: the system loads a file only once.
class ModuleFolder {
public:
    ModuleFolder() : folder((fs::temp_directory_path() / "bench_vendors_XXXXXX").string()) {
        if (mkdtemp(folder.data()) == nullptr) {
            throw std::runtime_error("cannot make the folder " + folder);
        }
        for (int number = 0; number < kMaxVendors; ++number) {
            fs::copy_file(Bench::VendorModule(), Path(number));
        }
    }

    ~ModuleFolder() {
        std::error_code ignored;
        fs::remove_all(folder, ignored);
    }

    ModuleFolder(const ModuleFolder&) = delete;
    ModuleFolder& operator=(const ModuleFolder&) = delete;

    std::vector<VendorInfo> Vendors(int count) const {
        std::vector<VendorInfo> vendors;
        for (int number = 0; number < count; ++number) {
            vendors.push_back(Bench::Vendor("vendor" + std::to_string(number), Path(number)));
        }
        return vendors;
    }

private:
    std::string Path(int number) const { return folder + "/" + std::to_string(number) + ".so"; }

    std::string folder;
};

void Bind(Table& table) {
    Broker::BindVendors(table, &VendorInfo::scanModuleName, Broker::kScanEntryPoints<Entry>,
                        {kFunction, {}});
}

struct BoundByHand {
    void* module;
    void* functions[std::size(kEntryPoints)];
};

std::vector<BoundByHand> BindByHand(const std::vector<VendorInfo>& vendors) {
    std::vector<BoundByHand> bound;
    for (const VendorInfo& vendor : vendors) {
        BoundByHand entry{dlopen(vendor.scanModuleName.c_str(), RTLD_NOW | RTLD_LOCAL), {}};
        for (std::size_t slot = 0; slot < std::size(kEntryPoints); ++slot) {
            entry.functions[slot] = dlsym(entry.module, kEntryPoints[slot]);
        }
        Bench::LogByHand(LOG_LEVEL_WARNING, kFunction, "productId", vendor.productId.c_str());
        bound.push_back(entry);
    }
    return bound;
}

void ReleaseByHand(const std::vector<BoundByHand>& bound) {
    for (const BoundByHand& entry : bound) {
        dlclose(entry.module);
    }
}

const ModuleFolder& Modules() {
    static const ModuleFolder modules;
    return modules;
}

void Require(bool holds, const char* what) {
    if (!holds) {
        throw std::runtime_error(what);
    }
}

void RequireEveryEntryPoint(const Table& table, std::size_t vendors) {
    Require(table.size() == vendors, "not every vendor was bound");
    for (const auto& [productId, entry] : table) {
        Require(entry.StartDeviceScan != nullptr && entry.ConnectFailNotifyEvent != nullptr,
                "a vendor lacks an entry point");
    }
}

// The release is not measured: it is the same on both sides.
void Binding(benchmark::State& state) {
    Bench::SupportVendors(Modules().Vendors(static_cast<int>(state.range())));
    for (auto _ : state) {
        Table table;
        Bind(table);
        state.PauseTiming();
        Broker::ReleaseVendors(table);
        state.ResumeTiming();
    }
}
BENCHMARK(Binding)->UseRealTime()->RangeMultiplier(10)->Range(1, kMaxVendors);

void BindingByHand(benchmark::State& state) {
    const std::vector<VendorInfo> vendors = Modules().Vendors(static_cast<int>(state.range()));
    for (auto _ : state) {
        const std::vector<BoundByHand> bound = BindByHand(vendors);
        state.PauseTiming();
        ReleaseByHand(bound);
        state.ResumeTiming();
    }
}
BENCHMARK(BindingByHand)->UseRealTime()->RangeMultiplier(10)->Range(1, kMaxVendors);

void Prepare() {
    const std::vector<VendorInfo> vendors = Modules().Vendors(3);
    Bench::SupportVendors(vendors);
    Table table;
    Bench::RequireSameLines([&] { Bind(table); }, [&] { ReleaseByHand(BindByHand(vendors)); });
    RequireEveryEntryPoint(table, vendors.size());
    Broker::ReleaseVendors(table);
}

}  // namespace

}  // namespace PrinterDeviceDiscoverSdk

int main(int argc, char** argv) {
    return Bench::Run(argc, argv, PrinterDeviceDiscoverSdk::Prepare);
}

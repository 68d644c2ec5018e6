// SPDX-License-Identifier: Apache-2.0

// What the USB family adds: to the enumeration of a port whose identifier is the last of
// BENCH_USB_IDS listed ones (an environment variable: a process binds its vendors once), to a Wi-Fi
// scan with as many networks as there is room for, and to the list of USB printers.

#include <benchmark/benchmark.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <future>
#include <map>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "DeviceDiscover/usb.h"
#include "bench/host/given_printers.h"
#include "bench/host/given_vendors.h"
#include "bench/support.h"
#include "platform/PrinterUtil/PrinterUtil.h"
#include "tests/host/PrinterDiscoverAPI/usb/device_service_linux.h"

namespace {

using PrinterDeviceDiscoverSdk::DeviceInfo;
using PrinterDeviceDiscoverSdk::DeviceUsbInfo;
using PrinterDeviceDiscoverSdk::DiscoverBasic;
using PrinterDeviceDiscoverSdk::DiscoverUsbInterface;
using PrinterDeviceDiscoverSdk::UsbConnInterface;
using PrinterDeviceDiscoverSdk::WifiConfigInfo;
using PrinterSdk::PrinterProperty;

constexpr const char* kEnumeration =
    "PrinterDeviceDiscoverSdk::UsbConnInterface::GetDeviceInfoByUsb";
constexpr const char* kScan = "PrinterDeviceDiscoverSdk::UsbConnInterface::GetUSBWifiScan";
constexpr const char* kConversion =
    "PrinterDeviceDiscoverSdk::DiscoverBasic::GetDiscoverWifoConfigInfo";
constexpr const char* kProductId = "bench";
constexpr std::size_t kVendorIdAt = 4;
constexpr std::size_t kProductIdAt = 13;

// The tables and functions that the composition by hand looks up.
struct ByHand {
    std::map<std::string, std::string> products;
    std::map<std::string, VendorSdk::GetDeviceInfoByUsbFunction*> enumerations;
    std::map<std::string, VendorSdk::USBWifiScanFunction*> scans;
};
ByHand byHand;
std::wstring deviceId;
const DeviceInfo device = Bench::ExampleDevice();

template <class Function>
Function* FunctionOf(const char* name) {
    return reinterpret_cast<Function*>(Bench::Symbol(Bench::VendorModule(), name));
}

unsigned IdentifierCount() {
    const char* const text = std::getenv("BENCH_USB_IDS");
    const int count = text == nullptr ? 1 : std::atoi(text);
    if (count < 1 || count > 0xFFFF) {
        throw std::runtime_error("BENCH_USB_IDS wants a number from 1 to 65535");
    }
    return static_cast<unsigned>(count);
}

void Prepare() {
    VendorInfo vendor = Bench::Vendor(kProductId, Bench::VendorModule());
    std::string id;
    for (unsigned number = 0; number < IdentifierCount(); ++number) {
        std::array<char, 32> text{};
        std::snprintf(text.data(), text.size(), "VID_1209&PID_%04X", number + 1);
        id = text.data();
        vendor.usbIdList += id + ' ';
        byHand.products[id] = kProductId;
    }
    deviceId.assign(id.begin(), id.end());
    Bench::SupportVendors({vendor});
    byHand.enumerations[kProductId] =
        FunctionOf<VendorSdk::GetDeviceInfoByUsbFunction>("GetDeviceInfoByUsb");
    byHand.scans[kProductId] = FunctionOf<VendorSdk::USBWifiScanFunction>("USBWifiScan");
}

void Enumerate() {
    std::vector<DeviceInfo> devices;
    benchmark::DoNotOptimize(UsbConnInterface::GetInstance().GetDeviceInfoByUsb(devices, deviceId));
    benchmark::DoNotOptimize(devices.data());
}

std::int32_t NumberAt(const std::string& id, std::size_t position) {
    std::istringstream digits(id.substr(position, 4));
    std::int32_t number = 0;
    digits >> std::hex >> number;
    return number;
}

void EnumerateByHand() {
    std::vector<DeviceInfo> devices;
    const auto log = [](LOG_MESSAGE_LEVEL level, const char* message, const auto&... values) {
        Bench::LogByHand(level, kEnumeration, message, values...);
    };
    log(LOG_LEVEL_WARNING, "STEP1");
    log(LOG_LEVEL_WARNING, "STEP2");
    log(LOG_LEVEL_WARNING, "deviceID:", deviceId);
    const std::string id = PrinterUtil::WStringToString(deviceId);
    log(LOG_LEVEL_DEBUG, "usbId:", id.c_str());
    const auto product = byHand.products.find(id);
    const auto enumeration = byHand.enumerations.find(product->second);
    log(LOG_LEVEL_WARNING, "STEP3");
    const std::int32_t vendorId = NumberAt(id, kVendorIdAt);
    const std::int32_t productId = NumberAt(id, kProductIdAt);
    log(LOG_LEVEL_DEBUG, "pid:", std::hex, productId, "vid", vendorId);
    VendorSdk::DeviceInfo found[VendorSdk::kMaxDevices];
    std::int32_t count = 0;
    log(LOG_LEVEL_WARNING, "STEP4");
    enumeration->second(static_cast<std::uint16_t>(productId), static_cast<std::uint16_t>(vendorId),
                        found, &count);
    log(LOG_LEVEL_DEBUG, "call Func OK", count);
    for (std::int32_t number = 0; number < count; ++number) {
        DeviceInfo own;
        DiscoverBasic::GetDiscoverDeviceInfo(found[number], own);
        devices.push_back(own);
        log(LOG_LEVEL_WARNING, "STEP.....add");
    }
    log(LOG_LEVEL_WARNING, "STEP5");
    log(LOG_LEVEL_WARNING, "STEP6", std::uint64_t{devices.size()});
    benchmark::DoNotOptimize(devices.data());
}

void Scan() {
    std::vector<WifiConfigInfo> networks;
    benchmark::DoNotOptimize(UsbConnInterface::GetInstance().GetUSBWifiScan(device, networks, 0));
    benchmark::DoNotOptimize(networks.data());
}

void ScanByHand() {
    std::vector<WifiConfigInfo> networks;
    const auto log = [](LOG_MESSAGE_LEVEL level, const char* message, const auto&... values) {
        Bench::LogByHand(level, kScan, message, values...);
    };
    log(LOG_LEVEL_WARNING, "STEP1");
    log(LOG_LEVEL_WARNING, "STEP2");
    const std::string model = device.modelID;
    log(LOG_LEVEL_DEBUG, "modeid:", model.c_str());
    const auto scan = byHand.scans.find(model);
    log(LOG_LEVEL_WARNING, "STEP3");
    VendorSdk::WifiConfigInfo found[VendorSdk::kMaxNetworks];
    std::int32_t count = 0;
    log(LOG_LEVEL_WARNING, "STEP4");
    VendorSdk::DeviceInfo vendorDevice;
    DiscoverBasic::GetVendorSdkDeviceInfo(device, vendorDevice);
    scan->second(&vendorDevice, 0, found, &count);
    log(LOG_LEVEL_DEBUG, "call Func OK", count);
    for (std::int32_t number = 0; number < count; ++number) {
        WifiConfigInfo own{};
        log(LOG_LEVEL_WARNING, "STEP...add1");
        static_assert(sizeof own == sizeof found[0]);
        std::memcpy(&own, &found[number], sizeof own);
        Bench::LogByHand(LOG_LEVEL_WARNING, kConversion, "rssi = ", own.rssi);
        Bench::LogByHand(LOG_LEVEL_WARNING, kConversion, "memcpy_s1 ret = ", 0);
        Bench::LogByHand(LOG_LEVEL_WARNING, kConversion, "memcpy_s2 ret = ", 0);
        log(LOG_LEVEL_WARNING, "STEP.....add2");
        log(LOG_LEVEL_WARNING, "STEP.....add2 ", std::uint64_t{networks.size()});
        networks.push_back(own);
        log(LOG_LEVEL_WARNING, "STEP.....add3");
        log(LOG_LEVEL_WARNING, "ssid", own.ssid);
    }
    log(LOG_LEVEL_WARNING, "STEP5");
    log(LOG_LEVEL_WARNING, "STEP6", std::uint64_t{networks.size()});
    benchmark::DoNotOptimize(networks.data());
}

// So many printers on USB, and as many on the network, of which every second is the same.
void KnowPrinters(std::int64_t count) {
    std::vector<PrinterProperty> printers;
    for (const std::int32_t connectType :
         {PrinterSdk::kConnectTypeUsb, PrinterSdk::kConnectTypeWlan}) {
        for (std::int64_t number = 0; number < count; ++number) {
            PrinterProperty& printer = printers.emplace_back();
            printer.name = L"Example LaserPrinter 4000 series " + std::to_wstring(number);
            printer.serialNumber = L"VNB3K1" + std::to_wstring(100000 + number * connectType);
            printer.modelID = L"Example LaserPrinter 4000";
            printer.connectType = connectType;
        }
    }
    Bench::KnowPrinters(std::move(printers));
}

// The records of an arrival come on the arrival's own thread, also those after the first.
std::atomic<std::promise<void>*> reported = nullptr;

int OnDevice(const DeviceInfo*) {
    if (auto* const waiting = reported.exchange(nullptr)) {
        waiting->set_value();
    }
    return 0;
}

void Enumeration(benchmark::State& state) {
    for (auto _ : state) {
        Enumerate();
    }
}
BENCHMARK(Enumeration);

void EnumerationByHand(benchmark::State& state) {
    for (auto _ : state) {
        EnumerateByHand();
    }
}
BENCHMARK(EnumerationByHand);

void UsbWifiScan(benchmark::State& state) {
    for (auto _ : state) {
        Scan();
    }
}
BENCHMARK(UsbWifiScan);

void UsbWifiScanByHand(benchmark::State& state) {
    for (auto _ : state) {
        ScanByHand();
    }
}
BENCHMARK(UsbWifiScanByHand);

void UsbPrinters(benchmark::State& state) {
    KnowPrinters(state.range(0));
    for (auto _ : state) {
        std::vector<DeviceUsbInfo> devices;
        DiscoverUsbInterface::GetInstance().GetDeviceNoConfigNet(devices);
        benchmark::DoNotOptimize(devices.data());
    }
}
BENCHMARK(UsbPrinters)->Arg(10)->Arg(100)->Arg(1000);

// From the moment the device service tells that a printer is plugged in to the first call of the
// application.
void Arrival(benchmark::State& state) {
    const std::string interface = "1-1/1-1:1.0";
    const UsbTest::DeviceService service;
    DiscoverUsbInterface::GetInstance().StartDeviceMonitor({OnDevice, 0});
    for (auto _ : state) {
        std::promise<void> waiting;
        reported = &waiting;
        service.Tell("add", interface);
        if (waiting.get_future().wait_for(std::chrono::seconds(10)) != std::future_status::ready) {
            state.SkipWithError("no report");
            break;
        }
        // The other records of the same arrival are not this one's any more.
        state.PauseTiming();
        service.Tell("remove", interface);
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        state.ResumeTiming();
    }
    DiscoverUsbInterface::GetInstance().StopDeviceMonitor();
}
BENCHMARK(Arrival)->UseRealTime()->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace

int main(int argc, char** argv) {
    return Bench::Run(argc, argv, [] {
        Prepare();
        Enumerate();  // binds
        Bench::RequireSameLines(Enumerate, EnumerateByHand);
        Bench::RequireSameLines(Scan, ScanByHand);
    });
}

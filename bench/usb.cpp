// What the USB family adds to one question to a vendor: 64 printers of one of BENCH_IDENTIFIERS
// known hardware identifiers (an environment variable: a process binds its vendors once), 128
// networks, BENCH_PRINTERS known printers on USB and as many on the network; and to the time from
// "plugged in" to the application's callback.

#include <benchmark/benchmark.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <future>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "DeviceDiscover/usb.h"
#include "bench/host/given_printers.h"
#include "bench/host/given_vendors.h"
#include "bench/support.h"
#include "platform/PrinterUtil/PrinterUtil.h"

namespace {

using PrinterDeviceDiscoverSdk::DeviceInfo;
using PrinterDeviceDiscoverSdk::DeviceUsbInfo;
using PrinterDeviceDiscoverSdk::DiscoverBasic;
using PrinterDeviceDiscoverSdk::DiscoverUsbInterface;
using PrinterDeviceDiscoverSdk::UsbConnInterface;
using PrinterDeviceDiscoverSdk::UsbInterfaceMonitor;
using PrinterDeviceDiscoverSdk::WifiConfigInfo;

constexpr const char* kDevices = "PrinterDeviceDiscoverSdk::UsbConnInterface::GetDeviceInfoByUsb";
constexpr const char* kNetworks = "PrinterDeviceDiscoverSdk::UsbConnInterface::GetUSBWifiScan";
constexpr const char* kFacade = "PrinterDeviceDiscoverSdk::DiscoverUsbInterface::GetUSBWifiScan";
constexpr const char* kConversion =
    "PrinterDeviceDiscoverSdk::DiscoverBasic::GetDiscoverWifoConfigInfo";
constexpr auto kProgress = LOG_LEVEL_WARNING;

struct Functions {
    VendorSdk::GetDeviceInfoByUsbFunction* devices;
    VendorSdk::USBWifiScanFunction* networks;
};

// The two tables that find the vendor, made by hand.
std::map<std::string, std::string> identifiers;
std::map<std::string, Functions> vendors;
std::wstring soughtIdentifier;
const DeviceInfo device = Bench::ExampleDevice();

int CountFrom(const char* variable) {
    const char* const text = std::getenv(variable);
    const int count = text == nullptr ? 1 : std::atoi(text);
    if (count < 1 || count > 0xFFFF) {
        throw std::runtime_error(std::string(variable) + " wants a number from 1 to 65535");
    }
    return count;
}

std::string Identifier(int number) {
    char text[32];
    std::snprintf(text, sizeof text, "VID_1234&PID_%04X", static_cast<unsigned>(number));
    return text;
}

template <class Function>
Function* FunctionOf(const char* name) {
    return reinterpret_cast<Function*>(Bench::Symbol(Bench::VendorModule(), name));
}

void PrepareVendors() {
    VendorInfo vendor = Bench::Vendor("bench", Bench::VendorModule());
    const int count = CountFrom("BENCH_IDENTIFIERS");
    for (int number = 1; number <= count; ++number) {
        vendor.usbIdList += Identifier(number) + ' ';
        identifiers.emplace(Identifier(number), vendor.productId);
    }
    Bench::SupportVendors({vendor});
    vendors["bench"] = {FunctionOf<VendorSdk::GetDeviceInfoByUsbFunction>("GetDeviceInfoByUsb"),
                        FunctionOf<VendorSdk::USBWifiScanFunction>("USBWifiScan")};
    const std::string sought = Identifier(count / 2 + 1 > count ? count : count / 2 + 1);
    soughtIdentifier.assign(sought.begin(), sought.end());
}

void PreparePrinters() {
    const int count = CountFrom("BENCH_PRINTERS");
    std::vector<PrinterSdk::PrinterProperty> printers;
    // Each printer on USB is on the network too, where it is found last.
    for (int number = 0; number < 2 * count; ++number) {
        PrinterSdk::PrinterProperty printer;
        const bool isUsb = number < count;
        printer.connectType = isUsb ? PrinterSdk::kConnectTypeUsb : PrinterSdk::kConnectTypeWlan;
        printer.serialNumber =
            L"VNB3K" + std::to_wstring(100000 + (isUsb ? number : 2 * count - 1 - number));
        printer.modelID = L"LaserPrinter 4000";
        printers.push_back(printer);
    }
    Bench::HavePrinters(printers);
}

// --- by hand -------------------------------------------------------------------------------------

std::int32_t HexadecimalAt(const std::string& identifier, std::size_t position) {
    std::istringstream digits(identifier.substr(position, 4));
    std::int32_t number = 0;
    digits >> std::hex >> number;
    return number;
}

void LogIdsByHand(std::int32_t productId, std::int32_t vendorId) {
    std::wstringstream line;
    line << "pid:" << std::hex << productId << "vid" << vendorId << L"(" << kDevices << L")";
    KzLogger::GetInstance().Log(LOG_LEVEL_DEBUG, line);
}

int GetDevicesByHand(std::vector<DeviceInfo>& devices, std::wstring deviceId) {
    Bench::LogByHand(kProgress, kDevices, "STEP1");
    Bench::LogByHand(kProgress, kDevices, "STEP2");
    Bench::LogByHand(kProgress, kDevices, "deviceID:", deviceId);
    const std::string usbId = PrinterUtil::WStringToString(deviceId);
    Bench::LogByHand(LOG_LEVEL_DEBUG, kDevices, "usbId:", usbId.c_str());
    const auto productId = identifiers.find(usbId);
    const auto vendor = vendors.find(productId->second);
    Bench::LogByHand(kProgress, kDevices, "STEP3");
    const std::int32_t vendorNumber = HexadecimalAt(usbId, 4);
    const std::int32_t productNumber = HexadecimalAt(usbId, 13);
    LogIdsByHand(productNumber, vendorNumber);
    VendorSdk::DeviceInfo found[64];
    std::int32_t count = 0;
    Bench::LogByHand(kProgress, kDevices, "STEP4");
    const int result =
        vendor->second.devices(static_cast<std::uint16_t>(productNumber),
                               static_cast<std::uint16_t>(vendorNumber), found, &count);
    Bench::LogByHand(LOG_LEVEL_DEBUG, kDevices, "call Func OK", count);
    for (std::int32_t number = 0; number < count; ++number) {
        DeviceInfo own;
        DiscoverBasic::GetDiscoverDeviceInfo(found[number], own);
        devices.push_back(own);
        Bench::LogByHand(kProgress, kDevices, "STEP.....add");
    }
    Bench::LogByHand(kProgress, kDevices, "STEP5");
    Bench::LogByHand(kProgress, kDevices, "STEP6", devices.size());
    return result;
}

WifiConfigInfo ConvertedByHand(const VendorSdk::WifiConfigInfo& network) {
    WifiConfigInfo own;
    static_assert(sizeof own == sizeof network);
    std::memcpy(&own, &network, sizeof own);
    Bench::LogByHand(LOG_LEVEL_WARNING, kConversion, "rssi = ", own.rssi);
    Bench::LogByHand(LOG_LEVEL_WARNING, kConversion, "memcpy_s1 ret = ", 0);
    Bench::LogByHand(LOG_LEVEL_WARNING, kConversion, "memcpy_s2 ret = ", 0);
    return own;
}

int GetNetworksByHand(std::vector<WifiConfigInfo>& networks) {
    Bench::LogByHand(LOG_LEVEL_DEBUG, kFacade, "deviceSN", device.deviceSN);
    Bench::LogByHand(LOG_LEVEL_DEBUG, kFacade, "modelID", device.modelID);
    Bench::LogByHand(kProgress, kNetworks, "STEP1");
    Bench::LogByHand(kProgress, kNetworks, "STEP2");
    Bench::LogByHand(LOG_LEVEL_DEBUG, kNetworks, "modeid:", device.modelID);
    const auto vendor = vendors.find(device.modelID);
    Bench::LogByHand(kProgress, kNetworks, "STEP3");
    VendorSdk::WifiConfigInfo found[128];
    std::int32_t count = 0;
    Bench::LogByHand(kProgress, kNetworks, "STEP4");
    VendorSdk::DeviceInfo vendorDevice;
    DiscoverBasic::GetVendorSdkDeviceInfo(device, vendorDevice);
    const int result = vendor->second.networks(&vendorDevice, 0, found, &count);
    Bench::LogByHand(LOG_LEVEL_DEBUG, kNetworks, "call Func OK", count);
    for (std::int32_t number = 0; number < count; ++number) {
        Bench::LogByHand(kProgress, kNetworks, "STEP...add1");
        const WifiConfigInfo own = ConvertedByHand(found[number]);
        Bench::LogByHand(kProgress, kNetworks, "STEP.....add2");
        Bench::LogByHand(kProgress, kNetworks, "STEP.....add2 ", networks.size());
        networks.push_back(own);
        Bench::LogByHand(kProgress, kNetworks, "STEP.....add3");
        Bench::LogByHand(kProgress, kNetworks, "ssid", own.ssid);
    }
    Bench::LogByHand(kProgress, kNetworks, "STEP5");
    Bench::LogByHand(kProgress, kNetworks, "STEP6", networks.size());
    return result;
}

// --- what is measured ----------------------------------------------------------------------------

void AskForDevices() {
    std::vector<DeviceInfo> devices;
    benchmark::DoNotOptimize(
        UsbConnInterface::GetInstance().GetDeviceInfoByUsb(devices, soughtIdentifier));
    benchmark::DoNotOptimize(devices.data());
}

void AskForDevicesByHand() {
    std::vector<DeviceInfo> devices;
    benchmark::DoNotOptimize(GetDevicesByHand(devices, soughtIdentifier));
    benchmark::DoNotOptimize(devices.data());
}

void AskForNetworks() {
    std::vector<WifiConfigInfo> networks;
    benchmark::DoNotOptimize(
        DiscoverUsbInterface::GetInstance().GetUSBWifiScan(device, networks, 0));
    benchmark::DoNotOptimize(networks.data());
}

void AskForNetworksByHand() {
    std::vector<WifiConfigInfo> networks;
    benchmark::DoNotOptimize(GetNetworksByHand(networks));
    benchmark::DoNotOptimize(networks.data());
}

void UsbDevices(benchmark::State& state) {
    for (auto _ : state) {
        AskForDevices();
    }
}
BENCHMARK(UsbDevices);

void UsbDevicesByHand(benchmark::State& state) {
    for (auto _ : state) {
        AskForDevicesByHand();
    }
}
BENCHMARK(UsbDevicesByHand);

void UsbNetworks(benchmark::State& state) {
    for (auto _ : state) {
        AskForNetworks();
    }
}
BENCHMARK(UsbNetworks);

void UsbNetworksByHand(benchmark::State& state) {
    for (auto _ : state) {
        AskForNetworksByHand();
    }
}
BENCHMARK(UsbNetworksByHand);

void UsbPrinters(benchmark::State& state) {
    for (auto _ : state) {
        std::vector<DeviceUsbInfo> printers;
        benchmark::DoNotOptimize(
            DiscoverUsbInterface::GetInstance().GetDeviceNoConfigNet(printers));
        benchmark::DoNotOptimize(printers.data());
    }
}
BENCHMARK(UsbPrinters);

std::promise<void> firstReport;
std::atomic<int> reports{0};

int OnDevice(const DeviceInfo*) {
    if (reports++ == 0) {
        firstReport.set_value();
    }
    return 0;
}

// From the notification to the first of the vendor's records, in the time on the clock.
void UsbPlugToCallback(benchmark::State& state) {
    UsbInterfaceMonitor& monitor = UsbInterfaceMonitor::GetInstance();
    monitor.SetDeviceStateCallbackInfo({OnDevice, 0});
    firstReport = {};
    reports = 0;
    for (auto _ : state) {
        monitor.CallBackFunc({}, PrinterUsbApiStruct::DEVICE_STATE_ARRIVED, soughtIdentifier);
        firstReport.get_future().wait();
    }
    while (reports < Bench::kVendorDevices) {
        std::this_thread::yield();
    }
    monitor.ClearDeviceStateCallbackInfo();
}
BENCHMARK(UsbPlugToCallback)->UseRealTime()->Unit(benchmark::kMillisecond)->Iterations(1);

void RequireMatches() {
    std::vector<DeviceUsbInfo> printers;
    DiscoverUsbInterface::GetInstance().GetDeviceNoConfigNet(printers);
    for (const DeviceUsbInfo& printer : printers) {
        if (!printer.isNetConfigured) {
            throw std::runtime_error("a printer's match was not found");
        }
    }
    if (printers.size() != static_cast<std::size_t>(CountFrom("BENCH_PRINTERS"))) {
        throw std::runtime_error("printers are missing");
    }
}

}  // namespace

int main(int argc, char** argv) {
    return Bench::Run(argc, argv, [] {
        PrepareVendors();
        PreparePrinters();
        AskForDevices();  // binds
        Bench::RequireSameLines(AskForDevices, AskForDevicesByHand);
        Bench::RequireSameLines(AskForNetworks, AskForNetworksByHand);
        RequireMatches();
    });
}

// SPDX-License-Identifier: Apache-2.0

// Drives the entry points for a printer's own network, and for one on USB, for the network tests:
// through the broker or, with --module, a module's directly. Takes one JSON object a line from
// standard input and writes one a line: what was reported, what was returned, and the seconds that
// it took. Bytes are hexadecimal digits.
//
//   {"do": "connected"}     IsConnectCurrentWifiAP; --module only
//   {"do": "describe"}      GetDeviceInfoByNet, into a record of which every byte is ff
//   {"do": "configure", "name": HEX, "passPhrase": HEX}   PrinterAPNetConfigEvent
//   {"do": "present", "serial": TEXT, "place": TEXT}   IsLocalAreaNetworkOK
//   {"do": "start"}, {"do": "stop"}     StartAPWifiScan, with --module on a thread of its own, and
//                                       StopAPWifiScan
//   {"do": "callback-sleeps", "milliseconds": N}          how long the callback takes from now on
//   {"do": "usb-configure", "serial": TEXT, "model": TEXT, "place": TEXT, "name": HEX,
//    "passPhrase": HEX}     PrinterUSBNetConfigEvent
//   {"do": "usb-networks", "option": N}                   USBWifiScan
//   {"do": "exit"}          leaves main, in the middle of whatever runs

#include <dlfcn.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <functional>
#include <iostream>
#include <mutex>
#include <nlohmann/json.hpp>
#include <span>
#include <string>
#include <thread>
#include <vector>

#include "DeviceDiscover/DeviceDiscover.h"
#include "VendorSdk/entry_points.h"

namespace {

using Json = nlohmann::json;
using VendorSdk::DeviceInfo;
using VendorSdk::WifiConfigInfo;

std::atomic<int> callbackMilliseconds{0};

// Threads go on while the program exits, so what they use stays.
std::mutex& Mutex() {
    static std::mutex& mutex = *new std::mutex;
    return mutex;
}

void Write(const Json& line) {
    const std::string text = line.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
    const std::lock_guard lock(Mutex());
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fflush(stdout);
}

std::string Hex(std::span<const char> bytes) {
    std::string digits;
    for (const char byte : bytes) {
        std::array<char, 3> two{};
        std::snprintf(two.data(), two.size(), "%02x", static_cast<unsigned char>(byte));
        digits += two.data();
    }
    return digits;
}

void PutHex(std::span<char> field, const std::string& digits) {
    for (std::size_t i = 0; i < field.size() && 2 * i + 1 < digits.size(); ++i) {
        field[i] = static_cast<char>(std::stoi(digits.substr(2 * i, 2), nullptr, 16));
    }
}

template <class Record>
std::span<const char> BytesOf(const Record& record) {
    return {reinterpret_cast<const char*>(&record), sizeof record};
}

int Report(const WifiConfigInfo& network) {
    Write({{"event", "network"},
           {"name", std::string(network.ssid)},
           {"signal", network.rssi},
           {"rest",
            Hex(std::span(network.ssid).subspan(std::strlen(network.ssid))) + Hex(network.pwd)}});
    if (callbackMilliseconds > 0) {
        std::this_thread::sleep_for(std::chrono::milliseconds(callbackMilliseconds));
        Write({{"event", "callback-returns"}});
    }
    return 0;
}

int ReportFromModule(const WifiConfigInfo* network) {
    return Report(*network);
}

int ReportFromBroker(const PrinterDeviceDiscoverSdk::WifiConfigInfo* network) {
    WifiConfigInfo record;
    static_assert(sizeof record == sizeof *network);
    std::memcpy(&record, network, sizeof record);
    return Report(record);
}

struct Operations {
    std::function<int()> connected;
    std::function<void()> start;
    std::function<int()> stop;
    std::function<int(WifiConfigInfo&)> configure;
    std::function<int(DeviceInfo&)> present;
    std::function<int(DeviceInfo&)> describe;
    std::function<int(const DeviceInfo&, const WifiConfigInfo&)> configureOverUsb;
    std::function<int(const DeviceInfo&, int, std::vector<WifiConfigInfo>&)> networksOverUsb;
};

template <typename To, typename From>
To As(const From& from) {
    To to;
    static_assert(sizeof to == sizeof from);
    std::memcpy(&to, &from, sizeof to);
    return to;
}

void AddUsbOfBroker(Operations& operations) {
    using Facade = PrinterDeviceDiscoverSdk::DiscoverUsbInterface;
    using Device = PrinterDeviceDiscoverSdk::DeviceInfo;
    using Network = PrinterDeviceDiscoverSdk::WifiConfigInfo;
    operations.configureOverUsb = [](const DeviceInfo& device, const WifiConfigInfo& network) {
        return Facade::GetInstance().SetDeviceAPNetConfigByUsb(As<Device>(device),
                                                               As<Network>(network));
    };
    operations.networksOverUsb = [](const DeviceInfo& device, int option,
                                    std::vector<WifiConfigInfo>& networks) {
        std::vector<Network> found;
        const int result = Facade::GetInstance().GetUSBWifiScan(As<Device>(device), found, option);
        for (const Network& network : found) {
            networks.push_back(As<WifiConfigInfo>(network));
        }
        return result;
    };
}

Operations OfBroker() {
    using Facade = PrinterDeviceDiscoverSdk::DiscoverNetConnInterface;
    Operations operations;
    operations.start = [] {
        const int result = Facade::GetInstance().StartAPWifiScan({ReportFromBroker, 7});
        Write({{"event", "started"}, {"result", result}});
    };
    operations.stop = [] { return Facade::GetInstance().StopAPWifiScan(); };
    operations.configure = [](WifiConfigInfo& network) {
        PrinterDeviceDiscoverSdk::WifiConfigInfo own;
        std::memcpy(&own, &network, sizeof own);
        return Facade::GetInstance().PrinterAPNetConfigEvent(own);
    };
    operations.present = [](DeviceInfo& device) {
        PrinterDeviceDiscoverSdk::DeviceInfo own;
        PrinterDeviceDiscoverSdk::DiscoverBasic::GetDiscoverDeviceInfo(device, own);
        return Facade::GetInstance().IsLocalAreaNetworkOK(own);
    };
    operations.describe = [](DeviceInfo& device) {
        PrinterDeviceDiscoverSdk::DeviceInfo own;
        PrinterDeviceDiscoverSdk::DiscoverBasic::GetDiscoverDeviceInfo(device, own);
        const int result = Facade::GetInstance().GetDeviceInfoByNet(own);
        PrinterDeviceDiscoverSdk::DiscoverBasic::GetVendorSdkDeviceInfo(own, device);
        return result;
    };
    AddUsbOfBroker(operations);
    return operations;
}

template <typename Function>
Function* EntryPoint(void* module, const char* name) {
    void* const symbol = dlsym(module, name);
    if (symbol == nullptr) {
        std::cerr << "set_up_probe: " << dlerror() << std::endl;
        std::exit(3);
    }
    return reinterpret_cast<Function*>(symbol);
}

void AddUsbOfModule(Operations& operations, void* module) {
    using namespace VendorSdk;
    const auto configure =
        EntryPoint<PrinterUSBNetConfigEventFunction>(module, "PrinterUSBNetConfigEvent");
    const auto scan = EntryPoint<USBWifiScanFunction>(module, "USBWifiScan");
    operations.configureOverUsb = [configure](const DeviceInfo& device,
                                              const WifiConfigInfo& network) {
        return configure(&device, &network);
    };
    operations.networksOverUsb = [scan](const DeviceInfo& device, int option,
                                        std::vector<WifiConfigInfo>& networks) {
        networks.resize(128);
        std::memset(networks.data(), 0xFF, networks.size() * sizeof networks[0]);
        std::int32_t count = 0;
        const int result = scan(&device, option, networks.data(), &count);
        networks.resize(static_cast<std::size_t>(count));
        return result;
    };
}

Operations OfModule(const char* path) {
    using namespace VendorSdk;
    void* const module = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (module == nullptr) {
        std::cerr << "set_up_probe: " << dlerror() << std::endl;
        std::exit(3);
    }
    const auto start = EntryPoint<StartAPWifiScanFunction>(module, "StartAPWifiScan");
    const auto configure =
        EntryPoint<PrinterAPNetConfigEventFunction>(module, "PrinterAPNetConfigEvent");
    const auto present = EntryPoint<IsLocalAreaNetworkOKFunction>(module, "IsLocalAreaNetworkOK");
    const auto describe = EntryPoint<GetDeviceInfoByNetFunction>(module, "GetDeviceInfoByNet");
    Operations operations;
    operations.connected =
        EntryPoint<IsConnectCurrentWifiAPFunction>(module, "IsConnectCurrentWifiAP");
    operations.start = [start] {
        std::thread([start] {
            static WifiCallbackInfo info{ReportFromModule, 7};
            const int result = start(&info);
            Write({{"event", "ended"}, {"result", result}});
        }).detach();
    };
    operations.stop = EntryPoint<StopAPWifiScanFunction>(module, "StopAPWifiScan");
    operations.configure = [configure](WifiConfigInfo& network) { return configure(&network); };
    operations.present = [present](DeviceInfo& device) { return present(&device); };
    operations.describe = [describe](DeviceInfo& device) { return describe(&device); };
    AddUsbOfModule(operations, module);
    return operations;
}

Json Configure(const Operations& operations, const Json& command) {
    WifiConfigInfo network{};
    PutHex(network.ssid, command.at("name"));
    PutHex(network.pwd, command.at("passPhrase"));
    const WifiConfigInfo before = network;
    const int result = operations.configure(network);
    return {{"result", result}, {"untouched", std::memcmp(&before, &network, sizeof before) == 0}};
}

Json Describe(const Operations& operations) {
    DeviceInfo device;
    std::memset(&device, 0xFF, sizeof device);
    const int result = operations.describe(device);
    Json event{{"result", result}, {"bytes", Hex(BytesOf(device))}};
    if (result == 0) {
        event.update({{"serial", device.deviceSN},
                      {"modelId", device.modelID},
                      {"makeAndModel", device.extra1},
                      {"address", device.extra2},
                      {"resource", device.extra3},
                      {"port", device.code1},
                      {"kind", device.code2}});
    }
    return event;
}

template <std::size_t size>
void PutText(char (&field)[size], const Json& command, const char* key) {
    command.value(key, std::string()).copy(field, size - 1);
}

Json Present(const Operations& operations, const Json& command) {
    DeviceInfo device{};
    PutText(device.deviceSN, command, "serial");
    PutText(device.extra2, command, "place");
    std::strcpy(device.modelID, "driverless");
    return {{"result", operations.present(device)}};
}

Json ConfigureOverUsb(const Operations& operations, const Json& command) {
    DeviceInfo device{};
    PutText(device.deviceSN, command, "serial");
    PutText(device.extra1, command, "model");
    PutText(device.extra2, command, "place");
    device.code2 = 5;
    std::strcpy(device.modelID, "driverless");
    WifiConfigInfo network{};
    PutHex(network.ssid, command.at("name"));
    PutHex(network.pwd, command.at("passPhrase"));
    return {{"result", operations.configureOverUsb(device, network)}};
}

Json NetworksOverUsb(const Operations& operations, const Json& command) {
    DeviceInfo device{};
    std::strcpy(device.modelID, "driverless");
    std::vector<WifiConfigInfo> found;
    const int result = operations.networksOverUsb(device, command.at("option"), found);
    Json networks = Json::array();
    for (const WifiConfigInfo& network : found) {
        networks.push_back(
            {network.ssid, network.rssi,
             Hex(std::span(network.ssid).subspan(std::strlen(network.ssid))) + Hex(network.pwd)});
    }
    return {{"result", result}, {"networks", networks}};
}

void Obey(const Operations& operations, const Json& command) {
    const std::string what = command.at("do");
    const auto begin = std::chrono::steady_clock::now();
    Json event;
    if (what == "connected") {
        event["result"] = operations.connected();
    } else if (what == "describe") {
        event = Describe(operations);
    } else if (what == "configure") {
        event = Configure(operations, command);
    } else if (what == "present") {
        event = Present(operations, command);
    } else if (what == "usb-configure") {
        event = ConfigureOverUsb(operations, command);
    } else if (what == "usb-networks") {
        event = NetworksOverUsb(operations, command);
    } else if (what == "stop") {
        event["result"] = operations.stop();
    } else if (what == "start") {
        operations.start();
        return;
    } else if (what == "callback-sleeps") {
        callbackMilliseconds = command.at("milliseconds");
        return;
    } else {
        std::cerr << "set_up_probe: unknown command '" << what << "'" << std::endl;
        std::exit(2);
    }
    event["event"] = what;
    event["took"] = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    Write(event);
}

}  // namespace

int main(int count, char** arguments) {
    const bool direct = count == 3 && std::string(arguments[1]) == "--module";
    const Operations operations = direct ? OfModule(arguments[2]) : OfBroker();
    Write({{"event", "ready"}});
    for (std::string line; std::getline(std::cin, line);) {
        const Json command = Json::parse(line);
        if (command.at("do") == "exit") {
            break;
        }
        Obey(operations, command);
    }
    return 0;
}

// SPDX-License-Identifier: Apache-2.0

// Drives a scan for the network tests, through the broker or, with --module, a module's entry
// points directly. Takes one command a line from standard input and writes one JSON object a line:
// what was found, what was returned, and the seconds since the last start.
//
//   start               StartDeviceScan; with --module on a thread of its own
//   start-without-callback   the same, with a registration that has no callback
//   stop                StopDeviceScan
//   state SERIAL        GetDeviceConnectState for a printer that was found
//   before SERIAL, success SERIAL, failed SERIAL   the three notifications
//   edit SERIAL FIELD VALUE   changes the record that the commands above use
//   close-standard-error   makes standard error a pipe that nobody reads
//   callback-sleeps MS  how long the callback takes from now on
//   exit                leaves main, in the middle of whatever runs

#include <dlfcn.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <iostream>
#include <map>
#include <mutex>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <thread>

#include "DeviceDiscover/DeviceDiscover.h"
#include "VendorSdk/entry_points.h"

namespace {

using Json = nlohmann::json;
using Device = VendorSdk::DeviceInfo;

std::atomic<std::chrono::steady_clock::duration> started{};
std::atomic<int> callbackMilliseconds{0};

// Threads of a scan go on while the program exits, so what they use stays.
std::mutex& Mutex() {
    static std::mutex& mutex = *new std::mutex;
    return mutex;
}

std::map<std::string, Device>& Found() {
    static auto& found = *new std::map<std::string, Device>;
    return found;
}

std::chrono::steady_clock::duration Now() {
    return std::chrono::steady_clock::now().time_since_epoch();
}

void Write(Json line) {
    line["seconds"] = std::chrono::duration<double>(Now() - started.load()).count();
    const std::string text = line.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
    const std::lock_guard lock(Mutex());
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fflush(stdout);
}

int Report(const Device& device) {
    {
        const std::lock_guard lock(Mutex());
        Found()[device.deviceSN] = device;
    }
    Write({{"event", "found"},
           {"serial", device.deviceSN},
           {"model_id", device.modelID},
           {"make_and_model", device.extra1},
           {"address", device.extra2},
           {"resource", device.extra3},
           {"port", device.code1},
           {"kind", device.code2}});
    std::this_thread::sleep_for(std::chrono::milliseconds(callbackMilliseconds.load()));
    if (callbackMilliseconds.load() > 0) {
        Write({{"event", "callback-returns"}});
    }
    return 0;
}

int ReportFromModule(const Device* device) {
    return Report(*device);
}

int ReportFromBroker(const PrinterDeviceDiscoverSdk::DeviceInfo* device) {
    Device record;
    PrinterDeviceDiscoverSdk::DiscoverBasic::GetVendorSdkDeviceInfo(*device, record);
    return Report(record);
}

struct Operations {
    std::function<void()> start;
    std::function<void()> startWithoutCallback;
    std::function<int()> stop;
    std::map<std::string, std::function<int(const Device&)>> ofDevice;
};

Operations OfBroker() {
    using Facade = PrinterDeviceDiscoverSdk::DiscoverScanInterface;
    using BrokerDevice = PrinterDeviceDiscoverSdk::DeviceInfo;
    const auto ofDevice = [](int (Facade::*operation)(const BrokerDevice&)) {
        return [operation](const Device& device) {
            BrokerDevice own;
            PrinterDeviceDiscoverSdk::DiscoverBasic::GetDiscoverDeviceInfo(device, own);
            return (Facade::GetInstance().*operation)(own);
        };
    };
    Operations operations;
    operations.start = [] {
        const int result = Facade::GetInstance().StartDeviceScan({ReportFromBroker, 7});
        Write({{"event", "started"}, {"result", result}});
    };
    operations.startWithoutCallback = [] {
        const int result = Facade::GetInstance().StartDeviceScan({nullptr, 7});
        Write({{"event", "started"}, {"result", result}});
    };
    operations.stop = [] { return Facade::GetInstance().StopDeviceScan(); };
    operations.ofDevice = {{"state", ofDevice(&Facade::GetDeviceConnectState)},
                           {"before", ofDevice(&Facade::BeforeConnectEventNotify)},
                           {"success", ofDevice(&Facade::ConnectSuccessNotifyEvent)},
                           {"failed", ofDevice(&Facade::ConnectFailNotifyEvent)}};
    return operations;
}

template <typename Function>
Function* EntryPoint(void* module, const char* name) {
    void* const symbol = dlsym(module, name);
    if (symbol == nullptr) {
        std::cerr << "scan_probe: " << dlerror() << std::endl;
        std::exit(3);
    }
    return reinterpret_cast<Function*>(symbol);
}

Operations OfModule(const char* path) {
    void* const module = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (module == nullptr) {
        std::cerr << "scan_probe: " << dlerror() << std::endl;
        std::exit(3);
    }
    const auto start = EntryPoint<VendorSdk::StartDeviceScanFunction>(module, "StartDeviceScan");
    Operations operations;
    operations.start = [start] {
        std::thread([start] {
            static VendorSdk::DeviceCallbackInfo info{ReportFromModule, 7};
            const int result = start(&info);
            Write({{"event", "ended"}, {"result", result}});
        }).detach();
    };
    operations.startWithoutCallback = [start] {
        VendorSdk::DeviceCallbackInfo info{};
        const int result = start(&info);
        Write({{"event", "ended"}, {"result", result}});
    };
    operations.stop = EntryPoint<VendorSdk::StopDeviceScanFunction>(module, "StopDeviceScan");
    const auto ofDevice = [module](const char* name) {
        const auto function = EntryPoint<VendorSdk::GetDeviceConnectStateFunction>(module, name);
        return [function](const Device& device) { return function(&device); };
    };
    operations.ofDevice = {{"state", ofDevice("GetDeviceConnectState")},
                           {"before", ofDevice("BeforeConnectEventNotify")},
                           {"success", ofDevice("ConnectSuccessNotifyEvent")},
                           {"failed", ofDevice("ConnectFailNotifyEvent")}};
    return operations;
}

Device Record(const std::string& serial) {
    const std::lock_guard lock(Mutex());
    return Found()[serial];
}

template <std::size_t size>
void Put(char (&field)[size], const std::string& text) {
    text.copy(field, size);  // on purpose without a terminator for text that fills the field
    if (text.size() < size) {
        field[text.size()] = '\0';
    }
}

void Edit(const std::string& serial, const std::string& field, const std::string& value) {
    const std::lock_guard lock(Mutex());
    Device& device = Found()[serial];
    if (field == "port") {
        device.code1 = static_cast<std::uint16_t>(std::stoul(value));
    } else if (field == "kind") {
        device.code2 = static_cast<std::uint16_t>(std::stoul(value));
    } else if (field == "serial") {
        Put(device.deviceSN, value);
    } else if (field == "model_id") {
        Put(device.modelID, value);
    } else if (field == "address") {
        Put(device.extra2, value);
    } else if (field == "resource") {
        Put(device.extra3, value);
    }
}

void ReplaceStandardError() {
    int pipe[2];
    if (::pipe(pipe) != 0 || dup2(pipe[1], STDERR_FILENO) < 0) {
        std::exit(3);
    }
    close(pipe[0]);
    close(pipe[1]);
}

void Obey(const Operations& operations, const std::string& line) {
    std::istringstream words(line);
    std::string command;
    std::string serial;
    words >> command >> serial;
    if (command == "start") {
        started = Now();
        operations.start();
    } else if (command == "start-without-callback") {
        operations.startWithoutCallback();
    } else if (command == "close-standard-error") {
        ReplaceStandardError();
    } else if (command == "stop") {
        const int result = operations.stop();
        Write({{"event", "stopped"}, {"result", result}});
    } else if (command == "callback-sleeps") {
        callbackMilliseconds = std::stoi(serial);
    } else if (command == "edit") {
        std::string field;
        std::string value;
        words >> field >> value;
        Edit(serial, field, value);
    } else if (const auto found = operations.ofDevice.find(command);
               found != operations.ofDevice.end()) {
        const auto begin = Now();
        const int result = found->second(Record(serial));
        const double took = std::chrono::duration<double>(Now() - begin).count();
        Write({{"event", command}, {"serial", serial}, {"result", result}, {"took", took}});
    } else {
        std::cerr << "scan_probe: unknown command '" << command << "'" << std::endl;
        std::exit(2);
    }
}

}  // namespace

int main(int count, char** arguments) {
    const bool direct = count == 3 && std::string(arguments[1]) == "--module";
    const Operations operations = direct ? OfModule(arguments[2]) : OfBroker();
    started = Now();
    Write({{"event", "ready"}});
    for (std::string line; std::getline(std::cin, line) && line != "exit";) {
        Obey(operations, line);
    }
    return 0;
}

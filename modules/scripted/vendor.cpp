// SPDX-License-Identifier: Apache-2.0

#include "vendor.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <thread>

#include "misbehaviour.h"
#include "record_file.h"

namespace ScriptedVendor {

namespace {

constexpr std::size_t kKeptCallbackResults = 10000;

std::string Environment(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? std::string() : std::string(value);
}

std::string Hex(const unsigned char* bytes, std::size_t size) {
    constexpr char digits[] = "0123456789abcdef";
    std::string text;
    for (std::size_t at = 0; at < size; ++at) {
        text += digits[bytes[at] >> 4];
        text += digits[bytes[at] & 15];
    }
    return text.empty() ? "-" : text;
}

void Complain(const std::string& problem) {
    std::fputs((std::string(kModuleName) + ": " + problem + '\n').c_str(), stderr);
}

}  // namespace

Vendor::Vendor(const char* name)
    : moduleName(name), recordPath(Environment("SCRIPTED_VENDOR_RECORD")) {
    const std::string path = Environment("SCRIPTED_VENDOR_SCRIPT");
    if (path.empty()) {
        return;
    }
    std::ifstream file(path);
    if (!file) {
        Complain(path + ": the script cannot be read");
    }
    Apply(file, path);
}

int Vendor::Answer(const char* entryPoint, const void* argument, std::size_t size) {
    return Answer(entryPoint, argument, nullptr, argument, argument == nullptr ? 0 : size);
}

int Vendor::Answer(const char* entryPoint, const void* argument, const void* second,
                   const void* record, std::size_t size) {
    {
        const std::lock_guard guard(mutex);
        size = script.forgetful ? 0 : size;
    }
    Call call{entryPoint, argument, second, size, {}};
    if (size > 0) {
        std::memcpy(call.bytes, record, size);
    }
    WriteRecord(std::string(entryPoint) + ' ' + Hex(call.bytes, size));
    std::unique_lock lock(mutex);
    calls.push_back(call);
    changed.notify_all();
    changed.wait(lock, [&] { return !blocked.contains(entryPoint); });
    const std::chrono::milliseconds delay = script.DelayOf(entryPoint);
    const Misbehaviour misbehaviour = script.MisbehaviourOf(entryPoint);
    const int result = script.ResultOf(entryPoint);
    const std::string print = script.print;
    lock.unlock();
    std::fputs(print.c_str(), stdout);
    std::fflush(stdout);
    if (delay.count() > 0) {
        std::this_thread::sleep_for(delay);
    }
    Misbehave(misbehaviour);
    return result;
}

int Vendor::Scan(VendorSdk::DeviceCallbackInfo* info) {
    return Scan(deviceScan, info);
}

int Vendor::Scan(VendorSdk::WifiCallbackInfo* info) {
    return Scan(wifiScan, info);
}

template <class Info, class Record>
int Vendor::Scan(ScanKind<Info, Record>& kind, Info* info) {
    std::unique_lock lock(mutex);
    // A stop from now on ends this scan, even while the scan is still delayed.
    const unsigned since = kind.stops;
    kind.registration = info;
    ++runningScans;
    lock.unlock();

    const int result = Answer(kind.entryPoint, info, sizeof *info);
    lock.lock();
    const Script now = script;
    lock.unlock();
    std::vector<std::thread> others;
    for (int thread = 1; thread < now.threads; ++thread) {
        others.emplace_back([&] { ReportAll(kind, now, *info, since); });
    }
    ReportAll(kind, now, *info, since);
    for (std::thread& other : others) {
        other.join();
    }

    lock.lock();
    if (now.untilStopped) {
        changed.wait(lock, [&] { return kind.stops != since; });
    }
    --runningScans;
    changed.notify_all();
    return result;
}

void Vendor::StopScans() {
    Stop(&Vendor::deviceScan);
}

void Vendor::StopWifiScans() {
    Stop(&Vendor::wifiScan);
}

template <class Kind>
void Vendor::Stop(Kind Vendor::*stopped) {
    const std::lock_guard lock(mutex);
    Kind& kind = this->*stopped;
    ++kind.stops;
    changed.notify_all();
    if (script.afterStop > 0 && kind.registration != nullptr && !(script.*kind.records).empty()) {
        std::thread([stopped] {
            if (const Presence vendor; vendor) {
                vendor->ReportAfterStop((*vendor).*stopped);
            }
        }).detach();
    }
}

template <class Kind>
bool Vendor::IsStopped(const Kind& kind, unsigned since) {
    const std::lock_guard lock(mutex);
    return kind.stops != since;
}

template <class Kind>
bool Vendor::PauseUnlessStopped(const Kind& kind, std::chrono::milliseconds pause, unsigned since) {
    std::unique_lock lock(mutex);
    return !changed.wait_for(lock, pause, [&] { return kind.stops != since; });
}

template <class Info, class Record>
void Vendor::ReportAll(const ScanKind<Info, Record>& kind, const Script& now, const Info& info,
                       unsigned since) {
    bool first = true;
    for (int round = 0; now.repeat == 0 || round < now.repeat; ++round) {
        for (const Record& record : now.*kind.records) {
            if (!first && now.interval.count() > 0 &&
                !PauseUnlessStopped(kind, now.interval, since)) {
                return;
            }
            if (IsStopped(kind, since)) {
                return;
            }
            first = false;
            const Record own = record;
            Report(info, &own);
        }
        if ((now.*kind.records).empty()) {
            return;
        }
    }
}

template <class Kind>
void Vendor::ReportAfterStop(const Kind& kind) {
    std::unique_lock lock(mutex);
    const Script now = script;
    const auto& info = *kind.registration;
    lock.unlock();
    const auto& records = now.*kind.records;
    for (int number = 0; number < now.afterStop; ++number) {
        std::this_thread::sleep_for(std::max(now.interval, std::chrono::milliseconds(20)));
        Report(info, &records[static_cast<std::size_t>(number) % records.size()]);
    }
}

int Vendor::FillDevice(VendorSdk::DeviceInfo* device) {
    // The record's contents are undefined: only its address is recorded.
    const int result = Answer("GetDeviceInfoByNet", device, 0);
    const std::lock_guard lock(mutex);
    if (!script.devices.empty()) {
        *device = script.devices.front();
    }
    return result;
}

int Vendor::ListDevices(const UsbEnumeration& question, VendorSdk::DeviceInfo* devices,
                        std::int32_t* count) {
    const int result = Answer("GetDeviceInfoByUsb", devices, nullptr, &question, sizeof question);
    List("GetDeviceInfoByUsb", &Script::devices, VendorSdk::kMaxDevices, devices, count);
    return result;
}

int Vendor::ListNetworks(const UsbWifiScan& question, const VendorSdk::DeviceInfo* device,
                         VendorSdk::WifiConfigInfo* networks, std::int32_t* count) {
    const int result = Answer("USBWifiScan", device, nullptr, &question, sizeof question);
    List("USBWifiScan", &Script::networks, VendorSdk::kMaxNetworks, networks, count);
    return result;
}

template <class Record>
void Vendor::List(const char* entryPoint, std::vector<Record> Script::*records, std::size_t room,
                  Record* list, std::int32_t* count) {
    const std::lock_guard lock(mutex);
    const std::vector<Record>& all = script.*records;
    std::copy_n(all.begin(), std::min(all.size(), room), list);
    const auto said = script.counts.find(entryPoint);
    *count = said == script.counts.end() ? static_cast<std::int32_t>(all.size()) : said->second;
}

int Vendor::Note(int callbackResult) {
    WriteRecord("callback " + std::to_string(callbackResult));
    const std::lock_guard lock(mutex);
    ++callbackCount;
    if (callbackResults.size() < kKeptCallbackResults) {
        callbackResults.push_back(callbackResult);
    }
    changed.notify_all();
    return callbackResult;
}

int Vendor::Apply(std::istream& text, const std::string& sourceName) {
    const std::lock_guard lock(mutex);
    const std::vector<std::string> problems = ApplyScript(text, sourceName, moduleName, script);
    for (const std::string& problem : problems) {
        Complain(problem);
    }
    return static_cast<int>(problems.size());
}

int Vendor::Apply(const std::string& lines) {
    std::istringstream text(lines);
    return Apply(text, "script");
}

void Vendor::AddDevice(const VendorSdk::DeviceInfo& device) {
    const std::lock_guard lock(mutex);
    script.devices.push_back(device);
}

void Vendor::AddNetwork(const VendorSdk::WifiConfigInfo& network) {
    const std::lock_guard lock(mutex);
    script.networks.push_back(network);
}

void Vendor::Block(const std::string& entryPoint) {
    const std::lock_guard lock(mutex);
    blocked.insert(entryPoint);
}

void Vendor::Unblock(const std::string& entryPoint) {
    const std::lock_guard lock(mutex);
    blocked.erase(entryPoint);
    changed.notify_all();
}

std::size_t Vendor::CallCount() {
    const std::lock_guard lock(mutex);
    return calls.size();
}

bool Vendor::ReadCall(std::size_t index, Call& call) {
    const std::lock_guard lock(mutex);
    if (index >= calls.size()) {
        return false;
    }
    call = calls[index];
    return true;
}

std::size_t Vendor::CallbackCount() {
    const std::lock_guard lock(mutex);
    return callbackCount;
}

bool Vendor::ReadCallbackResult(std::size_t index, int& result) {
    const std::lock_guard lock(mutex);
    if (index >= callbackResults.size()) {
        return false;
    }
    result = callbackResults[index];
    return true;
}

VendorSdk::DeviceCallbackInfo* Vendor::Registration() {
    const std::lock_guard lock(mutex);
    return deviceScan.registration;
}

VendorSdk::WifiCallbackInfo* Vendor::WifiRegistration() {
    const std::lock_guard lock(mutex);
    return wifiScan.registration;
}

int Vendor::RunningScans() {
    const std::lock_guard lock(mutex);
    return runningScans;
}

template <class Condition>
bool Vendor::WaitFor(unsigned milliseconds, Condition condition) {
    std::unique_lock lock(mutex);
    return changed.wait_for(lock, std::chrono::milliseconds(milliseconds), condition);
}

bool Vendor::WaitForCalls(const std::string& entryPoint, std::size_t count, unsigned milliseconds) {
    return WaitFor(milliseconds, [&] {
        std::size_t found = 0;
        for (const Call& call : calls) {
            found += call.entryPoint == entryPoint ? 1u : 0u;
        }
        return found >= count;
    });
}

bool Vendor::WaitForCallbacks(std::size_t count, unsigned milliseconds) {
    return WaitFor(milliseconds, [&] { return callbackCount >= count; });
}

bool Vendor::WaitForRunningScans(int count, unsigned milliseconds) {
    return WaitFor(milliseconds, [&] { return runningScans == count; });
}

void Vendor::WriteRecord(const std::string& text) {
    if (recordPath.empty()) {
        return;
    }
    if (!AppendToFile(recordPath, std::string(moduleName) + ' ' + text + '\n')) {
        Complain(recordPath + ": the record cannot be written");
    }
}

}  // namespace ScriptedVendor

#include "vendor.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <thread>

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
    Call call{entryPoint, argument, size, {}};
    if (argument != nullptr) {
        std::memcpy(call.bytes, argument, size);
    }
    Record(std::string(entryPoint) + ' ' + Hex(call.bytes, argument == nullptr ? 0 : size));
    std::unique_lock lock(mutex);
    calls.push_back(call);
    changed.notify_all();
    changed.wait(lock, [&] { return !blocked.contains(entryPoint); });
    const std::chrono::milliseconds delay = script.DelayOf(entryPoint);
    const int result = script.ResultOf(entryPoint);
    lock.unlock();
    if (delay.count() > 0) {
        std::this_thread::sleep_for(delay);
    }
    return result;
}

int Vendor::Scan(VendorSdk::DeviceCallbackInfo* info) {
    std::unique_lock lock(mutex);
    // A stop that comes from now on ends this scan, also while it is still delayed.
    const unsigned since = stops;
    registration = info;
    ++runningScans;
    lock.unlock();

    const int result = Answer("StartDeviceScan", info, sizeof *info);
    lock.lock();
    const Script now = script;
    lock.unlock();
    std::vector<std::thread> others;
    for (int thread = 1; thread < now.threads; ++thread) {
        others.emplace_back([&] { ReportDevices(now, *info, since); });
    }
    ReportDevices(now, *info, since);
    for (std::thread& other : others) {
        other.join();
    }

    lock.lock();
    if (now.untilStopped) {
        changed.wait(lock, [&] { return stops != since; });
    }
    --runningScans;
    changed.notify_all();
    return result;
}

void Vendor::StopScans() {
    const std::lock_guard lock(mutex);
    ++stops;
    changed.notify_all();
    if (script.afterStop > 0 && registration != nullptr && !script.devices.empty()) {
        std::thread([] {
            if (const Presence vendor; vendor) {
                vendor->ReportAfterStop();
            }
        }).detach();
    }
}

bool Vendor::IsStopped(unsigned since) {
    const std::lock_guard lock(mutex);
    return stops != since;
}

bool Vendor::PauseUnlessStopped(std::chrono::milliseconds pause, unsigned since) {
    std::unique_lock lock(mutex);
    return !changed.wait_for(lock, pause, [&] { return stops != since; });
}

void Vendor::ReportDevices(const Script& now, const VendorSdk::DeviceCallbackInfo& info,
                           unsigned since) {
    bool first = true;
    for (int round = 0; now.repeat == 0 || round < now.repeat; ++round) {
        for (const VendorSdk::DeviceInfo& device : now.devices) {
            if (!first && now.interval.count() > 0 && !PauseUnlessStopped(now.interval, since)) {
                return;
            }
            if (IsStopped(since)) {
                return;
            }
            first = false;
            const VendorSdk::DeviceInfo own = device;
            Report(info, &own);
        }
        if (now.devices.empty()) {
            return;
        }
    }
}

void Vendor::ReportAfterStop() {
    std::unique_lock lock(mutex);
    const Script now = script;
    const VendorSdk::DeviceCallbackInfo* const info = registration;
    lock.unlock();
    for (int number = 0; number < now.afterStop; ++number) {
        std::this_thread::sleep_for(std::max(now.interval, std::chrono::milliseconds(20)));
        Report(*info, &now.devices[static_cast<std::size_t>(number) % now.devices.size()]);
    }
}

int Vendor::Report(const VendorSdk::DeviceCallbackInfo& info, const VendorSdk::DeviceInfo* device) {
    const int result = info.callback(device);
    Record("callback " + std::to_string(result));
    const std::lock_guard lock(mutex);
    ++callbackCount;
    if (callbackResults.size() < kKeptCallbackResults) {
        callbackResults.push_back(result);
    }
    changed.notify_all();
    return result;
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
    return registration;
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

void Vendor::Record(const std::string& text) {
    if (recordPath.empty()) {
        return;
    }
    if (!AppendToFile(recordPath, std::string(moduleName) + ' ' + text + '\n')) {
        Complain(recordPath + ": the record cannot be written");
    }
}

}  // namespace ScriptedVendor

#pragma once

#include <condition_variable>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "script.h"
#include "scripted_vendor.h"

namespace ScriptedVendor {

// The vendor in a module: follows its script and remembers what it was asked. Reads its script from
// the file that SCRIPTED_VENDOR_SCRIPT names and writes the record that SCRIPTED_VENDOR_RECORD
// names.
class Vendor {
public:
    explicit Vendor(const char* moduleName);

    // Records the call, waits as scripted, and gives the scripted result.
    int Answer(const char* entryPoint, const void* argument, std::size_t size);

    // Answers StartDeviceScan: reports the scripted devices and runs as long as the script says.
    // All its threads have ended when it returns.
    int Scan(VendorSdk::DeviceCallbackInfo* registration);
    void StopScans();

    int Report(const VendorSdk::DeviceCallbackInfo& registration,
               const VendorSdk::DeviceInfo* device);

    int Apply(const std::string& lines);
    void AddDevice(const VendorSdk::DeviceInfo& device);
    void Block(const std::string& entryPoint);
    void Unblock(const std::string& entryPoint);
    std::size_t CallCount();
    bool ReadCall(std::size_t index, Call& call);
    std::size_t CallbackCount();
    bool ReadCallbackResult(std::size_t index, int& result);
    VendorSdk::DeviceCallbackInfo* Registration();
    int RunningScans();
    bool WaitForCalls(const std::string& entryPoint, std::size_t count, unsigned milliseconds);
    bool WaitForCallbacks(std::size_t count, unsigned milliseconds);
    bool WaitForRunningScans(int count, unsigned milliseconds);

    const char* Name() const { return moduleName; }

private:
    int Apply(std::istream& text, const std::string& sourceName);
    bool IsStopped(unsigned since);
    bool PauseUnlessStopped(std::chrono::milliseconds pause, unsigned since);
    void ReportDevices(const Script& now, const VendorSdk::DeviceCallbackInfo& registration,
                       unsigned since);
    void ReportAfterStop();
    void Record(const std::string& text);
    template <class Condition>
    bool WaitFor(unsigned milliseconds, Condition condition);

    const char* const moduleName;
    const std::string recordPath;

    std::mutex mutex;  // guards all below
    std::condition_variable changed;
    Script script;
    std::set<std::string> blocked;
    std::vector<Call> calls;
    std::vector<int> callbackResults;
    std::size_t callbackCount = 0;
    VendorSdk::DeviceCallbackInfo* registration = nullptr;
    int runningScans = 0;
    unsigned stops = 0;
};

// The module's vendor, for the length of one call. It is made on first use and goes with the
// module, unless the process ends while the module still runs: then it stays, and who comes late
// finds none.
class Presence {
public:
    Presence();
    ~Presence();
    Presence(const Presence&) = delete;
    Presence& operator=(const Presence&) = delete;

    explicit operator bool() const { return vendor != nullptr; }
    Vendor* operator->() const { return vendor; }

private:
    Vendor* vendor = nullptr;
};

// The name of the module, which each module defines.
extern const char* const kModuleName;

// What ScriptedVendorControl returns.
const Control& ControlFunctions();

}  // namespace ScriptedVendor

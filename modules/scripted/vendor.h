// SPDX-License-Identifier: Apache-2.0

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

// The vendor in a module: follows its script and remembers its calls. Reads the script from the
// file that SCRIPTED_VENDOR_SCRIPT names, and writes the record to the file that
// SCRIPTED_VENDOR_RECORD names.
class Vendor {
public:
    explicit Vendor(const char* moduleName);

    // Records the call, waits as scripted, and returns the scripted result.
    int Answer(const char* entryPoint, const void* argument, std::size_t size);
    // The same for two arguments; `record` combines all arguments.
    int Answer(const char* entryPoint, const void* argument, const void* second, const void* record,
               std::size_t size);

    // Answer StartDeviceScan and StartAPWifiScan: send the scripted reports and run as long as
    // scripted. All their threads have ended when they return.
    int Scan(VendorSdk::DeviceCallbackInfo* registration);
    int Scan(VendorSdk::WifiCallbackInfo* registration);
    void StopScans();
    void StopWifiScans();

    // Answers GetDeviceInfoByNet.
    int FillDevice(VendorSdk::DeviceInfo* device);

    // Answer GetDeviceInfoByUsb and USBWifiScan: write the scripted records, whatever the result.
    int ListDevices(const UsbEnumeration& question, VendorSdk::DeviceInfo* devices,
                    std::int32_t* count);
    int ListNetworks(const UsbWifiScan& question, const VendorSdk::DeviceInfo* device,
                     VendorSdk::WifiConfigInfo* networks, std::int32_t* count);

    template <class Info, class Record>
    int Report(const Info& registration, const Record* record) {
        return Note(registration.callback(record));
    }

    int Apply(const std::string& lines);
    void AddDevice(const VendorSdk::DeviceInfo& device);
    void AddNetwork(const VendorSdk::WifiConfigInfo& network);
    void Block(const std::string& entryPoint);
    void Unblock(const std::string& entryPoint);
    std::size_t CallCount();
    bool ReadCall(std::size_t index, Call& call);
    std::size_t CallbackCount();
    bool ReadCallbackResult(std::size_t index, int& result);
    VendorSdk::DeviceCallbackInfo* Registration();
    VendorSdk::WifiCallbackInfo* WifiRegistration();
    int RunningScans();
    bool WaitForCalls(const std::string& entryPoint, std::size_t count, unsigned milliseconds);
    bool WaitForCallbacks(std::size_t count, unsigned milliseconds);
    bool WaitForRunningScans(int count, unsigned milliseconds);

    const char* Name() const { return moduleName; }

private:
    // One kind of scan: its entry point and records, its last registration, and how often it was
    // stopped.
    template <class Info, class Record>
    struct ScanKind {
        const char* entryPoint;
        std::vector<Record> Script::*records;
        Info* registration = nullptr;
        unsigned stops = 0;
    };

    int Apply(std::istream& text, const std::string& sourceName);
    template <class Info, class Record>
    int Scan(ScanKind<Info, Record>& kind, Info* registration);
    template <class Kind>
    void Stop(Kind Vendor::*kind);
    template <class Kind>
    bool IsStopped(const Kind& kind, unsigned since);
    template <class Kind>
    bool PauseUnlessStopped(const Kind& kind, std::chrono::milliseconds pause, unsigned since);
    template <class Info, class Record>
    void ReportAll(const ScanKind<Info, Record>& kind, const Script& now, const Info& registration,
                   unsigned since);
    template <class Kind>
    void ReportAfterStop(const Kind& kind);
    template <class Record>
    void List(const char* entryPoint, std::vector<Record> Script::*records, std::size_t room,
              Record* list, std::int32_t* count);
    int Note(int callbackResult);
    void WriteRecord(const std::string& text);
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
    ScanKind<VendorSdk::DeviceCallbackInfo, VendorSdk::DeviceInfo> deviceScan{"StartDeviceScan",
                                                                              &Script::devices};
    ScanKind<VendorSdk::WifiCallbackInfo, VendorSdk::WifiConfigInfo> wifiScan{"StartAPWifiScan",
                                                                              &Script::networks};
    int runningScans = 0;
};

// The module's vendor, during one call. Created on first use and destroyed with the module. If the
// process ends while calls still run, the vendor is not destroyed, and later calls get none.
class Presence {
public:
    Presence();
    ~Presence();
    Presence(const Presence&) = delete;
    Presence& operator=(const Presence&) = delete;

    explicit operator bool() const { return vendor != nullptr; }
    Vendor* operator->() const { return vendor; }
    Vendor& operator*() const { return *vendor; }

private:
    Vendor* vendor = nullptr;
};

// The name of the module, which each module defines.
extern const char* const kModuleName;

// What ScriptedVendorControl returns.
const Control& ControlFunctions();

}  // namespace ScriptedVendor

// SPDX-License-Identifier: Apache-2.0

// unload_in_the_middle WHAT: loads the broker at run time, has it do something, unloads it in the
// middle, and goes on until all that was begun has come to its end. WHAT is "printers", "networks",
// "monitor", or "nothing", which shows that a broker without threads can be unloaded.

#include <atomic>
#include <chrono>
#include <string>
#include <thread>

#include "DeviceDiscover/records.h"
#include "platform/os_calls.h"
#include "tests/support/recording_log.h"
#include "tests/support/scripted_adapter.h"
#include "tests/support/scripted_host.h"
#include "tests/support/scripted_vendors.h"

namespace {

constexpr int kReports = 20;  // as the script has it
constexpr wchar_t kUsbId[] = L"VID_1234&PID_0001";

std::atomic<int> received{0};

int OnDevice(const PrinterDeviceDiscoverSdk::DeviceInfo* device) {
    ++received;
    return device->modelID[0];
}

int OnNetwork(const PrinterDeviceDiscoverSdk::WifiConfigInfo* network) {
    ++received;
    return network->ssid[0];
}

template <class... Arguments>
int Call(HINSTANCE module, const char* name, Arguments... arguments) {
    const FARPROC function = GetProcAddress(module, name);
    if (function == nullptr) {
        return -100;
    }
    return reinterpret_cast<int (*)(Arguments...)>(reinterpret_cast<void (*)()>(function))(
        arguments...);
}

bool Received(int count) {
    for (int patience = 0; received < count; ++patience) {
        if (patience == 30000) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

// Whether the scan's thread has come back from the vendor, with the result of the script.
bool HasReturned() {
    return RecordingLog::WaitUntil(
        [](const std::vector<RecordingLog::Line>& lines) {
            for (const RecordingLog::Line& line : lines) {
                if (line.text.starts_with(L"call Func fail, err:5")) {
                    return true;
                }
            }
            return false;
        },
        30000);
}

bool UnloadInAScan(HINSTANCE user, const std::string& what) {
    const int started = what == "printers" ? Call(user, "StartPrinters", &OnDevice)
                                           : Call(user, "StartNetworks", &OnNetwork);
    return started == 0 && Received(1) && FreeLibrary(user) != 0 && received < kReports &&
           Received(kReports) && HasReturned();
}

// Until a printer is plugged in there is no thread but the device manager's own.
bool UnloadWhileMonitoring(HINSTANCE user) {
    return Call(user, "StartMonitor", &OnDevice) == 0 && FreeLibrary(user) != 0 &&
           ScriptedHost::Report(1, kUsbId) == 0 && Received(1);
}

// The broker gives the vendor's module back when it goes.
bool UnloadWithoutThreads(HINSTANCE user) {
    return Call(user, "BindVendors") == 0 && FreeLibrary(user) != 0 &&
           ScriptedVendors::ReleaseAll("scripted_all") == 0;
}

}  // namespace

int main(int count, char** arguments) {
    const std::string what = count > 1 ? arguments[1] : "";
    // All application libraries are the program's own: none of them may keep the broker.
    ScriptedAdapter::OfferList(true);
    ScriptedVendors::KeepMapped(false);
    const HINSTANCE user = ScriptedVendors::Load("broker_user");
    if (user == nullptr) {
        return 3;
    }
    ScriptedVendors::KeepMapped(what != "nothing");
    ScriptedVendors::Support(
        {{"alpha", {}, {}, "VID_1234&PID_0001", "scripted_all", "scripted_all"}});
    const bool isWell = what == "nothing"   ? UnloadWithoutThreads(user)
                        : what == "monitor" ? UnloadWhileMonitoring(user)
                                            : UnloadInAScan(user, what);
    // The last thread has a moment to return into what was unloaded.
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    return isWell ? 0 : 1;
}

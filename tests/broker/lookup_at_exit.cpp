// lookup_at_exit: ends while a thread looks up the vendor of a printer on USB. Its status is 0 when
// the library was at its end only once the look-up had come to an end, and 1 otherwise.

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <thread>

#include "DeviceDiscover/DeviceDiscover.h"
#include "tests/support/recording_log.h"
#include "tests/support/scripted_vendors.h"

namespace {

std::atomic<bool> begins{false};
std::atomic<bool> ends{false};

// The line in the middle of the look-up takes its time.
void OnLine(const RecordingLog::Line& line) {
    if (line.text.starts_with(L"usbId:")) {
        begins = true;
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        ends = true;
    }
}

}  // namespace

int main() {
    ScriptedVendors::KeepMapped(true);
    ScriptedVendors::Support({{"alpha", {}, {}, "VID_1234&PID_0001", "scripted_all", {}}});
    RecordingLog::OnLine(OnLine);
    RecordingLog::AtItsEnd([] { std::_Exit(ends ? 0 : 1); });
    std::thread([] {
        std::vector<PrinterDeviceDiscoverSdk::DeviceInfo> devices;
        PrinterDeviceDiscoverSdk::UsbConnInterface::GetInstance().GetDeviceInfoByUsb(
            devices, L"VID_1234&PID_0001");
    }).detach();
    while (!begins) {
        std::this_thread::yield();
    }
    return 2;
}

// SPDX-License-Identifier: Apache-2.0

// lookup_at_exit TEXT: ends while a thread looks up the vendor of a printer on USB and the logger
// does not return from the line that begins with TEXT before the library's objects are gone. Its
// status is 0 when the look-up then came to an end without a vendor, 1 when it had another result,
// and 2 when the library waited for it or it did not come to an end.

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <thread>

#include "DeviceDiscover/DeviceDiscover.h"
#include "tests/support/recording_log.h"
#include "tests/support/scripted_vendors.h"

namespace {

using namespace std::chrono_literals;

std::wstring slowLine;
std::atomic<bool> begins{false};
std::atomic<bool> isGone{false};
std::atomic<bool> isOver{false};
std::atomic<int> result{0};

bool Becomes(const std::atomic<bool>& flag) {
    for (int patience = 2000; !flag && patience > 0; --patience) {
        std::this_thread::sleep_for(10ms);
    }
    return flag;
}

void OnLine(const RecordingLog::Line& line) {
    if (line.text.starts_with(slowLine) && !begins.exchange(true) && !Becomes(isGone)) {
        std::_Exit(2);
    }
}

void JudgeTheEnd() {
    isGone = true;
    std::_Exit(!Becomes(isOver) ? 2 : result == PrinterDeviceDiscoverSdk::kNotInitialised ? 0 : 1);
}

}  // namespace

int main(int count, char** arguments) {
    const std::string text = count > 1 ? arguments[1] : "usbId:";
    slowLine.assign(text.begin(), text.end());
    ScriptedVendors::KeepMapped(true);
    ScriptedVendors::Support({{"alpha", {}, {}, "VID_1234&PID_0001", "scripted_all", {}}});
    RecordingLog::OnLine(OnLine);
    RecordingLog::AtItsEnd(JudgeTheEnd);
    std::thread([] {
        std::vector<PrinterDeviceDiscoverSdk::DeviceInfo> devices;
        result = PrinterDeviceDiscoverSdk::UsbConnInterface::GetInstance().GetDeviceInfoByUsb(
            devices, L"VID_1234&PID_0001");
        isOver = true;
    }).detach();
    while (!begins) {
        std::this_thread::yield();
    }
    return 3;
}

// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <filesystem>
#include <set>
#include <thread>

#include "platform/PrinterDiscoverAPI/PrinterUsbControl.h"
#include "tests/host/PrinterDiscoverAPI/usb/usb_reports.h"
#include "tests/support/recording_log.h"
#include "tests/support/simulated_usb.h"

// A device service whose control socket is there. The test bed sends each event to every listener:
// to the kernel's and to the device service's.

namespace UsbTest {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const Report kCame{1, L"VID_1209&PID_0001"};
const Report kWent{0, L"VID_1209&PID_0001"};
const SimulatedDevice kPrinter{"1-1", 0x1209, 1};

std::string Trouble() {
    std::array<char, 512> text{};
    const int result = PrinterUsbMonitorProblem(text.data(), text.size());
    EXPECT_EQ(result != 0, text[0] != '\0');
    return text.data();
}

// The files by which the test bed reaches those who listen, by their descriptors.
std::set<std::filesystem::path> Listeners() {
    std::set<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(std::getenv("UMOCKDEV_DIR"))) {
        if (entry.path().filename().string().starts_with("event")) {
            files.insert(entry.path());
        }
    }
    return files;
}

class UsbService : public testing::Test {
protected:
    UsbService() { EXPECT_EQ(manager.StartMonitor(Registration()), 0); }
    ~UsbService() override { manager.StopMonitor(); }

    SimulatedUsb usb;
    PrinterUsbDeviceManager& manager = PrinterUsbDeviceManager::GetInstance();
};

TEST_F(UsbService, ThatPassesEventsOnIsNoTrouble) {
    ForgetReports();
    usb.Plug(kPrinter);
    usb.Unplug(kPrinter);
    EXPECT_THAT(WaitForReports(2), ElementsAre(kCame, kWent));
    // No event is left over that would be told once more.
    std::this_thread::sleep_for(std::chrono::milliseconds(3500));
    EXPECT_THAT(ReportsTo(), ElementsAre(kCame, kWent));
    EXPECT_EQ(Trouble(), "");
    EXPECT_THAT(RecordingLog::Lines(), IsEmpty());
}

// The service's events are opened before the kernel's.
TEST_F(UsbService, ThatPassesNothingOnIsToldAndTheKernelsEventsCount) {
    ForgetReports();
    RecordingLog::Clear();
    const auto listeners = Listeners();
    ASSERT_EQ(listeners.size(), 2U);
    const auto& ofService = *listeners.begin();
    const auto away = ofService.parent_path() / "away";
    std::filesystem::rename(ofService, away);
    usb.Plug(kPrinter);
    EXPECT_THAT(WaitForReports(1), ElementsAre(kCame));
    EXPECT_THAT(Trouble(), HasSubstr("the device service (udev) does not pass device events on"));
    const auto lines = RecordingLog::Lines();
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].level, LOG_LEVEL_ERROR);
    EXPECT_THAT(std::string(lines[0].text.begin(), lines[0].text.end()),
                HasSubstr("USB monitor: the device service (udev) does not pass device events on"));
    usb.Unplug(kPrinter);
    EXPECT_THAT(WaitForReports(2), ElementsAre(kCame, kWent));
    std::filesystem::rename(away, ofService);
    usb.Plug(kPrinter);
    EXPECT_THAT(WaitForReports(3), ElementsAre(kCame, kWent, kCame));
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!Trouble().empty() && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EXPECT_EQ(Trouble(), "");
    EXPECT_EQ(ReportsTo().size(), 3U);
}

}  // namespace

}  // namespace UsbTest

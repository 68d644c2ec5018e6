// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <thread>

#include "tests/host/PrinterDiscoverAPI/usb/registered_usb_windows.h"
#include "tests/host/PrinterDiscoverAPI/usb/scripted_cfgmgr32_windows.h"
#include "tests/host/PrinterDiscoverAPI/usb/usb_reports.h"
#include "tests/support/recording_log.h"

// After the system's own header, which it needs.
#include <dbt.h>

namespace UsbTest {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// How many devices of that identifier are plugged in.
std::pair<int, int> PortOf(const std::wstring& hardwareId) {
    std::map<std::wstring, std::pair<int, int>> ports{{L"left over", {1, 1}}};
    PrinterUsbDeviceManager::GetInstance().GetCurrentPrinterPorts(ports);
    EXPECT_EQ(ports.count(L"left over"), 0U);
    return ports.count(hardwareId) == 0 ? std::pair(0, 0) : ports[hardwareId];
}

const std::pair<int, int> kNone{0, 0};
const std::pair<int, int> kOne{1, 0};
const std::pair<int, int> kTwo{2, 0};

TEST(UsbPorts, AreThePrintersThatAreRegisteredAndPresent) {
    const std::wstring id = OwnHardwareId();
    EXPECT_EQ(PortOf(id), kNone);
    {
        RegisteredPrinter printer(L"USB\\" + id + L"\\0001");
        EXPECT_EQ(PortOf(id), kOne);
        printer.SetPresent(false);
        EXPECT_EQ(PortOf(id), kNone);
    }
    EXPECT_EQ(PortOf(id), kNone);
}

TEST(UsbPorts, CountPrintersOfOneModel) {
    const std::wstring id = OwnHardwareId();
    const RegisteredPrinter one(L"USB\\" + id + L"\\0001");
    const RegisteredPrinter other(L"USB\\" + id + L"\\0002");
    const RegisteredPrinter another(L"USB\\" + OwnHardwareId(1) + L"\\0001");
    EXPECT_EQ(PortOf(id), kTwo);
    EXPECT_EQ(PortOf(OwnHardwareId(1)), kOne);
}

TEST(UsbPorts, CountADeviceOfSeveralFunctionsOnce) {
    const std::wstring id = OwnHardwareId();
    const RegisteredPrinter one(L"USB\\" + id + L"&MI_00\\6&1A2B&0&0000");
    const RegisteredPrinter other(L"USB\\" + id + L"&MI_02\\6&1A2B&0&0002");
    EXPECT_EQ(PortOf(id), kOne);
}

TEST(UsbPorts, LeaveOutWhatIsNotOnUsb) {
    const std::wstring id = OwnHardwareId();
    const RegisteredPrinter printer(L"ROOT\\" + id + L"\\0001");
    EXPECT_EQ(PortOf(id), kNone);
}

HMODULE LoadScriptedManager() {
    std::array<wchar_t, MAX_PATH> program{};
    GetModuleFileNameW(nullptr, program.data(), static_cast<DWORD>(program.size()));
    const auto folder = std::filesystem::path(program.data()).parent_path();
    return LoadLibraryW((folder / "scripted" / "cfgmgr32.dll").c_str());
}

// Both ways in which the system tells of devices.
enum class Way { configurationManager, window };

class UsbMonitor : public testing::TestWithParam<Way> {
protected:
    UsbMonitor() {
        if (GetParam() == Way::configurationManager) {
            // The monitor finds the one that is loaded already.
            manager32 = LoadScriptedManager();
            EXPECT_NE(manager32, nullptr) << GetLastError();
        }
    }
    ~UsbMonitor() override {
        InsideReports({});
        manager.StopMonitor();
        EXPECT_TRUE(OnlyPrinterClassReported());
        EXPECT_EQ(Tell(true, L""), 0) << "still registered";
    }

    void Start(Receiver receiver = Receiver::first) {
        ASSERT_EQ(manager.StartMonitor(Registration(receiver)), 0);
        // The device manager registers in one way or the other, not in both.
        EXPECT_EQ(Tell(true, L""), 1);
    }

    // Tells of a device interface as the system does; returns to how many who have asked for it.
    int Tell(bool hasCome, const std::wstring& path) {
        return GetParam() == Way::configurationManager ? TellByManager(hasCome, path)
                                                       : TellByWindow(hasCome, path);
    }
    void Plug(const std::wstring& device) { EXPECT_EQ(Tell(true, Path(device)), 1); }
    void Unplug(const std::wstring& device) { EXPECT_EQ(Tell(false, Path(device)), 1); }

    static std::wstring Path(const std::wstring& device) {
        return L"\\\\?\\" + device + L"#{28d78fad-5a12-11d1-ae5b-0000f803a8c2}";
    }

    PrinterUsbDeviceManager& manager = PrinterUsbDeviceManager::GetInstance();

private:
    int TellByManager(bool hasCome, const std::wstring& path) const {
        const auto notify = reinterpret_cast<ScriptedNotify>(
            reinterpret_cast<void*>(GetProcAddress(manager32, "ScriptedNotifyAll")));
        return notify(hasCome ? 1 : 0, path.c_str());
    }

    static int TellByWindow(bool hasCome, const std::wstring& path) {
        const std::size_t size =
            sizeof(DEV_BROADCAST_DEVICEINTERFACE_W) + path.size() * sizeof(wchar_t);
        std::vector<std::byte> room(size);
        auto* device = reinterpret_cast<DEV_BROADCAST_DEVICEINTERFACE_W*>(room.data());
        device->dbcc_size = static_cast<DWORD>(size);
        device->dbcc_devicetype = DBT_DEVTYP_DEVICEINTERFACE;
        std::copy(path.begin(), path.end(), device->dbcc_name);
        int windows = 0;
        HWND window = nullptr;
        while ((window = FindWindowExW(HWND_MESSAGE, window, L"DeviceDiscover.UsbPrinters",
                                       nullptr)) != nullptr) {
            DWORD process = 0;
            GetWindowThreadProcessId(window, &process);
            if (process == GetCurrentProcessId()) {
                SendMessageW(window, WM_DEVICECHANGE,
                             hasCome ? DBT_DEVICEARRIVAL : DBT_DEVICEREMOVECOMPLETE,
                             reinterpret_cast<LPARAM>(device));
                ++windows;
            }
        }
        return windows;
    }

    HMODULE manager32 = nullptr;
};

const std::wstring kPrinter = L"usb#vid_1209&pid_0001#a";
const std::wstring kTwin = L"usb#vid_1209&pid_0001#b";
const std::wstring kOther = L"usb#vid_1209&pid_0002#a";
const Report kCame{1, L"VID_1209&PID_0001"};
const Report kWent{0, L"VID_1209&PID_0001"};
const Report kOtherCame{1, L"VID_1209&PID_0002"};
const Report kOtherWent{0, L"VID_1209&PID_0002"};

TEST_P(UsbMonitor, ReportsAPrinterThatIsPluggedInAndUnpluggedAndPluggedInAgain) {
    Start();
    Plug(kPrinter);
    Unplug(kPrinter);
    Plug(kPrinter);
    EXPECT_THAT(WaitForReports(3), ElementsAre(kCame, kWent, kCame));
}

TEST_P(UsbMonitor, ReportsEachOfTwoPrintersOfOneModel) {
    Start();
    Plug(kPrinter);
    Plug(kTwin);
    Unplug(kPrinter);
    Plug(kOther);
    EXPECT_THAT(WaitForReports(4), ElementsAre(kCame, kCame, kWent, kOtherCame));
}

TEST_P(UsbMonitor, ReportsADeviceOfSeveralFunctionsOnce) {
    Start();
    Plug(L"usb#vid_1209&pid_0001&mi_00#6&1a&0&0000");
    Plug(L"usb#vid_1209&pid_0001&mi_01#6&1a&0&0001");
    Unplug(L"usb#vid_1209&pid_0001&mi_00#6&1a&0&0000");
    Unplug(L"usb#vid_1209&pid_0001&mi_01#6&1a&0&0001");
    Plug(kOther);
    EXPECT_THAT(WaitForReports(3), ElementsAre(kCame, kWent, kOtherCame));
}

TEST_P(UsbMonitor, DoesNotReportWhatIsNotOnUsb) {
    Start();
    Plug(L"root#vid_1209&pid_0001#a");
    Plug(L"");
    Plug(kOther);
    EXPECT_THAT(WaitForReports(1), ElementsAre(kOtherCame));
}

TEST_P(UsbMonitor, KnowsThePrintersThatAreThereAlready) {
    const std::wstring id = OwnHardwareId();
    const RegisteredPrinter printer(L"USB\\" + id + L"\\0001");
    Start();
    EXPECT_EQ(Tell(true, printer.Path()), 1);
    EXPECT_EQ(Tell(false, printer.Path()), 1);
    EXPECT_THAT(WaitForReports(1), ElementsAre(Report(0, id)));
}

TEST_P(UsbMonitor, ReportsAStormOf200EventsInTheirOrder) {
    Start();
    Reports expected;
    for (int round = 0; round < 50; ++round) {
        Plug(kPrinter);
        Plug(kOther);
        Unplug(kPrinter);
        Unplug(kOther);
        expected.insert(expected.end(), {kCame, kOtherCame, kWent, kOtherWent});
    }
    EXPECT_EQ(WaitForReports(200), expected);
}

TEST_P(UsbMonitor, StopReturnsOnlyWhenNoReportIsBeingDelivered) {
    Gate inside;
    Gate proceed;
    Gate stopped;
    InsideReports([&](const Report&) {
        inside.Open();
        proceed.Pass();
    });
    Start();
    Plug(kPrinter);
    inside.Pass();
    Plug(kOther);
    std::thread stopper([&] {
        manager.StopMonitor();
        stopped.Open();
    });
    EXPECT_FALSE(stopped.PassWithin(200));
    proceed.Open();
    EXPECT_TRUE(stopped.PassWithin(20000));
    stopper.join();
    EXPECT_THAT(ReportsTo(), ElementsAre(kCame));
}

TEST_P(UsbMonitor, StopsAndStartsAgainFromInsideAReport) {
    Gate started;
    InsideReports([&](const Report& report) {
        if (report == kCame) {
            manager.StopMonitor();
            EXPECT_EQ(manager.StartMonitor(Registration(Receiver::second)), 0);
            started.Open();
        }
    });
    Start();
    Plug(kPrinter);
    ASSERT_TRUE(started.PassWithin(20000));
    manager.StartMonitor(Registration(Receiver::second));
    Plug(kOther);
    EXPECT_THAT(WaitForReports(1, Receiver::second), ElementsAre(kOtherCame));
    EXPECT_THAT(ReportsTo(Receiver::first), ElementsAre(kCame));
}

TEST_P(UsbMonitor, ReportsToTheSecondRegistrationOnly) {
    Start(Receiver::first);
    Plug(kPrinter);
    WaitForReports(1);
    Start(Receiver::second);
    Unplug(kPrinter);
    EXPECT_THAT(WaitForReports(1, Receiver::second), ElementsAre(kWent));
    EXPECT_THAT(ReportsTo(Receiver::first), ElementsAre(kCame));
}

TEST_P(UsbMonitor, StartsAndStopsFromManyThreadsWhilePrintersComeAndGo) {
    std::atomic<bool> isOver = false;
    std::vector<std::thread> threads;
    for (int index = 0; index < 4; ++index) {
        threads.emplace_back([this, &isOver, index] {
            while (!isOver) {
                if (index % 2 == 0) {
                    EXPECT_EQ(manager.StartMonitor(Registration()), 0);
                } else {
                    manager.StopMonitor();
                }
            }
        });
    }
    for (int round = 0; round < 100; ++round) {
        Tell(true, Path(kPrinter));
        Tell(false, Path(kPrinter));
    }
    isOver = true;
    for (std::thread& thread : threads) {
        thread.join();
    }
}

TEST_P(UsbMonitor, StopsWithoutAStartAndTwice) {
    manager.StopMonitor();
    Start();
    manager.StopMonitor();
    manager.StopMonitor();
}

INSTANTIATE_TEST_SUITE_P(Ways, UsbMonitor, testing::Values(Way::configurationManager, Way::window),
                         [](const auto& way) {
                             return way.param == Way::window ? "Window" : "ConfigurationManager";
                         });

TEST(UsbMonitorStart, FailsWhenTheConfigurationManagerRefuses) {
    const HMODULE manager32 = LoadScriptedManager();
    ASSERT_NE(manager32, nullptr);
    const auto setResult = reinterpret_cast<ScriptedResult>(
        reinterpret_cast<void*>(GetProcAddress(manager32, "ScriptedSetResult")));
    setResult(0x33);
    EXPECT_EQ(PrinterUsbDeviceManager::GetInstance().StartMonitor(Registration()), -1);
    const auto lines = RecordingLog::Lines();
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].level, LOG_LEVEL_ERROR);
    EXPECT_EQ(lines[0].text,
              L"USB monitor: CM_Register_Notification failed: error 51"
              L"(PrinterUsbDeviceManager::StartMonitor)");
}

TEST(UsbMonitorStart, FailsWithoutACallback) {
    EXPECT_EQ(PrinterUsbDeviceManager::GetInstance().StartMonitor({nullptr, 1}), -1);
    EXPECT_THAT(RecordingLog::Lines(), testing::SizeIs(1));
}

class UsbMonitorAtExit : public testing::Test {
protected:
    UsbMonitorAtExit() { PrinterUsbDeviceManager::GetInstance().StartMonitor(Registration()); }
};

TEST_F(UsbMonitorAtExit, MayStillBeRunning) {
    // The process ends behind this test with the monitor running.
    EXPECT_EQ(PrinterUsbDeviceManager::GetInstance().StartMonitor(Registration()), 0);
}

TEST_F(UsbMonitorAtExit, MayBeStoppedThen) {
    EXPECT_EQ(std::atexit([] { PrinterUsbDeviceManager::GetInstance().StopMonitor(); }), 0);
}

TEST_F(UsbMonitorAtExit, MayBeStoppedWhenAllOtherThreadsAreGone) {
    // The end of this library is after that of the threads.
    ASSERT_NE(LoadLibraryW(L"stop_at_exit.dll"), nullptr) << GetLastError();
}

}  // namespace

}  // namespace UsbTest

// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <stdexcept>
#include <thread>

#include "tests/host/PrinterDiscoverAPI/usb/usb_reports.h"
#include "tests/support/recording_log.h"
#include "tests/support/simulated_usb.h"

namespace UsbTest {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const Report kCame{1, L"VID_1209&PID_0001"};
const Report kWent{0, L"VID_1209&PID_0001"};
const Report kOtherCame{1, L"VID_1209&PID_0002"};
const Report kOtherWent{0, L"VID_1209&PID_0002"};
const SimulatedDevice kPrinter{"1-1", 0x1209, 1};
const SimulatedDevice kOther{"1-2", 0x1209, 2};

class UsbMonitor : public testing::Test {
protected:
    UsbMonitor() {
        ForgetReports();
        RecordingLog::Clear();
    }
    ~UsbMonitor() override {
        InsideReports({});
        manager.StopMonitor();
        EXPECT_TRUE(OnlyPrinterClassReported());
    }

    void Start(Receiver receiver = Receiver::first) {
        ASSERT_EQ(manager.StartMonitor(Registration(receiver)), 0);
    }

    // Reports are in the order of events: once this one has come nothing before it is on its way.
    Reports ReportsUntilNow(std::size_t expected, Receiver receiver = Receiver::first) {
        const SimulatedDevice marker{"9-9", 0xffff, 0xffff};
        usb.Plug(marker);
        Reports reports = WaitForReports(expected + 1, receiver);
        EXPECT_EQ(reports.empty() ? L"" : reports.back().second, L"VID_FFFF&PID_FFFF");
        if (!reports.empty()) {
            reports.pop_back();
        }
        return reports;
    }

    SimulatedUsb usb;
    PrinterUsbDeviceManager& manager = PrinterUsbDeviceManager::GetInstance();
};

std::set<int> OpenSockets() {
    std::set<int> sockets;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code ignored;
        const std::string target = std::filesystem::read_symlink(entry.path(), ignored).string();
        if (target.starts_with("socket:")) {
            sockets.insert(std::stoi(entry.path().filename().string()));
        }
    }
    return sockets;
}

TEST_F(UsbMonitor, ReportsAPrinterThatIsPluggedIn) {
    Start();
    usb.Plug(kPrinter);
    EXPECT_THAT(ReportsUntilNow(1), ElementsAre(kCame));
}

TEST_F(UsbMonitor, ReportsAPrinterThatIsUnplugged) {
    Start();
    usb.Plug(kPrinter);
    usb.Unplug(kPrinter);
    EXPECT_THAT(ReportsUntilNow(2), ElementsAre(kCame, kWent));
}

TEST_F(UsbMonitor, ReportsAPrinterThatIsPluggedInAgain) {
    Start();
    usb.Plug(kPrinter);
    usb.Unplug(kPrinter);
    usb.Plug(kPrinter);
    EXPECT_THAT(ReportsUntilNow(3), ElementsAre(kCame, kWent, kCame));
}

TEST_F(UsbMonitor, ReportsAPrinterOfWhichTheKernelDoesNotNameTheProduct) {
    SimulatedDevice printer = kPrinter;
    printer.hasProductProperty = false;
    Start();
    usb.Plug(printer);
    WaitForReports(1);
    usb.Unplug(printer);
    EXPECT_THAT(ReportsUntilNow(2), ElementsAre(kCame, kWent));
}

TEST_F(UsbMonitor, DoesNotReportPrintersThatAreThereAlready) {
    usb.Plug(kPrinter);
    Start();
    EXPECT_THAT(ReportsUntilNow(0), IsEmpty());
}

TEST_F(UsbMonitor, ReportsTheEndOfAPrinterThatWasThereAlready) {
    usb.Plug(kPrinter);
    Start();
    usb.Unplug(kPrinter);
    EXPECT_THAT(ReportsUntilNow(1), ElementsAre(kWent));
}

TEST_F(UsbMonitor, ReportsEachOfTwoPrintersOfOneModel) {
    SimulatedDevice twin = kPrinter;
    twin.place = "1-3";
    Start();
    usb.Plug(kPrinter);
    usb.Plug(twin);
    usb.Unplug(kPrinter);
    usb.Unplug(twin);
    EXPECT_THAT(ReportsUntilNow(4), ElementsAre(kCame, kCame, kWent, kWent));
}

TEST_F(UsbMonitor, ReportsADeviceOfSeveralInterfacesOnce) {
    const SimulatedDevice composite{"1-1", 0x1209, 1, {7, 0xff, 7}};
    Start();
    usb.Plug(composite);
    usb.Unplug(composite);
    EXPECT_THAT(ReportsUntilNow(2), ElementsAre(kCame, kWent));
}

TEST_F(UsbMonitor, DoesNotReportWhatIsNoPrinter) {
    const SimulatedDevice disk{"1-1", 0x1209, 1, {8}};
    Start();
    usb.Plug(disk);
    usb.Unplug(disk);
    EXPECT_THAT(ReportsUntilNow(0), IsEmpty());
}

TEST_F(UsbMonitor, DoesNotReportAPrinterTwiceWhenTheDeviceServiceTellsOfItAgain) {
    usb.Plug(kOther);
    Start();
    usb.Plug(kPrinter);
    usb.TellAgain(kPrinter);
    usb.TellAgain(kOther);
    EXPECT_THAT(ReportsUntilNow(1), ElementsAre(kCame));
}

TEST_F(UsbMonitor, Reports200EventsInTheirOrder) {
    Start();
    for (int round = 0; round < 50; ++round) {
        usb.Plug(kPrinter);
        usb.Plug(kOther);
        usb.Unplug(kPrinter);
        usb.Unplug(kOther);
        // The test bed keeps only a few events for one that has not read yet.
        WaitForReports(static_cast<std::size_t>(round + 1) * 4);
    }
    const Reports reports = ReportsUntilNow(200);
    ASSERT_EQ(reports.size(), 200U);
    for (std::size_t at = 0; at < reports.size(); at += 4) {
        EXPECT_THAT(Reports(reports.begin() + static_cast<std::ptrdiff_t>(at),
                            reports.begin() + static_cast<std::ptrdiff_t>(at) + 4),
                    ElementsAre(kCame, kOtherCame, kWent, kOtherWent));
    }
}

TEST_F(UsbMonitor, ReportsAnEventWhoseDeviceHasGoneMeanwhile) {
    Gate inside;
    Gate proceed;
    InsideReports([&](const Report& report) {
        if (report == kOtherCame) {
            inside.Open();
            proceed.Pass();
        }
    });
    Start();
    usb.Plug(kOther);
    inside.Pass();
    usb.Plug(kPrinter);
    usb.Unplug(kPrinter);
    proceed.Open();
    EXPECT_THAT(ReportsUntilNow(3), ElementsAre(kOtherCame, kCame, kWent));
}

TEST_F(UsbMonitor, IgnoresADeviceThatHasGoneBeforeItCouldBeRead) {
    Gate inside;
    Gate proceed;
    InsideReports([&](const Report& report) {
        if (report == kOtherCame) {
            inside.Open();
            proceed.Pass();
        }
    });
    SimulatedDevice unread = kPrinter;
    unread.hasProductProperty = false;
    Start();
    usb.Plug(kOther);
    inside.Pass();
    usb.Plug(unread);
    usb.Unplug(unread);
    proceed.Open();
    EXPECT_THAT(ReportsUntilNow(1), ElementsAre(kOtherCame));
}

TEST_F(UsbMonitor, ReportsWhatHasChangedWhileTheDeviceServiceWasGone) {
    const std::set<int> before = OpenSockets();
    Start();
    const std::set<int> started = OpenSockets();
    usb.Plug(kPrinter);
    WaitForReports(1);
    int broken = 0;
    for (const int socket : started) {
        if (before.count(socket) == 0) {
            ASSERT_EQ(shutdown(socket, SHUT_RDWR), 0);
            ++broken;
        }
    }
    ASSERT_EQ(broken, 1);
    ASSERT_TRUE(RecordingLog::WaitUntil([](const auto& lines) { return !lines.empty(); }, 20000));
    EXPECT_EQ(RecordingLog::Lines()[0].level, LOG_LEVEL_WARNING);
    EXPECT_TRUE(
        RecordingLog::Lines()[0].text.starts_with(L"USB monitor: device events were missed: "));
    usb.Unplug(kPrinter);
    usb.Plug(kOther);
    EXPECT_THAT(WaitForReports(3), ElementsAre(kCame, kWent, kOtherCame));
    usb.Unplug(kOther);
    EXPECT_THAT(WaitForReports(4), ElementsAre(kCame, kWent, kOtherCame, kOtherWent));
}

TEST_F(UsbMonitor, ReportsNothingAfterStop) {
    Start();
    usb.Plug(kPrinter);
    WaitForReports(1);
    manager.StopMonitor();
    usb.Unplug(kPrinter);
    usb.Plug(kOther);
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    EXPECT_THAT(ReportsTo(), ElementsAre(kCame));
}

TEST_F(UsbMonitor, StopReturnsOnlyWhenNoReportIsBeingDelivered) {
    Gate inside;
    Gate proceed;
    Gate stopped;
    InsideReports([&](const Report&) {
        inside.Open();
        proceed.Pass();
    });
    Start();
    usb.Plug(kPrinter);
    inside.Pass();
    usb.Plug(kOther);
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

TEST_F(UsbMonitor, StopsFromInsideAReport) {
    Gate stopped;
    InsideReports([&](const Report&) {
        manager.StopMonitor();
        stopped.Open();
    });
    Start();
    usb.Plug(kPrinter);
    ASSERT_TRUE(stopped.PassWithin(20000));
    usb.Plug(kOther);
    manager.StopMonitor();
    EXPECT_THAT(ReportsTo(), ElementsAre(kCame));
}

TEST_F(UsbMonitor, StopFromOutsideWaitsForAReportThatHasStoppedItFromInside) {
    Gate inside;
    Gate proceed;
    Gate stopped;
    InsideReports([&](const Report&) {
        manager.StopMonitor();
        inside.Open();
        proceed.Pass();
    });
    Start();
    usb.Plug(kPrinter);
    inside.Pass();
    std::thread stopper([&] {
        manager.StopMonitor();
        stopped.Open();
    });
    EXPECT_FALSE(stopped.PassWithin(200));
    proceed.Open();
    EXPECT_TRUE(stopped.PassWithin(20000));
    stopper.join();
}

TEST_F(UsbMonitor, StartsAgainFromInsideAReportThatHasStoppedIt) {
    Gate started;
    InsideReports([&](const Report& report) {
        if (report == kCame) {
            manager.StopMonitor();
            EXPECT_EQ(manager.StartMonitor(Registration(Receiver::second)), 0);
            started.Open();
        }
    });
    Start();
    usb.Plug(kPrinter);
    ASSERT_TRUE(started.PassWithin(20000));
    usb.Plug(kOther);
    EXPECT_THAT(ReportsUntilNow(1, Receiver::second), ElementsAre(kOtherCame));
    EXPECT_THAT(ReportsTo(Receiver::first), ElementsAre(kCame));
}

TEST_F(UsbMonitor, StartsAgainAfterStop) {
    Start();
    manager.StopMonitor();
    usb.Plug(kOther);
    Start();
    usb.Plug(kPrinter);
    EXPECT_THAT(ReportsUntilNow(1), ElementsAre(kCame));
}

TEST_F(UsbMonitor, ReportsToTheSecondRegistrationOnly) {
    Start(Receiver::first);
    usb.Plug(kPrinter);
    WaitForReports(1);
    Start(Receiver::second);
    usb.Unplug(kPrinter);
    EXPECT_THAT(ReportsUntilNow(1, Receiver::second), ElementsAre(kWent));
    EXPECT_THAT(ReportsTo(Receiver::first), ElementsAre(kCame));
}

TEST_F(UsbMonitor, ASecondStartReturnsOnlyWhenTheFormerRegistrationIsNotCalledAnyMore) {
    Gate inside;
    Gate proceed;
    Gate replaced;
    InsideReports([&](const Report&) {
        inside.Open();
        proceed.Pass();
    });
    Start();
    usb.Plug(kPrinter);
    inside.Pass();
    std::thread starter([&] {
        EXPECT_EQ(manager.StartMonitor(Registration(Receiver::second)), 0);
        replaced.Open();
    });
    EXPECT_FALSE(replaced.PassWithin(200));
    proceed.Open();
    EXPECT_TRUE(replaced.PassWithin(20000));
    starter.join();
}

TEST_F(UsbMonitor, StopsWithoutAStartAndTwice) {
    manager.StopMonitor();
    Start();
    manager.StopMonitor();
    manager.StopMonitor();
}

TEST_F(UsbMonitor, StopsFromSeveralThreadsReturnOnlyWhenNoReportIsBeingDelivered) {
    Gate inside;
    Gate proceed;
    std::atomic<int> stopped = 0;
    InsideReports([&](const Report&) {
        inside.Open();
        proceed.Pass();
    });
    Start();
    usb.Plug(kPrinter);
    inside.Pass();
    std::vector<std::thread> stoppers;
    for (int index = 0; index < 4; ++index) {
        stoppers.emplace_back([&] {
            manager.StopMonitor();
            ++stopped;
        });
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    EXPECT_EQ(stopped, 0);
    proceed.Open();
    for (std::thread& stopper : stoppers) {
        stopper.join();
    }
}

TEST_F(UsbMonitor, GoesOnAfterACallbackThatThrows) {
    InsideReports([](const Report& report) {
        if (report == kCame) {
            throw std::runtime_error("out of paper");
        }
    });
    Start();
    usb.Plug(kPrinter);
    usb.Plug(kOther);
    EXPECT_THAT(ReportsUntilNow(2), ElementsAre(kCame, kOtherCame));
    const auto lines = RecordingLog::Lines();
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].level, LOG_LEVEL_ERROR);
    EXPECT_EQ(lines[0].text,
              L"USB monitor: the callback failed: out of paper"
              L"(PrinterUsbDeviceManager::StartMonitor)");
}

TEST_F(UsbMonitor, DoesNotStartWithoutACallback) {
    EXPECT_EQ(manager.StartMonitor({nullptr, 1}), -1);
    const auto lines = RecordingLog::Lines();
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].level, LOG_LEVEL_ERROR);
    EXPECT_EQ(lines[0].text,
              L"USB monitor: there is no callback to report to"
              L"(PrinterUsbDeviceManager::StartMonitor)");
}

class UsbMonitorAtExit : public testing::Test {
protected:
    UsbMonitorAtExit() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(UsbMonitorAtExit, MayStillBeRunning) {
    EXPECT_EXIT(
        {
            SimulatedUsb usb;
            PrinterUsbDeviceManager::GetInstance().StartMonitor(Registration());
            usb.Plug(kPrinter);
            WaitForReports(1);
            usb.Unplug(kPrinter);
            std::exit(3);
        },
        testing::ExitedWithCode(3), "");
}

TEST_F(UsbMonitorAtExit, StopsWhileAReportIsBeingDelivered) {
    EXPECT_EXIT(
        {
            static Gate inside;
            SimulatedUsb usb;
            InsideReports([](const Report&) {
                inside.Open();
                std::this_thread::sleep_for(std::chrono::milliseconds(100));
            });
            std::atexit([] { PrinterUsbDeviceManager::GetInstance().StopMonitor(); });
            PrinterUsbDeviceManager::GetInstance().StartMonitor(Registration());
            usb.Plug(kPrinter);
            inside.Pass();
            std::exit(3);
        },
        testing::ExitedWithCode(3), "");
}

}  // namespace

}  // namespace UsbTest

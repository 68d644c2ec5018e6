// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

#include "platform/PrinterDiscoverAPI/PrinterUsbControl.h"
#include "tests/host/PrinterDiscoverAPI/usb/device_service_linux.h"
#include "tests/host/PrinterDiscoverAPI/usb/usb_reports.h"
#include "tests/support/recording_log.h"

// The monitor over the kernel's own sockets, with nothing in between.

namespace UsbTest {

namespace {

using testing::ElementsAre;

const Report kCame{1, L"VID_1209&PID_0001"};
const Report kWent{0, L"VID_1209&PID_0001"};

class UsbEvents : public testing::Test {
protected:
    UsbEvents() {
        ForgetReports();
        RecordingLog::Clear();
    }
    ~UsbEvents() override {
        InsideReports({});
        manager.StopMonitor();
    }

    const DeviceService service;
    PrinterUsbDeviceManager& manager = PrinterUsbDeviceManager::GetInstance();
};

TEST_F(UsbEvents, AreReported) {
    ASSERT_EQ(manager.StartMonitor(Registration()), 0);
    service.Tell("add", "1-1/1-1:1.0");
    service.Tell("add", "1-2/1-2:1.0", 8);
    service.Tell("bind", "1-1/1-1:1.0");
    service.Tell("remove", "1-1/1-1:1.0");
    service.Tell("add", "1-3/1-3:1.1");
    EXPECT_THAT(WaitForReports(3), ElementsAre(kCame, kWent, kCame));
}

TEST_F(UsbEvents, OfAStormOf200AreAllReportedInTheirOrder) {
    ASSERT_EQ(manager.StartMonitor(Registration()), 0);
    Reports expected;
    for (int round = 0; round < 100; ++round) {
        service.Tell("add", "1-1/1-1:1.0");
        service.Tell("remove", "1-1/1-1:1.0");
        expected.insert(expected.end(), {kCame, kWent});
    }
    EXPECT_EQ(WaitForReports(200), expected);
    EXPECT_THAT(RecordingLog::Lines(), testing::IsEmpty());
}

TEST_F(UsbEvents, ThatWereDroppedAreMadeUpForByWhatIsThere) {
    Gate inside;
    Gate proceed;
    InsideReports([&](const Report&) {
        inside.Open();
        proceed.Pass();
    });
    ASSERT_EQ(manager.StartMonitor(Registration()), 0);
    service.Tell("add", "1-1/1-1:1.0");
    inside.Pass();
    InsideReports({});
    // More than the system keeps for one that does not read. The printer's end is among what it
    // drops; that the printer is not there shows it all the same.
    for (int event = 0; event < 50000; ++event) {
        service.Tell("change", "1-2/1-2:1.0", 8);
    }
    service.Tell("remove", "1-1/1-1:1.0");
    proceed.Open();
    EXPECT_THAT(WaitForReports(2), ElementsAre(kCame, kWent));
    const auto lines = RecordingLog::Lines();
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].level, LOG_LEVEL_WARNING);
    EXPECT_EQ(lines[0].text,
              L"USB monitor: device events were missed: No buffer space available"
              L"(PrinterUsbDeviceManager::StartMonitor)");
    service.Tell("add", "1-1/1-1:1.0");
    EXPECT_THAT(WaitForReports(3), ElementsAre(kCame, kWent, kCame));
}

// Waits until as many lines have been logged, and gives the last.
std::wstring AwaitLine(std::size_t count) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (RecordingLog::Lines().size() < count && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    const auto lines = RecordingLog::Lines();
    return lines.size() == count ? lines.back().text : L"";
}

// A device service that ends breaks nothing: no event comes any more. There the printer is not in
// the system's list, so that it has gone meanwhile.
TEST_F(UsbEvents, OfADeviceServiceThatWasRestartedAreMadeUpForByWhatIsThere) {
    const std::filesystem::path control = "/run/udev/control";
    ASSERT_EQ(manager.StartMonitor(Registration()), 0);
    service.Tell("add", "1-1/1-1:1.0");
    EXPECT_THAT(WaitForReports(1), ElementsAre(kCame));
    std::filesystem::remove(control);
    EXPECT_THAT(WaitForReports(2), ElementsAre(kCame, kWent));
    EXPECT_EQ(AwaitLine(1),
              L"USB monitor: device events were missed: the device service has ended"
              L"(PrinterUsbDeviceManager::StartMonitor)");
    std::ofstream(control).close();
    EXPECT_EQ(AwaitLine(2),
              L"USB monitor: device events were missed: the device service has been started"
              L"(PrinterUsbDeviceManager::StartMonitor)");
    // It is told again until it is heard: the line comes before the events are opened anew.
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (ReportsTo().size() < 3 && std::chrono::steady_clock::now() < end) {
        service.Tell("add", "1-1/1-1:1.0");
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EXPECT_THAT(WaitForReports(3), ElementsAre(kCame, kWent, kCame));
}

// One that is restarted at once leaves only another control socket.
TEST_F(UsbEvents, OfADeviceServiceThatIsAnotherOneAreMadeUpForByWhatIsThere) {
    const std::filesystem::path control = "/run/udev/control";
    ASSERT_EQ(manager.StartMonitor(Registration()), 0);
    service.Tell("add", "1-1/1-1:1.0");
    EXPECT_THAT(WaitForReports(1), ElementsAre(kCame));
    std::ofstream("/run/udev/next").close();
    std::filesystem::rename("/run/udev/next", control);
    EXPECT_THAT(WaitForReports(2), ElementsAre(kCame, kWent));
    EXPECT_EQ(AwaitLine(1),
              L"USB monitor: device events were missed: the device service has been started"
              L"(PrinterUsbDeviceManager::StartMonitor)");
}

// The undefined-behaviour sanitizer needs a file for itself where it looks at an object's type.
constexpr bool kNeedsFiles =
#ifdef __SANITIZE_ADDRESS__
    true;
#else
    false;
#endif

// While it lives, the process has no file left to open.
class NoMoreFiles {
public:
    NoMoreFiles() {
        getrlimit(RLIMIT_NOFILE, &former);
        const int next = dup(0);
        close(next);
        const rlimit none{static_cast<rlim_t>(next), former.rlim_max};
        setrlimit(RLIMIT_NOFILE, &none);
    }
    ~NoMoreFiles() { setrlimit(RLIMIT_NOFILE, &former); }
    NoMoreFiles(const NoMoreFiles&) = delete;
    NoMoreFiles& operator=(const NoMoreFiles&) = delete;

private:
    rlimit former{};
};

// What cannot be listed just now is listed later: the printer's end was told to nobody.
TEST_F(UsbEvents, ThatWereMissedAreMadeUpForWhenTheDevicesCanBeListedAgain) {
    if (kNeedsFiles) {
        GTEST_SKIP() << "the sanitizer needs files";
    }
    Gate inside;
    Gate proceed;
    InsideReports([&](const Report&) {
        inside.Open();
        proceed.Pass();
    });
    ASSERT_EQ(manager.StartMonitor(Registration()), 0);
    service.Tell("add", "1-1/1-1:1.0");
    inside.Pass();
    InsideReports({});
    for (int event = 0; event < 50000; ++event) {
        service.Tell("change", "1-2/1-2:1.0", 8);
    }
    {
        const NoMoreFiles none;
        proceed.Open();
        EXPECT_EQ(AwaitLine(2),
                  L"USB monitor: events were missed, and the devices cannot be listed: Too many "
                  L"open files(PrinterUsbDeviceManager::StartMonitor)");
    }
    EXPECT_THAT(WaitForReports(2), ElementsAre(kCame, kWent));
}

TEST_F(UsbEvents, ThatCannotBeHadAreAFailureThatIsLogged) {
    if (kNeedsFiles) {
        GTEST_SKIP() << "the sanitizer needs files";
    }
    std::array<char, 512> problem{};
    {
        const NoMoreFiles none;
        EXPECT_EQ(manager.StartMonitor(Registration()), -1);
        EXPECT_NE(PrinterUsbProblem(problem.data(), problem.size()), 0);
        EXPECT_THAT(problem.data(), testing::StartsWith("no device events: Too many open files"));
        std::map<std::wstring, std::pair<int, int>> ports;
        manager.GetCurrentPrinterPorts(ports);
        EXPECT_NE(PrinterUsbProblem(problem.data(), problem.size()), 0);
        EXPECT_STREQ(problem.data(), "the devices cannot be listed: Too many open files");
        RecordingLog::Clear();
        EXPECT_EQ(manager.StartMonitor(Registration()), -1);
    }
    const auto lines = RecordingLog::Lines();
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].level, LOG_LEVEL_ERROR);
    EXPECT_EQ(lines[0].text,
              L"USB monitor: no device events: Too many open files; printers that are plugged in "
              L"will not be noticed(PrinterUsbDeviceManager::StartMonitor)");
    EXPECT_EQ(manager.StartMonitor(Registration()), 0);
    EXPECT_EQ(PrinterUsbProblem(problem.data(), problem.size()), 0);
    EXPECT_STREQ(problem.data(), "");
}

TEST_F(UsbEvents, ComeWhileManyThreadsStartAndStop) {
    InsideReports([this](const Report& report) {
        if (report == kWent) {
            manager.StopMonitor();
        }
    });
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
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(2);
    while (std::chrono::steady_clock::now() < end) {
        service.Tell("add", "1-1/1-1:1.0");
        service.Tell("remove", "1-1/1-1:1.0");
    }
    isOver = true;
    for (std::thread& thread : threads) {
        thread.join();
    }
    manager.StopMonitor();
    const std::size_t reported = ReportsTo().size();
    EXPECT_GT(reported, 0U);
    service.Tell("add", "1-1/1-1:1.0");
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_EQ(ReportsTo().size(), reported);
}

}  // namespace

}  // namespace UsbTest

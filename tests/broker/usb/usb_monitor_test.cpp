// SPDX-License-Identifier: Apache-2.0

// A printer is plugged in: its records reach the application a second later.

#include <atomic>
#include <chrono>
#include <cstring>
#include <stdexcept>
#include <thread>

#include "tests/broker/usb/usb_support.h"
#include "tests/support/scripted_host.h"

namespace {

using namespace PrinterDeviceDiscoverSdk;
using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Clock = std::chrono::steady_clock;

constexpr char kThread[] = "CallBackFunc::<lambda_1>::operator ()";
constexpr int kArrived = 1;

class UsbMonitor : public UsbTest {
protected:
    static UsbInterfaceMonitor& It() { return UsbInterfaceMonitor::GetInstance(); }

    static int Notify(int state, const std::string& id = kId) {
        return It().CallBackFunc({}, static_cast<PrinterUsbApiStruct::EmDeviceState>(state),
                                 Wide(id));
    }

    // With the application's callback registered; the lines of it are gone.
    static void Listen(int (*callback)(const DeviceInfo*) = Application::OnDevice) {
        It().SetDeviceStateCallbackInfo({callback, 1});
        TakeLines();
    }

    static bool AwaitLine(const std::string& message, std::size_t count = 1) {
        const std::wstring start = Wide(message);
        return RecordingLog::WaitUntil(
            [&](const std::vector<RecordingLog::Line>& lines) {
                std::size_t found = 0;
                for (const RecordingLog::Line& line : lines) {
                    found += line.text.starts_with(start) ? 1u : 0u;
                }
                return found >= count;
            },
            30000);
    }
    static bool AwaitReports(std::size_t count) {
        const auto giveUp = Clock::now() + 30s;
        while (Application::Reports().size() < count && Clock::now() < giveUp) {
            std::this_thread::sleep_for(5ms);
        }
        return Application::Reports().size() >= count;
    }

    // What the monitor itself said on the thread of an arrival.
    static Lines SaidByItsThread() {
        Lines said;
        for (const std::string& line : TakeLines()) {
            if (line.find(kThread) != std::string::npos) {
                said.push_back(line);
            }
        }
        return said;
    }
    static std::string ThreadSaid(int level, const std::string& message) {
        return LineIs(level, message, std::string("UsbInterfaceMonitor::") + kThread);
    }
    static Lines Taken(const std::string& id) {
        return {MonitorSaid("CallBackFunc in", "CallBackFunc"),
                MonitorSaid("Reciver driver State Change: deviceId =" + id, "CallBackFunc")};
    }
    static Lines Ignored() { return {MonitorSaid("CallBackFunc in", "CallBackFunc")}; }
};

TEST_F(UsbMonitor, LogsAClearOnItsFirstUse) {
    EXPECT_EQ(&It(), &It());
    EXPECT_THAT(TakeLines(), ElementsAre(ClearLine()));
    EXPECT_THAT(ScriptedVendors::Requests(), IsEmpty());
}

TEST_F(UsbMonitor, GivesTheManagerTheSameTrampolineAndTheApplicationsValue) {
    It();
    TakeLines();
    const auto first = It().SetDeviceStateCallbackInfo({Application::OnDevice, -123456});
    const auto second = It().SetDeviceStateCallbackInfo({nullptr, 2147483647});
    EXPECT_NE(first.callback, nullptr);
    EXPECT_EQ(first.callback, second.callback);
    EXPECT_EQ(first.value, -123456);
    EXPECT_EQ(second.value, 2147483647);
    EXPECT_THAT(TakeLines(), ElementsAre(SetLine("-123456"), SetLine("2147483647")));
}

TEST_F(UsbMonitor, IgnoresEverythingButArrivals) {
    With({Alpha()});
    Listen();
    for (const int state : {0, 2, -1, 2147483647}) {
        EXPECT_EQ(Notify(state), 0);
        EXPECT_EQ(TakeLines(), Ignored());
    }
    std::this_thread::sleep_for(1200ms);
    EXPECT_THAT(TakeLines(), IsEmpty());
    EXPECT_THAT(ScriptedModule("scripted_all").Calls(), IsEmpty());
}

TEST_F(UsbMonitor, IgnoresArrivalsWhileNobodyListens) {
    With({Alpha()});
    It();
    TakeLines();
    EXPECT_EQ(Notify(kArrived), 0);
    EXPECT_EQ(TakeLines(), Ignored());
    Listen(nullptr);
    EXPECT_EQ(Notify(kArrived), 0);
    EXPECT_EQ(TakeLines(), Ignored());
    Listen();
    It().ClearDeviceStateCallbackInfo();
    EXPECT_THAT(TakeLines(), ElementsAre(ClearLine()));
    EXPECT_EQ(Notify(kArrived), 0);
    EXPECT_EQ(TakeLines(), Ignored());
}

TEST_F(UsbMonitor, ReportsEachRecordOnceASecondAfterTheArrivalOnAThreadOfItsOwn) {
    With({Alpha()});
    const ScriptedModule alpha("scripted_all");
    alpha.AddDevice(VendorDeviceOf("one"));
    alpha.AddDevice(VendorDeviceOf("two"));
    static std::atomic<Clock::time_point> firstReport;
    Application::AnswerWith([](const DeviceInfo& device) {
        if (device.modelID[0] == 'o') {
            firstReport = Clock::now();
        }
        return 0;
    });
    Listen();
    const auto start = Clock::now();
    EXPECT_EQ(Notify(kArrived), 0);
    EXPECT_LT(Clock::now() - start, 900ms);
    ASSERT_TRUE(AwaitReports(2));
    EXPECT_GE(firstReport.load() - start, 1000ms);
    const std::vector<Application::Report> reports = Application::Reports();
    EXPECT_EQ(reports[0].bytes, BytesOf(DeviceOf("one")));
    EXPECT_EQ(reports[1].bytes, BytesOf(DeviceOf("two")));
    EXPECT_NE(reports[0].thread, std::this_thread::get_id());
    EXPECT_EQ(reports[0].thread, reports[1].thread);
    std::this_thread::sleep_for(50ms);
    EXPECT_THAT(Application::Reports(), SizeIs(2));
    EXPECT_EQ(TakeOwnLines(), Taken(kId));
}

TEST_F(UsbMonitor, LogsTheWaitTheEnumerationAndEachReport) {
    With({Alpha()});
    const ScriptedModule alpha("scripted_all");
    alpha.AddDevice(VendorDeviceOf("one"));
    alpha.AddDevice(VendorDeviceOf("two"));
    Listen();
    Notify(kArrived);
    ASSERT_TRUE(AwaitReports(2));
    const Lines lines = TakeLines();
    Lines expected =
        Lines({ThreadSaid(1, "sleep 1000")}) + EnumerationBegins(kId, "pid:abcdvid1234");
    expected =
        expected + Lines({EnumerationSaid(1, "call Func OK2"), EnumerationSaid(3, "STEP.....add"),
                          EnumerationSaid(3, "STEP.....add"), EnumerationSaid(3, "STEP5"),
                          EnumerationSaid(3, "STEP62"), ThreadSaid(1, "callback ok"),
                          ThreadSaid(1, "callback ok")});
    Lines ofThread;
    for (const std::string& line : lines) {
        if (line != Taken(kId)[0] && line != Taken(kId)[1]) {
            ofThread.push_back(line);
        }
    }
    EXPECT_EQ(ofThread, expected);
}

TEST_F(UsbMonitor, SaysThatItWaitsAndThenWaitsBeforeItAsksAnybody) {
    With({Alpha()});
    ScriptedModule("scripted_all").AddDevice(VendorDeviceOf("one"));
    static std::atomic<Clock::time_point> waits;
    static std::atomic<Clock::time_point> asks;
    RecordingLog::OnLine([](const RecordingLog::Line& line) {
        if (line.text.starts_with(L"sleep 1000")) {
            waits = Clock::now();
        } else if (line.text.starts_with(L"STEP1(")) {
            asks = Clock::now();
        }
    });
    It().SetDeviceStateCallbackInfo({Application::OnDevice, 1});
    const auto start = Clock::now();
    Notify(kArrived);
    ASSERT_TRUE(AwaitReports(1));
    RecordingLog::OnLine({});
    EXPECT_LT(waits.load() - start, 900ms);
    EXPECT_GE(asks.load() - waits.load(), 1000ms);
}

TEST_F(UsbMonitor, SaysThatItReportsBeforeItDoes) {
    With({Alpha()});
    const ScriptedModule alpha("scripted_all");
    alpha.AddDevice(VendorDeviceOf("one"));
    alpha.AddDevice(VendorDeviceOf("two"));
    static std::vector<std::size_t> reportsAtTheLine;
    RecordingLog::OnLine([](const RecordingLog::Line& line) {
        if (line.text.starts_with(L"callback ok")) {
            reportsAtTheLine.push_back(Application::Reports().size());
        }
    });
    It().SetDeviceStateCallbackInfo({Application::OnDevice, 1});
    Notify(kArrived);
    ASSERT_TRUE(AwaitReports(2));
    RecordingLog::OnLine({});
    EXPECT_THAT(reportsAtTheLine, ElementsAre(0, 1));
}

TEST_F(UsbMonitor, IgnoresWhatTheApplicationAnswers) {
    With({Alpha()});
    const ScriptedModule alpha("scripted_all");
    alpha.AddDevice(VendorDeviceOf("one"));
    alpha.AddDevice(VendorDeviceOf("two"));
    Application::AnswerWith([](const DeviceInfo&) { return -1; });
    Listen();
    Notify(kArrived);
    ASSERT_TRUE(AwaitReports(2));
    EXPECT_EQ(SaidByItsThread(), Lines({ThreadSaid(1, "sleep 1000"), ThreadSaid(1, "callback ok"),
                                        ThreadSaid(1, "callback ok")}));
}

TEST_F(UsbMonitor, SaysNothingOfAnEnumerationWithoutARecord) {
    With({Alpha()});
    Listen();
    Notify(kArrived);
    ASSERT_TRUE(AwaitLine("STEP6"));
    std::this_thread::sleep_for(50ms);
    EXPECT_EQ(SaidByItsThread(), Lines({ThreadSaid(1, "sleep 1000")}));
    EXPECT_THAT(Application::Reports(), IsEmpty());
}

TEST_F(UsbMonitor, LogsAnEnumerationThatFailsAndReportsNothing) {
    With({Alpha()});
    const ScriptedModule alpha("scripted_all");
    alpha.AddDevice(VendorDeviceOf("one"));
    alpha.Script("result GetDeviceInfoByUsb -2147483648");
    Listen();
    Notify(kArrived);
    ASSERT_TRUE(AwaitLine("call Func fail"));
    EXPECT_EQ(SaidByItsThread(), Lines({ThreadSaid(1, "sleep 1000"),
                                        ThreadSaid(4, "call Func fail, err:-2147483648")}));
    EXPECT_THAT(Application::Reports(), IsEmpty());
}

TEST_F(UsbMonitor, LogsAnIdentifierThatNobodyLists) {
    With({Alpha()});
    Listen();
    Notify(kArrived, kOtherId);
    ASSERT_TRUE(AwaitLine("call Func fail"));
    EXPECT_EQ(SaidByItsThread(),
              Lines({ThreadSaid(1, "sleep 1000"), ThreadSaid(4, "call Func fail, err:-1")}));
}

TEST_F(UsbMonitor, BindsTheVendorsOnTheArrivalsThreadWhenNobodyHasBefore) {
    ScriptedVendors::Support({});
    Listen();
    Notify(kArrived);
    EXPECT_THAT(ScriptedVendors::Requests(), IsEmpty());
    ASSERT_TRUE(AwaitLine("call Func fail"));
    EXPECT_EQ(SaidByItsThread(),
              Lines({ThreadSaid(1, "sleep 1000"), ThreadSaid(4, "call Func fail, err:-2")}));
}

// The vendor's list is at fault; the process goes on.
TEST_F(UsbMonitor, SurvivesAListedIdentifierThatIsTooShort) {
    With({Vendor("alpha", "scripted_all", "VID_1234 VID_1234&PID_ABCD")});
    ScriptedModule("scripted_all").AddDevice(VendorDeviceOf("one"));
    Listen();
    Notify(kArrived, "VID_1234");
    ASSERT_TRUE(AwaitLine("call Func fail"));
    std::string reason;
    try {
        static_cast<void>(std::string("VID_1234").substr(13));
    } catch (const std::out_of_range& error) {
        reason = error.what();
    }
    EXPECT_EQ(SaidByItsThread(), Lines({ThreadSaid(1, "sleep 1000"),
                                        ThreadSaid(4, "deviceId is too short, err:" + reason),
                                        ThreadSaid(4, "call Func fail, err:-1")}));
    EXPECT_THAT(Application::Reports(), IsEmpty());
    Notify(kArrived);
    EXPECT_TRUE(AwaitReports(1));
}

TEST_F(UsbMonitor, ReportsToNobodyOnceItIsCleared) {
    With({Alpha()});
    ScriptedModule("scripted_all").AddDevice(VendorDeviceOf("one"));
    Listen();
    Notify(kArrived);
    It().ClearDeviceStateCallbackInfo();
    ASSERT_TRUE(AwaitLine("STEP6"));
    std::this_thread::sleep_for(100ms);
    EXPECT_THAT(Application::Reports(), IsEmpty());
    EXPECT_EQ(SaidByItsThread(),
              Lines({ThreadSaid(1, "sleep 1000"), ThreadSaid(1, "callback ok")}));
}

TEST_F(UsbMonitor, ReportsToWhoeverIsRegisteredByThen) {
    With({Alpha()});
    const ScriptedModule alpha("scripted_all");
    alpha.AddDevice(VendorDeviceOf("one"));
    alpha.AddDevice(VendorDeviceOf("two"));
    alpha.AddDevice(VendorDeviceOf("three"));
    // Each record goes to the callback of its own moment.
    Application::AnswerWith([](const DeviceInfo& device) {
        if (device.modelID[0] == 'o') {
            It().SetDeviceStateCallbackInfo({Application::OnOtherDevice, 2});
        }
        return 0;
    });
    Listen();
    Notify(kArrived);
    ASSERT_TRUE(AwaitReports(1));
    ASSERT_TRUE(AwaitLine("callback ok", 3));
    std::this_thread::sleep_for(50ms);
    EXPECT_THAT(Application::Reports(), SizeIs(1));
    EXPECT_THAT(Application::OtherReports(), SizeIs(2));
}

TEST_F(UsbMonitor, StopsReportingInTheMiddleOfTheRecords) {
    With({Alpha()});
    const ScriptedModule alpha("scripted_all");
    alpha.AddDevice(VendorDeviceOf("one"));
    alpha.AddDevice(VendorDeviceOf("two"));
    Application::AnswerWith([](const DeviceInfo&) {
        DiscoverUsbInterface::GetInstance().StopDeviceMonitor();
        return 0;
    });
    Listen();
    Notify(kArrived);
    ASSERT_TRUE(AwaitReports(1));
    std::this_thread::sleep_for(100ms);
    EXPECT_THAT(Application::Reports(), SizeIs(1));
}

TEST_F(UsbMonitor, IsStoppedWithoutWaitingForACallThatRuns) {
    With({Alpha()});
    const ScriptedModule alpha("scripted_all");
    alpha.AddDevice(VendorDeviceOf("one"));
    alpha.AddDevice(VendorDeviceOf("two"));
    static std::atomic<bool> mayReturn{false};
    static std::atomic<bool> returns{false};
    Application::AnswerWith([](const DeviceInfo&) {
        const auto giveUp = Clock::now() + 10s;
        while (!mayReturn && Clock::now() < giveUp) {
            std::this_thread::sleep_for(5ms);
        }
        returns = true;
        return 0;
    });
    Listen();
    Notify(kArrived);
    ASSERT_TRUE(AwaitReports(1));
    EXPECT_EQ(DiscoverUsbInterface::GetInstance().StopDeviceMonitor(), 0);
    EXPECT_FALSE(returns);
    mayReturn = true;
    ASSERT_TRUE(AwaitLine("callback ok", 2));
    std::this_thread::sleep_for(50ms);
    EXPECT_TRUE(returns);
    EXPECT_THAT(Application::Reports(), SizeIs(1));
}

// A clear that lands between the line and the call does not make a null call.
TEST_F(UsbMonitor, SurvivesAClearThatComesWithTheLine) {
    With({Alpha()});
    ScriptedModule("scripted_all").AddDevice(VendorDeviceOf("one"));
    static std::atomic<bool> cleared{false};
    RecordingLog::OnLine([](const RecordingLog::Line& line) {
        if (line.text.starts_with(L"callback ok")) {
            It().ClearDeviceStateCallbackInfo();
            cleared = true;
        }
    });
    It().SetDeviceStateCallbackInfo({Application::OnDevice, 1});
    Notify(kArrived);
    const auto giveUp = Clock::now() + 30s;
    while (!cleared && Clock::now() < giveUp) {
        std::this_thread::sleep_for(5ms);
    }
    std::this_thread::sleep_for(50ms);
    RecordingLog::OnLine({});
    EXPECT_TRUE(cleared);
    EXPECT_THAT(Application::Reports(), IsEmpty());
    EXPECT_EQ(SaidByItsThread(),
              Lines({ThreadSaid(1, "sleep 1000"), ThreadSaid(1, "callback ok")}));
}

TEST_F(UsbMonitor, KeepsItsOwnCopyOfTheIdentifier) {
    With({Alpha()});
    ScriptedModule("scripted_all").AddDevice(VendorDeviceOf("one"));
    Listen();
    std::wstring deviceId = Wide(kId);
    It().CallBackFunc({}, PrinterUsbApiStruct::DEVICE_STATE_ARRIVED, deviceId);
    deviceId.assign(deviceId.size(), L'x');
    EXPECT_TRUE(AwaitReports(1));
}

TEST_F(UsbMonitor, TakesArrivalsInQuickSuccessionEachOnAThreadOfItsOwn) {
    With({Alpha(), Beta()});
    ScriptedModule("scripted_all").AddDevice(VendorDeviceOf("one"));
    ScriptedModule("scripted_all_b").AddDevice(VendorDeviceOf("two"));
    static std::atomic<int> inside{0};
    static std::atomic<int> most{0};
    Application::AnswerWith([](const DeviceInfo&) {
        const int now = ++inside;
        int known = most;
        while (known < now && !most.compare_exchange_weak(known, now)) {
        }
        std::this_thread::sleep_for(200ms);
        --inside;
        return 0;
    });
    Listen();
    const auto start = Clock::now();
    for (int number = 0; number < 20; ++number) {
        Notify(kArrived, number % 2 == 0 ? kId : kOtherId);
    }
    EXPECT_LT(Clock::now() - start, 900ms);
    ASSERT_TRUE(AwaitReports(20));
    std::this_thread::sleep_for(300ms);
    EXPECT_THAT(Application::Reports(), SizeIs(20));
    EXPECT_GT(most, 1);
}

TEST_F(UsbMonitor, IsReachedByTheManagerThroughTheFacade) {
    With({Alpha()});
    ScriptedModule("scripted_all").AddDevice(VendorDeviceOf("one"));
    DiscoverUsbInterface& facade = DiscoverUsbInterface::GetInstance();
    facade.StartDeviceMonitor({Application::OnDevice, 1});
    TakeLines();
    EXPECT_EQ(ScriptedHost::Report(0, Wide(kId)), 0);
    EXPECT_EQ(TakeLines(), Ignored());
    EXPECT_EQ(ScriptedHost::Report(kArrived, Wide(kId)), 0);
    EXPECT_EQ(TakeOwnLines(), Taken(kId));
    ASSERT_TRUE(AwaitReports(1));
    facade.StopDeviceMonitor();
    TakeLines();
    EXPECT_EQ(ScriptedHost::Report(kArrived, Wide(kId)), 0);
    EXPECT_EQ(TakeLines(), Ignored());
}

TEST_F(UsbMonitor, LogsTheIdentifierWide) {
    Listen();
    It().CallBackFunc({}, PrinterUsbApiStruct::DEVICE_STATE_ARRIVED, L"VID_\x20AC");
    EXPECT_EQ(TakeOwnLines(), Taken("VID_<20ac>"));
}

// Arrivals while the registration comes and goes: for the sanitizers.
TEST_F(UsbMonitor, RacesWithSetAndClear) {
    With({Alpha(), Beta()});
    ScriptedModule("scripted_all").AddDevice(VendorDeviceOf("one"));
    ScriptedModule("scripted_all_b").AddDevice(VendorDeviceOf("two"));
    RecordingLog::Discard();
    static std::atomic<long> received{0};
    static const auto count = [](const DeviceInfo*) { return static_cast<int>(++received); };
    std::atomic<bool> done{false};
    std::vector<std::thread> notifiers;
    for (int number = 0; number < 3; ++number) {
        notifiers.emplace_back([&done, number] {
            while (!done) {
                Notify(kArrived, number % 2 == 0 ? kId : kOtherId);
                std::this_thread::sleep_for(2ms);
            }
        });
    }
    const auto end = Clock::now() + 2s;
    for (int round = 0; Clock::now() < end || received == 0; ++round) {
        It().SetDeviceStateCallbackInfo({count, round});
        std::this_thread::yield();
        It().ClearDeviceStateCallbackInfo();
        ASSERT_LT(Clock::now(), end + 30s);
    }
    done = true;
    for (std::thread& notifier : notifiers) {
        notifier.join();
    }
    // The last of them are still waiting.
    std::this_thread::sleep_for(1200ms);
}

// The manager reads its registration whenever something changes: for the sanitizers.
TEST_F(UsbMonitor, IsStartedAgainWhileTheManagerReadsItsRegistration) {
    RecordingLog::Discard();
    DiscoverUsbInterface& facade = DiscoverUsbInterface::GetInstance();
    facade.StartDeviceMonitor({Application::OnDevice, 0});
    std::atomic<bool> done{false};
    std::thread manager([&done] {
        while (!done) {
            EXPECT_EQ(ScriptedHost::Report(0, Wide(kId)), 0);
        }
    });
    for (int round = 1; round <= 500; ++round) {
        facade.StartDeviceMonitor({Application::OnDevice, round});
    }
    done = true;
    manager.join();
    EXPECT_EQ(ScriptedHost::Monitor()->value, 500);
}

}  // namespace

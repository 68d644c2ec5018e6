// SPDX-License-Identifier: Apache-2.0

// Whatever the logger does, and whatever the application's locale, an operation does the same.

#include <locale>
#include <stdexcept>

#include "tests/support/application.h"
#include "tests/support/broker_test.h"

namespace {

using namespace PrinterDeviceDiscoverSdk;
using ScriptedVendors::Support;
using ScriptedVendors::Vendor;
using testing::ElementsAre;
using testing::SizeIs;

class Logging : public BrokerTest {
protected:
    // Goes through every operation and holds its results against what they must be.
    static void EveryOperationWorks() {
        Support({Vendor("alpha", "scripted_all"), Vendor("beta", "scripted_none")});
        DiscoverScanInterface& facade = DiscoverScanInterface::GetInstance();
        const ScriptedModule module("scripted_all");
        module.Script(
            "result StartDeviceScan 4\nresult StopDeviceScan 5\n"
            "result BeforeConnectEventNotify 6");
        module.AddDevice(VendorDeviceOf("alpha"));
        Application::AnswerWith([](const DeviceInfo&) { return 7; });
        EXPECT_EQ(facade.StartDeviceScan({Application::OnDevice, 1}), 0);
        module.AwaitCallbacks(1);
        EXPECT_THAT(module.CallbackResults(), ElementsAre(7));
        EXPECT_EQ(module.ReportNow(nullptr), 0);
        module.AwaitRunningScans(0);
        EXPECT_EQ(facade.GetDeviceConnectState(DeviceOf("alpha")), 1);
        EXPECT_EQ(facade.BeforeConnectEventNotify(DeviceOf("alpha")), 6);
        EXPECT_EQ(facade.ConnectSuccessNotifyEvent(DeviceOf("beta")), kNothingToCall);
        EXPECT_EQ(facade.ConnectFailNotifyEvent(DeviceOf("gamma")), kNothingToCall);
        EXPECT_EQ(facade.StopDeviceScan(), 5);
        EXPECT_EQ(facade.StartDeviceScan({nullptr, 1}), kNoCallback);
        VendorSdk::WifiConfigInfo from{};
        SetField(from.ssid, "network");
        WifiConfigInfo to;
        DiscoverBasic::GetDiscoverWifoConfigInfo(from, to);
        EXPECT_STREQ(to.ssid, "network");
        // The vendor's failure is logged on its own thread, a moment after it returned.
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
};

TEST_F(Logging, ALoggerThatThrowsChangesNothing) {
    static std::atomic<int> thrown{0};
    RecordingLog::OnLine([](const RecordingLog::Line&) {
        ++thrown;
        throw std::runtime_error("the disk is full");
    });
    EveryOperationWorks();
    EXPECT_GT(thrown, 20);
}

TEST_F(Logging, ALoggerThatThrowsSomethingOddChangesNothing) {
    static std::atomic<int> thrown{0};
    RecordingLog::OnLine([](const RecordingLog::Line&) {
        ++thrown;
        throw 42;
    });
    EveryOperationWorks();
    EXPECT_GT(thrown, 20);
}

TEST_F(Logging, AsksForTheLoggerAnewForEveryLine) {
    std::vector<unsigned long> requests;
    RecordingLog::OnLine([&requests](const RecordingLog::Line&) {
        requests.push_back(RecordingLog::InstanceRequests());
    });
    Support({Vendor("alpha", "scripted_none")});
    DiscoverScanInterface& facade = DiscoverScanInterface::GetInstance();
    facade.StartDeviceScan({Application::OnDevice, 1});
    facade.GetDeviceConnectState(DeviceOf("alpha"));
    const VendorSdk::DeviceInfo device = VendorDeviceOf("alpha");
    ScanInterfaceListener::GetInstance().CallBackFunc(&device);
    facade.StopDeviceScan();
    WifiConfigInfo network;
    DiscoverBasic::GetDiscoverWifoConfigInfo({}, network);
    RecordingLog::OnLine({});
    ASSERT_GT(requests.size(), 20u);
    EXPECT_EQ(requests.size(), RecordingLog::Lines().size());
    for (std::size_t line = 0; line < requests.size(); ++line) {
        EXPECT_EQ(requests[line], line + 1) << LineText(RecordingLog::Lines().at(line));
    }
}

TEST_F(Logging, ALoggerMayCallOperationsOnDevices) {
    // Not from the lines of such a call itself.
    static std::atomic<int> calls{0};
    RecordingLog::OnLine([](const RecordingLog::Line& line) {
        if (line.text.starts_with(L"call Func OK(") || line.text.starts_with(L"callback(")) {
            ++calls;
            EXPECT_EQ(ScanInterface::GetInstance().ConnectFailNotifyEvent(DeviceOf("nobody")),
                      kNothingToCall);
        }
    });
    EveryOperationWorks();
    // The start of one scan and its one report.
    EXPECT_EQ(calls, 2);
}

// Widens every letter to the Greek block and every digit to the fullwidth ones.
class Greek : public std::ctype<wchar_t> {
    wchar_t do_widen(char c) const override {
        const auto byte = static_cast<unsigned char>(c);
        return static_cast<wchar_t>(byte < 128 ? 0x300 + byte : 0x2000 + byte);
    }
    const char* do_widen(const char* begin, const char* end, wchar_t* to) const override {
        for (; begin != end; ++begin, ++to) {
            *to = do_widen(*begin);
        }
        return end;
    }
};

std::wstring InGreek(const std::string& text) {
    std::wstring wide;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        wide += static_cast<wchar_t>(byte < 128 ? 0x300 + byte : 0x2000 + byte);
    }
    return wide;
}

TEST_F(Logging, WidensTextsByTheLocale) {
    Support({Vendor("alpha", "scripted_all")});
    ScanInterface::GetInstance();
    std::locale::global(std::locale(std::locale(), new Greek));
    RecordingLog::Clear();
    DeviceInfo device = DeviceOf("alpha");
    SetField(device.deviceSN, "A1\xE9");
    EXPECT_EQ(DiscoverScanInterface::GetInstance().BeforeConnectEventNotify(device), 0);
    const std::vector<RecordingLog::Line> lines = RecordingLog::Lines();
    ASSERT_THAT(lines, SizeIs(3));
    // The parentheses are wide text already.
    EXPECT_EQ(
        lines[0].text,
        InGreek("deviceSNA1\xE9") + L"(" +
            InGreek("PrinterDeviceDiscoverSdk::DiscoverScanInterface::BeforeConnectEventNotify") +
            L")");
    EXPECT_EQ(lines[2].text,
              InGreek("call Func OK") + L"(" +
                  InGreek("PrinterDeviceDiscoverSdk::ScanInterface::BeforeConnectEventNotify") +
                  L")");
}

// Groups digits by three.
class Grouped : public std::numpunct<wchar_t> {
    wchar_t do_thousands_sep() const override { return L'\''; }
    std::string do_grouping() const override { return "\3"; }
    wchar_t do_decimal_point() const override { return L','; }
};

TEST_F(Logging, FormatsNumbersByTheLocale) {
    Support({Vendor("alpha", "scripted_all")});
    ScanInterface::GetInstance();
    ScriptedModule("scripted_all").Script("result ConnectFailNotifyEvent -1234567");
    std::locale::global(std::locale(std::locale(), new Grouped));
    TakeLines();
    EXPECT_EQ(ScanInterface::GetInstance().ConnectFailNotifyEvent(DeviceOf("alpha")), -1234567);
    ScanInterfaceListener::GetInstance().SetDeviceCallbackInfo({nullptr, 2147483647});
    EXPECT_THAT(
        TakeLines(),
        ElementsAre(
            LineIs(4, "call Func Fail-1'234'567", "ScanInterface::ConnectFailNotifyEvent"),
            LineIs(1, "Clear info", "ScanInterfaceListener::ClearDeviceCallbackInfo"),
            LineIs(1, "Set info2'147'483'647", "ScanInterfaceListener::SetDeviceCallbackInfo")));
    VendorSdk::WifiConfigInfo from{};
    from.rssi = -61.5f;
    WifiConfigInfo to;
    DiscoverBasic::GetDiscoverWifoConfigInfo(from, to);
    EXPECT_EQ(TakeLines().at(0),
              LineIs(3, "rssi = -61,5", "DiscoverBasic::GetDiscoverWifoConfigInfo"));
}

}  // namespace

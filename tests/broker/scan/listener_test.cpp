// SPDX-License-Identifier: Apache-2.0

// The listener between the vendors' reports and the application's callback.

#include <cstring>

#include "tests/support/application.h"
#include "tests/support/broker_test.h"

namespace {

using namespace PrinterDeviceDiscoverSdk;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr char kCallBackFunc[] = "ScanInterfaceListener::CallBackFunc";

std::string ClearLine() {
    return LineIs(1, "Clear info", "ScanInterfaceListener::ClearDeviceCallbackInfo");
}

std::string SetLine(const std::string& param) {
    return LineIs(1, "Set info" + param, "ScanInterfaceListener::SetDeviceCallbackInfo");
}

class Listener : public BrokerTest {
protected:
    static ScanInterfaceListener& It() { return ScanInterfaceListener::GetInstance(); }
};

TEST_F(Listener, LogsAClearOnItsFirstUseAndHasNoCallback) {
    EXPECT_FALSE(It().GetDeviceCallbackIsEnable());
    EXPECT_THAT(TakeLines(), ElementsAre(ClearLine()));
    It();
    EXPECT_THAT(TakeLines(), IsEmpty());
}

TEST_F(Listener, NeedsNoVendors) {
    It().SetDeviceCallbackInfo({Application::OnDevice, 1});
    EXPECT_THAT(ScriptedVendors::Requests(), IsEmpty());
}

TEST_F(Listener, RegistersTheCallback) {
    It();
    TakeLines();
    VendorSdk::DeviceCallbackInfo* const registration =
        It().SetDeviceCallbackInfo({Application::OnDevice, 2147483647});
    EXPECT_THAT(TakeLines(), ElementsAre(SetLine("2147483647")));
    EXPECT_TRUE(It().GetDeviceCallbackIsEnable());
    ASSERT_NE(registration, nullptr);
    EXPECT_EQ(registration->param, 2147483647);
    EXPECT_NE(registration->callback, nullptr);
}

TEST_F(Listener, GivesTheVendorsTheSameRegistrationAlways) {
    VendorSdk::DeviceCallbackInfo* const registration = It().SetDeviceCallbackInfo({nullptr, 1});
    const auto relay = registration->callback;
    EXPECT_EQ(It().SetDeviceCallbackInfo({Application::OnDevice, -2}), registration);
    EXPECT_EQ(registration->callback, relay);
    EXPECT_EQ(registration->param, -2);
    It().ClearDeviceCallbackInfo();
    EXPECT_EQ(registration->callback, relay);
    EXPECT_EQ(registration->param, -2);
    EXPECT_EQ(It().SetDeviceCallbackInfo({Application::OnDevice, 3}), registration);
}

TEST_F(Listener, WithANullCallbackHasNone) {
    EXPECT_NE(It().SetDeviceCallbackInfo({Application::OnDevice, 1}), nullptr);
    EXPECT_NE(It().SetDeviceCallbackInfo({nullptr, 7}), nullptr);
    EXPECT_FALSE(It().GetDeviceCallbackIsEnable());
    EXPECT_THAT(TakeLines(), ElementsAre(ClearLine(), SetLine("1"), SetLine("7")));
}

TEST_F(Listener, HandsOnACopyOfEveryByteAndReturnsTheAnswer) {
    It().SetDeviceCallbackInfo({Application::OnDevice, 1});
    TakeLines();
    for (const int answer : {0, 1, -1, 2147483647, -2147483647 - 1}) {
        Application::AnswerWith([answer](const DeviceInfo&) { return answer; });
        const VendorSdk::DeviceInfo device = VendorDeviceOf("model " + std::to_string(answer));
        const std::string before = BytesOf(device);
        EXPECT_EQ(It().CallBackFunc(&device), answer);
        EXPECT_THAT(TakeLines(), ElementsAre(LineIs(1, "callback", kCallBackFunc)));
        EXPECT_EQ(BytesOf(device), before);
        EXPECT_EQ(Application::Reports().back().bytes, before);
        EXPECT_NE(Application::Reports().back().address, &device);
    }
}

TEST_F(Listener, CallsTheCallbackOnTheReportingThreadAfterItsLine) {
    It().SetDeviceCallbackInfo({Application::OnDevice, 1});
    static std::size_t linesBefore;
    TakeLines();
    Application::AnswerWith([](const DeviceInfo&) {
        linesBefore = RecordingLog::Lines().size();
        return 0;
    });
    const VendorSdk::DeviceInfo device = VendorDeviceOf("alpha");
    It().CallBackFunc(&device);
    EXPECT_EQ(linesBefore, 1u);
    EXPECT_EQ(Application::Reports().at(0).thread, std::this_thread::get_id());
}

TEST_F(Listener, HandsOnUnterminatedFieldsAsTheyAre) {
    It().SetDeviceCallbackInfo({Application::OnDevice, 1});
    VendorSdk::DeviceInfo device;
    std::memset(&device, 'x', sizeof device);
    It().CallBackFunc(&device);
    EXPECT_EQ(Application::Reports().at(0).bytes, std::string(sizeof device, 'x'));
}

TEST_F(Listener, ServesVendorsThroughTheRelay) {
    const VendorSdk::DeviceCallbackInfo* const registration =
        It().SetDeviceCallbackInfo({Application::OnDevice, 1});
    Application::AnswerWith([](const DeviceInfo&) { return 53; });
    TakeLines();
    const VendorSdk::DeviceInfo device = VendorDeviceOf("alpha");
    EXPECT_EQ(registration->callback(&device), 53);
    EXPECT_THAT(TakeLines(), ElementsAre(LineIs(1, "callback", kCallBackFunc)));
    EXPECT_EQ(Application::Reports().at(0).bytes, BytesOf(device));
}

TEST_F(Listener, DropsReportsAfterAClear) {
    const VendorSdk::DeviceCallbackInfo* const registration =
        It().SetDeviceCallbackInfo({Application::OnDevice, 1});
    Application::AnswerWith([](const DeviceInfo&) { return 53; });
    It().ClearDeviceCallbackInfo();
    EXPECT_FALSE(It().GetDeviceCallbackIsEnable());
    TakeLines();
    const VendorSdk::DeviceInfo device = VendorDeviceOf("alpha");
    EXPECT_EQ(registration->callback(&device), 0);
    EXPECT_EQ(It().CallBackFunc(&device), 0);
    EXPECT_EQ(It().CallBackFunc(nullptr), 0);
    EXPECT_THAT(TakeLines(), IsEmpty());
    EXPECT_THAT(Application::Reports(), IsEmpty());
}

// The callback is read once, so that a clear that comes between finds no half of a report.
TEST_F(Listener, FinishesTheReportDuringWhichItIsCleared) {
    It().SetDeviceCallbackInfo({Application::OnDevice, 1});
    Application::AnswerWith([](const DeviceInfo&) { return 53; });
    int clears = 0;
    RecordingLog::OnLine([&clears](const RecordingLog::Line& line) {
        if (line.text.starts_with(L"callback(")) {
            ++clears;
            It().ClearDeviceCallbackInfo();
        }
    });
    const VendorSdk::DeviceInfo device = VendorDeviceOf("alpha");
    EXPECT_EQ(It().CallBackFunc(&device), 53);
    EXPECT_FALSE(It().GetDeviceCallbackIsEnable());
    EXPECT_EQ(It().CallBackFunc(&device), 0);
    RecordingLog::OnLine({});
    EXPECT_EQ(clears, 1);
    ASSERT_THAT(Application::Reports(), SizeIs(1));
    EXPECT_EQ(Application::Reports().at(0).bytes, BytesOf(device));
}

TEST_F(Listener, FinishesTheReportDuringWhichItsCallbackIsReplaced) {
    It().SetDeviceCallbackInfo({Application::OnDevice, 1});
    RecordingLog::OnLine([](const RecordingLog::Line& line) {
        if (line.text.starts_with(L"callback(")) {
            It().SetDeviceCallbackInfo({Application::OnOtherDevice, 2});
        }
    });
    const VendorSdk::DeviceInfo device = VendorDeviceOf("alpha");
    It().CallBackFunc(&device);
    RecordingLog::OnLine({});
    EXPECT_THAT(Application::Reports(), SizeIs(1));
    EXPECT_THAT(Application::OtherReports(), IsEmpty());
}

TEST_F(Listener, LogsAReportBeforeItIsCopied) {
    It().SetDeviceCallbackInfo({Application::OnDevice, 1});
    VendorSdk::DeviceInfo device = VendorDeviceOf("alpha");
    RecordingLog::OnLine([&device](const RecordingLog::Line& line) {
        if (line.text.starts_with(L"callback(")) {
            device = VendorDeviceOf("beta");
        }
    });
    It().CallBackFunc(&device);
    RecordingLog::OnLine({});
    ASSERT_THAT(Application::Reports(), SizeIs(1));
    EXPECT_EQ(Application::Reports().at(0).bytes, BytesOf(VendorDeviceOf("beta")));
}

TEST_F(Listener, LogsAChangeOfTheRegistrationBeforeItIsMade) {
    It();
    std::vector<bool> enabled;
    RecordingLog::OnLine([&enabled](const RecordingLog::Line&) {
        enabled.push_back(It().GetDeviceCallbackIsEnable());
    });
    It().SetDeviceCallbackInfo({Application::OnDevice, 1});
    It().ClearDeviceCallbackInfo();
    RecordingLog::OnLine({});
    EXPECT_THAT(enabled, ElementsAre(false, true));
}

TEST_F(Listener, LogsEveryClear) {
    It();
    TakeLines();
    It().ClearDeviceCallbackInfo();
    It().ClearDeviceCallbackInfo();
    EXPECT_THAT(TakeLines(), ElementsAre(ClearLine(), ClearLine()));
}

TEST_F(Listener, ReplacesTheCallbackWithoutAClear) {
    It().SetDeviceCallbackInfo({Application::OnDevice, 1});
    It().SetDeviceCallbackInfo({Application::OnOtherDevice, 2});
    EXPECT_THAT(TakeLines(), ElementsAre(ClearLine(), SetLine("1"), SetLine("2")));
    const VendorSdk::DeviceInfo device = VendorDeviceOf("alpha");
    It().CallBackFunc(&device);
    EXPECT_THAT(Application::Reports(), IsEmpty());
    EXPECT_THAT(Application::OtherReports(), SizeIs(1));
}

TEST_F(Listener, KeepsACopyOfTheRegistrationItWasGiven) {
    DeviceCallbackInfo info{Application::OnDevice, 1};
    It().SetDeviceCallbackInfo(info);
    info = {nullptr, 0};
    EXPECT_TRUE(It().GetDeviceCallbackIsEnable());
}

TEST_F(Listener, SurvivesAVendorThatReportsNothing) {
    It().SetDeviceCallbackInfo({Application::OnDevice, 1});
    Application::AnswerWith([](const DeviceInfo&) { return 53; });
    TakeLines();
    EXPECT_EQ(It().CallBackFunc(nullptr), 0);
    EXPECT_THAT(TakeLines(), ElementsAre(LineIs(4, "callback record is nullptr", kCallBackFunc)));
    EXPECT_THAT(Application::Reports(), IsEmpty());
}

TEST_F(Listener, SurvivesAVendorsModuleThatReportsNothing) {
    ScriptedVendors::Support({ScriptedVendors::Vendor("alpha", "scripted_all")});
    ASSERT_EQ(ScanInterface::GetInstance().StartDeviceScan({Application::OnDevice, 1}), 0);
    const ScriptedModule module("scripted_all");
    module.AwaitCalls("StartDeviceScan", 1);
    TakeLines();
    EXPECT_EQ(module.ReportNow(nullptr), 0);
    EXPECT_THAT(TakeLines(), ElementsAre(LineIs(4, "callback record is nullptr", kCallBackFunc)));
    const VendorSdk::DeviceInfo device = VendorDeviceOf("alpha");
    Application::AnswerWith([](const DeviceInfo&) { return 54; });
    EXPECT_EQ(module.ReportNow(&device), 54);
}

}  // namespace

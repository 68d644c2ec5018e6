// SPDX-License-Identifier: Apache-2.0

// The listener between a vendor's networks and the application's callback.

#include <cstring>

#include "tests/broker/netconn/netconn_support.h"
#include "tests/support/guarded_memory.h"

namespace {

using namespace PrinterDeviceDiscoverSdk;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class WifiListener : public NetConnTest {
protected:
    static NetConnInterfaceListener& It() { return NetConnInterfaceListener::GetInstance(); }

    static Lines Relayed(const std::string& rssi) {
        const char* const conversion = "DiscoverBasic::GetDiscoverWifoConfigInfo";
        return {ListenerSaid("callback", "CallBackFunc"), LineIs(3, "rssi = " + rssi, conversion),
                LineIs(3, "memcpy_s1 ret = 0", conversion),
                LineIs(3, "memcpy_s2 ret = 0", conversion)};
    }
};

TEST_F(WifiListener, LogsAClearOnItsFirstUseAndHasNoCallback) {
    EXPECT_FALSE(It().GetDeviceCallbackIsEnable());
    EXPECT_THAT(TakeLines(), ElementsAre(ClearLine()));
    It();
    EXPECT_THAT(TakeLines(), IsEmpty());
    EXPECT_THAT(ScriptedVendors::Requests(), IsEmpty());
}

TEST_F(WifiListener, GivesTheVendorsTheSameRegistrationAlways) {
    VendorSdk::WifiCallbackInfo* const registration = It().SetDeviceCallbackInfo({nullptr, 1});
    const auto relay = registration->callback;
    EXPECT_NE(relay, nullptr);
    EXPECT_EQ(registration->param, 1);
    EXPECT_FALSE(It().GetDeviceCallbackIsEnable());
    EXPECT_EQ(It().SetDeviceCallbackInfo({Application::OnNetwork, -2147483647 - 1}), registration);
    EXPECT_TRUE(It().GetDeviceCallbackIsEnable());
    EXPECT_EQ(registration->callback, relay);
    EXPECT_EQ(registration->param, -2147483647 - 1);
    It().ClearDeviceCallbackInfo();
    EXPECT_FALSE(It().GetDeviceCallbackIsEnable());
    EXPECT_EQ(registration->callback, relay);
    EXPECT_EQ(registration->param, -2147483647 - 1);
    EXPECT_THAT(TakeLines(),
                ElementsAre(ClearLine(), SetLine("1"), SetLine("-2147483648"), ClearLine()));
}

TEST_F(WifiListener, IsApartFromTheListenerOfPrinters) {
    It().SetDeviceCallbackInfo({Application::OnNetwork, 1});
    EXPECT_FALSE(ScanInterfaceListener::GetInstance().GetDeviceCallbackIsEnable());
}

TEST_F(WifiListener, HandsOnACopyOfEveryByteAndReturnsTheAnswer) {
    const VendorSdk::WifiCallbackInfo* const registration =
        It().SetDeviceCallbackInfo({Application::OnNetwork, 1});
    TakeLines();
    const VendorSdk::WifiConfigInfo network = VendorNetworkOf("office");
    const std::string before = BytesOf(network);
    for (const int answer : {0, 1, -1, 2147483647, -2147483647 - 1}) {
        Application::AnswerNetworksWith([answer](const WifiConfigInfo&) { return answer; });
        EXPECT_EQ(registration->callback(&network), answer);
        EXPECT_EQ(TakeLines(), Relayed("-41.5"));
        EXPECT_EQ(Application::NetworkReports().back().bytes, before);
        EXPECT_NE(Application::NetworkReports().back().address, &network);
    }
    EXPECT_EQ(It().CallBackFunc(&network), -2147483647 - 1);
    EXPECT_EQ(BytesOf(network), before);
}

TEST_F(WifiListener, TerminatesTextsThatFillTheirFields) {
    It().SetDeviceCallbackInfo({Application::OnNetwork, 1});
    Guarded<VendorSdk::WifiConfigInfo> network;
    std::memset(&*network, 'x', sizeof *network);
    static std::size_t ssidLength;
    static std::size_t pwdLength;
    Application::AnswerNetworksWith([](const WifiConfigInfo& seen) {
        ssidLength = std::strlen(seen.ssid);
        pwdLength = std::strlen(seen.pwd);
        return 0;
    });
    It().CallBackFunc(&*network);
    EXPECT_EQ(ssidLength, 127u);
    EXPECT_EQ(pwdLength, 31u);
    EXPECT_EQ(network->ssid[127], 'x');
}

TEST_F(WifiListener, DropsReportsAfterAClear) {
    const VendorSdk::WifiCallbackInfo* const registration =
        It().SetDeviceCallbackInfo({Application::OnNetwork, 1});
    Application::AnswerNetworksWith([](const WifiConfigInfo&) { return 53; });
    It().ClearDeviceCallbackInfo();
    TakeLines();
    const VendorSdk::WifiConfigInfo network = VendorNetworkOf("office");
    EXPECT_EQ(registration->callback(&network), 0);
    EXPECT_EQ(It().CallBackFunc(nullptr), 0);
    EXPECT_THAT(TakeLines(), IsEmpty());
    EXPECT_THAT(Application::NetworkReports(), IsEmpty());
}

// The callback is read once: a clear that lands in between does not make it null.
TEST_F(WifiListener, FinishesAReportThatAClearComesInto) {
    It().SetDeviceCallbackInfo({Application::OnNetwork, 1});
    Application::AnswerNetworksWith([](const WifiConfigInfo&) { return 53; });
    RecordingLog::OnLine([](const RecordingLog::Line& line) {
        if (line.text.starts_with(L"callback(")) {
            It().ClearDeviceCallbackInfo();
        }
    });
    const VendorSdk::WifiConfigInfo network = VendorNetworkOf("office");
    EXPECT_EQ(It().CallBackFunc(&network), 53);
    RecordingLog::OnLine({});
    EXPECT_THAT(Application::NetworkReports(), SizeIs(1));
    EXPECT_FALSE(It().GetDeviceCallbackIsEnable());
}

TEST_F(WifiListener, ReplacesTheCallbackWithoutAClear) {
    It().SetDeviceCallbackInfo({Application::OnNetwork, 1});
    It().SetDeviceCallbackInfo({Application::OnOtherNetwork, 2});
    const VendorSdk::WifiConfigInfo network = VendorNetworkOf("office");
    It().CallBackFunc(&network);
    EXPECT_THAT(Application::NetworkReports(), IsEmpty());
    EXPECT_THAT(Application::OtherNetworkReports(), SizeIs(1));
}

TEST_F(WifiListener, SurvivesAVendorThatReportsNothing) {
    It().SetDeviceCallbackInfo({Application::OnNetwork, 1});
    TakeLines();
    EXPECT_EQ(It().CallBackFunc(nullptr), 0);
    EXPECT_THAT(TakeLines(), ElementsAre(LineIs(4, "callback record is nullptr",
                                                "NetConnInterfaceListener::CallBackFunc")));
    EXPECT_THAT(Application::NetworkReports(), IsEmpty());
}

}  // namespace

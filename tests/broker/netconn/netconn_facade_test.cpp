// SPDX-License-Identifier: Apache-2.0

// The way into the access-point family: what it says before it forwards.

#include <cstring>

#include "tests/broker/netconn/netconn_support.h"
#include "tests/support/guarded_memory.h"

namespace {

using namespace PrinterDeviceDiscoverSdk;
using testing::ElementsAre;

class NetConnFacade : public NetConnTest {
protected:
    static DiscoverNetConnInterface& It() { return DiscoverNetConnInterface::GetInstance(); }
};

TEST_F(NetConnFacade, BindsNothingItself) {
    EXPECT_EQ(&It(), &It());
    EXPECT_THAT(ScriptedVendors::Requests(), testing::IsEmpty());
    EXPECT_EQ(&NetConnInterface::GetInstance(), &NetConnInterface::GetInstance());
}

TEST_F(NetConnFacade, LogsStartAndStopAndForwardsThem) {
    With({Alpha()});
    EXPECT_EQ(It().StartAPWifiScan({Application::OnNetwork, 3}), 0);
    EXPECT_THAT(TakeOwnLines(),
                ElementsAre(FacadeSaid("StartAPWifiScan", "StartAPWifiScan"), SetLine("3"),
                            Said(1, "call Func OK", "StartAPWifiScan")));
    ScriptedModule("scripted_all").Script("result StopAPWifiScan 12");
    EXPECT_EQ(It().StopAPWifiScan(), 12);
    EXPECT_THAT(TakeOwnLines(),
                ElementsAre(FacadeSaid("StopAPWifiScan", "StopAPWifiScan"), ClearLine(),
                            Said(4, "call Func fail, err:12", "StopAPWifiScan")));
}

TEST_F(NetConnFacade, StopsWithoutAStart) {
    With({Alpha()});
    EXPECT_EQ(It().StopAPWifiScan(), 0);
    EXPECT_EQ(TakeLines().front(), FacadeSaid("StopAPWifiScan", "StopAPWifiScan"));
}

TEST_F(NetConnFacade, LogsThePassPhraseInClearAndBeforeTheName) {
    With({Alpha()});
    const char* const name = "PrinterAPNetConfigEvent";
    EXPECT_EQ(It().PrinterAPNetConfigEvent(NetworkOf("office")), 0);
    EXPECT_THAT(TakeLines(),
                ElementsAre(FacadeSaid("pwdpass office", name), FacadeSaid("ssidoffice", name),
                            Said(1, "call Func OK", name)));
}

TEST_F(NetConnFacade, ReadsANameWithoutATerminatorOnIntoThePassPhraseAndNoFurther) {
    With({Alpha()});
    const char* const name = "PrinterAPNetConfigEvent";
    Guarded<WifiConfigInfo> network;
    network->rssi = 0;
    SetField(network->ssid, std::string(128, 'n'));
    SetField(network->pwd, std::string(32, 'p'));
    EXPECT_EQ(It().PrinterAPNetConfigEvent(*network), 0);
    EXPECT_THAT(TakeLines(),
                ElementsAre(FacadeSaid("pwd" + std::string(32, 'p'), name),
                            FacadeSaid("ssid" + std::string(128, 'n') + std::string(32, 'p'), name),
                            Said(1, "call Func OK", name)));
}

TEST_F(NetConnFacade, LogsTheRecordThatIsToBeFilledAsItStands) {
    With({Alpha()});
    ScriptedModule("scripted_all").AddDevice(VendorDeviceOf("model"));
    const char* const name = "GetDeviceInfoByNet";
    DeviceInfo device{};
    EXPECT_EQ(It().GetDeviceInfoByNet(device), 0);
    EXPECT_THAT(TakeLines(), ElementsAre(FacadeSaid("deviceSN", name), FacadeSaid("modelID", name),
                                         Said(1, "call Func OK", name)));
    EXPECT_EQ(It().GetDeviceInfoByNet(device), 0);
    EXPECT_THAT(TakeLines(),
                ElementsAre(FacadeSaid("deviceSNA1B2C3", name), FacadeSaid("modelIDmodel", name),
                            Said(1, "call Func OK", name)));
}

TEST_F(NetConnFacade, LogsTheDeviceAndForwardsIt) {
    With({Alpha()});
    const char* const name = "IsLocalAreaNetworkOK";
    ScriptedModule("scripted_all").Script("result IsLocalAreaNetworkOK 9");
    EXPECT_EQ(It().IsLocalAreaNetworkOK(DeviceOf("alpha")), 9);
    EXPECT_THAT(TakeLines(),
                ElementsAre(FacadeSaid("deviceSNA1B2C3", name), FacadeSaid("modelIDalpha", name),
                            Said(4, "call Func Fail9", name)));
}

TEST_F(NetConnFacade, SaysItsLinesBeforeTheVendorsAreBound) {
    const char* const name = "IsLocalAreaNetworkOK";
    EXPECT_EQ(It().IsLocalAreaNetworkOK(DeviceOf("alpha")), kNotInitialised);
    EXPECT_THAT(TakeLines(),
                ElementsAre(FacadeSaid("deviceSNA1B2C3", name), FacadeSaid("modelIDalpha", name),
                            Said(4, "vendorList is empty. DeleteAllVendor", "GetDeviceFunc"),
                            Said(4, "NOINITOK", name)));
}

TEST_F(NetConnFacade, IsRefusedWithoutVendorsInEveryOperation) {
    DeviceInfo device{};
    EXPECT_EQ(It().StartAPWifiScan({Application::OnNetwork, 1}), kNotInitialised);
    EXPECT_EQ(It().StopAPWifiScan(), kNotInitialised);
    EXPECT_EQ(It().PrinterAPNetConfigEvent(NetworkOf("office")), kNotInitialised);
    EXPECT_EQ(It().GetDeviceInfoByNet(device), kNotInitialised);
    EXPECT_EQ(It().IsLocalAreaNetworkOK(device), kNotInitialised);
    const Lines lines = TakeLines();
    EXPECT_EQ(lines.front(), FacadeSaid("StartAPWifiScan", "StartAPWifiScan"));
    EXPECT_EQ(lines.size(), 1u + 1 + 1 + 2 + 3 + 3 + 3);
}

}  // namespace

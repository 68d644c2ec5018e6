// SPDX-License-Identifier: Apache-2.0

// Starting and stopping a scan through the facade and the free functions.

#include "tests/support/application.h"
#include "tests/support/broker_test.h"

namespace {

using namespace PrinterDeviceDiscoverSdk;
using ScriptedVendors::Support;
using ScriptedVendors::Vendor;
using testing::ElementsAre;

std::string ClearLine() {
    return LineIs(1, "Clear info", "ScanInterfaceListener::ClearDeviceCallbackInfo");
}

class Facade : public BrokerTest {
protected:
    static void Bind() {
        Support({Vendor("alpha", "scripted_all")});
        ScanInterface::GetInstance();
        ScanInterfaceListener::GetInstance();
        TakeLines();
    }
};

using FreeFunctions = Facade;

TEST_F(Facade, LogsStartAndStopAndForwardsThem) {
    Bind();
    DiscoverScanInterface& facade = DiscoverScanInterface::GetInstance();
    EXPECT_EQ(facade.StartDeviceScan({Application::OnDevice, 3}), 0);
    EXPECT_THAT(
        TakeOwnLines(),
        ElementsAre(LineIs(1, "Start Device Scan", "DiscoverScanInterface::StartDeviceScan"),
                    LineIs(1, "Set info3", "ScanInterfaceListener::SetDeviceCallbackInfo"),
                    LineIs(1, "call Func OK", "ScanInterface::StartDeviceScan")));
    ScriptedModule("scripted_all").Script("result StopDeviceScan 12");
    EXPECT_EQ(facade.StopDeviceScan(), 12);
    EXPECT_THAT(TakeOwnLines(),
                ElementsAre(LineIs(1, "Stop Device Scan", "DiscoverScanInterface::StopDeviceScan"),
                            ClearLine(),
                            LineIs(4, "call Func fail, err:12", "ScanInterface::StopDeviceScan")));
}

std::vector<std::string> FirstStartLines() {
    return BindingLines("alpha") +
           Lines({ClearLine(),
                  LineIs(1, "Set info3", "ScanInterfaceListener::SetDeviceCallbackInfo"),
                  LineIs(1, "call Func OK", "ScanInterface::StartDeviceScan")});
}

TEST_F(Facade, MayBeCalledForAStartFirst) {
    Support({Vendor("alpha", "scripted_all")});
    EXPECT_EQ(DiscoverScanInterface::GetInstance().StartDeviceScan({Application::OnDevice, 3}), 0);
    EXPECT_EQ(TakeOwnLines(),
              Lines({LineIs(1, "Start Device Scan", "DiscoverScanInterface::StartDeviceScan")}) +
                  FirstStartLines());
    ScriptedModule("scripted_all").AwaitCalls("StartDeviceScan", 1);
}

TEST_F(Facade, ReturnsTheDispatchersRefusals) {
    DiscoverScanInterface& facade = DiscoverScanInterface::GetInstance();
    EXPECT_EQ(facade.StartDeviceScan({Application::OnDevice, 3}), kNotInitialised);
    EXPECT_EQ(facade.StopDeviceScan(), kNotInitialised);
    Support({Vendor("alpha", "scripted_none")});
    ASSERT_TRUE(ScanInterface::GetInstance().Init());
    EXPECT_EQ(facade.StartDeviceScan({Application::OnDevice, 3}), kNothingToCall);
    EXPECT_EQ(facade.StartDeviceScan({nullptr, 3}), kNoCallback);
    EXPECT_EQ(facade.StopDeviceScan(), kNothingToCall);
}

TEST_F(Facade, IsAlwaysTheSame) {
    EXPECT_EQ(&DiscoverScanInterface::GetInstance(), &DiscoverScanInterface::GetInstance());
    EXPECT_EQ(&ScanInterface::GetInstance(), &ScanInterface::GetInstance());
    EXPECT_EQ(&ScanInterfaceListener::GetInstance(), &ScanInterfaceListener::GetInstance());
}

TEST_F(FreeFunctions, StartAndStopLogNoLineOfTheirOwn) {
    Bind();
    const DeviceCallbackInfo info{Application::OnDevice, 3};
    EXPECT_EQ(StartDeviceScan(&info), 0);
    EXPECT_THAT(TakeOwnLines(),
                ElementsAre(LineIs(1, "Set info3", "ScanInterfaceListener::SetDeviceCallbackInfo"),
                            LineIs(1, "call Func OK", "ScanInterface::StartDeviceScan")));
    ScriptedModule("scripted_all").Script("result StopDeviceScan 12");
    EXPECT_EQ(StopDeviceScan(), 12);
    EXPECT_THAT(TakeOwnLines(), ElementsAre(ClearLine(), LineIs(4, "call Func fail, err:12",
                                                                "ScanInterface::StopDeviceScan")));
}

TEST_F(FreeFunctions, MayBeCalledForAStartFirst) {
    Support({Vendor("alpha", "scripted_all")});
    const DeviceCallbackInfo info{Application::OnDevice, 3};
    EXPECT_EQ(StartDeviceScan(&info), 0);
    EXPECT_EQ(TakeOwnLines(), FirstStartLines());
    ScriptedModule("scripted_all").AwaitCalls("StartDeviceScan", 1);
}

TEST_F(FreeFunctions, ReturnWhatTheFacadeReturns) {
    const DeviceCallbackInfo nobody{nullptr, 0};
    EXPECT_EQ(StartDeviceScan(&nobody), kNotInitialised);
    EXPECT_EQ(StopDeviceScan(), kNotInitialised);
    Support({Vendor("alpha", "scripted_none")});
    ASSERT_TRUE(ScanInterface::GetInstance().Init());
    EXPECT_EQ(StartDeviceScan(&nobody), kNoCallback);
    EXPECT_EQ(StopDeviceScan(), kNothingToCall);
}

TEST_F(FreeFunctions, AndTheFacadeServeTheSameScan) {
    Bind();
    const ScriptedModule module("scripted_all");
    module.Script("until-stopped");
    const DeviceCallbackInfo info{Application::OnDevice, 3};
    ASSERT_EQ(StartDeviceScan(&info), 0);
    module.AwaitRunningScans(1);
    EXPECT_EQ(DiscoverScanInterface::GetInstance().StopDeviceScan(), 0);
    module.AwaitRunningScans(0);
}

}  // namespace

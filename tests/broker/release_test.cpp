// SPDX-License-Identifier: Apache-2.0

// What the dispatcher gives back when the process ends, and how it answers from then on.

#include "tests/support/broker_test.h"
#include "tests/support/process.h"

namespace {

// Ends a process that has bound the family's dispatcher, and checks that it gave back neither the
// duplicate's module nor one more of any other, and that no operation is served any more, during
// and after that. Returns what the operations did afterwards.
Lines AfterTheRelease(const std::string& family) {
    const std::string record = Process::FreshFile("releases");
    EXPECT_EQ(Process::Run("release_at_exit", {family, record}), 0);
    const std::vector<std::string> lines = Process::LinesOf(record);
    Process::FreshFile("releases");
    if (lines.size() < 4) {
        ADD_FAILURE() << lines.size() << " lines";
        return {};
    }
    EXPECT_THAT(Lines(lines.begin(), lines.begin() + 4),
                testing::ElementsAre("scripted_all_b -2", "scripted_all -2", "scripted_none -2",
                                     "scripted_all -2"));
    return {lines.begin() + 4, lines.end()};
}

TEST(ReleaseAtExit, GivesBackEachVendorsModuleOnceInTheOrderOfTheProductIds) {
    EXPECT_THAT(AfterTheRelease("scan"),
                testing::ElementsAre("StartDeviceScan -2 NOINITOK", "StopDeviceScan -2 NOINITOK",
                                     "GetDeviceConnectState -2 NOINITOK",
                                     "BeforeConnectEventNotify -2 NOINITOK",
                                     "ConnectSuccessNotifyEvent -2 NOINITOK",
                                     "ConnectFailNotifyEvent -2 NOINITOK", "6 lines"));
}

TEST(ReleaseAtExit, OfTheAccessPointFamilyDoesTheSame) {
    EXPECT_THAT(AfterTheRelease("access-point"),
                testing::ElementsAre("StartAPWifiScan -2 NOINITOK", "StopAPWifiScan -2 NOINITOK",
                                     "PrinterAPNetConfigEvent -2 NOINITOK",
                                     "GetDeviceInfoByNet -2 NOINITOK",
                                     "IsLocalAreaNetworkOK -2 NOINITOK", "5 lines"));
}

TEST(ReleaseAtExit, OfTheUsbFamilyDoesTheSame) {
    EXPECT_THAT(AfterTheRelease("usb"),
                testing::ElementsAre("GetDeviceInfoByUsb -2 NOINITOK", "GetUSBWifiScan -2 NOINITOK",
                                     "PrinterUSBNetConfigEvent -2 NOINITOK", "5 lines"));
}

}  // namespace

// What the dispatcher gives back when the process ends, and how it answers from then on.

#include "tests/support/broker_test.h"
#include "tests/support/process.h"

namespace {

TEST(ReleaseAtExit, GivesBackEachVendorsModuleOnceInTheOrderOfTheProductIds) {
    const std::string record = Process::FreshFile("releases");
    EXPECT_EQ(Process::Run("release_at_exit", {record}), 0);
    const std::vector<std::string> lines = Process::LinesOf(record);
    ASSERT_GE(lines.size(), 4u);
    // Neither the duplicate's module nor one more of any other; and no operation is served any
    // more.
    EXPECT_THAT(Lines(lines.begin(), lines.begin() + 4),
                testing::ElementsAre("scripted_all_b -2", "scripted_all -2", "scripted_none -2",
                                     "scripted_all -2"));
    EXPECT_THAT(Lines(lines.begin() + 4, lines.end()),
                testing::ElementsAre("StartDeviceScan -2 NOINITOK", "StopDeviceScan -2 NOINITOK",
                                     "GetDeviceConnectState -2 NOINITOK",
                                     "BeforeConnectEventNotify -2 NOINITOK",
                                     "ConnectSuccessNotifyEvent -2 NOINITOK",
                                     "ConnectFailNotifyEvent -2 NOINITOK", "6 lines"));
    Process::FreshFile("releases");
}

}  // namespace

// What the dispatcher gives back when the process ends.

#include "tests/support/broker_test.h"
#include "tests/support/process.h"

namespace {

TEST(ReleaseAtExit, GivesBackEachVendorsModuleOnceInTheOrderOfTheProductIds) {
    const std::string record = Process::FreshFile("releases");
    EXPECT_EQ(Process::Run("release_at_exit", {record}), 0);
    // Neither the duplicate's module nor one more of any other.
    EXPECT_THAT(Process::LinesOf(record), testing::ElementsAre("scripted_all_b", "scripted_all",
                                                               "scripted_none", "scripted_all"));
    Process::FreshFile("releases");
}

}  // namespace

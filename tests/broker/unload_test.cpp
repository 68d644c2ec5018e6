// SPDX-License-Identifier: Apache-2.0

// A program that loads the library at run time, and unloads it while its threads run.

#include <fstream>

#include <gtest/gtest.h>

#include "tests/support/process.h"

namespace {

int UnloadInTheMiddle(const std::string& what) {
    const std::string script = Process::FreshFile("script");
    std::ofstream(script) << "repeat 20\n"
                             "interval 10\n"
                             "result StartDeviceScan 5\n"
                             "result StartAPWifiScan 5\n"
                             "device \"A1B2C3\" \"alpha\" \"one\" \"two\" \"three\" 1 2\n"
                             "network -50 \"office\" \"\"\n";
    Process::SetEnvironment("SCRIPTED_VENDOR_SCRIPT", script);
    const int status = Process::Run("unload_in_the_middle", {what});
    Process::FreshFile("script");
    return status;
}

TEST(Unload, InTheMiddleOfAScanLeavesTheThreadWhatItReturnsTo) {
    EXPECT_EQ(UnloadInTheMiddle("printers"), 0);
}

TEST(Unload, InTheMiddleOfAScanOfNetworksDoesTheSame) {
    EXPECT_EQ(UnloadInTheMiddle("networks"), 0);
}

TEST(Unload, WhileTheMonitorRunsKeepsWhatTheDeviceManagerCalls) {
    EXPECT_EQ(UnloadInTheMiddle("monitor"), 0);
}

TEST(Unload, WithoutAThreadGivesTheModulesBack) {
    EXPECT_EQ(UnloadInTheMiddle("nothing"), 0);
}

}  // namespace

// SPDX-License-Identifier: Apache-2.0

// The end of the process in the middle of a scan, and while printers are being plugged in.

#include <cstdlib>
#include <fstream>

#include "tests/support/broker_test.h"
#include "tests/support/process.h"

namespace {

// Runs a program that ends in the middle of its work again and again, each time another moment
// after the given one, in milliseconds.
void EndInTheMiddle(const std::string& program, int rounds, const std::string& pace,
                    int moment = 0) {
    const std::string script = Process::FreshFile("script");
    std::ofstream(script) << pace
                          << "repeat 0\n"
                             "until-stopped\n"
                             "device \"A1B2C3\" \"alpha\" \"one\" \"two\" \"three\" 1 2\n"
                             "device \"D4E5F6\" \"beta\" \"one\" \"two\" \"three\" 3 4\n"
                             "network -50 \"office\" \"\"\n";
    Process::SetEnvironment("SCRIPTED_VENDOR_SCRIPT", script);
    // The thread sanitizer otherwise waits a second at every end.
    const char* const options = std::getenv("TSAN_OPTIONS");
    Process::SetEnvironment("TSAN_OPTIONS",
                            std::string(options == nullptr ? "" : options) + ":atexit_sleep_ms=50");
    const bool mayHang = Process::MayHangAtItsEnd();
    int hung = 0;
    for (int round = 0; round < rounds; ++round) {
        const int status =
            Process::Run(program, {std::to_string(moment + round % 7)}, mayHang ? 8 : 60);
        if (status == Process::kHung && mayHang) {
            ++hung;
            ASSERT_LE(hung, 1) << "by round " << round;
        } else {
            ASSERT_EQ(status, 0) << "in round " << round;
        }
    }
    Process::FreshFile("script");
}

TEST(Exit, InTheMiddleOfAScanIsNoCrashAHundredTimes) {
    EndInTheMiddle("scan_at_exit", 100, "threads 2\ninterval 2\n");
}

TEST(Exit, WhileVendorsReportWithoutAPauseIsNoCrashAHundredTimes) {
    if (Process::MayHangAtItsEnd()) {
        GTEST_SKIP() << "too many of the hundred would hang here";
    }
    EndInTheMiddle("scan_at_exit", 100, "threads 4\n");
}

TEST(Exit, WhileArrivalsOnUsbAreTakenUpIsNoCrashThirtyTimes) {
    EndInTheMiddle("arrival_at_exit", 30, "");
}

TEST(Exit, WhileArrivalsOnUsbStillWaitIsNoCrash) {
    EndInTheMiddle("arrival_at_exit", 5, "", -500);
}

}  // namespace

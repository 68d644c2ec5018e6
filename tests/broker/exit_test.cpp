// The end of the process in the middle of a scan.

#include <fstream>

#include "tests/support/broker_test.h"
#include "tests/support/process.h"

namespace {

TEST(Exit, InTheMiddleOfAScanIsNoCrashAHundredTimes) {
    const std::string script = Process::FreshFile("script");
    std::ofstream(script) << "threads 4\n"
                             "repeat 0\n"
                             "until-stopped\n"
                             "device \"A1B2C3\" \"alpha\" \"one\" \"two\" \"three\" 1 2\n"
                             "device \"D4E5F6\" \"beta\" \"one\" \"two\" \"three\" 3 4\n";
    Process::SetEnvironment("SCRIPTED_VENDOR_SCRIPT", script);
    for (int round = 0; round < 100; ++round) {
        ASSERT_EQ(Process::Run("scan_at_exit", {std::to_string(round % 7)}), 0)
            << "in round " << round;
    }
    Process::FreshFile("script");
}

}  // namespace

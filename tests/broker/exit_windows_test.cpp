// SPDX-License-Identifier: Apache-2.0

// The end of the process on Windows, where the other threads are gone before libraries take
// themselves down.

#include <gtest/gtest.h>

#include "tests/support/process.h"

namespace {

// It waits a second for a thread that may still come out.
constexpr double kMostMilliseconds = 500;

TEST(Exit, DoesNotWaitForAThreadBehindAGateThatIsGone) {
    const std::string record = Process::FreshFile("closing");
    ASSERT_EQ(Process::Run("gate_at_exit", {record}), 0);
    const std::vector<std::string> lines = Process::LinesOf(record);
    ASSERT_EQ(lines.size(), 1U);
    RecordProperty("milliseconds", lines[0]);
    EXPECT_LT(std::stod(lines[0]), kMostMilliseconds);
}

}  // namespace

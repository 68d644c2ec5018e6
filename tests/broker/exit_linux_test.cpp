// SPDX-License-Identifier: Apache-2.0

// The end of the process while the library looks something up and the logger takes its time: here
// the library's objects are destroyed while the threads go on, elsewhere the threads are gone by
// then.

#include <gtest/gtest.h>

#include "tests/support/process.h"

namespace {

TEST(Exit, LetsALookUpEndWithoutTablesAndWaitsForNoLogger) {
    for (const char* const line : {"STEP1", "STEP2", "deviceID:", "usbId:"}) {
        EXPECT_EQ(Process::Run("lookup_at_exit", {line}), 0) << line;
    }
}

}  // namespace

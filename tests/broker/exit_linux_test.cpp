// The end of the process while the library looks something up: here the library's objects are
// destroyed while the threads go on, elsewhere the threads are gone by then.

#include <gtest/gtest.h>

#include "tests/support/process.h"

namespace {

TEST(Exit, WaitsForALookUpBeforeTheTablesGo) {
    for (int round = 0; round < 10; ++round) {
        ASSERT_EQ(Process::Run("lookup_at_exit", {}), 0) << "in round " << round;
    }
}

}  // namespace

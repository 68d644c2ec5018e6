// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include <thread>

#include "app/terminal/crash_report.h"
#include "app/terminal/crash_system.h"
#include "platform/os.h"

namespace {

// Tells how much of the stack is left for the handler, and keeps it.
ULONG StackForTheHandler() {
    ULONG size = 0;
    SetThreadStackGuarantee(&size);
    return size;
}

TEST(CrashSystem, LeavesAPieceOfTheStackForTheHandler) {
    ULONG before = 0;
    ULONG after = 0;
    std::thread([&] {
        before = StackForTheHandler();
        App::ReportCrashesOfThisThread();
        after = StackForTheHandler();
    }).join();
    EXPECT_LT(before, 64U * 1024);
    EXPECT_GE(after, 64U * 1024);
}

}  // namespace

// SPDX-License-Identifier: Apache-2.0

#include "platform/os_calls.h"

#include <chrono>

#include "tests/host/PrinterUtil/printer_util_fixture.h"

namespace {

class OsTest : public HostTest::PrinterUtilTest {
protected:
    OsTest() {
        WriteEmptyList();
        HostTest::ShipModule("plain_module", ModuleFolder());
        module = Handle("plain_module");
    }

    HINSTANCE module = nullptr;
};

}  // namespace

TEST_F(OsTest, GetProcAddress_FindsWhatTheModuleExports) {
    ASSERT_NE(module, nullptr);
    EXPECT_NE(GetProcAddress(module, "StopDeviceScan"), nullptr);
    EXPECT_EQ(GetProcAddress(module, "StopDeviceScan2"), nullptr);
    EXPECT_EQ(GetProcAddress(module, "stopdevicescan"), nullptr);
    EXPECT_EQ(GetProcAddress(module, ""), nullptr);
}

TEST_F(OsTest, GetProcAddress_OfNullArgumentsIsNull) {
    ASSERT_NE(module, nullptr);
    const char* const noName = nullptr;
    EXPECT_EQ(GetProcAddress(nullptr, "StopDeviceScan"), nullptr);
    EXPECT_EQ(GetProcAddress(module, noName), nullptr);
    EXPECT_EQ(GetProcAddress(nullptr, noName), nullptr);
}

// What every process has is not the module's either.
TEST_F(OsTest, GetProcAddress_OfNoModuleFindsNothingOfTheProcess) {
    EXPECT_EQ(GetProcAddress(nullptr, "malloc"), nullptr);
    ASSERT_NE(module, nullptr);
    EXPECT_EQ(GetProcAddress(module, "malloc"), nullptr);
}

TEST_F(OsTest, FreeLibrary_GivesBackOneReference) {
    ASSERT_NE(module, nullptr);
    EXPECT_EQ(Handle("plain_module"), module);
    EXPECT_NE(FreeLibrary(module), 0);
    EXPECT_NE(GetProcAddress(module, "StopDeviceScan"), nullptr);
    EXPECT_NE(FreeLibrary(module), 0);
}

TEST_F(OsTest, FreeLibrary_OfNullFails) {
    EXPECT_EQ(FreeLibrary(nullptr), 0);
}

TEST_F(OsTest, Sleep_TakesMilliseconds) {
    using Clock = std::chrono::steady_clock;
    const auto start = Clock::now();
    Sleep(100);
    const auto slept = Clock::now() - start;
    // One system's clock ticks 64 times a second.
    EXPECT_GE(slept, std::chrono::milliseconds(84));
    EXPECT_LT(slept, std::chrono::seconds(20));
}

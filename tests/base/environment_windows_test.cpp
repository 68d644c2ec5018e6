// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "base/environment.h"

namespace {

using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* kName = "DEVICEDISCOVER_TEST_FILE";
constexpr const wchar_t* kStandIn = L"SOFTWARE\\DeviceDiscoverTestMachine";

// An elevated program, as each is under Wine, whose HKEY_LOCAL_MACHINE is an empty key of the
// test's.
class ElevatedEnvironment : public testing::Test {
protected:
    ElevatedEnvironment() {
        RegDeleteTreeW(HKEY_CURRENT_USER, kStandIn);
        RegCreateKeyW(HKEY_CURRENT_USER, kStandIn, &machine);
        EXPECT_EQ(RegOverridePredefKey(HKEY_LOCAL_MACHINE, machine), ERROR_SUCCESS);
        SetEnvironmentVariableA(kName, "C:\\some\\file");
    }
    ~ElevatedEnvironment() override {
        RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
        RegCloseKey(machine);
        RegDeleteTreeW(HKEY_CURRENT_USER, kStandIn);
    }

    void Allow(DWORD value) {
        EXPECT_EQ(RegSetKeyValueW(machine, L"SOFTWARE\\DeviceDiscover", L"ElevatedEnvironment",
                                  REG_DWORD, &value, sizeof value),
                  ERROR_SUCCESS);
    }

    HKEY machine = nullptr;
};

TEST_F(ElevatedEnvironment, IsIgnoredAndNamed) {
    const Base::EnvironmentText text = Base::ReadEnvironment(kName);
    EXPECT_THAT(text.text, IsEmpty());
    EXPECT_THAT(text.ignored,
                HasSubstr(std::string("the environment variable ") + kName + " is ignored"));
}

TEST_F(ElevatedEnvironment, CountsWhereAnAdministratorAllowsIt) {
    Allow(1);
    const Base::EnvironmentText text = Base::ReadEnvironment(kName);
    EXPECT_EQ(text.text, L"C:\\some\\file");
    EXPECT_THAT(text.ignored, IsEmpty());
}

TEST_F(ElevatedEnvironment, IsIgnoredWhereAnAdministratorForbidsIt) {
    Allow(0);
    EXPECT_THAT(Base::ReadEnvironment(kName).text, IsEmpty());
}

}  // namespace

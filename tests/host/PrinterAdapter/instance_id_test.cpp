// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterAdapter/instance_id.h"

#include <gtest/gtest.h>

namespace PrinterAdapter {

namespace {

TEST(InstanceId, HasTheSerialNumberOfADevice) {
    EXPECT_EQ(SerialNumberOfInstance(L"USB\\VID_1234&PID_ABCD\\0A1B2C"), L"0A1B2C");
}

TEST(InstanceId, HasNoneWhereTheSystemHasMadeItUp) {
    EXPECT_EQ(SerialNumberOfInstance(L"USB\\VID_1234&PID_ABCD\\6&1F2E3D&0&2"), L"");
    EXPECT_EQ(SerialNumberOfInstance(L"USB\\VID_1234&PID_ABCD&MI_01\\6&1F2E3D&0&0001"), L"");
}

TEST(InstanceId, HasNoneForWhatIsNoUsbDevice) {
    for (const wchar_t* id :
         {L"", L"USB", L"USB\\", L"ROOT\\PRINTER\\0001", L"USBPRINT\\ACME\\1"}) {
        EXPECT_EQ(SerialNumberOfInstance(id), L"") << testing::PrintToString(id);
    }
}

}  // namespace

}  // namespace PrinterAdapter

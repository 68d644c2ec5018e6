// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterAdapter/device_id.h"

#include <gtest/gtest.h>

namespace PrinterAdapter {

namespace {

TEST(DeviceIdText, HasManufacturerModelAndSerialNumber) {
    const DeviceId id = ReadDeviceId("MFG:Acme;CMD:PCL,PS;MDL:USB Laser;CLS:PRINTER;SN:0A1;");
    EXPECT_EQ(id.manufacturer, "Acme");
    EXPECT_EQ(id.model, "USB Laser");
    EXPECT_EQ(id.serialNumber, "0A1");
}

TEST(DeviceIdText, IsReadWithLongKeysInAnyCaseAndWithBlanks) {
    const DeviceId id = ReadDeviceId(" manufacturer : Acme ;Model:Ink\t50;\nSerialNumber: 7 ");
    EXPECT_EQ(id.manufacturer, "Acme");
    EXPECT_EQ(id.model, "Ink\t50");
    EXPECT_EQ(id.serialNumber, "7");
    EXPECT_EQ(ReadDeviceId("SERN:8;").serialNumber, "8");
}

TEST(DeviceIdText, TakesTheFirstOfTwoValues) {
    EXPECT_EQ(ReadDeviceId("MDL:one;MDL:two;MODEL:three").model, "one");
    EXPECT_EQ(ReadDeviceId("MDL:;MODEL:three").model, "three");
}

TEST(DeviceIdText, KeepsColonsOfValues) {
    EXPECT_EQ(ReadDeviceId("SN:00:11:22;").serialNumber, "00:11:22");
}

TEST(DeviceIdText, SaysNothingWhenItIsMalformed) {
    for (const char* text : {"", ";", ":", ";;;:;", "MDL", "MDL;", "XMDL:a;", "MDL:", "=MDL:a"}) {
        const DeviceId id = ReadDeviceId(text);
        EXPECT_EQ(id.manufacturer + id.model + id.serialNumber, "") << text;
    }
}

}  // namespace

}  // namespace PrinterAdapter

// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterDiscoverAPI/usb/windows/usb_device_path.h"

#include <gtest/gtest.h>

namespace PrinterDiscoverAPI {

namespace {

constexpr const wchar_t* kClass = L"#{28d78fad-5a12-11d1-ae5b-0000f803a8c2}";

std::optional<UsbPrinter> Printer(const std::wstring& start) {
    return UsbPrinterOfPath(start + kClass);
}

TEST(UsbDevicePath, HasTheHardwareIdentifierInCapitals) {
    const auto printer = Printer(L"\\\\?\\usb#vid_04f9&pid_00ab#000a1b");
    ASSERT_TRUE(printer);
    EXPECT_EQ(printer->hardwareId, L"VID_04F9&PID_00AB");
    EXPECT_EQ(printer->bus, 0);
}

TEST(UsbDevicePath, IsReadWithAnyPrefixAndInAnyCase) {
    const auto printer = Printer(L"\\\\?\\USB#VID_04F9&PID_00AB#000A1B");
    const auto stored = Printer(L"##?#USB#VID_04F9&PID_00AB#000A1B");
    const auto plain = Printer(L"usb#vid_04f9&pid_00ab&rev_0100#000a1b");
    ASSERT_TRUE(printer && stored && plain);
    EXPECT_EQ(printer->devicePath, stored->devicePath);
    EXPECT_EQ(printer->devicePath, plain->devicePath);
    EXPECT_EQ(Printer(L"\\\\?\\usb#vid_04f9&pid_00ab#000a1b")->path, printer->path);
}

TEST(UsbDevicePath, TellsDevicesOfOneModelApart) {
    EXPECT_NE(Printer(L"\\\\?\\usb#vid_04f9&pid_00ab#1")->devicePath,
              Printer(L"\\\\?\\usb#vid_04f9&pid_00ab#2")->devicePath);
    EXPECT_NE(Printer(L"\\\\?\\usb#vid_04f9&pid_00ab&mi_01#6&1a&0&0001")->devicePath,
              Printer(L"\\\\?\\usb#vid_04f9&pid_00ab&mi_01#6&1b&0&0001")->devicePath);
}

TEST(UsbDevicePath, GivesTheFunctionsOfOneDeviceTheSameDevice) {
    const auto one = Printer(L"\\\\?\\usb#vid_04f9&pid_00ab&mi_00#6&1a2b&0&0000");
    const auto other = Printer(L"\\\\?\\usb#vid_04f9&pid_00ab&mi_02#6&1a2b&0&0002");
    ASSERT_TRUE(one && other);
    EXPECT_EQ(one->devicePath, other->devicePath);
    EXPECT_NE(one->path, other->path);
}

TEST(UsbDevicePath, IsNothingForWhatIsNoUsbDevice) {
    for (const wchar_t* path :
         {L"", L"\\\\?\\", L"\\\\?\\usb", L"\\\\?\\root#printer#0", L"\\\\?\\usb#vid_04f9#0",
          L"\\\\?\\usb#vid_04f9&pid_00a#0", L"\\\\?\\usb#vid_04fg&pid_00ab#0",
          L"\\\\?\\usbprint#vid_04f9&pid_00ab#0", L"##", L"\u20ac#vid_04f9&pid_00ab#0"}) {
        EXPECT_FALSE(Printer(path)) << testing::PrintToString(path);
    }
    EXPECT_FALSE(UsbPrinterOfPath(L"\\\\?\\usb#vid_04f9&pid_00ab"));
}

}  // namespace

}  // namespace PrinterDiscoverAPI

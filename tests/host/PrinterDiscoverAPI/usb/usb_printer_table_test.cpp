// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterDiscoverAPI/usb/usb_printer_table.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace PrinterDiscoverAPI {

static bool operator==(const UsbChange& one, const UsbChange& other) {
    return one.state == other.state && one.hardwareId == other.hardwareId;
}

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const UsbPrinter kFirst{"/usb1/1-1/1-1:1.0", "/usb1/1-1", L"VID_0001&PID_0001", 1};
const UsbPrinter kSecondOfFirst{"/usb1/1-1/1-1:1.1", "/usb1/1-1", L"VID_0001&PID_0001", 1};
const UsbPrinter kOther{"/usb1/1-2/1-2:1.0", "/usb1/1-2", L"VID_0002&PID_0002", 1};
const UsbChange kFirstCame{PrinterUsbApiStruct::DEVICE_STATE_ARRIVED, L"VID_0001&PID_0001"};
const UsbChange kFirstWent{PrinterUsbApiStruct::DEVICE_STATE_REMOVED, L"VID_0001&PID_0001"};
const UsbChange kOtherCame{PrinterUsbApiStruct::DEVICE_STATE_ARRIVED, L"VID_0002&PID_0002"};
const UsbChange kOtherWent{PrinterUsbApiStruct::DEVICE_STATE_REMOVED, L"VID_0002&PID_0002"};

TEST(UsbPrinterTable, TakesAnInterfaceThatIsThereForTheArrivalOfItsDevice) {
    UsbPrinterTable table;
    EXPECT_THAT(table.Add(kFirst), ElementsAre(kFirstCame));
    EXPECT_THAT(table.Add(kFirst), IsEmpty());
    EXPECT_THAT(table.Add(kSecondOfFirst), IsEmpty());
}

TEST(UsbPrinterTable, ADeviceIsGoneWithItsLastInterface) {
    UsbPrinterTable table;
    table.Add(kFirst);
    table.Add(kSecondOfFirst);
    EXPECT_THAT(table.Remove(kFirst.path), IsEmpty());
    EXPECT_THAT(table.Remove(kFirst.path), IsEmpty());
    EXPECT_THAT(table.Remove(kSecondOfFirst.path), ElementsAre(kFirstWent));
}

TEST(UsbPrinterTable, ADeviceThatIsRemovedTakesItsInterfacesWithIt) {
    UsbPrinterTable table;
    table.Add(kFirst);
    table.Add(kSecondOfFirst);
    table.Add(kOther);
    EXPECT_THAT(table.Remove(kFirst.devicePath), ElementsAre(kFirstWent));
    EXPECT_THAT(table.Remove(kOther.path), ElementsAre(kOtherWent));
}

TEST(UsbPrinterTable, TheRemovalOfWhatIsNotKnownChangesNothing) {
    UsbPrinterTable table;
    table.Add(kFirst);
    EXPECT_THAT(table.Remove("/usb1"), IsEmpty());
    EXPECT_THAT(table.Remove(""), IsEmpty());
    EXPECT_THAT(table.Add(kFirst), IsEmpty());
}

TEST(UsbPrinterTable, AnotherDeviceInTheSamePlaceHasReplacedTheFormer) {
    UsbPrinterTable table;
    table.Add(kFirst);
    UsbPrinter other = kOther;
    other.path = kFirst.path;
    other.devicePath = kFirst.devicePath;
    EXPECT_THAT(table.Add(other), ElementsAre(kFirstWent, kOtherCame));
}

TEST(UsbPrinterTable, ANewListChangesOnlyWhatIsDifferent) {
    UsbPrinterTable table;
    EXPECT_THAT(table.Replace({kFirst, kSecondOfFirst}), ElementsAre(kFirstCame));
    EXPECT_THAT(table.Replace({kSecondOfFirst}), IsEmpty());
    EXPECT_THAT(table.Replace({kOther}), ElementsAre(kFirstWent, kOtherCame));
    EXPECT_THAT(table.Replace({kOther}), IsEmpty());
    EXPECT_THAT(table.Replace({}), ElementsAre(kOtherWent));
}

}  // namespace

}  // namespace PrinterDiscoverAPI

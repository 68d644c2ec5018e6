// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterAdapter/device_uri.h"

#include <gtest/gtest.h>

namespace PrinterAdapter {

namespace {

TEST(DeviceUriText, OfAUsbPrinterHasManufacturerModelAndSerialNumber) {
    const DeviceUri uri =
        ReadDeviceUri("usb://Acme%20Inc/USB%20Laser%2F2?serial=A%26B&interface=1");
    EXPECT_EQ(uri.scheme, "usb");
    EXPECT_EQ(uri.host, "Acme Inc");
    EXPECT_EQ(uri.path, "USB Laser/2");
    EXPECT_EQ(uri.Parameter("serial"), "A&B");
    EXPECT_EQ(uri.Parameter("interface"), "1");
    EXPECT_EQ(uri.Parameter("erial"), "");
}

TEST(DeviceUriText, OfADnssdPrinterHasTheServicesNameAndUuid) {
    const DeviceUri uri = ReadDeviceUri("DNSSD://Laser%20%5bLab%5d._ipp._tcp.local./cups?uuid=1-2");
    EXPECT_EQ(uri.scheme, "dnssd");
    EXPECT_EQ(uri.host, "Laser [Lab]._ipp._tcp.local.");
    EXPECT_EQ(uri.path, "cups");
    EXPECT_EQ(uri.Parameter("uuid"), "1-2");
}

TEST(DeviceUriText, LeavesOutNameAndPassPhraseAndPort) {
    EXPECT_EQ(ReadDeviceUri("ipp://user:se@cret@printer.example:631/ipp").host, "printer.example");
    EXPECT_EQ(ReadDeviceUri("socket://192.0.2.1:9100").host, "192.0.2.1");
    EXPECT_EQ(ReadDeviceUri("ipp://[fe80::1%25eth0]:631/ipp").host, "fe80::1%eth0");
}

TEST(DeviceUriText, MayHaveNoHost) {
    const DeviceUri uri = ReadDeviceUri("file:/dev/null");
    EXPECT_EQ(uri.scheme, "file");
    EXPECT_EQ(uri.host, "");
    EXPECT_EQ(uri.path, "dev/null");
}

TEST(DeviceUriText, KeepsWhatIsNoPercentSequence) {
    EXPECT_EQ(ReadDeviceUri("usb://A/50%").path, "50%");
    EXPECT_EQ(ReadDeviceUri("usb://A/5%0").path, "5%0");
    EXPECT_EQ(ReadDeviceUri("usb://A/%zz%41").path, "%zzA");
    EXPECT_EQ(ReadDeviceUri("usb://A/a+b").path, "a+b");
}

TEST(DeviceUriText, IsEmptyWhenItIsMalformed) {
    EXPECT_EQ(ReadDeviceUri("").scheme, "");
    EXPECT_EQ(ReadDeviceUri("no scheme").scheme, "");
    for (const char* text : {"usb:", "usb://", "usb:///", "usb://?", "usb://[", "usb://[/x?&=&"}) {
        const DeviceUri uri = ReadDeviceUri(text);
        EXPECT_EQ(uri.scheme, "usb") << text;
        EXPECT_EQ(uri.host, "") << text;
        EXPECT_EQ(uri.Parameter("serial"), "") << text;
    }
}

}  // namespace

}  // namespace PrinterAdapter

// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "DeviceDiscover/printer_sdk.h"
#include "DeviceDiscover/usb.h"
#include "tests/host/PrinterDiscoverAPI/usb/registered_usb_windows.h"
#include "tests/support/recording_log.h"

namespace PrinterAdapterTest {

namespace {

using PrinterSdk::PrinterProperty;
using UsbTest::RegisteredPrinter;

std::map<std::wstring, PrinterProperty> InstalledByName() {
    std::vector<PrinterProperty> printers;
    PrinterSdk::IPrinterAdapter::GetInstance().GetPrinterListProvider()->GetPrinterList(printers);
    std::map<std::wstring, PrinterProperty> byName;
    for (const PrinterProperty& printer : printers) {
        EXPECT_TRUE(byName.emplace(printer.name, printer).second);
    }
    return byName;
}

std::wstring Own(const std::wstring& text) {
    return text + std::to_wstring(GetCurrentProcessId());
}

// A printer that is installed on that port, as long as the object lives.
class InstalledPrinter {
public:
    InstalledPrinter(const std::wstring& kind, const std::wstring& port)
        : name(Own(L"test " + kind + L' ')) {
        Set(L"Name", name);
        Set(L"Port", port);
        Set(L"Printer Driver", L"Test Driver");
    }
    InstalledPrinter(const InstalledPrinter&) = delete;
    InstalledPrinter& operator=(const InstalledPrinter&) = delete;
    ~InstalledPrinter() { EXPECT_EQ(RegDeleteTreeW(HKEY_LOCAL_MACHINE, Key().c_str()), 0); }

    PrinterProperty Property() const {
        auto printers = InstalledByName();
        EXPECT_EQ(printers.count(name), 1U);
        return printers[name];
    }

private:
    std::wstring Key() const {
        return L"System\\CurrentControlSet\\Control\\Print\\Printers\\" + name;
    }
    void Set(const wchar_t* value, const std::wstring& text) const {
        EXPECT_EQ(RegSetKeyValueW(HKEY_LOCAL_MACHINE, Key().c_str(), value, REG_SZ, text.c_str(),
                                  static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t))),
                  ERROR_SUCCESS);
    }

    const std::wstring name;
};

// A number for a USB printer port that no other running test has.
DWORD OwnPortNumber() {
    return 1000 + GetCurrentProcessId();
}

std::wstring OwnPort() {
    return L"USB" + std::to_wstring(OwnPortNumber());
}

TEST(InstalledPrinters, AreTheSpoolersQueues) {
    const auto printers = InstalledByName();
    for (const wchar_t* name : {L"file_queue", L"net_dnssd", L"net_ipp", L"net_same_as_usb",
                                L"usb_by_id", L"usb_by_uri"}) {
        EXPECT_EQ(printers.count(name), 1U) << testing::PrintToString(name);
    }
    EXPECT_THAT(RecordingLog::Lines(), testing::IsEmpty());
}

TEST(InstalledPrinters, HaveWhatTheSpoolerSaysOfThem) {
    const PrinterProperty printer = InstalledByName()[L"usb_by_id"];
    EXPECT_EQ(printer.description, L"Printer \u00e9 usb_by_id");
    EXPECT_EQ(printer.location, L"Lab");
    EXPECT_EQ(printer.driverName, L"usb_by_id");
    EXPECT_EQ(printer.portName, L"CUPS:usb_by_id");
    EXPECT_EQ(printer.state, L"idle");
    // The port says nothing of where the printer is.
    EXPECT_EQ(printer.connectType, 0);
    EXPECT_EQ(printer.serialNumber, L"");
}

TEST(InstalledPrinters, OnUsbHaveTheDevicesSerialNumber) {
    RegisteredPrinter device(L"USB\\" + UsbTest::OwnHardwareId() + L"\\0A1B2C");
    device.SetPort(L"USB", OwnPortNumber());
    const InstalledPrinter printer(L"usb", OwnPort());
    EXPECT_EQ(printer.Property().connectType, PrinterSdk::kConnectTypeUsb);
    EXPECT_EQ(printer.Property().portName, OwnPort());
    EXPECT_EQ(printer.Property().serialNumber, L"0A1B2C");
    EXPECT_EQ(printer.Property().driverName, L"Test Driver");
    EXPECT_EQ(printer.Property().modelID, L"");
}

TEST(InstalledPrinters, OnUsbHaveNoSerialNumberWhenTheDeviceHasNone) {
    RegisteredPrinter device(L"USB\\" + UsbTest::OwnHardwareId() + L"\\6&1A2B&0&1");
    device.SetPort(L"USB", OwnPortNumber());
    const InstalledPrinter printer(L"usb", OwnPort());
    EXPECT_EQ(printer.Property().connectType, PrinterSdk::kConnectTypeUsb);
    EXPECT_EQ(printer.Property().serialNumber, L"");
}

TEST(InstalledPrinters, OnUsbHaveNoSerialNumberWhenTheDeviceBehindAFunctionIsNotKnown) {
    RegisteredPrinter device(L"USB\\" + UsbTest::OwnHardwareId() + L"&MI_01\\6&1A2B&0&0001");
    device.SetPort(L"USB", OwnPortNumber());
    const InstalledPrinter printer(L"usb", OwnPort());
    EXPECT_EQ(printer.Property().connectType, PrinterSdk::kConnectTypeUsb);
    EXPECT_EQ(printer.Property().serialNumber, L"");
}

TEST(InstalledPrinters, OnUsbHaveNoSerialNumberWhenTheyAreUnplugged) {
    RegisteredPrinter device(L"USB\\" + UsbTest::OwnHardwareId() + L"\\0A1B2C");
    device.SetPort(L"USB", OwnPortNumber());
    device.SetPresent(false);
    const InstalledPrinter printer(L"usb", OwnPort());
    EXPECT_EQ(printer.Property().connectType, PrinterSdk::kConnectTypeUsb);
    EXPECT_EQ(printer.Property().serialNumber, L"");
}

TEST(InstalledPrinters, OnSeveralPortsAreOnTheFirst) {
    const InstalledPrinter printer(L"pool", OwnPort() + L",LPT1:");
    EXPECT_EQ(printer.Property().connectType, PrinterSdk::kConnectTypeUsb);
    EXPECT_EQ(printer.Property().portName, OwnPort());
}

TEST(InstalledPrinters, OnTheNetworkHaveTheirPortInPlaceOfASerialNumber) {
    const InstalledPrinter printer(L"net", L"IP_192.0.2.1");
    EXPECT_EQ(printer.Property().connectType, PrinterSdk::kConnectTypeWlan);
    EXPECT_EQ(printer.Property().serialNumber, L"IP_192.0.2.1");
}

TEST(InstalledPrinters, OfAnotherKindAreNeitherOnUsbNorOnTheNetwork) {
    const InstalledPrinter printer(L"file", L"FILE:");
    EXPECT_EQ(printer.Property().connectType, 0);
    EXPECT_EQ(printer.Property().serialNumber, L"");
}

// No network printer's serial number is known, so that none on USB is known to be on the network.
TEST(InstalledPrinters, OnUsbAreKnownToTheFacadeAndNeverToBeOnTheNetwork) {
    using PrinterDeviceDiscoverSdk::DeviceUsbInfo;
    const std::wstring serialNumber = Own(L"FACADE");
    RegisteredPrinter device(L"USB\\" + UsbTest::OwnHardwareId() + L'\\' + serialNumber);
    device.SetPort(L"USB", OwnPortNumber());
    const InstalledPrinter onUsb(L"usb", OwnPort());
    const InstalledPrinter onNetwork(L"net", L"IP_" + serialNumber);
    std::vector<DeviceUsbInfo> devices;
    EXPECT_EQ(
        PrinterDeviceDiscoverSdk::DiscoverUsbInterface::GetInstance().GetDeviceNoConfigNet(devices),
        0);
    const std::string wanted(serialNumber.begin(), serialNumber.end());
    const auto isWanted = [&](const DeviceUsbInfo& one) { return one.deviceSN == wanted; };
    const auto found = std::find_if(devices.begin(), devices.end(), isWanted);
    ASSERT_NE(found, devices.end());
    EXPECT_FALSE(found->isNetConfigured);
    EXPECT_EQ(std::count_if(devices.begin(), devices.end(), isWanted), 1);
}

}  // namespace

}  // namespace PrinterAdapterTest

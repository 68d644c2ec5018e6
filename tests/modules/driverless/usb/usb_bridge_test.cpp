// SPDX-License-Identifier: Apache-2.0

// Which of this host's programs is the bridge to a printer on USB, and the USB entry points that
// need no device.

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <sstream>
#include <string>
#include <vector>

#include "VendorSdk/entry_points.h"
#include "modules/driverless/common/results.h"
#include "modules/driverless/usb/listening_ports.h"
#include "modules/driverless/usb/usb_bridge.h"
#include "modules/driverless/usb/usb_printer.h"

VENDORSDK_EXPORT(USBWifiScan);
VENDORSDK_EXPORT(PrinterUSBNetConfigEvent);

namespace Driverless {

static void PrintTo(const ListeningPort& port, std::ostream* output) {
    *output << port.port << " of " << port.owner;
}

static void PrintTo(const PortRange& range, std::ostream* output) {
    *output << range.first << " to " << range.last;
}

namespace {

const std::string kUuid = "7e21a7d4-0000-4000-8000-0000000000ab";

std::vector<ListeningPort> PortsIn(const std::string& rows) {
    std::istringstream table(
        "  sl  local_address rem_address   st tx_queue rx_queue tr tm->when retrnsmt   uid  "
        "timeout inode\n" +
        rows);
    return LocalListeningPortsIn(table);
}

std::string Row(const std::string& address, const std::string& state, unsigned owner) {
    return "   0: " + address + " 00000000:0000 " + state + " 00000000:00000000 00:00000000 " +
           "00000000  " + std::to_string(owner) + "        0 1 1 0000000000000000 100 0 0 10 0\n";
}

using Ports = std::vector<ListeningPort>;

TEST(LocalListeningPortsIn, TakesThoseThatListenOnTheLoopbackOrEverywhere) {
    EXPECT_EQ(PortsIn(Row("0100007F:EA60", "0A", 0) + Row("00000000:EA61", "0A", 1000)),
              (Ports{{60000, 0}, {60001, 1000}}));
    EXPECT_EQ(PortsIn(Row("00000000000000000000000000000000:EA60", "0A", 0) +
                      Row("0000000000000000FFFF00000100007F:EA61", "0A", 7)),
              (Ports{{60000, 0}, {60001, 7}}));
}

TEST(LocalListeningPortsIn, LeavesOutOtherAddressesAndWhatDoesNotListen) {
    EXPECT_EQ(PortsIn(Row("0200A8C0:EA60", "0A", 0) + Row("0100007F:EA61", "01", 0) +
                      Row("00000000000000000000000001000000:EA62", "0A", 0)),
              Ports());
}

TEST(LocalListeningPortsIn, SurvivesWhatIsNoTable) {
    EXPECT_EQ(PortsIn("\n0\n: : : :\n   0: 0100007F 0 0A\n   0: 0100007F:EA60 0 0A 0 0 0 x\n"),
              Ports());
}

TEST(PortRangeFrom, TakesARangeOrAPort) {
    EXPECT_EQ(PortRangeFrom("61000-61999"), (PortRange{61000, 61999}));
    EXPECT_EQ(PortRangeFrom("61000"), (PortRange{61000, 61000}));
    for (const char* text : {"", "x", "0", "61000-", "-61000", "2-1", "61000-61999x", "70000"}) {
        EXPECT_EQ(PortRangeFrom(text), (PortRange{60000, 65535})) << text;
    }
}

using Numbers = std::vector<std::uint16_t>;

TEST(BridgePorts, AreInTheRangeAndBelongToRootOrTheUser) {
    EXPECT_EQ(BridgePorts({{60002, 5}, {59999, 0}, {60000, 0}, {60001, 6}, {60003, 0}},
                          {60000, 60002}, 5),
              (Numbers{60000, 60002}));
}

TEST(BridgePorts, AreNoPortsThatSomebodyElseHasToo) {
    EXPECT_EQ(BridgePorts({{60000, 0}, {60001, 0}, {60000, 6}, {60001, 0}}, {}, 5),
              (Numbers{60001}));
}

TEST(BridgePorts, AreNotCountless) {
    Ports listening;
    for (std::uint16_t port = 60000; port < 60100; ++port) {
        listening.push_back({port, 0});
    }
    EXPECT_EQ(BridgePorts(listening, {}, 0).size(), 64U);
}

BridgedPrinter Bridged(std::uint16_t port, const std::string& serialNumber,
                       const std::string& makeAndModel, const std::string& deviceId = {},
                       const std::string& uuid = {}) {
    PrinterAttributes attributes;
    attributes.serialNumber = serialNumber;
    attributes.makeAndModel = makeAndModel;
    attributes.deviceId = deviceId;
    attributes.uuid = uuid;
    return {Describe({"USB", {}, ServiceKind::Ipp, -1}, {"localhost", "127.0.0.1", port, {}},
                     attributes),
            attributes};
}

VendorSdk::DeviceInfo OnUsb(const std::string& deviceId) {
    UsbPrinter printer;
    printer.place = "1-1";
    printer.deviceId = deviceId;
    return ToRecord(printer);
}

constexpr int kNone = 0;

// The port of the one that is chosen; the result, negative, when there is none.
int Chosen(const std::vector<BridgedPrinter>& printers, const VendorSdk::DeviceInfo& record) {
    const BridgeSearch search = ChooseBridged(printers, record);
    EXPECT_EQ(search.result == kOk, search.found.has_value());
    return search.found ? search.found->printer.port : kNone - search.result;
}

TEST(ChooseBridged, TakesThePrinterOfThatSerialNumber) {
    const auto record = OnUsb("MFG:Acme;MDL:9;SN:B;");
    EXPECT_EQ(
        Chosen({Bridged(1, "A", "Acme 9"), Bridged(2, "B", "Other"), Bridged(3, "", "Acme 9")},
               record),
        2);
    EXPECT_EQ(
        Chosen({Bridged(1, "", "Acme 9", "SN:A;"), Bridged(2, "", "Acme 9", "SN:B;")}, record), 2);
}

TEST(ChooseBridged, TakesThePrinterOfThatUuid) {
    EXPECT_EQ(Chosen({Bridged(1, "A", "Acme 9"), Bridged(2, "B", "Other", "", "urn:uuid:" + kUuid)},
                     OnUsb("MFG:Acme;MDL:9;SN:" + kUuid + ";")),
              2);
}

TEST(ChooseBridged, TakesNoPrinterOfAnotherSerialNumber) {
    const auto record = OnUsb("MFG:Acme;MDL:9;SN:B;");
    EXPECT_EQ(Chosen({Bridged(1, "A", "Acme 9")}, record), -kNotReached);
    EXPECT_EQ(Chosen({}, record), -kNotReached);
}

UsbPrinter Plugged(const std::string& place, const std::string& serialNumber,
                   const std::string& deviceId) {
    UsbPrinter printer;
    printer.place = place;
    printer.serialNumber = serialNumber;
    printer.deviceId = deviceId;
    return printer;
}

// The port of the bridged one that is chosen for the first of those plugged in.
int ChosenForFirst(const std::vector<BridgedPrinter>& bridged,
                   const std::vector<UsbPrinter>& plugged) {
    UsbOtherNames names;
    names.Remember(1, 2, plugged);
    const auto record = ToRecord(plugged.front());
    const BridgeSearch search = ChooseBridged(bridged, record, names.Of(record));
    return search.found ? search.found->printer.port : kNone - search.result;
}

const std::string kOfModel = "MFG:Acme;MDL:9;SN:X;";

TEST(ChooseBridged, TakesThePrinterThatSaysTheSerialNumberOfItsDeviceId) {
    const UsbPrinter printer = Plugged("1-1", "D1", kOfModel);
    EXPECT_EQ(ChosenForFirst({Bridged(1, "", "Acme 9", kOfModel)}, {printer}), 1);
    EXPECT_EQ(ChosenForFirst({Bridged(1, "Y", "Acme 9"), Bridged(2, "X", "Acme 9")}, {printer}), 2);
    EXPECT_EQ(ChosenForFirst({Bridged(1, "X", "Acme 9"), Bridged(2, "D1", "Acme 9")}, {printer}), 2)
        << "its own serial number goes first";
    EXPECT_EQ(ChosenForFirst({Bridged(1, "X", "Acme 8")}, {printer}), -kNotReached)
        << "another model's";
}

TEST(ChooseBridged, DoesNotGuessWhichPrinterHasASerialNumberOfADeviceId) {
    const UsbPrinter printer = Plugged("1-1", "D1", kOfModel);
    const std::vector bridged{Bridged(1, "", "Acme 9", kOfModel)};
    EXPECT_EQ(ChosenForFirst(bridged, {printer, Plugged("1-2", "D2", kOfModel)}), -kSeveralAlike);
    EXPECT_EQ(ChosenForFirst(bridged, {printer, Plugged("1-2", "X", "MFG:Acme;MDL:9;")}),
              -kSeveralAlike);
    EXPECT_EQ(ChosenForFirst(bridged, {printer, Plugged("1-2", "D2", "MFG:Acme;MDL:9;SN:Y;")}), 1);
    EXPECT_EQ(ChosenForFirst({bridged[0], Bridged(2, "X", "Acme 9")}, {printer}), -kSeveralAlike);
}

TEST(UsbOtherNames, AreThoseOfThePrintersThatAreThereNow) {
    UsbOtherNames names;
    const UsbPrinter printer = Plugged("1-1", "D1", kOfModel);
    names.Remember(1, 2, {printer, Plugged("1-2", "D2", kOfModel)});
    EXPECT_TRUE(names.Of(ToRecord(printer)).isShared);
    names.Remember(1, 2, {printer});
    EXPECT_FALSE(names.Of(ToRecord(printer)).isShared);
    EXPECT_EQ(names.Of(ToRecord(printer)).text, "X");
    EXPECT_EQ(names.Of(ToRecord(Plugged("1-3", "D1", kOfModel))).text, "") << "another place";
    names.Remember(1, 2, {Plugged("1-1", "X", kOfModel)});
    EXPECT_EQ(names.Of(ToRecord(printer)).text, "") << "another printer";
    names.Remember(1, 2, {});
    EXPECT_EQ(names.Of(ToRecord(Plugged("1-1", "X", kOfModel))).text, "");
}

TEST(UsbOtherNames, AreNotCountless) {
    UsbOtherNames names;
    const UsbPrinter printer = Plugged("1-1", "D1", kOfModel);
    for (std::uint16_t model = 0; model < 64; ++model) {
        names.Remember(1, model, {Plugged("1-2", "D2", kOfModel)});
    }
    names.Remember(2, 0, {printer});
    EXPECT_EQ(names.Of(ToRecord(printer)).text, "");
}

TEST(ChooseBridged, GoesByTheModelWhereThePrinterSaysNoSerialNumberOverIpp) {
    const auto record = OnUsb("MFG:Acme;MDL:9;SN:B;");
    EXPECT_EQ(
        Chosen({Bridged(1, "A", "Acme 9"), Bridged(2, "", "ACME 9"), Bridged(3, "", "Acme 8")},
               record),
        2);
    EXPECT_EQ(Chosen({Bridged(2, "", "Acme Nine Series", "MFG:Acme;MDL:9;")}, record), 2);
    EXPECT_EQ(Chosen({Bridged(2, "", "Acme 8", "MFG:Acme;MDL:8;")}, record), -kNotReached);
}

TEST(ChooseBridged, GoesByTheModelWhereThePrinterSaysNoSerialNumberOverUsb) {
    const auto record = OnUsb("MFG:Acme;MDL:9;");
    EXPECT_EQ(Chosen({Bridged(1, "A", "Acme 8"), Bridged(2, "B", "Acme 9")}, record), 2);
}

TEST(ChooseBridged, DoesNotGuessBetweenPrintersOfOneModel) {
    EXPECT_EQ(
        Chosen({Bridged(1, "A", "Acme 9"), Bridged(2, "B", "Acme 9")}, OnUsb("MFG:Acme;MDL:9;")),
        -kSeveralAlike);
    EXPECT_EQ(
        Chosen({Bridged(1, "", "Acme 9"), Bridged(2, "", "Acme 9")}, OnUsb("MFG:Acme;MDL:9;SN:B;")),
        -kSeveralAlike);
}

TEST(ChooseBridged, DoesNotGuessBetweenPrintersOfOneSerialNumber) {
    const auto record = OnUsb("MFG:Acme;MDL:9;SN:B;");
    EXPECT_EQ(Chosen({Bridged(1, "B", "Acme 9"), Bridged(2, "B", "Acme 9")}, record),
              -kSeveralAlike);
    EXPECT_EQ(Chosen({Bridged(1, "B", "Other"), Bridged(2, "B", "Another")}, record),
              -kSeveralAlike);
    EXPECT_EQ(Chosen({Bridged(1, "B", "Other"), Bridged(2, "B", "Acme 9")}, record), 2)
        << "the model tells them apart";
}

TEST(UsbRecord, SaysWhetherThereIsASerialNumber) {
    EXPECT_TRUE(HasSerialNumber(OnUsb("SN:B;")));
    EXPECT_FALSE(HasSerialNumber(OnUsb("MFG:Acme;")));
    EXPECT_FALSE(HasSerialNumber(VendorSdk::DeviceInfo{}));
}

TEST(UsbRecord, IsNoPlaceOnANetwork) {
    const Printer printer = FromRecord(OnUsb("MFG:Acme;MDL:9;SN:B;"));
    EXPECT_EQ(printer.kind, ServiceKind::None);
    EXPECT_EQ(printer.serialNumber, "B");
    EXPECT_EQ(printer.makeAndModel, "Acme 9");
}

TEST(UsbOperations, RefuseNoRecord) {
    const VendorSdk::DeviceInfo device{};
    VendorSdk::WifiConfigInfo network{0, "Home", "correct-horse"};
    std::int32_t count = 7;
    EXPECT_EQ(PrinterUSBNetConfigEvent(nullptr, &network), kNoRecord);
    EXPECT_EQ(PrinterUSBNetConfigEvent(&device, nullptr), kNoRecord);
    EXPECT_EQ(USBWifiScan(nullptr, 0, &network, &count), kNoRecord);
    EXPECT_EQ(USBWifiScan(&device, 0, nullptr, &count), kNoRecord);
    EXPECT_EQ(USBWifiScan(&device, 0, &network, nullptr), kNoRecord);
    EXPECT_EQ(count, 7);
}

TEST(PrinterUSBNetConfigEvent, SurvivesRecordsWithoutTerminators) {
    setenv("DRIVERLESS_USB_BRIDGE_PORTS", "1", 1);
    VendorSdk::DeviceInfo device;
    VendorSdk::WifiConfigInfo network;
    std::memset(&device, 'x', sizeof device);
    std::memset(&network, 'x', sizeof network);
    EXPECT_EQ(PrinterUSBNetConfigEvent(&device, &network), kNotValid);
    network = {0, "Home", "correct-horse"};
    EXPECT_EQ(PrinterUSBNetConfigEvent(&device, &network), kNoBridge);
}

TEST(USBWifiScan, FindsNothingWithoutWifi) {
    setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere/bus", 1);
    const VendorSdk::DeviceInfo device{};
    VendorSdk::WifiConfigInfo network{};
    std::int32_t count = 7;
    EXPECT_EQ(USBWifiScan(&device, 0, &network, &count), kOk);
    EXPECT_EQ(count, 0);
}

}  // namespace
}  // namespace Driverless

// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterAdapter/print_queue.h"

#include <gtest/gtest.h>

namespace PrinterAdapter {

namespace {

PrintQueue QueueOf(const std::string& deviceUri, const std::string& deviceId = "") {
    PrintQueue queue;
    queue.name = "queue";
    queue.deviceUri = deviceUri;
    queue.deviceId = deviceId;
    queue.uuid = "urn:uuid:0000-queue";
    return queue;
}

TEST(PrintQueue, OnUsbHasSerialNumberAndModelOfItsDeviceUri) {
    const auto printer = PrinterOf(QueueOf("usb://Acme/USB%20Laser?serial=S%201"));
    EXPECT_EQ(printer.connectType, PrinterSdk::kConnectTypeUsb);
    EXPECT_EQ(printer.serialNumber, L"S 1");
    EXPECT_EQ(printer.modelID, L"USB Laser");
    EXPECT_EQ(printer.manufacturer, L"Acme");
    EXPECT_EQ(printer.portName, L"usb");
}

TEST(PrintQueue, PrefersWhatTheDeviceIdentifierSaysButForTheSerialNumber) {
    const auto printer =
        PrinterOf(QueueOf("usb://Acme/Laser?serial=1", "MFG:Acme Inc.;MDL:Laser 2;SN:2;"));
    EXPECT_EQ(printer.serialNumber, L"1") << "the device's own";
    EXPECT_EQ(printer.modelID, L"Laser 2");
    EXPECT_EQ(printer.manufacturer, L"Acme Inc.");
}

TEST(PrintQueue, OnUsbHasTheSerialNumberOfItsDeviceIdentifierWhereItsDeviceUriHasNone) {
    for (const char* const uri : {"usb://Acme/Laser", "usb://Acme/Laser?serial=%20"}) {
        EXPECT_EQ(PrinterOf(QueueOf(uri, "SN:2;")).serialNumber, L"2") << uri;
    }
}

TEST(PrintQueue, OnUsbWithoutASerialNumberHasNone) {
    EXPECT_EQ(PrinterOf(QueueOf("usb://Acme/Laser")).serialNumber, L"");
}

TEST(PrintQueue, OnTheNetworkHasTheSerialNumberOfItsDeviceIdentifier) {
    const auto printer = PrinterOf(QueueOf("socket://192.0.2.1", "MDL:Laser;SN:2;"));
    EXPECT_EQ(printer.connectType, PrinterSdk::kConnectTypeWlan);
    EXPECT_EQ(printer.serialNumber, L"2");
    EXPECT_EQ(printer.modelID, L"Laser");
    EXPECT_EQ(printer.portName, L"192.0.2.1");
}

TEST(PrintQueue, OnTheNetworkWithoutASerialNumberHasThePrintersUuidElseTheQueues) {
    EXPECT_EQ(PrinterOf(QueueOf("dnssd://Laser._ipp._tcp.local/?uuid=1-2")).serialNumber, L"1-2");
    EXPECT_EQ(PrinterOf(QueueOf("ipp://192.0.2.1/ipp/print")).serialNumber, L"0000-queue");
    EXPECT_EQ(PrinterOf(QueueOf("ipp://192.0.2.1/ipp/print")).modelID, L"");
}

TEST(PrintQueue, ThatLeadsToABridgeOfThisHostIsOnUsb) {
    for (const char* const uri :
         {"ipp://localhost:60000/ipp/print", "ipps://127.0.0.1:60001/ipp/print",
          "ipp://[::1]:60000/ipp/print", "dnssd://Laser%20%28USB%29._ipp._tcp.local/?uuid=1-2"}) {
        const auto printer = PrinterOf(QueueOf(uri));
        EXPECT_EQ(printer.connectType, PrinterSdk::kConnectTypeUsb) << uri;
        EXPECT_NE(printer.serialNumber, L"") << uri;
    }
    EXPECT_EQ(PrinterOf(QueueOf("dnssd://Laser%20%28USB%29._ipp._tcp.local/?uuid=1")).serialNumber,
              L"1");
}

TEST(PrintQueue, ThatLeadsToAnotherQueueOrServiceOfThisHostIsOnTheNetwork) {
    for (const char* const uri : {"ipp://localhost:631/printers/other",
                                  "ipp://127.0.0.1/classes/all", "socket://127.0.0.1:9100",
                                  "dnssd://Laser._ipp._tcp.local/", "ipp://192.0.2.1/ipp/print"}) {
        EXPECT_EQ(PrinterOf(QueueOf(uri)).connectType, PrinterSdk::kConnectTypeWlan) << uri;
    }
}

TEST(PrintQueue, OfAnotherKindHasNeither) {
    const auto printer = PrinterOf(QueueOf("file:/dev/null"));
    EXPECT_EQ(printer.connectType, 0);
    EXPECT_EQ(printer.serialNumber, L"");
    EXPECT_EQ(printer.portName, L"file");
}

TEST(PrintQueue, HasTheSpoolersTextsAsWideText) {
    PrintQueue queue = QueueOf("usb://Acme/Caf%C3%A9?serial=%FF");
    queue.description = "\xE6\x97\xA5";
    queue.location = "Lab";
    queue.driverName = "Driver";
    queue.state = "idle";
    const auto printer = PrinterOf(queue);
    EXPECT_EQ(printer.name, L"queue");
    EXPECT_EQ(printer.description, L"\u65e5");
    EXPECT_EQ(printer.location, L"Lab");
    EXPECT_EQ(printer.driverName, L"Driver");
    EXPECT_EQ(printer.state, L"idle");
    EXPECT_EQ(printer.modelID, L"Caf\u00e9");
    EXPECT_EQ(printer.serialNumber, L"\ufffd");
}

}  // namespace

}  // namespace PrinterAdapter

// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterAdapter/port_kind.h"

#include <gtest/gtest.h>

#include "platform/PrinterAdapter/PrinterListProvider.h"

namespace PrinterAdapter {

namespace {

using PrinterSdk::kConnectTypeUsb;
using PrinterSdk::kConnectTypeWlan;

TEST(PortKind, OfADeviceUriFollowsFromItsScheme) {
    EXPECT_EQ(ConnectTypeOfScheme("usb"), kConnectTypeUsb);
    EXPECT_EQ(ConnectTypeOfScheme("ippusb"), kConnectTypeUsb);
    for (const char* scheme :
         {"ipp", "ipps", "http", "https", "dnssd", "mdns", "socket", "lpd", "smb"}) {
        EXPECT_EQ(ConnectTypeOfScheme(scheme), kConnectTypeWlan) << scheme;
    }
    for (const char* scheme : {"", "file", "usbx", "parallel", "serial", "implicitclass"}) {
        EXPECT_EQ(ConnectTypeOfScheme(scheme), kConnectTypeOther) << scheme;
    }
}

TEST(PortKind, OfAUsbPortFollowsFromItsName) {
    EXPECT_EQ(ConnectTypeOfPort(L"USB001", L""), kConnectTypeUsb);
    EXPECT_EQ(ConnectTypeOfPort(L"usb012", L"anything"), kConnectTypeUsb);
    EXPECT_EQ(ConnectTypeOfPort(L"DOT4_001", L""), kConnectTypeUsb);
}

TEST(PortKind, OfANetworkPortFollowsFromItsNameOrItsMonitor) {
    for (const wchar_t* name : {L"IP_192.0.2.1", L"WSD-4f1c-0001", L"\\\\server\\queue",
                                L"http://printer.example/ipp", L"https://printer.example/ipp"}) {
        EXPECT_EQ(ConnectTypeOfPort(name, L""), kConnectTypeWlan) << testing::PrintToString(name);
    }
    EXPECT_EQ(ConnectTypeOfPort(L"192.0.2.1", L"TCPMON.DLL Standard TCP/IP Port"),
              kConnectTypeWlan);
    EXPECT_EQ(ConnectTypeOfPort(L"Lab", L"WSD Port Monitor WSD-Port"), kConnectTypeWlan);
}

TEST(PortKind, OfOtherPortsIsNeither) {
    for (const wchar_t* name : {L"", L"LPT1:", L"COM1:", L"FILE:", L"nul:", L"PORTPROMPT:"}) {
        EXPECT_EQ(ConnectTypeOfPort(name, L"Local Port"), kConnectTypeOther)
            << testing::PrintToString(name);
    }
}

}  // namespace

}  // namespace PrinterAdapter

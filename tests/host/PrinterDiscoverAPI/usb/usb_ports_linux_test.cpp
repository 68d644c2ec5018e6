// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstdio>
#include <iomanip>
#include <map>
#include <sstream>
#include <thread>

#include "platform/PrinterDiscoverAPI/PrinterUsbControl.h"
#include "tests/host/PrinterDiscoverAPI/usb/usb_reports.h"
#include "tests/support/recording_log.h"
#include "tests/support/simulated_usb.h"

namespace RecordingLog {

static void PrintTo(const Line& line, std::ostream* output) {
    *output << line.level << ' ' << testing::PrintToString(line.text);
}

}  // namespace RecordingLog

namespace UsbTest {

namespace {

using Ports = std::map<std::wstring, std::pair<int, int>>;

class UsbPorts : public testing::Test {
protected:
    UsbPorts() { RecordingLog::Clear(); }

    static Ports Current() {
        Ports ports{{L"left over", {1, 1}}};
        PrinterUsbDeviceManager::GetInstance().GetCurrentPrinterPorts(ports);
        return ports;
    }

    SimulatedUsb usb;
};

// What another program finds out about the same devices.
Ports PortsAsLsusbSeesThem() {
    Ports ports;
    std::istringstream lines(RunAndRead("lsusb -v 2>/dev/null"));
    std::wstring deviceId;
    int bus = 0;
    for (std::string line; std::getline(lines, line);) {
        unsigned vendorId = 0;
        unsigned productId = 0;
        unsigned interfaceClass = 0;
        if (std::sscanf(line.c_str(), "Bus %d Device %*d: ID %x:%x", &bus, &vendorId, &productId) ==
            3) {
            std::wostringstream text;
            text << std::hex << std::uppercase << std::setfill(L'0') << L"VID_" << std::setw(4)
                 << vendorId << L"&PID_" << std::setw(4) << productId;
            deviceId = text.str();
        } else if (std::sscanf(line.c_str(), " bInterfaceClass %u", &interfaceClass) == 1 &&
                   interfaceClass == 7 && !deviceId.empty()) {
            ++ports.try_emplace(deviceId, 0, bus).first->second.first;
            deviceId.clear();  // counted
        }
    }
    return ports;
}

TEST_F(UsbPorts, AreNoneWithoutAPrinter) {
    EXPECT_EQ(Current(), Ports());
}

TEST_F(UsbPorts, AreNotKnownWhereTheSystemShowsNoUsb) {
    usb.Hide();
    std::array<char, 200> problem{};
    for (int time = 0; time < 2; ++time) {
        EXPECT_EQ(Current(), Ports());
        EXPECT_NE(PrinterUsbProblem(problem.data(), problem.size()), 0);
    }
    EXPECT_STREQ(problem.data(),
                 "the devices cannot be listed: there is no /sys/bus/usb, as in a container, or "
                 "where the kernel has no USB");
    EXPECT_EQ(RecordingLog::Lines().size(), 1U) << "told once";
}

TEST_F(UsbPorts, HaveThePrintersIdentifierInCapitalsAndItsBus) {
    usb.Plug({"3-2", 0x04f9, 0xabcd});
    EXPECT_EQ(Current(), (Ports{{L"VID_04F9&PID_ABCD", {1, 3}}}));
}

TEST_F(UsbPorts, AreReadFromTheDevicesFilesWhereTheKernelDoesNotNameTheProduct) {
    usb.Plug({.place = "1-1", .vendorId = 0x00ff, .productId = 0xe, .hasProductProperty = false});
    EXPECT_EQ(Current(), (Ports{{L"VID_00FF&PID_000E", {1, 1}}}));
}

TEST_F(UsbPorts, CountPrintersOfOneModel) {
    usb.Plug({"2-1", 0x1209, 1});
    usb.Plug({"1-4", 0x1209, 1});
    usb.Plug({"1-3", 0x1209, 2});
    EXPECT_EQ(Current(), (Ports{{L"VID_1209&PID_0001", {2, 1}}, {L"VID_1209&PID_0002", {1, 1}}}));
}

TEST_F(UsbPorts, CountADeviceOfSeveralInterfacesOnce) {
    usb.Plug({"1-1", 0x1209, 1, {0xff, 7, 7}});
    EXPECT_EQ(Current(), (Ports{{L"VID_1209&PID_0001", {1, 1}}}));
}

TEST_F(UsbPorts, LeaveOutWhatIsNoPrinter) {
    usb.Plug({"1-1", 0x1209, 1, {8}});
    usb.Plug({"1-2", 0x1209, 2, {3, 0x77, 0x70}});
    EXPECT_EQ(Current(), Ports());
}

TEST_F(UsbPorts, LeaveOutAPrinterThatHasBeenUnplugged) {
    const SimulatedDevice printer{"1-1", 0x1209, 1};
    usb.Plug(printer);
    usb.Plug({"1-2", 0x1209, 2});
    usb.Unplug(printer);
    EXPECT_EQ(Current(), (Ports{{L"VID_1209&PID_0002", {1, 1}}}));
}

TEST_F(UsbPorts, AreWhatLsusbSees) {
    usb.Plug({"1-1", 0x1209, 0x000a});
    usb.Plug({"1-2", 0x1209, 0x000a, {7, 0xff}});
    usb.Plug({"2-1", 0x04f9, 0xbeef, {0xff, 7}});
    usb.Plug({"2-2", 0x1d6b, 0x0104, {8}});
    const Ports seen = PortsAsLsusbSeesThem();
    EXPECT_EQ(seen.size(), 2U);
    EXPECT_EQ(Current(), seen);
}

TEST_F(UsbPorts, LoseNoOtherPrinterWhileOneComesAndGoes) {
    const SimulatedDevice restless{.place = "1-1", .productId = 2, .hasProductProperty = false};
    usb.Plug({"1-2", 0x1209, 1});
    std::atomic<bool> isOver = false;
    std::thread reader([&isOver] {
        while (!isOver) {
            EXPECT_EQ(Current().count(L"VID_1209&PID_0001"), 1U);
        }
    });
    for (int round = 0; round < 50; ++round) {
        usb.Plug(restless);
        usb.Unplug(restless);
    }
    isOver = true;
    reader.join();
    EXPECT_THAT(RecordingLog::Lines(), testing::IsEmpty());
}

}  // namespace

}  // namespace UsbTest

// SPDX-License-Identifier: Apache-2.0

#include "tests/support/broker_test.h"

#include <cstdio>
#include <cstring>

namespace {

std::vector<std::string> Take(bool ofAllThreads) {
    std::vector<std::string> texts;
    for (const RecordingLog::Line& line : RecordingLog::Lines()) {
        if (ofAllThreads || line.thread == std::this_thread::get_id()) {
            texts.push_back(LineText(line));
        }
    }
    RecordingLog::Clear();
    return texts;
}

}  // namespace

void BrokerTest::TearDown() {
    EXPECT_THAT(RecordingLog::Complaints(), testing::IsEmpty());
}

std::string LineText(const RecordingLog::Line& line) {
    std::string text = std::to_string(line.level) + ' ';
    for (const wchar_t c : line.text) {
        if (c > 0 && c < 128) {
            text += static_cast<char>(c);
        } else {
            char hex[16];
            std::snprintf(hex, sizeof hex, "<%lx>", static_cast<unsigned long>(c));
            text += hex;
        }
    }
    return text;
}

std::string LineIs(int level, const std::string& message, const std::string& location) {
    return std::to_string(level) + ' ' + message + "(PrinterDeviceDiscoverSdk::" + location + ')';
}

std::vector<std::string> TakeLines() {
    return Take(true);
}

std::vector<std::string> TakeOwnLines() {
    return Take(false);
}

std::vector<std::string> BindingLines(const std::string& productId) {
    return {LineIs(3, "productId" + productId, "ScanInterface::GetDeviceFunc")};
}

std::vector<std::string> BindingLinesWithoutAnything(const std::string& productId) {
    const std::string location = "ScanInterface::GetDeviceFunc";
    return {LineIs(4, "startDeviceScan is nullptr, err:", location),
            LineIs(4, "stopDeviceScan is nullptr, err:", location),
            LineIs(4, "getDeviceConnectState is nullptr, err:", location),
            LineIs(4, "beforeConnectEventNotify is nullptr, err:", location),
            LineIs(4, "connectSuccessNotifyEvent is nullptr, err:", location),
            LineIs(4, "connectFailNotifyEvent is nullptr, err:", location),
            LineIs(3, "productId" + productId, location)};
}

std::vector<std::string> operator+(std::vector<std::string> first,
                                   const std::vector<std::string>& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

PrinterDeviceDiscoverSdk::DeviceInfo DeviceOf(const std::string& modelID) {
    PrinterDeviceDiscoverSdk::DeviceInfo device{};
    auto* const bytes = reinterpret_cast<unsigned char*>(&device);
    for (std::size_t at = 0; at < sizeof device; ++at) {
        bytes[at] = static_cast<unsigned char>(at * 7 + 1);
    }
    SetField(device.deviceSN, "A1B2C3");
    device.deviceSN[sizeof device.deviceSN - 1] = 'z';
    SetField(device.modelID, modelID);
    device.modelID[sizeof device.modelID - 1] = 'z';
    return device;
}

std::string BytesOf(const ScriptedVendor::Call& call) {
    return {reinterpret_cast<const char*>(call.bytes), call.size};
}

PrinterDeviceDiscoverSdk::WifiConfigInfo NetworkOf(const std::string& ssid) {
    PrinterDeviceDiscoverSdk::WifiConfigInfo network{};
    network.rssi = -41.5F;
    SetField(network.ssid, ssid);
    SetField(network.pwd, "pass " + ssid);
    // Behind the terminators, and before the last byte, which a relay sets to zero.
    network.ssid[sizeof network.ssid - 2] = 'z';
    network.pwd[sizeof network.pwd - 2] = 'z';
    return network;
}

namespace {

template <class To, class From>
To SameBytes(const From& from) {
    static_assert(sizeof(To) == sizeof(From));
    To to;
    std::memcpy(&to, &from, sizeof to);
    return to;
}

}  // namespace

VendorSdk::DeviceInfo VendorDeviceOf(const std::string& modelID) {
    return SameBytes<VendorSdk::DeviceInfo>(DeviceOf(modelID));
}

VendorSdk::WifiConfigInfo VendorNetworkOf(const std::string& ssid) {
    return SameBytes<VendorSdk::WifiConfigInfo>(NetworkOf(ssid));
}

// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <gmock/gmock.h>

#include <chrono>
#include <functional>
#include <string>
#include <thread>

#include "platform/PrinterDiscoverAPI/PrinterWifiControl.h"
#include "tests/host/PrinterDiscoverAPI/logged.h"
#include "tests/host/PrinterDiscoverAPI/wifi/networks.h"

namespace HostTest {

using PrinterDiscoverAPI::PrinterWifiAPI;

inline Networks Scan() {
    Networks networks;
    PrinterWifiAPI::GetInstance().ScanWifiAPBySsid(networks);
    return networks;
}

inline Networks Known() {
    Networks networks;
    PrinterWifiKnownNetworks(&networks);
    return networks;
}

struct Connected {
    std::wstring ssid = L"before";
    std::wstring hardwareAddress = L"before";
    std::wstring interfaceName = L"before";
};

inline Connected QueryConnected() {
    Connected connected;
    PrinterWifiAPI::GetInstance().QueryConnectedAP(connected.ssid, connected.hardwareAddress,
                                                   connected.interfaceName);
    return connected;
}

inline bool Connect(const std::wstring& ssid, const std::wstring& passPhrase) {
    return PrinterWifiAPI::GetInstance().ConnectAP(ssid, passPhrase);
}

struct Problem {
    int kind;
    std::string reason;
};

// What stood in the way of the last operation of this thread.
inline Problem LastProblem() {
    char reason[200];
    const int kind = PrinterWifiProblem(reason, sizeof reason);
    return {kind, reason};
}

inline double SecondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Waits until it is so; false when it does not become so.
inline bool Becomes(const std::function<bool()>& so) {
    const auto start = std::chrono::steady_clock::now();
    while (!so()) {
        if (SecondsSince(start) > 20) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return true;
}

// Whether the host is joined to that network soon.
inline bool Arrives(const std::wstring& ssid) {
    return Becomes([&ssid] { return QueryConnected().ssid == ssid; });
}

// None of the lines so far holds the text.
inline void ExpectNeverLogged(const std::wstring& secret) {
    for (const RecordingLog::Line& line : RecordingLog::Lines()) {
        EXPECT_EQ(line.text.find(secret), std::wstring::npos) << testing::PrintToString(line.text);
    }
}

// Neither a scan nor an attempt to join is possible; each says why, soon.
inline void ExpectNoWifi(const std::wstring& reason) {
    const std::wstring secret = L"correct horse 7";
    const auto start = std::chrono::steady_clock::now();
    EXPECT_THAT(Scan(), testing::IsEmpty());
    EXPECT_THAT(TakeLines(), testing::ElementsAre(IsLine(LOG_LEVEL_WARNING, reason)));
    EXPECT_FALSE(Connect(L"Home", secret));
    ExpectNeverLogged(secret);
    EXPECT_THAT(TakeLines(), testing::ElementsAre(IsLine(LOG_LEVEL_ERROR, reason)));
    EXPECT_LT(SecondsSince(start), 3);
}

inline void ExpectNotConnected() {
    const Connected connected = QueryConnected();
    EXPECT_EQ(connected.ssid, L"");
    EXPECT_EQ(connected.hardwareAddress, L"");
    EXPECT_EQ(connected.interfaceName, L"");
}

}  // namespace HostTest

// SPDX-License-Identifier: Apache-2.0

#pragma once

// What the scripted PrinterDiscoverAPI and PrinterAdapter do, as a file says it: for tests that
// start a program of their own.

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/PrinterAdapter/PrinterListProvider.h"
#include "platform/PrinterDiscoverAPI/PrinterWifiAPI.h"

namespace ScriptedHost {

// The text between quotes; what is not printable ASCII is an escape sequence.
std::string Quoted(const std::wstring& text);

// One directive a line; texts are as Quoted writes them:
//   ping <result>              what the next ping returns; 0 when there is no more such line
//   ping-problem "<why>"       no ping can be sent
//   network "<ssid>" <signal quality> <security> <exclude flag>
//   joined "<ssid>" "<hardware address>" "<interface>"
//   join <0 or 1>              the outcome of the next ConnectAP; the host is joined then
//   wifi-problem <kind> "<reason>"
//                              what PrinterWifiProblem tells
//   delay <operation> <ms>     how long each call of it takes
//   port "<hardware identifier>" <devices> <bus>
//   change <ms> <state> "<hardware identifier>"
//                              what the USB monitor reports, so long after the one before it or
//                              after the start
//   appear <ms> "<hardware identifier>" <devices> <bus>
//                              what is plugged in from then on, though nothing is reported, so
//                              long after the change before it; the first ones with 0 ms: from just
//                              before the start
//   usb-problem "<reason>"     what PrinterUsbProblem tells
//   usb-monitor-problem "<reason>"
//                              what PrinterUsbMonitorProblem tells
//   list-problem "<reason>"    what PrinterListProblem tells
//   printer "<serial number>" "<model>" <connect type>
struct HostScript {
    struct Change {
        std::chrono::milliseconds delay;
        int state;
        std::wstring deviceId;
        std::optional<std::pair<int, int>> port{};  // not reported, but there
    };

    // The script that the environment variable SCRIPTED_HOST_SCRIPT names; an empty one when it
    // names none. A line that makes no sense is named on standard error and left out.
    static HostScript FromEnvironment();

    // Appends the call, the operation's name first, to the file that SCRIPTED_HOST_RECORD names,
    // and takes the time that the operation takes.
    void Play(const std::string& call) const;

    std::vector<int> pingResults;
    std::wstring pingProblem;
    std::vector<PrinterWifiApiStruct::WlanInfoData> inRange;
    std::vector<std::wstring> joinedTo{{}, {}, {}};
    std::vector<bool> joinResults;
    int wifiProblem = 0;
    std::wstring wifiReason;
    std::wstring usbProblem;
    std::wstring usbMonitorProblem;
    std::wstring listProblem;
    std::map<std::string, std::chrono::milliseconds> delays;
    std::map<std::wstring, std::pair<int, int>> ports;
    std::vector<Change> changes;
    std::vector<PrinterSdk::PrinterProperty> printers;

private:
    bool Apply(const std::string& line);
};

}  // namespace ScriptedHost

// SPDX-License-Identifier: Apache-2.0

#pragma once

// The scripted PrinterDiscoverAPI: pings, the host's Wi-Fi and its USB ports answer what the test
// says.

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "platform/PrinterDiscoverAPI/PrinterPing.h"
#include "platform/PrinterDiscoverAPI/PrinterUsbDeviceManager.h"
#include "platform/PrinterDiscoverAPI/PrinterWifiAPI.h"

namespace ScriptedHost {

struct PingCall {
    std::string address;
    bool writableReply;
    std::uint32_t timeout;
};

// What the pings from now on return, in order; 0 when there are no more.
PRINTERDISCOVERAPI_API void AnswerPings(std::vector<int> results);
PRINTERDISCOVERAPI_API std::vector<PingCall> Pings();

// What a scan appends from now on.
PRINTERDISCOVERAPI_API void InRange(std::vector<PrinterWifiApiStruct::WlanInfoData> networks);
PRINTERDISCOVERAPI_API int Scans();

// What QueryConnectedAP fills in, in the order of its arguments.
PRINTERDISCOVERAPI_API void JoinedTo(std::vector<std::wstring> texts);

// What ConnectAP returns, and with what it was called, pair by pair.
PRINTERDISCOVERAPI_API void AnswerJoins(bool joined);
PRINTERDISCOVERAPI_API std::vector<std::pair<std::wstring, std::wstring>> Joins();

// What GetCurrentPrinterPorts gives from now on, and what StartMonitor returns.
PRINTERDISCOVERAPI_API void Plugged(std::map<std::wstring, std::pair<int, int>> ports);
PRINTERDISCOVERAPI_API void AnswerStarts(int result);

// The operations of the USB device manager that were called, in order.
PRINTERDISCOVERAPI_API std::vector<std::string> UsbCalls();

// The registration that StartMonitor was given last: the very record, not a copy of it.
PRINTERDISCOVERAPI_API const PrinterDiscoverAPI::DeviceStateChangeCallbackInfo* Monitor();

// A copy of that registration as it was when StartMonitor was called.
PRINTERDISCOVERAPI_API PrinterDiscoverAPI::DeviceStateChangeCallbackInfo MonitorAtItsStart();

// Reports a change to the registration on the calling thread and returns its result, also after
// the monitor was stopped. -1 before the first start.
PRINTERDISCOVERAPI_API int Report(int state, const std::wstring& deviceId);

}  // namespace ScriptedHost

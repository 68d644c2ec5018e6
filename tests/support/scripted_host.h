#pragma once

// The scripted PrinterDiscoverAPI: pings and the host's Wi-Fi answer what the test says.

#include <functional>
#include <string>
#include <vector>

#include "platform/PrinterDiscoverAPI/PrinterPing.h"
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

}  // namespace ScriptedHost

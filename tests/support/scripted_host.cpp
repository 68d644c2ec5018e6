// SPDX-License-Identifier: Apache-2.0

#include "tests/support/scripted_host.h"

#include <mutex>
#include <thread>

#include "host/PrinterDiscoverAPI/ping_report.h"
#include "platform/PrinterDiscoverAPI/PrinterUsbControl.h"
#include "platform/PrinterDiscoverAPI/PrinterWifiControl.h"
#include "tests/support/host_script.h"

namespace {

using ScriptedHost::HostScript;

struct State {
    State() : script(HostScript::FromEnvironment()) {
        pingResults = script.pingResults;
        inRange = script.inRange;
        joinedTo = script.joinedTo;
        ports = script.ports;
    }

    const HostScript script;
    std::mutex mutex;  // guards all below
    std::vector<int> pingResults;
    std::vector<ScriptedHost::PingCall> pings;
    std::vector<PrinterWifiApiStruct::WlanInfoData> inRange;
    int scans = 0;
    std::vector<std::wstring> joinedTo;
    bool joins = false;
    std::vector<std::pair<std::wstring, std::wstring>> joinCalls;
    std::map<std::wstring, std::pair<int, int>> ports;
    int startResult = 0;
    std::vector<std::string> usbCalls;
    const PrinterDiscoverAPI::DeviceStateChangeCallbackInfo* monitor = nullptr;
    PrinterDiscoverAPI::DeviceStateChangeCallbackInfo monitorAtItsStart{};
    unsigned starts = 0;
};

State& TheState() {
    static State& state = *new State;
    return state;
}

// Runs `work` on the state, alone.
template <class Work>
auto With(Work work) {
    const std::lock_guard lock(TheState().mutex);
    return work(TheState());
}

}  // namespace

namespace ScriptedHost {

void AnswerPings(std::vector<int> results) {
    With([&](State& state) { state.pingResults = std::move(results); });
}

std::vector<PingCall> Pings() {
    return With([](State& state) { return state.pings; });
}

void InRange(std::vector<PrinterWifiApiStruct::WlanInfoData> networks) {
    With([&](State& state) { state.inRange = std::move(networks); });
}

int Scans() {
    return With([](State& state) { return state.scans; });
}

void JoinedTo(std::vector<std::wstring> texts) {
    With([&](State& state) { state.joinedTo = std::move(texts); });
}

void AnswerJoins(bool joined) {
    With([&](State& state) { state.joins = joined; });
}

std::vector<std::pair<std::wstring, std::wstring>> Joins() {
    return With([](State& state) { return state.joinCalls; });
}

void Plugged(std::map<std::wstring, std::pair<int, int>> ports) {
    With([&](State& state) { state.ports = std::move(ports); });
}

void AnswerStarts(int result) {
    With([&](State& state) { state.startResult = result; });
}

std::vector<std::string> UsbCalls() {
    return With([](State& state) { return state.usbCalls; });
}

const PrinterDiscoverAPI::DeviceStateChangeCallbackInfo* Monitor() {
    return With([](State& state) { return state.monitor; });
}

PrinterDiscoverAPI::DeviceStateChangeCallbackInfo MonitorAtItsStart() {
    return With([](State& state) { return state.monitorAtItsStart; });
}

int Report(int state, const std::wstring& deviceId) {
    const GUID deviceClass{0x28d78fad, 0x5a12, 0x11d1, {0xae, 0x5b, 0, 0, 0xf8, 3, 0xa8, 0xc2}};
    const auto* const monitor = Monitor();
    return monitor == nullptr
               ? -1
               : monitor->callback(
                     deviceClass, static_cast<PrinterUsbApiStruct::EmDeviceState>(state), deviceId);
}

}  // namespace ScriptedHost

namespace {

void NoteUsbCall(const std::string& operation) {
    TheState().script.Play(operation);
    With([&](State& state) { state.usbCalls.push_back(operation); });
}

void Appear(const HostScript::Change& change) {
    With([&](State& state) {
        if (change.port->first > 0) {
            state.ports[change.deviceId] = *change.port;
        } else {
            state.ports.erase(change.deviceId);
        }
    });
}

bool IsBeforeTheStart(const HostScript::Change& change) {
    return change.port && change.delay.count() == 0;
}

// What happens between the last question before a start and the start itself.
std::size_t PlayTheFirstChanges() {
    const std::vector<HostScript::Change>& changes = TheState().script.changes;
    std::size_t played = 0;
    for (; played < changes.size() && IsBeforeTheStart(changes[played]); ++played) {
        Appear(changes[played]);
    }
    return played;
}

// Plugs in and out what the script says, until the monitor is stopped or started again.
void PlayChanges(unsigned start, std::size_t first) {
    const std::vector<HostScript::Change>& changes = TheState().script.changes;
    for (std::size_t index = first; index < changes.size(); ++index) {
        const HostScript::Change& change = changes[index];
        std::this_thread::sleep_for(change.delay);
        if (With([&](State& state) { return state.starts != start; })) {
            return;
        }
        if (change.port) {
            Appear(change);
        } else {
            ScriptedHost::Report(change.state, change.deviceId);
        }
    }
}

int Tell(const std::wstring& reason, char* text, std::size_t size) {
    const std::string narrow(reason.begin(), reason.end());
    if (text != nullptr && size > 0) {
        text[narrow.copy(text, size - 1)] = '\0';
    }
    return narrow.empty() ? 0 : 1;
}

}  // namespace

namespace PrinterDiscoverAPI {

using ScriptedHost::Quoted;

PrinterPing& PrinterPing::GetInstance() {
    static PrinterPing instance;
    return instance;
}

int PrinterPing::Ping(const char* address, PingReply* reply, std::uint32_t timeout) {
    TheState().script.Play("Ping " + std::string(address));
    return With([&](State& state) {
        if (reply != nullptr) {
            *reply = {0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF};
        }
        state.pings.push_back({address, reply != nullptr, timeout});
        const std::size_t call = state.pings.size() - 1;
        return call < state.pingResults.size() ? state.pingResults[call] : 0;
    });
}

PingReport DescribePing(const std::string&, std::uint32_t) {
    const std::wstring& problem = TheState().script.pingProblem;
    return {problem.empty() ? PingOutcome::kSilent : PingOutcome::kNotAsked,
            {problem.begin(), problem.end()}};
}

PrinterWifiAPI& PrinterWifiAPI::GetInstance() {
    static PrinterWifiAPI instance;
    return instance;
}

void PrinterWifiAPI::ScanWifiAPBySsid(std::vector<PrinterWifiApiStruct::WlanInfoData>& networks) {
    TheState().script.Play("ScanWifiAPBySsid");
    With([&](State& state) {
        ++state.scans;
        networks.insert(networks.end(), state.inRange.begin(), state.inRange.end());
    });
}

void PrinterWifiAPI::QueryConnectedAP(std::wstring& ssid, std::wstring& hardwareAddress,
                                      std::wstring& interfaceName) {
    TheState().script.Play("QueryConnectedAP");
    With([&](State& state) {
        ssid = state.joinedTo.at(0);
        hardwareAddress = state.joinedTo.at(1);
        interfaceName = state.joinedTo.at(2);
    });
}

bool PrinterWifiAPI::ConnectAP(std::wstring ssid, std::wstring passPhrase) {
    TheState().script.Play("ConnectAP " + Quoted(ssid) + ' ' + Quoted(passPhrase));
    return With([&](State& state) {
        const std::size_t call = state.joinCalls.size();
        state.joinCalls.emplace_back(ssid, passPhrase);
        const std::vector<bool>& results = state.script.joinResults;
        const bool joined = call < results.size() ? results[call] : state.joins;
        if (joined && !results.empty()) {
            state.joinedTo.at(0) = ssid;
        }
        return joined;
    });
}

PrinterUsbDeviceManager& PrinterUsbDeviceManager::GetInstance() {
    static PrinterUsbDeviceManager& instance = *new PrinterUsbDeviceManager;
    return instance;
}

void PrinterUsbDeviceManager::GetCurrentPrinterPorts(
    std::map<std::wstring, std::pair<int, int>>& ports) {
    NoteUsbCall("GetCurrentPrinterPorts");
    ports = With([](State& state) { return state.ports; });
}

int PrinterUsbDeviceManager::StartMonitor(const DeviceStateChangeCallbackInfo& info) {
    NoteUsbCall("StartMonitor");
    const unsigned start = With([&](State& state) {
        state.monitor = &info;
        state.monitorAtItsStart = info;
        return ++state.starts;
    });
    const std::size_t played = PlayTheFirstChanges();
    if (TheState().script.changes.size() > played) {
        std::thread(PlayChanges, start, played).detach();
    }
    return With(
        [](State& state) { return state.script.usbProblem.empty() ? state.startResult : -1; });
}

void PrinterUsbDeviceManager::StopMonitor() {
    NoteUsbCall("StopMonitor");
    With([](State& state) { ++state.starts; });
}

}  // namespace PrinterDiscoverAPI

int PrinterWifiProblem(char* text, std::size_t size) {
    Tell(TheState().script.wifiReason, text, size);
    return TheState().script.wifiProblem;
}

int PrinterUsbProblem(char* text, std::size_t size) {
    return Tell(TheState().script.usbProblem, text, size);
}

int PrinterUsbMonitorProblem(char* text, std::size_t size) {
    return Tell(TheState().script.usbMonitorProblem, text, size);
}

void PrinterWifiBreakOff() {
    TheState().script.Play("PrinterWifiBreakOff");
}

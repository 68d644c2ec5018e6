#include "tests/support/scripted_host.h"

#include <mutex>

#include "tests/support/host_script.h"

namespace {

using ScriptedHost::HostScript;

struct State {
    State() : script(HostScript::FromEnvironment()) {
        pingResults = script.pingResults;
        inRange = script.inRange;
        joinedTo = script.joinedTo;
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

}  // namespace ScriptedHost

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

}  // namespace PrinterDiscoverAPI

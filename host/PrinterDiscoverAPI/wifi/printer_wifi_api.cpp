// SPDX-License-Identifier: Apache-2.0

#include <array>
#include <iterator>
#include <utility>

#include "base/secret.h"
#include "base/text/utf8.h"
#include "host/PrinterDiscoverAPI/diagnostics.h"
#include "host/PrinterDiscoverAPI/wifi/join.h"
#include "host/PrinterDiscoverAPI/wifi/left_place.h"
#include "host/PrinterDiscoverAPI/wifi/network_list.h"
#include "host/PrinterDiscoverAPI/wifi/network_name.h"
#include "host/PrinterDiscoverAPI/wifi/undertaking.h"
#include "host/PrinterDiscoverAPI/wifi/wifi_service.h"
#include "host/PrinterDiscoverAPI/wifi/wifi_visit.h"
#include "platform/PrinterDiscoverAPI/PrinterWifiAPI.h"
#include "platform/PrinterDiscoverAPI/PrinterWifiControl.h"

namespace PrinterDiscoverAPI {

namespace {

// The problem of the thread's last operation. Trivially destructible: threads may end after the
// library's objects are destroyed.
struct LastProblem {
    PrinterWifiProblemKind kind;
    std::array<char, 512> reason;
};
thread_local LastProblem lastProblem{};

PrinterWifiProblemKind KindOf(const Host::WifiProblem& problem) {
    switch (problem.ItsKind()) {
        case Host::WifiProblem::Kind::kNoAdapter:
            return PRINTER_WIFI_NO_ADAPTER;
        case Host::WifiProblem::Kind::kNotRunning:
            return PRINTER_WIFI_NOT_RUNNING;
        default:
            return PRINTER_WIFI_FAILED;
    }
}

void ForgetProblem() {
    lastProblem = {};
}

void ReportProblem(LOG_MESSAGE_LEVEL level, const std::wstring& what,
                   const Host::WifiProblem& problem, std::wstring_view where) {
    lastProblem.kind = KindOf(problem);
    Base::CopyUtf8(problem.what(), lastProblem.reason.data(), lastProblem.reason.size());
    Host::Report(level, what + L": " + Base::FromUtf8(problem.what()), where);
}

void Append(std::vector<PrinterWifiApiStruct::WlanInfoData>& networks, Host::WifiService& service) {
    auto inRange = Host::NetworksOf(service.AccessPoints());
    networks.insert(networks.end(), std::make_move_iterator(inRange.begin()),
                    std::make_move_iterator(inRange.end()));
}

}  // namespace

PrinterWifiAPI& PrinterWifiAPI::GetInstance() {
    static PrinterWifiAPI& instance = *new PrinterWifiAPI;
    return instance;
}

void PrinterWifiAPI::ScanWifiAPBySsid(std::vector<PrinterWifiApiStruct::WlanInfoData>& networks) {
    ForgetProblem();
    try {
        const auto service = Host::OpenWifiService();
        service->Scan({});
        Append(networks, *service);
    } catch (const Host::WifiProblem& problem) {
        ReportProblem(LOG_LEVEL_WARNING, L"no networks", problem,
                      L"PrinterWifiAPI::ScanWifiAPBySsid");
    }
}

void PrinterWifiAPI::QueryConnectedAP(std::wstring& ssid, std::wstring& hardwareAddress,
                                      std::wstring& interfaceName) {
    ForgetProblem();
    Host::JoinedAccessPoint joined;
    try {
        joined = Host::OpenWifiService()->Joined().value_or(Host::JoinedAccessPoint());
    } catch (const Host::WifiProblem& problem) {
        ReportProblem(LOG_LEVEL_WARNING, L"joined to nothing", problem,
                      L"PrinterWifiAPI::QueryConnectedAP");
    }
    ssid = Host::NetworkNameText(joined.name);
    hardwareAddress = Base::FromUtf8(joined.hardwareAddress);
    interfaceName = std::move(joined.interfaceName);
}

bool PrinterWifiAPI::ConnectAP(std::wstring ssid, std::wstring passPhrase) {
    ForgetProblem();
    const Base::WipeAtEnd wiped(passPhrase);
    const std::wstring name = std::move(ssid);
    try {
        const Host::Undertaking undertaking;
        const Host::JoinRequest request(name, passPhrase);
        Host::Join(*Host::OpenWifiService(), request, Host::kJoinLimit);
        return true;
    } catch (const Host::WifiProblem& problem) {
        ReportProblem(LOG_LEVEL_ERROR, L"cannot join \"" + name + L'"', problem,
                      L"PrinterWifiAPI::ConnectAP");
        return false;
    }
}

}  // namespace PrinterDiscoverAPI

int PrinterWifiProblem(char* text, std::size_t size) {
    const auto& [kind, reason] = PrinterDiscoverAPI::lastProblem;
    Base::CopyUtf8(reason.data(), text, size);
    return kind;
}

void PrinterWifiKnownNetworks(std::vector<PrinterWifiApiStruct::WlanInfoData>* networks) {
    using namespace PrinterDiscoverAPI;
    ForgetProblem();
    try {
        Append(*networks, *Host::OpenWifiService());
    } catch (const Host::WifiProblem& problem) {
        ReportProblem(LOG_LEVEL_WARNING, L"no known networks", problem,
                      L"PrinterWifiKnownNetworks");
    }
}

int PrinterWifiVisit(const char* network, int seconds) {
    using namespace PrinterDiscoverAPI;
    ForgetProblem();
    try {
        Host::VisitNetwork(Base::FromUtf8(network), std::chrono::seconds(seconds));
        return 1;
    } catch (const Host::WifiProblem& problem) {
        ReportProblem(LOG_LEVEL_WARNING, L"could not visit the network", problem,
                      L"PrinterWifiVisit");
        return 0;
    }
}

void PrinterWifiEndVisit() {
    using namespace PrinterDiscoverAPI;
    ForgetProblem();
    try {
        Host::EndNetworkVisit();
    } catch (const Host::WifiProblem& problem) {
        ReportProblem(LOG_LEVEL_WARNING, L"could not return from the visit", problem,
                      L"PrinterWifiEndVisit");
    }
}

void PrinterWifiRemember() {
    using namespace PrinterDiscoverAPI;
    ForgetProblem();
    try {
        Host::RememberPlace();
    } catch (const Host::WifiProblem& problem) {
        ReportProblem(LOG_LEVEL_WARNING, L"no connection to remember", problem,
                      L"PrinterWifiRemember");
    }
}

int PrinterWifiGoBack(const char* network) {
    using namespace PrinterDiscoverAPI;
    ForgetProblem();
    try {
        return Host::GoBackFrom(Base::FromUtf8(network)) ? 1 : 0;
    } catch (const Host::WifiProblem& problem) {
        ReportProblem(LOG_LEVEL_WARNING, L"could not rejoin the previous network", problem,
                      L"PrinterWifiGoBack");
        return 0;
    }
}

void PrinterWifiBreakOff() {
    // A join checks for cancellation at least this often, and its service has this long for an
    // answer.
    constexpr std::chrono::seconds patience{8};
    Host::Undertaking::BreakOffAll(patience);
    PrinterWifiEndVisit();
}

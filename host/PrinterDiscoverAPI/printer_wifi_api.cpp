#include <iterator>
#include <utility>

#include "host/PrinterDiscoverAPI/diagnostics.h"
#include "host/PrinterDiscoverAPI/join_request.h"
#include "host/PrinterDiscoverAPI/network_list.h"
#include "host/PrinterDiscoverAPI/network_name.h"
#include "host/PrinterDiscoverAPI/wifi_service.h"
#include "host/common/utf8.h"
#include "platform/PrinterDiscoverAPI/PrinterWifiAPI.h"

namespace PrinterDiscoverAPI {

namespace {

void ReportProblem(LOG_MESSAGE_LEVEL level, const std::wstring& what, const std::string& problem,
                   std::wstring_view where) {
    Host::Report(level, what + L": " + Host::FromUtf8(problem), where);
}

// Joins what was asked for, looking closer when it is not in sight at once.
void Join(Host::WifiService& service, const Host::JoinRequest& request) {
    std::vector<Host::AccessPoint> accessPoints = service.AccessPoints();
    const Host::AccessPoint* chosen = request.Choose(accessPoints);
    if (chosen == nullptr) {
        service.Scan(request.Name());
        accessPoints = service.AccessPoints();
        chosen = request.Choose(accessPoints);
    }
    if (chosen == nullptr) {
        throw Host::WifiProblem("no access point of that name is in range");
    }
    service.Join(*chosen, request.PassPhrase());
}

void TryJoin(const Host::JoinRequest& request) {
    try {
        Join(*Host::OpenWifiService(), request);
    } catch (const Host::WifiProblem& problem) {
        throw Host::WifiProblem(request.WithoutSecret(problem.what()));
    }
}

}  // namespace

PrinterWifiAPI& PrinterWifiAPI::GetInstance() {
    static PrinterWifiAPI& instance = *new PrinterWifiAPI;
    return instance;
}

void PrinterWifiAPI::ScanWifiAPBySsid(std::vector<PrinterWifiApiStruct::WlanInfoData>& networks) {
    try {
        const auto service = Host::OpenWifiService();
        service->Scan({});
        auto inRange = Host::NetworksOf(service->AccessPoints());
        networks.insert(networks.end(), std::make_move_iterator(inRange.begin()),
                        std::make_move_iterator(inRange.end()));
    } catch (const Host::WifiProblem& problem) {
        ReportProblem(LOG_LEVEL_WARNING, L"no networks", problem.what(),
                      L"PrinterWifiAPI::ScanWifiAPBySsid");
    }
}

void PrinterWifiAPI::QueryConnectedAP(std::wstring& ssid, std::wstring& hardwareAddress,
                                      std::wstring& interfaceName) {
    Host::JoinedAccessPoint joined;
    try {
        joined = Host::OpenWifiService()->Joined().value_or(Host::JoinedAccessPoint());
    } catch (const Host::WifiProblem& problem) {
        ReportProblem(LOG_LEVEL_WARNING, L"joined to nothing", problem.what(),
                      L"PrinterWifiAPI::QueryConnectedAP");
    }
    ssid = Host::NetworkNameText(joined.name);
    hardwareAddress = Host::FromUtf8(joined.hardwareAddress);
    interfaceName = std::move(joined.interfaceName);
}

bool PrinterWifiAPI::ConnectAP(std::wstring ssid, std::wstring passPhrase) {
    const std::wstring name = std::move(ssid);
    const std::wstring secret = std::move(passPhrase);
    try {
        TryJoin(Host::JoinRequest(name, secret));
        return true;
    } catch (const Host::WifiProblem& problem) {
        ReportProblem(LOG_LEVEL_ERROR, L"cannot join \"" + name + L'"', problem.what(),
                      L"PrinterWifiAPI::ConnectAP");
        return false;
    }
}

}  // namespace PrinterDiscoverAPI

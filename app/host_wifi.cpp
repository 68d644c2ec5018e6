#include "app/host_wifi.h"

#include "DeviceDiscover/DeviceDiscover.h"
#include "app/awaiting.h"
#include "app/text.h"
#include "platform/PrinterUtil/PrinterUtil.h"

namespace App {

namespace {

using DeviceDiscover::PrinterWifiInterface;
using Networks = std::vector<PrinterWifiApiStruct::WlanInfoData>;

std::vector<HostNetwork> Scan(const Settings& settings,
                              void (PrinterWifiInterface::*scan)(Networks&)) {
    const std::function<Networks()> work = [scan] {
        Networks networks;
        (PrinterWifiInterface::GetInstance().*scan)(networks);
        return networks;
    };
    const Networks networks = Await(settings, "Looking for networks", work);
    return {networks.begin(), networks.end()};
}

}  // namespace

std::vector<HostNetwork> NetworksInRange(const Settings& settings) {
    return Scan(settings, &PrinterWifiInterface::GetSsidList);
}

std::vector<HostNetwork> NetworksToOffer(const Settings& settings) {
    return Scan(settings, &PrinterWifiInterface::GetSupList);
}

AccessPoint CurrentAccessPoint(const Settings& settings) {
    const std::function<AccessPoint()> work = [] {
        std::wstring network;
        std::wstring hardwareAddress;
        std::wstring interfaceName;
        PrinterWifiInterface::GetInstance().QueryConnectedAP(network, hardwareAddress,
                                                             interfaceName);
        using PrinterUtil::WStringToString;
        return AccessPoint{WStringToString(network), WStringToString(hardwareAddress),
                           WStringToString(interfaceName)};
    };
    return Await(settings, "Asking for this computer's network", work);
}

bool JoinNetwork(const Settings& settings, const std::string& network,
                 const std::shared_ptr<Secret>& passPhrase) {
    const std::function<bool()> work = [network, passPhrase] {
        std::wstring wide = Widen(passPhrase->View()).value_or(L"");
        const bool joined =
            PrinterWifiInterface::GetInstance().ConnectAP(Widen(network).value_or(L""), wide);
        Wipe(wide.data(), wide.size() * sizeof(wchar_t));
        return joined;
    };
    return Await(settings, "Joining " + network, work, kJoinLimit);
}

}  // namespace App

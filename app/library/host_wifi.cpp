// SPDX-License-Identifier: Apache-2.0

#include "app/library/host_wifi.h"

#include <utility>

#include "DeviceDiscover/DeviceDiscover.h"
#include "app/running/awaiting.h"
#include "base/text/utf8.h"
#include "platform/PrinterUtil/PrinterUtil.h"

namespace App {

namespace {

using DeviceDiscover::PrinterWifiInterface;
using Networks = std::vector<PrinterWifiApiStruct::WlanInfoData>;

HostNetworks Scan(void (PrinterWifiInterface::*scan)(Networks&)) {
    const std::function<HostNetworks()> work = [scan] {
        Networks networks;
        (PrinterWifiInterface::GetInstance().*scan)(networks);
        return HostNetworks{{networks.begin(), networks.end()}, LastHostWifiProblem()};
    };
    return Await("Looking for networks", work);
}

// The time limit for the Wi-Fi service where the program can do without its result.
constexpr std::chrono::seconds kUndoLimit{3};
// For the return to a network, which the service may have to look for.
constexpr std::chrono::seconds kReturnLimit{8};

}  // namespace

HostNetworks NetworksInRange() {
    return Scan(&PrinterWifiInterface::GetSsidList);
}

HostNetworks NetworksToOffer() {
    return Scan(&PrinterWifiInterface::GetSupList);
}

AccessPoint CurrentAccessPoint() {
    const std::function<AccessPoint()> work = [] {
        std::wstring network;
        std::wstring hardwareAddress;
        std::wstring interfaceName;
        PrinterWifiInterface::GetInstance().QueryConnectedAP(network, hardwareAddress,
                                                             interfaceName);
        using PrinterUtil::WStringToString;
        return AccessPoint{WStringToString(network), WStringToString(hardwareAddress),
                           WStringToString(interfaceName), LastHostWifiProblem()};
    };
    return Await("Asking for this computer's network", work);
}

JoinOutcome JoinNetwork(const std::string& network,
                        const std::shared_ptr<Base::Secret>& passPhrase) {
    const std::function<JoinOutcome()> work = [network, passPhrase] {
        std::wstring wide = Base::FromUtf8(passPhrase->View());
        const Base::WipeAtEnd wiped(wide);
        // Passed on without a copy: the receiver wipes it.
        const bool joined =
            PrinterWifiInterface::GetInstance().ConnectAP(Base::FromUtf8(network), std::move(wide));
        return JoinOutcome{joined, LastHostWifiProblem()};
    };
    return AwaitOrBreakOff("Joining " + network, work, kJoinLimit);
}

void RememberNetwork() {
    const std::function<bool()> work = [] {
        RememberHostWifi();
        return true;
    };
    try {
        Await("Asking for this computer's network", work, kUndoLimit);
    } catch (const TimedOut&) {
        return;  // a return is then not possible
    }
}

bool GoBackFrom(const std::string& network) {
    return GoBackWithHostWifi(network, kReturnLimit);
}

}  // namespace App

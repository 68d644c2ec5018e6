// SPDX-License-Identifier: Apache-2.0

#include "app/library/access_point_printer.h"

#include "DeviceDiscover/results.h"
#include "app/library/host_wifi.h"
#include "app/library/vendor_survey.h"
#include "app/library/vendor_texts.h"
#include "app/outcome/problem.h"
#include "app/program/messages.h"
#include "app/running/awaiting.h"

namespace App {

namespace {

using PrinterDeviceDiscoverSdk::DeviceInfo;
using PrinterDeviceDiscoverSdk::DiscoverNetConnInterface;
using PrinterDeviceDiscoverSdk::kNothingToCall;
using PrinterDeviceDiscoverSdk::kNotInitialised;

int OnNetwork(const PrinterDeviceDiscoverSdk::WifiConfigInfo* network) {
    NetworkList::GetInstance().Add(Network(*network));
    return 0;
}

std::vector<std::string> NeededFor(const std::string& entryPoint) {
    if (entryPoint == "IsLocalAreaNetworkOK") {
        return {entryPoint};  // uses the printer's record
    }
    return {"IsConnectCurrentWifiAP", entryPoint};
}

std::string NoPrinterToAsk(const ServiceSurvey& survey) {
    const AccessPoint joined = CurrentAccessPoint();
    if (joined.problem.HidesTheAnswer()) {
        throw Problem("it is not known which Wi-Fi network this computer is on: " +
                      joined.problem.reason + Lines(survey.problems));
    }
    const std::string& network = joined.network;
    return (network.empty() ? "this computer is joined to no Wi-Fi network"
                            : "this computer's Wi-Fi network, " + network +
                                  ", is not the access point of any supported vendor's printer, or "
                                  "the printer does not answer") +
           Lines(survey.problems) +
           "\nSwitch the printer's Wi-Fi set-up on, look for its network with `devicediscover wifi "
           "list`, and join\nit with `devicediscover wifi join NAME`.";
}

}  // namespace

DeviceAnswer AskForDevice() {
    const std::function<DeviceAnswer()> work = [] {
        DeviceAnswer answer{};
        answer.result = DiscoverNetConnInterface::GetInstance().GetDeviceInfoByNet(answer.device);
        return answer;
    };
    return Await("Asking the printer who it is", work);
}

int ConfigureNetwork(const std::string& network, const std::shared_ptr<Base::Secret>& passPhrase) {
    const std::function<int()> work = [network, passPhrase] {
        auto record = NetworkRecord(network, passPhrase->View());
        const Base::WipeAtEnd wiped(record);
        return DiscoverNetConnInterface::GetInstance().PrinterAPNetConfigEvent(record);
    };
    return AwaitOrBreakOff("Waiting for the printer to join " + network, work, kJoinLimit);
}

int CheckLocalNetwork(const DeviceInfo& device) {
    const std::function<int()> work = [device] {
        return DiscoverNetConnInterface::GetInstance().IsLocalAreaNetworkOK(device);
    };
    return Await("Asking whether the printer is on the network", work);
}

std::string Explanation(int result, const std::string& entryPoint, const std::string& vendor) {
    if (result != kNothingToCall && result != kNotInitialised) {
        return VendorsResult(result, vendor, entryPoint);
    }
    // A vendor may also return the broker's own results.
    const ServiceSurvey survey = SurveyConfiguration(NeededFor(entryPoint));
    if (!survey.anyVendorServes) {
        throw NoVendor("no vendor can do this" + Lines(survey.problems) +
                       "\nName a vendor list with --vendors FILE, or install the missing modules; "
                       "`devicediscover vendors` shows what is there.");
    }
    if (entryPoint == "IsLocalAreaNetworkOK") {
        return "not in the vendor list, or its module cannot tell" + Lines(survey.problems) +
               "\n`devicediscover vendors` shows what is there.";
    }
    return NoPrinterToAsk(survey);
}

NetworkScanSession::NetworkScanSession() {
    const std::function<int()> work = [] {
        return DiscoverNetConnInterface::GetInstance().StartAPWifiScan({OnNetwork, 0});
    };
    const int result = Await("Asking the printer's vendor for a scan", work);
    if (result != 0) {
        throw NoScan(Explanation(result, "StartAPWifiScan"));
    }
    scan.emplace("scan", "the vendor has not stopped its scan",
                 [] { return DiscoverNetConnInterface::GetInstance().StopAPWifiScan(); });
}

void NetworkScanSession::Stop(const std::function<void()>& onWait) {
    scans.Update();
    scans.Freeze();
    scan->Stop(onWait);
    if (NetworkList::GetInstance().GetItems().empty()) {
        scans.AwaitReturns();
    }
}

bool NetworkScanSession::HasEnded() {
    scans.Update();
    return scans.HasEnded();
}

}  // namespace App

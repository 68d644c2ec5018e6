// SPDX-License-Identifier: Apache-2.0

#include "app/library/access_point_printer.h"

#include <fmt/format.h>

#include <algorithm>

#include "DeviceDiscover/results.h"
#include "app/library/host_wifi.h"
#include "app/library/vendor_survey.h"
#include "app/outcome/problem.h"
#include "app/program/messages.h"
#include "app/running/awaiting.h"
#include "app/terminal/text.h"
#include "host/PrinterUtil/vendor_list.h"

namespace App {

namespace {

using PrinterDeviceDiscoverSdk::DeviceInfo;
using PrinterDeviceDiscoverSdk::DiscoverNetConnInterface;
using PrinterDeviceDiscoverSdk::kNothingToCall;
using PrinterDeviceDiscoverSdk::kNotInitialised;

// NOLINTNEXTLINE(clang-analyzer-optin.performance.Padding): the order in which a row is read.
struct KnownResult {
    int result;
    const char* meaning;
    bool isAnswer = true;  // false: the vendor could not find out
};

// Each vendor defines its own results; these are known for one vendor.
constexpr const char* kKnownVendor = "driverless";
constexpr int kNotConfirmed = 26;
constexpr KnownResult kKnownResults[] = {
    {2,
     "this computer's D-Bus cannot be reached, which looking for printers needs. Start it, and "
     "ask again",
     false},
    {3,
     "Avahi does not run, which looking for printers needs. Start it with `systemctl start "
     "avahi-daemon`, and ask again",
     false},
    {4,
     "this computer is on no network: no interface has an IPv4 address. Join the printer's "
     "network, and ask again",
     false},
    {5, "Avahi does not answer. Restart it with `systemctl restart avahi-daemon`, and ask again",
     false},
    {6, "D-Bus ended meanwhile. Ask again", false},
    {7,
     "this computer is on no network with a name that may be a printer's. Join the printer's "
     "own, and name it in the environment variable DEVICEDISCOVER_PRINTER_NETWORKS should it "
     "have another name than most"},
    {8,
     "this computer's Wi-Fi service does not answer. Restart it with `systemctl restart "
     "NetworkManager`, and ask again",
     false},
    {10, "the printer refused. Start its Wi-Fi set-up anew on the printer itself, and try again"},
    {11,
     "the printer does not see the network. Check the name, and move the printer nearer; many "
     "printers know the 2.4 GHz band only"},
    {12, "the printer cannot join the network. Check the pass phrase, and try again"},
    {13,
     "the printer did not join the network in time. `devicediscover scan` on that network "
     "shows it if it has joined since; else try again"},
    {14,
     "the printer does not allow it. Switch its Wi-Fi set-up on, or its password off, on the "
     "printer itself, and try again"},
    {15,
     "no printer could be reached. Join the printer's own network again, which `devicediscover "
     "wifi list` shows, and try again"},
    {16,
     "the network's name or the pass phrase is not valid; nothing was sent. A name has 1 to "
     "32 bytes, a pass phrase 8 or more"},
    {17,
     "the printer is not announced, or does not answer. Wait a moment and ask again, on the "
     "network that the printer was put on"},
    {18, "the printer's record has no serial number. Name it: `devicediscover ap check SERIAL`"},
    {19, "no thread or memory was left. Close other programs, and try again", false},
    {20,
     "no rights to the device. Run this as root, or become a member of the group lp, and try "
     "again"},
    {21, "another program keeps the printer to itself. Wait for it to end, or end it"},
    {22,
     "the device does not answer. Unplug it, plug it in again, and see whether it is switched on"},
    {23,
     "the vendor was given no record, or no room for its answer. That is a fault of this program, "
     "not of the printer. Report it, together with the log"},
    {kNotConfirmed,
     "the printer took the network and closed its own; whether it joined could not be confirmed. "
     "`devicediscover scan` on that network shows it if it did; else look for the printer's own "
     "network, and try again"},
};

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

bool MayBeOfKnownVendor(const std::string& vendor) {
    if (!vendor.empty()) {
        return vendor == kKnownVendor;
    }
    const auto vendors = PrinterUtil::DescribeVendorList().vendors;
    return std::any_of(vendors.begin(), vendors.end(),
                       [](const VendorInfo& listed) { return listed.productId == kKnownVendor; });
}

const KnownResult* KnownAs(int result, const std::string& vendor) {
    const auto* const known =
        std::find_if(std::begin(kKnownResults), std::end(kKnownResults),
                     [&](const KnownResult& one) { return one.result == result; });
    return known != std::end(kKnownResults) && MayBeOfKnownVendor(vendor) ? known : nullptr;
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
        return VendorsResult(result, vendor);
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

std::string VendorsResult(int result, const std::string& vendor) {
    std::string text = fmt::format("the vendor's result {}", result);
    if (const KnownResult* const known = KnownAs(result, vendor)) {
        text += fmt::format(" (of vendor {}: {})", kKnownVendor, known->meaning);
    }
    return text;
}

bool IsAnswer(int result, const std::string& vendor) {
    const KnownResult* const known = KnownAs(result, vendor);
    return known == nullptr || known->isAnswer;
}

bool IsUnconfirmed(int result, const std::string& vendor) {
    return result == kNotConfirmed && KnownAs(result, vendor) != nullptr;
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

#include "app/access_point_printer.h"

#include <fmt/format.h>

#include <algorithm>

#include "app/awaiting.h"
#include "app/host_wifi.h"
#include "app/problem.h"
#include "app/text.h"
#include "app/vendor_survey.h"
#include "host/PrinterUtil/vendor_list.h"

namespace App {

namespace {

using PrinterDeviceDiscoverSdk::DeviceInfo;
using PrinterDeviceDiscoverSdk::DiscoverNetConnInterface;

constexpr int kNothingToCall = -1;
constexpr int kNotInitialised = -2;

struct KnownResult {
    int result;
    const char* meaning;
};

// Results are each vendor's own affair; these are known of one.
constexpr const char* kKnownVendor = "driverless";
constexpr KnownResult kKnownResults[] = {
    {10, "the printer refused"},
    {11, "the printer does not see the network"},
    {12, "the printer cannot join the network: is the pass phrase right?"},
    {13, "the printer did not join the network in time"},
    {14, "the printer does not allow it"},
    {15, "no printer could be reached"},
    {16, "the network's name or the pass phrase is not valid; nothing was sent"},
};

int OnNetwork(const PrinterDeviceDiscoverSdk::WifiConfigInfo* network) {
    NetworkList::GetInstance().Add(Network(*network));
    return 0;
}

std::string Lines(const std::vector<std::string>& problems) {
    std::string text;
    for (const std::string& problem : problems) {
        text += "\n  " + problem;
    }
    return text;
}

std::vector<std::string> NeededFor(const std::string& entryPoint) {
    if (entryPoint == "IsLocalAreaNetworkOK") {
        return {entryPoint};  // this one goes by the printer's record
    }
    return {"IsConnectCurrentWifiAP", entryPoint};
}

std::string NoPrinterToAsk(const Settings& settings, const ServiceSurvey& survey) {
    const std::string network = CurrentAccessPoint(settings).network;
    return (network.empty() ? "this computer is joined to no Wi-Fi network"
                            : "this computer's Wi-Fi network, " + network +
                                  ", is not the access point of any supported vendor's printer, or "
                                  "the printer does not answer") +
           Lines(survey.problems) +
           "\nSwitch the printer's Wi-Fi set-up on, look for its network with `devicediscover wifi "
           "list`, and join\nit with `devicediscover wifi join NAME`.";
}

}  // namespace

DeviceAnswer AskForDevice(const Settings& settings) {
    const std::function<DeviceAnswer()> work = [] {
        DeviceAnswer answer{};
        answer.result = DiscoverNetConnInterface::GetInstance().GetDeviceInfoByNet(answer.device);
        return answer;
    };
    return Await(settings, "Asking the printer who it is", work);
}

int ConfigureNetwork(const Settings& settings, const std::string& network,
                     const std::shared_ptr<Secret>& passPhrase) {
    const std::function<int()> work = [network, passPhrase] {
        auto record = NetworkRecord(network, passPhrase->View());
        const int result = DiscoverNetConnInterface::GetInstance().PrinterAPNetConfigEvent(record);
        Wipe(&record, sizeof record);
        return result;
    };
    return Await(settings, "Waiting for the printer to join " + network, work);
}

int CheckLocalNetwork(const Settings& settings, const DeviceInfo& device) {
    const std::function<int()> work = [device] {
        return DiscoverNetConnInterface::GetInstance().IsLocalAreaNetworkOK(device);
    };
    return Await(settings, "Asking whether the printer is on the network", work);
}

std::string Explanation(const Settings& settings, int result, const std::string& entryPoint) {
    if (result != kNothingToCall && result != kNotInitialised) {
        return VendorsResult(result);
    }
    // A vendor may also answer with the broker's own results.
    const ServiceSurvey survey = SurveyConfiguration(NeededFor(entryPoint));
    if (!survey.anyVendorServes) {
        throw Problem("no vendor can do this" + Lines(survey.problems) +
                      "\nName a vendor list with --vendors FILE, or put the modules in order; "
                      "`devicediscover vendors` shows what is there.");
    }
    if (entryPoint == "IsLocalAreaNetworkOK") {
        return "no such vendor, or one that cannot tell" + Lines(survey.problems) +
               "\n`devicediscover vendors` shows what is there.";
    }
    return NoPrinterToAsk(settings, survey);
}

std::string VendorsResult(int result) {
    const auto* const known =
        std::find_if(std::begin(kKnownResults), std::end(kKnownResults),
                     [&](const KnownResult& one) { return one.result == result; });
    std::string text = fmt::format("the vendor's result {}", result);
    const auto vendors = PrinterUtil::DescribeVendorList().vendors;
    const bool isListed = std::any_of(vendors.begin(), vendors.end(), [](const VendorInfo& vendor) {
        return vendor.productId == kKnownVendor;
    });
    if (known != std::end(kKnownResults) && isListed) {
        text += fmt::format(" (of vendor {}: {})", kKnownVendor, known->meaning);
    }
    return text;
}

NetworkScanSession::NetworkScanSession(const Settings& settings) {
    CancelOnInterrupt();
    const int result = DiscoverNetConnInterface::GetInstance().StartAPWifiScan({OnNetwork, 0});
    if (result != 0) {
        throw NoScan{Explanation(settings, result, "StartAPWifiScan")};
    }
    running = true;
}

NetworkScanSession::~NetworkScanSession() {
    Stop();
}

void NetworkScanSession::Stop() {
    if (running) {
        running = false;
        DiscoverNetConnInterface::GetInstance().StopAPWifiScan();
    }
}

}  // namespace App

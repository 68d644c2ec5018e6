// SPDX-License-Identifier: Apache-2.0

// Puts a printer on a Wi-Fi network through the printer's own network, which this computer has
// joined.
//
//     access_point                 shows the printer and the networks it reports
//     access_point NETWORK FILE    puts it on NETWORK; FILE holds the pass phrase

#include <DeviceDiscover/DeviceDiscover.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>
#include <thread>

namespace sdk = PrinterDeviceDiscoverSdk;

namespace {

// Called on threads of the vendor's.
int ReportNetwork(const sdk::WifiConfigInfo* network) noexcept {
    std::printf("  %.128s, signal %.0f\n", network->ssid, static_cast<double>(network->rssi));
    return 0;
}

int ShowNetworks() {
    auto& setUp = sdk::DiscoverNetConnInterface::GetInstance();
    if (const int result = setUp.StartAPWifiScan({ReportNetwork, 0}); result != 0) {
        std::fprintf(stderr, "access_point: StartAPWifiScan: %d\n", result);
        return 3;
    }
    std::this_thread::sleep_for(std::chrono::seconds(3));
    setUp.StopAPWifiScan();
    return 0;
}

// False when the text does not fit with its terminator: a text that is cut off is another network.
template <std::size_t Size>
bool Fill(char (&field)[Size], const std::string& text) {
    if (text.size() >= Size) {
        return false;
    }
    std::memcpy(field, text.c_str(), text.size() + 1);
    return true;
}

// ASCII only. A real application converts from UTF-8.
std::wstring Wide(const std::string& text) {
    return {text.begin(), text.end()};
}

bool Arrives(const sdk::DeviceInfo& printer) {
    constexpr int attempts = 20;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        if (sdk::DiscoverNetConnInterface::GetInstance().IsLocalAreaNetworkOK(printer) == 0) {
            return true;
        }
        std::this_thread::sleep_for(std::chrono::seconds(1));
    }
    return false;
}

int PutOn(const sdk::DeviceInfo& printer, const std::string& name, const std::string& passPhrase) {
    sdk::WifiConfigInfo network{};
    if (!Fill(network.ssid, name) || !Fill(network.pwd, passPhrase)) {
        std::fprintf(stderr, "access_point: the name or the pass phrase is too long\n");
        return 2;
    }
    auto& setUp = sdk::DiscoverNetConnInterface::GetInstance();
    if (const int result = setUp.PrinterAPNetConfigEvent(network); result != 0) {
        std::fprintf(stderr, "access_point: PrinterAPNetConfigEvent: %d\n", result);
        return 1;
    }
    // The printer is on that network now. Join it too, and ask for the printer there.
    auto& wifi = DeviceDiscover::PrinterWifiInterface::GetInstance();
    if (!wifi.ConnectAP(Wide(name), Wide(passPhrase))) {
        std::fprintf(stderr, "access_point: this computer could not join the network\n");
        return 1;
    }
    const bool arrived = Arrives(printer);
    std::printf("%.64s %s\n", printer.deviceSN, arrived ? "is there" : "was not found there");
    return arrived ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    sdk::DeviceInfo printer{};
    const int result = sdk::DiscoverNetConnInterface::GetInstance().GetDeviceInfoByNet(printer);
    if (result != 0) {
        std::fprintf(stderr, "access_point: in no printer's own network: %d\n", result);
        return 1;
    }
    std::printf("%.64s, vendor %.32s\n", printer.deviceSN, printer.modelID);
    if (argc == 1) {
        return ShowNetworks();
    }
    std::string passPhrase;
    if (argc != 3 || !std::getline(std::ifstream(argv[2]), passPhrase)) {
        std::fprintf(stderr, "usage: access_point [NETWORK PASS-PHRASE-FILE]\n");
        return 2;
    }
    return PutOn(printer, argv[1], passPhrase);
}

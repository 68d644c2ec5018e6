#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "DeviceDiscover/DeviceDiscover.h"
#include "app/terminal/table.h"

namespace App {

// A Wi-Fi network as a vendor reports it through a printer's access point.
struct Network {
    static constexpr const char* kOne = "network";
    static constexpr const char* kMany = "networks";

    explicit Network(const PrinterDeviceDiscoverSdk::WifiConfigInfo& network);

    std::string name;
    float signal;  // as the vendor measures it

    std::optional<std::string> Key() const { return name; }
    bool operator==(const Network& other) const;
};

// A Wi-Fi network as the host receives it.
struct HostNetwork {
    explicit HostNetwork(const PrinterWifiApiStruct::WlanInfoData& network);

    std::string name;                   // empty: hidden
    int signal;                         // 0 to 100
    std::vector<std::string> security;  // ways to protect it; none: open
    bool offered;                       // whether a printer can be put on it
};

// The cells of a network's row, fit for a terminal.
using NetworkRow = std::array<std::string, 2>;
NetworkRow RowOf(const Network& network);
Table TableOf(const std::vector<Network>& networks);

using HostNetworkRow = std::array<std::string, 4>;
HostNetworkRow RowOf(const HostNetwork& network);
Table TableOf(const std::vector<HostNetwork>& networks);

// What keeps a text from being a network's name in a printer's record; nothing when it is fine.
std::string CheckNetworkName(const std::string& name);

// What keeps a text from being the name of a network that the host could join.
std::string CheckHostNetworkName(const std::string& name);

// The record that puts a printer on a network. Neither text may be longer than its field holds.
PrinterDeviceDiscoverSdk::WifiConfigInfo NetworkRecord(std::string_view name,
                                                       std::string_view passPhrase);

}  // namespace App

// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "DeviceDiscover/DeviceDiscover.h"
#include "app/items/item_list.h"
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

using NetworkList = ItemList<Network>;

// A Wi-Fi network in range of the host.
struct HostNetwork {
    explicit HostNetwork(const PrinterWifiApiStruct::WlanInfoData& network);

    std::string name;                   // empty: hidden
    int signal;                         // 0 to 100
    std::vector<std::string> security;  // its kinds of protection; none: open
    bool offered;                       // whether a printer can be put on it
};

// The cells of a network's row, safe for a terminal.
using NetworkRow = std::array<std::string, 2>;
NetworkRow RowOf(const Network& network);
Table TableOf(const std::vector<Network>& networks);

using HostNetworkRow = std::array<std::string, 4>;
HostNetworkRow RowOf(const HostNetwork& network);
Table TableOf(const std::vector<HostNetwork>& networks);

// Why a text cannot be a network's name in a printer's record; empty when it can.
std::string CheckNetworkName(const std::string& name);

// Why a text cannot be the name of a network for the host to join; empty when it can.
std::string CheckHostNetworkName(const std::string& name);

// The record that puts a printer on a network. Neither text may be longer than its field holds.
PrinterDeviceDiscoverSdk::WifiConfigInfo NetworkRecord(std::string_view name,
                                                       std::string_view passPhrase);

}  // namespace App

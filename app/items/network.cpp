// SPDX-License-Identifier: Apache-2.0

#include "app/items/network.h"

#include <fmt/format.h>

#include <bit>
#include <cstdint>

#include "base/text/record_field.h"
#include "base/text/utf8.h"
#include "platform/PrinterUtil/PrinterUtil.h"

namespace App {

namespace {

using PrinterDeviceDiscoverSdk::WifiConfigInfo;

constexpr std::size_t kLongestName = sizeof WifiConfigInfo::ssid - 1;
constexpr std::size_t kLongestOnAir = 32;

std::vector<std::string> SecurityOf(std::uint32_t bits) {
    using namespace PrinterWifiApiStruct;
    std::vector<std::string> names;
    const auto add = [&](std::uint32_t bit, const char* name) {
        if ((bits & bit) != 0) {
            names.emplace_back(name);
        }
    };
    add(WLAN_SECURITY_WEP, "wep");
    add(WLAN_SECURITY_WPA_PERSONAL, "wpa-personal");
    add(WLAN_SECURITY_WPA_ENTERPRISE, "wpa-enterprise");
    return names;
}

std::string CheckName(const std::string& name, std::size_t longest, const char* limit) {
    if (name.empty()) {
        return "the network's name is empty";
    }
    if (name.size() > longest) {
        return fmt::format("the network's name has {} bytes; {} {}", name.size(), limit, longest);
    }
    return Base::IsUtf8(name) ? "" : "the network's name is not UTF-8 text";
}

}  // namespace

Network::Network(const WifiConfigInfo& network)
    : name(Base::FieldText(network.ssid)), signal(network.rssi) {}

bool Network::operator==(const Network& other) const {
    // Compare bit by bit: a vendor's value may be NaN.
    return name == other.name &&
           std::bit_cast<std::uint32_t>(signal) == std::bit_cast<std::uint32_t>(other.signal);
}

HostNetwork::HostNetwork(const PrinterWifiApiStruct::WlanInfoData& network)
    : name(PrinterUtil::WStringToString(network.ssid)),
      signal(network.attributes.signalQuality),
      security(SecurityOf(network.attributes.security)),
      offered(!network.ssid.empty() && !network.excludeFlag) {}

NetworkRow RowOf(const Network& network) {
    return {Cell(network.name), fmt::format("{:g}", network.signal)};
}

Table TableOf(const std::vector<Network>& networks) {
    Table table{{{"NETWORK", Column::Yielding}, {"SIGNAL", Column::Number}}, {}};
    for (const Network& network : networks) {
        const NetworkRow row = RowOf(network);
        table.rows.emplace_back(row.begin(), row.end());
    }
    return table;
}

HostNetworkRow RowOf(const HostNetwork& network) {
    const std::string security =
        network.security.empty() ? "open" : fmt::format("{}", fmt::join(network.security, " "));
    return {Cell(network.name), std::to_string(network.signal), security,
            network.offered ? "yes" : "no"};
}

Table TableOf(const std::vector<HostNetwork>& networks) {
    Table table{{{"NETWORK", Column::Yielding},
                 {"SIGNAL", Column::Number},
                 {"SECURITY", Column::Whole},
                 {"OFFERED", Column::Whole}},
                {}};
    for (const HostNetwork& network : networks) {
        const HostNetworkRow row = RowOf(network);
        table.rows.emplace_back(row.begin(), row.end());
    }
    return table;
}

std::string CheckNetworkName(const std::string& name) {
    return CheckName(name, kLongestName, "a printer can be given");
}

std::string CheckHostNetworkName(const std::string& name) {
    return CheckName(name, kLongestOnAir, "a Wi-Fi network's has at most");
}

WifiConfigInfo NetworkRecord(std::string_view name, std::string_view passPhrase) {
    WifiConfigInfo record{};
    Base::PutField(record.ssid, name);
    Base::PutField(record.pwd, passPhrase);
    return record;
}

}  // namespace App

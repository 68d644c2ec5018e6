// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "DeviceDiscover/DeviceDiscover.h"
#include "app/items/item_list.h"

namespace App {

// A printer from a vendor's record. The texts are unchanged, each no longer than its field.
struct Printer {
    static constexpr const char* kOne = "printer";
    static constexpr const char* kMany = "printers";

    explicit Printer(const PrinterDeviceDiscoverSdk::DeviceInfo& device);

    PrinterDeviceDiscoverSdk::DeviceInfo record;
    std::string serialNumber;
    std::string vendor;
    std::string makeAndModel;
    std::string address;
    std::string resource;
    std::uint16_t port;
    std::uint16_t service;

    // The same for each record of one device, also when there is news about it.
    std::optional<std::string> Key() const;
    bool operator==(const Printer& other) const;
};

using PrinterList = ItemList<Printer>;

}  // namespace App

// SPDX-License-Identifier: Apache-2.0

#pragma once

// One printer, and its record. The README explains the record's fields to callers.

#include <cstdint>
#include <optional>
#include <string>

#include "VendorSdk/records.h"
#include "modules/driverless/printer/service.h"

namespace Driverless {

// The state of a printer's Wi-Fi, with the standard's numbers.
enum class WifiState {
    Off = 3,
    NotConfigured = 4,
    NotVisible = 5,
    CannotJoin = 6,
    Joining = 7,
    On = 8,
};

// The attributes that a printer sent over IPP; missing ones are empty.
struct PrinterAttributes {
    std::string makeAndModel;
    std::string deviceId;  // IEEE 1284
    std::string serialNumber;
    std::string uuid;
    bool acceptsJobs = true;
    bool stopped = false;
    std::optional<WifiState> wifiState;  // none: its Wi-Fi cannot be configured
    std::string wifiName;                // the network it was configured for
    bool speaksTls = false;              // one of its URIs is "ipps:"
};

struct Printer {
    ServiceId id;
    ServiceKind kind = ServiceKind::None;
    std::string serialNumber;
    std::string uuid;
    std::string makeAndModel;
    std::string host;
    std::string address;
    std::uint16_t port = 0;
    std::string resource;  // the path of the IPP printer
};

// The UUID in lower case, without "urn:uuid:". Empty if `text` is not a UUID.
std::string PlainUuid(const std::string& text);

// The UUID that the service announces, or an empty text.
std::string AnnouncedUuid(const Service& service);

// The serial number from the attributes, in the form of a record; empty when they have none.
std::string SerialNumber(const PrinterAttributes& attributes);

// The printer of a service, with its IPP attributes if it has answered.
Printer Describe(const ServiceId& id, const Service& service,
                 const std::optional<PrinterAttributes>& attributes);

VendorSdk::DeviceInfo ToRecord(const Printer& printer);

// Reads a record, whose fields may be unterminated or invalid.
Printer FromRecord(const VendorSdk::DeviceInfo& record);

}  // namespace Driverless

#pragma once

// One printer, and its record. The README has the record's fields for callers.

#include <cstdint>
#include <optional>
#include <string>

#include "VendorSdk/records.h"
#include "modules/driverless/printer/service.h"

namespace Driverless {

// What a printer says of its Wi-Fi, with the numbers of the standard.
enum class WifiState {
    Off = 3,
    NotConfigured = 4,
    NotVisible = 5,
    CannotJoin = 6,
    Joining = 7,
    On = 8,
};

// The attributes that a printer gave over IPP; empty where it gave none.
struct PrinterAttributes {
    std::string makeAndModel;
    std::string deviceId;  // IEEE 1284
    std::string serialNumber;
    std::string uuid;
    bool acceptsJobs = true;
    bool stopped = false;
    std::optional<WifiState> wifiState;  // none: its Wi-Fi cannot be configured
    std::string wifiName;                // of the network it was given
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
    std::string resource;  // path of the IPP printer
};

// The UUID alone, in lower case: without "urn:uuid:". Empty for what is no UUID.
std::string PlainUuid(const std::string& text);

// The UUID that the service announces, or an empty text.
std::string AnnouncedUuid(const Service& service);

// The value of a key of an IEEE 1284 device id ("MFG:Acme;SN:123;"), whose keys have an
// `alternative` spelling; empty without one.
std::string DeviceIdValue(const std::string& deviceId, const std::string& key,
                          const std::string& alternative);

// The serial number that the attributes give, as it stands in a record; empty when they give none.
std::string SerialNumber(const PrinterAttributes& attributes);

// The printer behind a service, with what it said over IPP where it was asked and answered.
Printer Describe(const ServiceId& id, const Service& service,
                 const std::optional<PrinterAttributes>& attributes);

VendorSdk::DeviceInfo ToRecord(const Printer& printer);

// What a record says. Its fields need not be terminated, nor make sense.
Printer FromRecord(const VendorSdk::DeviceInfo& record);

}  // namespace Driverless

// SPDX-License-Identifier: Apache-2.0

#include "modules/driverless/printer/printer.h"

#include <algorithm>
#include <cctype>

#include "base/device_id.h"
#include "base/text/ascii_case.h"
#include "base/text/display_text.h"
#include "base/text/record_field.h"
#include "base/text/utf8.h"

namespace Driverless {

namespace {

using Base::CleanText;

constexpr char kModelId[] = "driverless";
constexpr char kDefaultResource[] = "/ipp/print";

std::string TxtValue(const Service& service, const std::string& key) {
    const auto entry = service.txt.find(key);
    return entry == service.txt.end() ? std::string() : CleanText(entry->second);
}

std::string FirstOf(std::initializer_list<std::string> candidates) {
    const auto found = std::find_if(candidates.begin(), candidates.end(),
                                    [](const std::string& text) { return !text.empty(); });
    return found == candidates.end() ? std::string() : *found;
}

std::string Joined(const std::string& maker, const std::string& model) {
    return maker.empty() || model.empty() ? maker + model : maker + " " + model;
}

// The "product" key has the form "(Acme Laser)".
std::string WithoutParentheses(const std::string& text) {
    const bool enclosed = text.size() >= 2 && text.front() == '(' && text.back() == ')';
    return enclosed ? text.substr(1, text.size() - 2) : text;
}

std::string MakeAndModel(const ServiceId& id, const Service& service,
                         const PrinterAttributes& attributes) {
    const Base::DeviceId deviceId = Base::ReadDeviceId(attributes.deviceId);
    return FirstOf({CleanText(attributes.makeAndModel), TxtValue(service, "ty"),
                    Joined(TxtValue(service, "usb_mfg"), TxtValue(service, "usb_mdl")),
                    WithoutParentheses(TxtValue(service, "product")),
                    Joined(CleanText(deviceId.manufacturer), CleanText(deviceId.model)),
                    CleanText(id.name)});
}

std::string Resource(const Service& service) {
    const auto entry = service.txt.find("rp");
    if (entry == service.txt.end() || entry->second.empty()) {
        return kDefaultResource;
    }
    return entry->second.front() == '/' ? entry->second : "/" + entry->second;
}

bool IsPath(const std::string& text) {
    return text.starts_with('/') && std::all_of(text.begin(), text.end(), [](char c) {
               return static_cast<unsigned char>(c) > ' ' && static_cast<unsigned char>(c) < 0x7F;
           });
}

// The part of `text` that fits into a record's field.
template <std::size_t size>
std::string AsInField(const char (&)[size], const std::string& text) {
    return std::string(Base::CutUtf8(text, size - 1));
}

constexpr VendorSdk::DeviceInfo kFields{};

}  // namespace

std::string PlainUuid(const std::string& text) {
    constexpr std::string_view prefix = "urn:uuid:";
    std::string uuid = Base::LowerCase(text);
    if (uuid.starts_with(prefix)) {
        uuid.erase(0, prefix.size());
    }
    const bool plain = uuid.size() == 36 && std::all_of(uuid.begin(), uuid.end(), [](char c) {
                           return c == '-' || (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f');
                       });
    return plain ? uuid : std::string();
}

std::string AnnouncedUuid(const Service& service) {
    return PlainUuid(TxtValue(service, "uuid"));
}

std::string SerialNumber(const PrinterAttributes& attributes) {
    const Base::DeviceId deviceId = Base::ReadDeviceId(attributes.deviceId);
    return AsInField(kFields.deviceSN, FirstOf({CleanText(attributes.serialNumber),
                                                CleanText(deviceId.serialNumber)}));
}

Printer Describe(const ServiceId& id, const Service& service,
                 const std::optional<PrinterAttributes>& attributes) {
    const PrinterAttributes known = attributes.value_or(PrinterAttributes{});
    Printer printer;
    printer.id = id;
    printer.kind = id.kind;
    printer.uuid = FirstOf({PlainUuid(known.uuid), AnnouncedUuid(service)});
    printer.serialNumber =
        AsInField(kFields.deviceSN, FirstOf({SerialNumber(known), printer.uuid,
                                             CleanText(id.name) + "@" + CleanText(service.host)}));
    printer.makeAndModel = MakeAndModel(id, service, known);
    printer.host = service.host;
    printer.address = service.address;
    printer.port = service.port;
    if (SpeaksIpp(id.kind)) {
        printer.resource = Resource(service);
    }
    return printer;
}

VendorSdk::DeviceInfo ToRecord(const Printer& printer) {
    VendorSdk::DeviceInfo record{};
    record.code1 = printer.port;
    record.code2 = static_cast<std::uint16_t>(printer.kind);
    Base::PutField(record.deviceSN, printer.serialNumber);
    Base::PutField(record.modelID, kModelId);
    Base::PutField(record.extra1, printer.makeAndModel);
    Base::PutField(record.extra2, printer.address);
    // A truncated path would name another printer, or none.
    if (printer.resource.size() < sizeof record.extra3 && IsPath(printer.resource)) {
        Base::PutField(record.extra3, printer.resource);
    }
    return record;
}

Printer FromRecord(const VendorSdk::DeviceInfo& record) {
    Printer printer;
    const bool knownKind = record.code2 >= 1 && record.code2 <= kServiceTypes.size();
    printer.kind = knownKind ? static_cast<ServiceKind>(record.code2) : ServiceKind::None;
    printer.port = record.code1;
    printer.serialNumber = Base::FieldText(record.deviceSN);
    printer.uuid = PlainUuid(printer.serialNumber);
    printer.makeAndModel = Base::FieldText(record.extra1);
    printer.address = Base::FieldText(record.extra2);
    printer.host = printer.address;
    printer.resource = Base::FieldText(record.extra3);
    if (SpeaksIpp(printer.kind) && !IsPath(printer.resource)) {
        printer.resource = kDefaultResource;
    }
    return printer;
}

}  // namespace Driverless

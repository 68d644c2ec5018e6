// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterDiscoverAPI/usb/windows/usb_device_path.h"

#include <vector>

#include "base/text/ascii_case.h"
#include "base/text/utf8.h"

namespace PrinterDiscoverAPI {

namespace {

constexpr std::size_t kPrefixLength = 4;  // \\?\ or \\.\ or, as stored by the system, ##?#

std::vector<std::string_view> Split(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    for (;;) {
        const std::size_t end = text.find(separator);
        parts.push_back(text.substr(0, end));
        if (end == std::string_view::npos) {
            return parts;
        }
        text.remove_prefix(end + 1);
    }
}

bool HasPrefix(std::string_view path) {
    return path.size() > kPrefixLength && (path.starts_with("\\\\") || path.starts_with("##")) &&
           (path[2] == '?' || path[2] == '.') && (path[3] == '\\' || path[3] == '#');
}

std::optional<unsigned> HexNumber(std::string_view digits) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    if (digits.size() != 4) {
        return std::nullopt;
    }
    unsigned number = 0;
    for (const char digit : digits) {
        const std::size_t value = kDigits.find(digit);
        if (value == std::string_view::npos) {
            return std::nullopt;
        }
        number = number * 16 + static_cast<unsigned>(value);
    }
    return number;
}

// The parsed hardware identifiers VID_vvvv&PID_pppp&REV_rrrr&MI_ii of a path.
struct HardwareIds {
    std::optional<unsigned> vendorId;
    std::optional<unsigned> productId;
    bool isPartOfDevice = false;  // one function of several

    explicit HardwareIds(std::string_view text) {
        for (const std::string_view id : Split(text, '&')) {
            if (id.starts_with("VID_")) {
                vendorId = HexNumber(id.substr(4));
            } else if (id.starts_with("PID_")) {
                productId = HexNumber(id.substr(4));
            } else if (id.starts_with("MI_")) {
                isPartOfDevice = true;
            }
        }
    }
};

}  // namespace

std::optional<UsbPrinter> UsbPrinterOfPath(std::wstring_view path) {
    UsbPrinter printer;
    printer.path = Base::UpperCase(Base::ToUtf8(path));
    const std::string_view whole = printer.path;
    const auto parts = Split(HasPrefix(whole) ? whole.substr(kPrefixLength) : whole, '#');
    if (parts.size() < 3 || parts[0] != "USB") {
        return std::nullopt;
    }
    const HardwareIds ids(parts[1]);
    if (!ids.vendorId || !ids.productId) {
        return std::nullopt;
    }
    printer.hardwareId = UsbHardwareId(*ids.vendorId, *ids.productId);
    printer.devicePath = Base::ToUtf8(printer.hardwareId) + '#';
    // The functions of one device have the same instance id except for the number at its end.
    printer.devicePath += ids.isPartOfDevice ? parts[2].substr(0, parts[2].rfind('&')) : parts[2];
    return printer;
}

}  // namespace PrinterDiscoverAPI

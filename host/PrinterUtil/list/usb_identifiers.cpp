// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterUtil/list/usb_identifiers.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "base/text/ascii_case.h"

namespace PrinterUtil {

namespace {

constexpr std::string_view kForm = "VID_....&PID_....";  // "." is a hexadecimal digit

bool IsHexDigit(char character) {
    return (character >= '0' && character <= '9') || (character >= 'A' && character <= 'F');
}

// Whether the identifier, in upper case, begins like that of a device.
bool HasForm(std::string_view identifier) {
    const auto fits = [](char form, char character) {
        return form == '.' ? IsHexDigit(character) : form == character;
    };
    return identifier.size() >= kForm.size() &&
           std::equal(kForm.begin(), kForm.end(), identifier.begin(), fits);
}

}  // namespace

std::vector<std::string> MendUsbIdentifiers(std::string& usbIdList) {
    std::vector<std::string> notes;
    if (usbIdList.find_first_not_of(' ') == std::string::npos) {
        usbIdList = std::string(kNoUsbIdentifier);
        notes.emplace_back(
            "\"usbIdList\" is missing or empty: this vendor serves no printer on USB; \"-\" says "
            "so");
        return notes;
    }
    for (std::size_t at = 0; at < usbIdList.size();) {
        const std::size_t end = std::min(usbIdList.find(' ', at), usbIdList.size());
        const std::string identifier = usbIdList.substr(at, end - at);
        const std::string capitals = Base::UpperCase(identifier);
        if (capitals != identifier && HasForm(capitals)) {
            std::copy(capitals.begin(), capitals.end(),
                      usbIdList.begin() + static_cast<std::ptrdiff_t>(at));
            notes.push_back(std::string("\"usbIdList\": ")
                                .append(identifier)
                                .append(" is read as ")
                                .append(capitals));
        }
        at = end + 1;
    }
    return notes;
}

}  // namespace PrinterUtil

// SPDX-License-Identifier: Apache-2.0

#include "base/device_id.h"

#include <cstddef>

#include "base/text/ascii_case.h"
#include "base/text/trimmed.h"

namespace Base {

namespace {

constexpr std::string_view kBlanks = " \t\r\n";
constexpr std::size_t kLengthBytes = 2;
constexpr std::size_t kShortestText = 4;  // "SN:1"

// The field for the key; null for a key that is not used.
std::string* FieldOf(DeviceId& id, const std::string& key) {
    if (key == "MFG" || key == "MANUFACTURER") {
        return &id.manufacturer;
    }
    if (key == "MDL" || key == "MODEL") {
        return &id.model;
    }
    if (key == "SN" || key == "SERN" || key == "SERIALNUMBER") {
        return &id.serialNumber;
    }
    return nullptr;
}

}  // namespace

DeviceId ReadDeviceId(std::string_view text) {
    DeviceId id;
    text = text.substr(0, text.find('\0'));
    while (!text.empty()) {
        const std::string_view pair = text.substr(0, text.find(';'));
        text.remove_prefix(pair.size() == text.size() ? pair.size() : pair.size() + 1);
        const std::size_t colon = pair.find(':');
        if (colon == std::string_view::npos) {
            continue;
        }
        std::string* const field = FieldOf(id, UpperCase(Trimmed(pair.substr(0, colon), kBlanks)));
        if (field != nullptr && field->empty()) {
            *field = Trimmed(pair.substr(colon + 1), kBlanks);
        }
    }
    return id;
}

std::string_view DeviceIdText(std::string_view answer) {
    if (answer.size() <= kLengthBytes) {
        return {};
    }
    const std::string_view text = answer.substr(kLengthBytes);
    const auto byte = [answer](std::size_t at) {
        return static_cast<std::size_t>(static_cast<unsigned char>(answer[at]));
    };
    for (const std::size_t length : {byte(0) << 8U | byte(1), byte(1) << 8U | byte(0)}) {
        if (length == text.size() || length == answer.size()) {
            return text;
        }
        if (length >= kLengthBytes + kShortestText && length < answer.size()) {
            return text.substr(0, length - kLengthBytes);
        }
    }
    return text;
}

}  // namespace Base

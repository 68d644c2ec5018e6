// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterAdapter/device_id.h"

namespace PrinterAdapter {

namespace {

constexpr std::string_view kBlanks = " \t\r\n";

std::string_view Trimmed(std::string_view text) {
    const std::size_t begin = text.find_first_not_of(kBlanks);
    if (begin == std::string_view::npos) {
        return {};
    }
    return text.substr(begin, text.find_last_not_of(kBlanks) + 1 - begin);
}

std::string UpperCase(std::string_view text) {
    std::string upper(text);
    for (char& letter : upper) {
        if (letter >= 'a' && letter <= 'z') {
            letter = static_cast<char>(letter - 'a' + 'A');
        }
    }
    return upper;
}

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
    while (!text.empty()) {
        const std::string_view pair = text.substr(0, text.find(';'));
        text.remove_prefix(pair.size() == text.size() ? pair.size() : pair.size() + 1);
        const std::size_t colon = pair.find(':');
        if (colon == std::string_view::npos) {
            continue;
        }
        std::string* const field = FieldOf(id, UpperCase(Trimmed(pair.substr(0, colon))));
        if (field != nullptr && field->empty()) {
            *field = Trimmed(pair.substr(colon + 1));
        }
    }
    return id;
}

}  // namespace PrinterAdapter

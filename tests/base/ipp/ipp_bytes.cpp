// SPDX-License-Identifier: Apache-2.0

#include "tests/base/ipp/ipp_bytes.h"

namespace BaseTest {

std::string Short(std::size_t number) {
    return {static_cast<char>(number >> 8U), static_cast<char>(number & 0xffU)};
}

std::string Head(std::uint16_t status) {
    return "\x02" + std::string(1, '\0') + Short(status) + Short(0) + Short(1);
}

std::string Group(std::uint8_t tag) {
    return std::string(1, static_cast<char>(tag));
}

std::string Value(std::uint8_t tag, std::string_view name, std::string_view value) {
    std::string bytes(1, static_cast<char>(tag));
    bytes.append(Short(name.size())).append(name);
    return bytes.append(Short(value.size())).append(value);
}

std::string Text(std::string_view name, std::string_view value) {
    return Value(0x41, name, value);
}

std::string Number(std::uint8_t tag, std::string_view name, std::uint32_t number) {
    return Value(tag, name, Short(number >> 16U) + Short(number & 0xffffU));
}

std::string End() {
    return "\x03";
}

std::string Nested(std::size_t depth, bool isWhole) {
    std::string bytes = Value(0x34, "media-col", "");
    for (std::size_t i = 1; i < depth; ++i) {
        bytes += Value(0x4a, "", "member") + Value(0x34, "", "");
    }
    for (std::size_t i = 0; isWhole && i < depth; ++i) {
        bytes += Value(0x37, "", "");
    }
    return bytes;
}

}  // namespace BaseTest

// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <string_view>

namespace Base {

// Reads numbers from untrusted bytes. The caller has checked that the bytes exist.
inline std::uint8_t ByteAt(std::string_view bytes, std::size_t at) {
    return static_cast<std::uint8_t>(bytes[at]);
}

inline std::uint16_t ShortAt(std::string_view bytes, std::size_t at) {
    return static_cast<std::uint16_t>(ByteAt(bytes, at) << 8U | ByteAt(bytes, at + 1));
}

}  // namespace Base

// SPDX-License-Identifier: Apache-2.0

#pragma once

// The tags of an IPP message (RFC 8010, RFC 8011).

#include <cstdint>

namespace Base::IppTag {

inline constexpr std::uint8_t kReserved = 0x00;
inline constexpr std::uint8_t kEnd = 0x03;
// Tags up to this one are delimiters of groups; greater tags are tags of values.
inline constexpr std::uint8_t kLastGroup = 0x0f;
inline constexpr std::uint8_t kInteger = 0x21;
inline constexpr std::uint8_t kBoolean = 0x22;
inline constexpr std::uint8_t kEnum = 0x23;
inline constexpr std::uint8_t kOctets = 0x30;
inline constexpr std::uint8_t kBeginCollection = 0x34;
inline constexpr std::uint8_t kTextWithLanguage = 0x35;
inline constexpr std::uint8_t kNameWithLanguage = 0x36;
inline constexpr std::uint8_t kEndCollection = 0x37;
inline constexpr std::uint8_t kText = 0x41;
inline constexpr std::uint8_t kName = 0x42;
inline constexpr std::uint8_t kKeyword = 0x44;
inline constexpr std::uint8_t kUri = 0x45;
inline constexpr std::uint8_t kCharset = 0x47;
inline constexpr std::uint8_t kLanguage = 0x48;
inline constexpr std::uint8_t kLastText = 0x49;

constexpr bool HasLanguage(std::uint8_t tag) {
    return tag == kTextWithLanguage || tag == kNameWithLanguage;
}

constexpr bool IsText(std::uint8_t tag) {
    return HasLanguage(tag) || (tag >= kText && tag <= kLastText);
}

}  // namespace Base::IppTag

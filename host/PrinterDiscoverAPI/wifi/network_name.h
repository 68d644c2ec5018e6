// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Host {

// A network's name consists of 1 to 32 arbitrary bytes.
inline constexpr std::size_t kLongestNetworkName = 32;

// Whether the bytes are text: UTF-8 without control characters.
bool IsText(std::string_view name);

// The name for display: decoded from UTF-8, or one character for each byte if it is not UTF-8.
std::wstring NetworkNameText(std::string_view name);

// Converts to UTF-8; returns nothing when the text is ill-formed.
std::optional<std::string> StrictUtf8(std::wstring_view text);

// The name, but empty if it has only zero bytes: some access points hide their name in this way.
std::string_view BroadcastName(std::string_view name);

}  // namespace Host

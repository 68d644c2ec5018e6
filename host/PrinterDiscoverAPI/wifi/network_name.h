#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Host {

// A network's name is any 1 to 32 bytes.
inline constexpr std::size_t kLongestNetworkName = 32;

// Whether the bytes are text: UTF-8 without control characters.
bool IsText(std::string_view name);

// The name for people: decoded from UTF-8 or, when it is not that, one character a byte.
std::wstring NetworkNameText(std::string_view name);

// The text as UTF-8; nothing when it is not well-formed.
std::optional<std::string> StrictUtf8(std::wstring_view text);

// The name as it counts: nothing but zero bytes is how some access points hide theirs.
std::string_view BroadcastName(std::string_view name);

}  // namespace Host

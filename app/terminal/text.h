#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace App {

// `text`, which a device may have sent, fit for a terminal: well-formed UTF-8 without characters
// that steer a terminal or turn the direction of text. Each offender becomes U+FFFD.
std::string DisplayText(std::string_view text);

// Whether `text` is well-formed UTF-8.
bool IsUtf8(std::string_view text);

// `text` as wide text; nothing when it is not well-formed UTF-8.
std::optional<std::wstring> Widen(std::string_view text);

// How many columns `text`, well-formed UTF-8, takes on a terminal.
std::size_t DisplayWidth(std::string_view text);

// The longest beginning of `text` that takes at most `columns` columns.
std::string_view CutToWidth(std::string_view text, std::size_t columns);

}  // namespace App

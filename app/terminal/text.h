// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace App {

// Makes `text`, which a device may have sent, safe for a terminal: returns well-formed UTF-8
// without characters that control a terminal or change the direction of text. Each such character
// becomes U+FFFD.
std::string DisplayText(std::string_view text);

// Whether `text` is well-formed UTF-8.
bool IsUtf8(std::string_view text);

// Converts `text` to wide text; returns nothing when it is not well-formed UTF-8.
std::optional<std::wstring> Widen(std::string_view text);

// The number of terminal columns of `text`, which must be well-formed UTF-8.
std::size_t DisplayWidth(std::string_view text);

// The longest prefix of `text` that takes at most `columns` columns.
std::string_view CutToWidth(std::string_view text, std::size_t columns);

}  // namespace App

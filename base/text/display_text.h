// SPDX-License-Identifier: Apache-2.0

#pragma once

// Text from elsewhere, made safe for records and terminals, and its place on a terminal.

#include <cstddef>
#include <string>
#include <string_view>

namespace Base {

// For a record: well-formed UTF-8 without control characters and without blanks at its ends. What
// is ill-formed becomes U+FFFD (see base/text/utf8.h); a character that breaks a line or changes
// the direction of text becomes a blank.
std::string CleanText(std::string_view text);

// For a terminal: well-formed UTF-8 without characters that control a terminal, change the
// direction of text or show nothing. Each of them, and what is ill-formed, becomes U+FFFD.
std::string DisplayText(std::string_view text);

// The number of terminal columns of `text`, which should come from DisplayText.
std::size_t DisplayWidth(std::string_view text);

// The longest prefix of `text` that takes at most `columns` columns.
std::string_view CutToWidth(std::string_view text, std::size_t columns);

}  // namespace Base

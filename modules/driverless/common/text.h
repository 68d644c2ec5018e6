// SPDX-License-Identifier: Apache-2.0

#pragma once

// Cleans text from the network for records and for terminals.

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace Driverless {

// Returns well-formed UTF-8 without control characters and without leading or trailing blanks: each
// ill-formed byte becomes U+FFFD, each control character a blank.
std::string CleanText(std::string_view text);

// The longest prefix of `text` with at most `size` bytes and only whole characters.
std::string_view CutText(std::string_view text, std::size_t size);

// Fills the whole field: `text`, truncated if too long, then zeros, at least one.
void PutText(std::span<char> field, std::string_view text);

// The text of the field up to its terminator, or the whole field without one.
std::string FieldText(std::span<const char> field);

// The same, as a view into the record.
std::string_view FieldView(std::span<const char> field);

// Whether the text is well-formed UTF-8.
bool IsUtf8(std::string_view text);

// The system's wide text as UTF-8; ill-formed text becomes U+FFFD.
std::string ToUtf8(std::wstring_view text);

// The text with ASCII letters in lower case.
std::string LowerCase(std::string_view text);

}  // namespace Driverless

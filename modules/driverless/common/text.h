#pragma once

// Text from the network, made fit for a record and for a terminal.

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace Driverless {

// Well-formed UTF-8 without control characters and without blanks at its ends: each ill-formed byte
// becomes U+FFFD, each control character a blank.
std::string CleanText(std::string_view text);

// The longest beginning of `text` that has at most `size` bytes and cuts no character.
std::string_view CutText(std::string_view text, std::size_t size);

// Fills the whole field: `text`, cut where needed, and zeroes behind it, at least one.
void PutText(std::span<char> field, std::string_view text);

// What the field holds before its terminator, or all of it when it has none.
std::string FieldText(std::span<const char> field);

// The same, as it stands in the record.
std::string_view FieldView(std::span<const char> field);

// Whether the text is well-formed UTF-8.
bool IsUtf8(std::string_view text);

// The system's wide text as UTF-8; what is no character becomes U+FFFD.
std::string ToUtf8(std::wstring_view text);

// ASCII letters in lower case.
std::string LowerCase(std::string_view text);

}  // namespace Driverless

// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace LogHelper {

// The part of a line that is a pass phrase and must be masked; empty, at the end of the line, when
// there is none.
struct Secret {
    std::size_t begin;
    std::size_t end;
    bool isThere;
};
Secret SecretIn(std::wstring_view line);

// Appends the line as one line of UTF-8, with control characters and line separators escaped.
// Truncates very long lines.
void AppendOneLine(std::string& text, std::wstring_view line, bool showSecrets);

}  // namespace LogHelper

#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace LogHelper {

// The part of a line that is a pass phrase, and is to be replaced; empty at the line's end when the
// line carries none.
struct Secret {
    std::size_t begin;
    std::size_t end;
    bool isThere;
};
Secret SecretIn(std::wstring_view line);

// Appends the line as UTF-8 that stays one line: control characters and line separators come out
// escaped. It is cut off when it is longer than anything that makes sense in a log.
void AppendOneLine(std::string& text, std::wstring_view line, bool showSecrets);

}  // namespace LogHelper

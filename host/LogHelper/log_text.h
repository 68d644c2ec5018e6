#pragma once

#include <string>
#include <string_view>

namespace LogHelper {

// Replaces the pass phrase in a line that carries one.
void MaskSecrets(std::wstring& line);

// The line as UTF-8 that stays one line: control characters and line separators come out escaped.
std::string OneLine(std::wstring_view line);

}  // namespace LogHelper

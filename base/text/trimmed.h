// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string_view>

namespace Base {

// The text without those of `blanks` that it begins and ends with.
inline std::string_view Trimmed(std::string_view text, std::string_view blanks) {
    const std::size_t begin = text.find_first_not_of(blanks);
    return begin == std::string_view::npos
               ? std::string_view()
               : text.substr(begin, text.find_last_not_of(blanks) + 1 - begin);
}

}  // namespace Base

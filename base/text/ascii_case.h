// SPDX-License-Identifier: Apache-2.0

#pragma once

// Upper and lower case of ASCII letters, whatever the locale. Other characters stay as they are.

#include <string>
#include <string_view>

namespace Base {

template <class Character>
std::basic_string<Character> LowerCase(std::basic_string_view<Character> text) {
    std::basic_string<Character> lower(text);
    for (Character& letter : lower) {
        if (letter >= 'A' && letter <= 'Z') {
            letter = static_cast<Character>(letter - 'A' + 'a');
        }
    }
    return lower;
}

template <class Character>
std::basic_string<Character> UpperCase(std::basic_string_view<Character> text) {
    std::basic_string<Character> upper(text);
    for (Character& letter : upper) {
        if (letter >= 'a' && letter <= 'z') {
            letter = static_cast<Character>(letter - 'a' + 'A');
        }
    }
    return upper;
}

inline std::string LowerCase(std::string_view text) {
    return LowerCase<char>(text);
}

inline std::string UpperCase(std::string_view text) {
    return UpperCase<char>(text);
}

}  // namespace Base

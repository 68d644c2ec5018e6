// SPDX-License-Identifier: Apache-2.0

#include "base/text/characters.h"

namespace Base {

bool IsControl(char32_t codePoint) {
    return codePoint < 0x20 || (codePoint >= 0x7F && codePoint <= 0x9F);
}

bool BreaksLine(char32_t codePoint) {
    return IsControl(codePoint) || codePoint == 0x2028 || codePoint == 0x2029;
}

bool ChangesDirection(char32_t codePoint) {
    return (codePoint >= 0x202A && codePoint <= 0x202E) ||
           (codePoint >= 0x2066 && codePoint <= 0x2069);
}

bool IsInvisible(char32_t codePoint) {
    return codePoint == 0x061C || codePoint == 0xFEFF ||
           (codePoint >= 0x200B && codePoint <= 0x200F) ||
           (codePoint >= 0x2060 && codePoint <= 0x206F) ||
           (codePoint >= 0xFFF9 && codePoint <= 0xFFFB);
}

}  // namespace Base

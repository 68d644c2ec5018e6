// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>
#include <wchar.h>

#include <clocale>
#include <string>

#include "base/text/display_text.h"
#include "base/text/utf8.h"

namespace Base {
namespace {

// What terminals go by.
TEST(DisplayWidth, IsThatOfTheSystemForEachCharacterThatItKnows) {
    ASSERT_NE(std::setlocale(LC_ALL, "C.UTF-8"), nullptr);
    constexpr char32_t lastCodePoint = 0x10FFFF;
    int known = 0;
    int different = 0;
    for (char32_t value = 1; value <= lastCodePoint; ++value) {
        const int width = wcwidth(static_cast<wchar_t>(value));
        if (width < 0) {
            continue;
        }
        ++known;
        if (DisplayWidth(EncodeUtf8(value).View()) != static_cast<std::size_t>(width) &&
            ++different <= 20) {
            ADD_FAILURE() << "U+" << std::hex << static_cast<unsigned>(value) << " takes " << width;
        }
    }
    EXPECT_EQ(different, 0);
    EXPECT_GT(known, 200000);
}

}  // namespace
}  // namespace Base

// SPDX-License-Identifier: Apache-2.0

#include "base/text/ascii_case.h"

#include <gtest/gtest.h>

namespace Base {
namespace {

TEST(AsciiCase, ChangesAsciiLettersOnly) {
    EXPECT_EQ(LowerCase("@AZ[ `az{ \xC3\x9C"), "@az[ `az{ \xC3\x9C");
    EXPECT_EQ(UpperCase("@AZ[ `az{ \xC3\xBC"), "@AZ[ `AZ{ \xC3\xBC");
    EXPECT_EQ(UpperCase(std::wstring_view(L"az\u00FC")), L"AZ\u00FC");
}

}  // namespace
}  // namespace Base

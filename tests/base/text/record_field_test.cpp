// SPDX-License-Identifier: Apache-2.0

#include "base/text/record_field.h"

#include <gtest/gtest.h>

#include <array>

namespace Base {
namespace {

struct Record {
    char first[4];
    char second[4];
};

TEST(FieldText, EndsAtTheTerminatorOrWithTheField) {
    const Record record{{'a', 0, 'b', 'c'}, {'d', 'e', 'f', 'g'}};
    EXPECT_EQ(FieldText(record.first), "a");
    EXPECT_EQ(FieldText(record.second), "defg");
    EXPECT_EQ(FieldText(Record{{'a', 'b', 'c', 'd'}, {'e'}}.first), "abcd") << "not the next one";
    EXPECT_EQ(FieldText(Record{}.first), "");
}

TEST(FieldView, IsOfTheRecordItself) {
    const Record record{{'a', 'b', 0, 0}, {}};
    EXPECT_EQ(FieldView(record.first), "ab");
    EXPECT_EQ(FieldView(record.first).data(), record.first);
}

TEST(PutField, TerminatesAndClearsTheField) {
    std::array<char, 4> field{'x', 'x', 'x', 'x'};
    PutField(field, "a");
    EXPECT_EQ(field, (std::array<char, 4>{'a', 0, 0, 0}));
    PutField(field, "abcd");
    EXPECT_EQ(field, (std::array<char, 4>{'a', 'b', 'c', 0}));
    PutField(field, "ab\xC3\xBC");
    EXPECT_EQ(field, (std::array<char, 4>{'a', 'b', 0, 0}));
}

}  // namespace
}  // namespace Base

// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterUtil/modules/loading_note.h"

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <string>
#include <vector>

namespace PrinterUtil {

namespace {

constexpr std::size_t kMostNotes = 16;
constexpr std::size_t kMostBytesOfPath = 1023;

std::string All(std::size_t size) {
    std::vector<char> text(size + 1, '#');
    const std::size_t length = LoadingNote::ReadAll(text.data(), size);
    EXPECT_EQ(text[size], '#') << "written past the end";
    EXPECT_EQ(text[length], '\0');
    return std::string(text.data(), length);
}

TEST(ModulesBeingLoaded, are_all_told_in_one_line) {
    EXPECT_EQ(All(100), "");
    const LoadingNote first("/first.so");
    {
        const LoadingNote second("/second.so");
        EXPECT_EQ(All(100), "/first.so, /second.so");
        EXPECT_EQ(LoadingNote::Latest(), "/second.so");
    }
    EXPECT_EQ(All(100), "/first.so");
    EXPECT_EQ(LoadingNote::Latest(), "/first.so");
}

TEST(ModulesBeingLoaded, are_cut_where_they_do_not_fit) {
    const LoadingNote first("/first.so");
    const LoadingNote second("/second.so");
    EXPECT_EQ(All(21), "/first.so, /second.s");
    EXPECT_EQ(All(11), "/first.so,");
    EXPECT_EQ(All(1), "");
    std::array<char, 1> nothing{'#'};
    EXPECT_EQ(LoadingNote::ReadAll(nothing.data(), 0), 0u);
    EXPECT_EQ(nothing[0], '#');
}

TEST(ModulesBeingLoaded, have_a_long_path_cut) {
    const std::string fits(kMostBytesOfPath, 'a');
    const LoadingNote longest(fits);
    EXPECT_EQ(All(5000), fits);
    const LoadingNote longer(std::string(4096, 'b'));
    EXPECT_EQ(All(5000), fits + ", " + std::string(kMostBytesOfPath, 'b'));
    EXPECT_EQ(LoadingNote::Latest(), std::string(kMostBytesOfPath, 'b'));
}

TEST(ModulesBeingLoaded, leave_out_those_that_are_too_many) {
    std::vector<std::unique_ptr<LoadingNote>> notes;
    std::string expected;
    for (std::size_t i = 0; i < kMostNotes; ++i) {
        notes.push_back(std::make_unique<LoadingNote>("/" + std::to_string(i)));
        expected += (i == 0 ? "/" : ", /") + std::to_string(i);
    }
    {
        const LoadingNote tooMany("/16");
        EXPECT_EQ(All(5000), expected);
    }
    EXPECT_EQ(All(5000), expected) << "a note without room frees nobody's";
    notes.erase(notes.begin());
    const LoadingNote later("/later");
    EXPECT_EQ(All(5000), "/later" + expected.substr(2)) << "a row is used again";
    EXPECT_EQ(LoadingNote::Latest(), "/later");
}

}  // namespace

}  // namespace PrinterUtil

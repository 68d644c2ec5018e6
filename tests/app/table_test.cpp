// SPDX-License-Identifier: Apache-2.0

#include "app/terminal/table.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "base/text/display_text.h"

namespace App {

namespace {

using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;

const std::string kSerial = "SN-0123456789";
const std::string kAddress = "192.168.100.200";

Table Printers() {
    return {{{"SERIAL NUMBER", Column::Whole},
             {"MAKE AND MODEL", Column::Yielding},
             {"ADDRESS", Column::Whole},
             {"PORT", Column::Number},
             {"VENDOR", Column::Yielding}},
            {{kSerial, "Acme Laser 9000 with a long name", kAddress, "631", "driverless"},
             {"S", "Acme", "192.0.2.1", "9100", "acme"}}};
}

std::size_t WidestOf(const std::vector<std::string>& lines) {
    std::size_t widest = 0;
    for (const std::string& line : lines) {
        widest = std::max(widest, Base::DisplayWidth(line));
    }
    return widest;
}

// What stands in the columns of the lines, without the gaps and the breaks between lines.
std::string TextIn(const std::vector<std::string>& lines, std::size_t from, std::size_t width) {
    std::string text;
    for (const std::string& line : lines) {
        text += line.size() > from ? line.substr(from, width) : "";
    }
    text.erase(std::remove(text.begin(), text.end(), ' '), text.end());
    return text;
}

TEST(Table, WithRoom_IsAlignedAndWhole) {
    EXPECT_THAT(
        TableLines(Printers(), 100, Overflow::Cut),
        ElementsAre(
            "SERIAL NUMBER  MAKE AND MODEL                    ADDRESS          PORT  VENDOR",
            "SN-0123456789  Acme Laser 9000 with a long name  192.168.100.200   631  driverless",
            "S              Acme                              192.0.2.1        9100  acme"));
}

TEST(Table, OnSixtyColumns_CutsOtherColumnsThanThoseNeededWhole) {
    const std::vector<std::string> lines = TableLines(Printers(), 60, Overflow::Cut);
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_LE(WidestOf(lines), 60U);
    EXPECT_THAT(lines[1], HasSubstr(kSerial + "  Acme"));
    EXPECT_THAT(lines[1], HasSubstr("  " + kAddress + "   631  "));
}

TEST(Table, AsNarrowAsTheColumnsNeededWhole_StillHasThem) {
    // Two columns are left for each of the others.
    const std::size_t columns = kSerial.size() + kAddress.size() + 4 + 2 * 2 + 4 * 2;
    const std::vector<std::string> lines = TableLines(Printers(), columns, Overflow::Cut);
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[1], kSerial + "  Ac  " + kAddress + "   631  dr");
}

TEST(Table, NarrowerThanTheColumnsNeededWhole_WrapsThemAndLosesNothing) {
    for (std::size_t columns = 20; columns < 44; ++columns) {
        const std::vector<std::string> lines = TableLines(Printers(), columns, Overflow::Cut);
        EXPECT_LE(WidestOf(lines), columns);
        std::string all;
        for (const std::string& line : lines) {
            all += line;
        }
        for (const char digit : std::string("0123456789")) {
            EXPECT_GE(std::count(all.begin(), all.end(), digit),
                      std::count(kAddress.begin(), kAddress.end(), digit) + 1)
                << columns;
        }
    }
}

TEST(Table, ThatWraps_LosesNothing) {
    const std::vector<std::string> lines = TableLines(Printers(), 60, Overflow::Wrap);
    EXPECT_LE(WidestOf(lines), 60U);
    EXPECT_GT(lines.size(), 3U);
    EXPECT_THAT(lines, testing::Contains(HasSubstr(kAddress)));
    const std::size_t model = kSerial.size() + 2;
    const std::size_t address = lines[0].find("ADDRESS");
    EXPECT_EQ(TextIn(lines, model, address - model), "MAKEANDMODELAcmeLaser9000withalongnameAcme");
}

TEST(Table, CannotBeTooNarrow) {
    for (std::size_t columns = 0; columns < 20; ++columns) {
        EXPECT_GE(TableLines(Printers(), columns, Overflow::Cut).size(), 3U);
    }
}

TEST(Table, CountsWideCharactersAsTwoColumns) {
    const Table table{{{"A", Column::Yielding}, {"B", Column::Whole}},
                      {{"\xE5\xB0\x81\xE7\xAD\x92\xE5\xB0\x81", "x"}}};
    EXPECT_THAT(TableLines(table, 7, Overflow::Cut),
                ElementsAre("A     B", "\xE5\xB0\x81\xE7\xAD\x92  x"));
    EXPECT_THAT(TableLines(table, 6, Overflow::Cut),
                Each(testing::ResultOf(Base::DisplayWidth, testing::Le(6U))));
}

TEST(Table, OfAnyScript_IsAligned) {
    const std::string thai = "\xE0\xB8\x81\xE0\xB8\xB1\xE0\xB8\x99";  // 2 letters with a mark
    const std::string emoji = "\xF0\x9F\x9A\x80\xE2\x8C\x9A";
    const Table table{{{"A", Column::Yielding}, {"B", Column::Whole}}, {{thai, "x"}, {emoji, "x"}}};
    EXPECT_THAT(TableLines(table, 20, Overflow::Cut),
                ElementsAre("A     B", thai + "    x", emoji + "  x"));
    EXPECT_THAT(TableLines(table, 6, Overflow::Cut),
                ElementsAre("A    B", thai + "   x", "\xF0\x9F\x9A\x80   x"));
}

}  // namespace

}  // namespace App

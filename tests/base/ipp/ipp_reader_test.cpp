// SPDX-License-Identifier: Apache-2.0

#include "base/ipp/ipp_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "tests/base/ipp/ipp_bytes.h"

namespace BaseTest {

namespace {

using Base::IppMessage;
using Base::IppReader;
using State = IppReader::State;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr Base::IppLimits kLimits{.bytes = 65536, .attributes = 100, .values = 200};
constexpr std::uint8_t kOperation = Base::kIppOperationGroup;
constexpr std::uint8_t kPrinter = Base::kIppPrinterGroup;
constexpr std::uint8_t kUnsupported = 0x05;

std::string Printer(const std::string& attributes) {
    return Head() + Group(kOperation) + Text("status-message", "fine") + Group(kPrinter) +
           attributes + End();
}

IppMessage Whole(const std::string& bytes) {
    IppReader reader(kLimits);
    EXPECT_EQ(reader.Read(bytes), State::Whole) << reader.Problem();
    return reader.Take(Base::WipedBytes(bytes));
}

// Why an answer is refused.
std::string RefusalOf(const std::string& bytes) {
    IppReader reader(kLimits);
    EXPECT_EQ(reader.Read(bytes), State::Refused);
    return reader.Problem();
}

// One of everything.
std::string Everything() {
    return Printer(Text("printer-name", "Acme") + Number(0x23, "printer-state", 5) +
                   Value(0x22, "printer-is-accepting-jobs", std::string(1, '\0')) +
                   Value(0x45, "printer-uri-supported", "ipp://a/") + Value(0x45, "", "ipps://a/") +
                   Nested(3, true) + Value(0x31, "printer-date", std::string(11, '\1')) +
                   Value(0x7f, "extension", "\0\0\1\1x") + Text("last", "one"));
}

TEST(IppReader, FindsWhatIsInAnAnswer) {
    const IppMessage message = Whole(Everything());
    EXPECT_EQ(message.Status(), 0);
    const auto printer = message.Group(kPrinter);
    ASSERT_TRUE(printer);
    EXPECT_EQ(printer->Text("printer-name"), "Acme");
    EXPECT_EQ(printer->Integer("printer-state"), 5);
    EXPECT_EQ(printer->Boolean("printer-is-accepting-jobs"), false);
    EXPECT_THAT(printer->Texts("printer-uri-supported"), ElementsAre("ipp://a/", "ipps://a/"));
    EXPECT_EQ(printer->Text("last"), "one");
    EXPECT_EQ(message.Group(kOperation)->Text("status-message"), "fine");
}

TEST(IppReader, SaysNothingOfWhatIsNotThereOrOfAnotherKind) {
    const IppMessage message = Whole(Everything());
    const auto printer = message.Group(kPrinter);
    EXPECT_EQ(printer->Text("absent"), "");
    EXPECT_EQ(printer->Text("printer-state"), "");
    EXPECT_EQ(printer->Text("media-col"), "");
    EXPECT_EQ(printer->Text("member"), "");
    EXPECT_EQ(printer->Integer("printer-name"), std::nullopt);
    EXPECT_EQ(printer->Boolean("printer-state"), std::nullopt);
    EXPECT_FALSE(message.Group(kUnsupported));
}

TEST(IppReader, TellsTheStatus) {
    EXPECT_EQ(Whole(Head(0x0406) + End()).Status(), 0x0406);
}

TEST(IppReader, TakesAnAttributeFromItsOwnGroupOnly) {
    const IppMessage message = Whole(
        Head() + Group(kUnsupported) + Text("printer-name", "not mine") + Group(kPrinter) +
        Text("printer-info", "mine") + Group(kPrinter) + Text("printer-info", "another's") + End());
    EXPECT_EQ(message.Group(kPrinter)->Text("printer-name"), "");
    EXPECT_EQ(message.Group(kPrinter)->Text("printer-info"), "mine");
    EXPECT_EQ(message.Groups().size(), 3U);
    EXPECT_EQ(message.Groups()[2].Text("printer-info"), "another's");
}

TEST(IppReader, TakesTheFirstOfTwoAttributesOfOneName) {
    EXPECT_EQ(Whole(Printer(Text("a", "first") + Text("a", "second"))).Group(kPrinter)->Text("a"),
              "first");
}

TEST(IppReader, TakesTextsWithALanguage) {
    EXPECT_EQ(Whole(Printer(Value(0x35, "a", Short(2) + "de" + Short(4) + "Acme")))
                  .Group(kPrinter)
                  ->Text("a"),
              "Acme");
    for (const std::string& lie :
         {Short(9) + "de" + Short(4) + "Acme", Short(2) + "de" + Short(5) + "Acme", Short(2) + "de",
          std::string("\0", 1), std::string()}) {
        EXPECT_EQ(Whole(Printer(Value(0x36, "a", lie))).Group(kPrinter)->Text("a"), "");
    }
}

TEST(IppReader, EndsATextAtItsFirstNull) {
    EXPECT_EQ(Whole(Printer(Text("a", std::string("Acme\0x", 6)))).Group(kPrinter)->Text("a"),
              "Acme");
}

TEST(IppReader, IsUnfinishedWhereverAnAnswerBreaksOff) {
    const std::string bytes = Everything();
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        IppReader reader(kLimits);
        EXPECT_EQ(reader.Read(std::string_view(bytes).substr(0, size)), State::Unfinished) << size;
        EXPECT_THAT(reader.Problem(), HasSubstr("ends in the middle, at byte "));
    }
}

TEST(IppReader, FindsTheSameWhenAnAnswerComesByteByByte) {
    const std::string bytes = Everything();
    IppReader reader(kLimits);
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        // Elsewhere every time: nothing may be kept of where it was.
        const std::string copy = bytes.substr(0, size);
        ASSERT_EQ(reader.Read(copy), State::Unfinished);
    }
    ASSERT_EQ(reader.Read(bytes), State::Whole);
    const IppMessage message = reader.Take(Base::WipedBytes(bytes));
    EXPECT_EQ(message.Group(kPrinter)->Text("printer-name"), "Acme");
    EXPECT_EQ(message.Group(kPrinter)->Text("last"), "one");
}

TEST(IppReader, RefusesDeepCollectionsAsSoonAsTheyAre) {
    EXPECT_EQ(Whole(Printer(Nested(IppReader::kMaxDepth, true) + Text("last", "one")))
                  .Group(kPrinter)
                  ->Text("last"),
              "one");
    for (const std::size_t depth : {IppReader::kMaxDepth + 1, std::size_t{3000}}) {
        EXPECT_THAT(RefusalOf(Head() + Group(kPrinter) + Nested(depth, false)),
                    HasSubstr("collections nested deeper than 16 at byte "));
        EXPECT_THAT(RefusalOf(Printer(Nested(depth, true))), HasSubstr("nested deeper"));
    }
}

TEST(IppReader, RefusesTenThousandLevels) {
    IppReader reader({.bytes = 1 << 20, .attributes = 1000000, .values = 1000000});
    EXPECT_EQ(reader.Read(Printer(Nested(10000, true))), State::Refused);
}

TEST(IppReader, RefusesCollectionsWithoutBeginningOrEnd) {
    EXPECT_THAT(RefusalOf(Printer(Value(0x37, "", ""))), HasSubstr("has not begun"));
    EXPECT_THAT(RefusalOf(Printer(Nested(2, false))), HasSubstr("without an end"));
    EXPECT_THAT(RefusalOf(Head() + Group(kPrinter) + Nested(2, false) + Group(kPrinter) + End()),
                HasSubstr("without an end"));
}

TEST(IppReader, RefusesTooManyAttributes) {
    std::string attributes;
    // Two groups and the message's text count, too.
    for (std::size_t i = 0; i < kLimits.attributes - 3; ++i) {
        attributes += Text("a", "");
    }
    Whole(Printer(attributes));
    EXPECT_THAT(RefusalOf(Printer(attributes + Text("a", ""))),
                HasSubstr("more than 100 attributes"));
    EXPECT_THAT(RefusalOf(Head() + std::string(101, '\4') + End()),
                HasSubstr("more than 100 attributes"));
}

TEST(IppReader, RefusesTooManyValues) {
    std::string values = Text("a", "");
    for (std::size_t i = 0; i < kLimits.values - 2; ++i) {
        values += Text("", "");
    }
    Whole(Printer(values));
    EXPECT_THAT(RefusalOf(Printer(values + Text("", ""))), HasSubstr("more than 200 values"));
}

TEST(IppReader, RefusesTooManyBytes) {
    const std::string large = Text("a", std::string(30000, 'x'));
    Whole(Printer(large + large));
    EXPECT_THAT(RefusalOf(Printer(large + large + large)), HasSubstr("more than 65536 bytes"));
}

TEST(IppReader, RefusesLengthsThatNothingHas) {
    EXPECT_THAT(RefusalOf(Printer(Text(std::string(IppReader::kMaxNameSize + 1, 'n'), ""))),
                HasSubstr("a name of more than 1023 bytes"));
    EXPECT_THAT(RefusalOf(Head() + Group(kPrinter) + "\x41" + Short(1) + "a" + Short(0x8000)),
                HasSubstr("a value of more than 32767 bytes"));
    EXPECT_THAT(RefusalOf(Printer(Value(0x21, "a", "123"))), HasSubstr("a number of 3 bytes"));
    EXPECT_THAT(RefusalOf(Printer(Value(0x23, "a", "12345"))), HasSubstr("a number of 5 bytes"));
    EXPECT_THAT(RefusalOf(Printer(Value(0x22, "a", ""))), HasSubstr("a number of 0 bytes"));
}

TEST(IppReader, RefusesWhatIsInNoOrder) {
    EXPECT_THAT(RefusalOf(Head() + Text("a", "b")),
                HasSubstr("an attribute in no group at byte 8"));
    EXPECT_THAT(RefusalOf(Printer(Text("", "b"))), HasSubstr("a value of no attribute"));
    EXPECT_THAT(RefusalOf(Head() + Group(0)), HasSubstr("a group without a kind"));
    EXPECT_THAT(RefusalOf("HTTP/1.1 200 OK"), HasSubstr("no IPP version 1 or 2"));
}

TEST(IppReader, ComesThroughWhatAnAttackerMakesOfAnAnswer) {
    std::mt19937 random(1);
    const std::string good = Everything();
    int whole = 0;
    for (int round = 0; round < 20000; ++round) {
        std::string bytes = good;
        for (unsigned change = 0; change <= random() % 4; ++change) {
            bytes[random() % bytes.size()] = static_cast<char>(random());
        }
        IppReader reader(kLimits);
        if (reader.Read(bytes) == State::Whole) {
            ++whole;
            const IppMessage message = reader.Take(Base::WipedBytes(bytes));
            for (const Base::IppGroup& group : message.Groups()) {
                group.Text("printer-name");
                group.Texts("printer-uri-supported");
                group.Integer("printer-state");
                group.Boolean("printer-is-accepting-jobs");
            }
        }
    }
    EXPECT_GT(whole, 100);
}

}  // namespace

}  // namespace BaseTest

// SPDX-License-Identifier: Apache-2.0

#include "broker/log/log_line.h"

#include <cstring>
#include <limits>
#include <locale>
#include <random>
#include <sstream>

#include "tests/support/broker_test.h"

namespace {

using testing::ElementsAre;

constexpr Broker::Location kHere{"PrinterDeviceDiscoverSdk::Sample::Run", ""};

class LogLineTest : public BrokerTest {};

template <class... Values>
std::string Logged(const Values&... values) {
    Broker::Log(LOG_LEVEL_DEBUG, kHere, "message", values...);
    const std::vector<std::string> lines = TakeLines();
    return lines.size() == 1 ? lines[0] : "no line, or several";
}

std::string Expected(const std::string& values) {
    return LineIs(1, "message" + values, "Sample::Run");
}

TEST_F(LogLineTest, IsTheMessageAndTheLocationInParentheses) {
    EXPECT_EQ(Logged(), Expected(""));
}

TEST_F(LogLineTest, HasTheLocationOfTheFunctionItStandsIn) {
    Broker::Log(LOG_LEVEL_ERROR, HERE, "message");
    EXPECT_THAT(TakeLines()[0], testing::MatchesRegex("4 message\\(.*::TestBody\\)"));
}

TEST_F(LogLineTest, HasTheLevelItIsGiven) {
    for (const LOG_MESSAGE_LEVEL level : {LOG_LEVEL_DEBUG, LOG_LEVEL_WARNING, LOG_LEVEL_ERROR}) {
        Broker::Log(level, kHere, "message");
        EXPECT_THAT(TakeLines(), ElementsAre(LineIs(level, "message", "Sample::Run")));
    }
    EXPECT_EQ(LOG_LEVEL_DEBUG, 1);
    EXPECT_EQ(LOG_LEVEL_WARNING, 3);
    EXPECT_EQ(LOG_LEVEL_ERROR, 4);
}

TEST_F(LogLineTest, HasEachValueDirectlyBehindTheOneBefore) {
    EXPECT_EQ(
        Logged(std::string_view("A1"), std::int32_t{-7}, std::uint64_t{8}, 1.5f, std::string("B2")),
        Expected("A1-781.5B2"));
}

TEST_F(LogLineTest, HasNumbersInFull) {
    EXPECT_EQ(Logged(std::int32_t{-2147483647 - 1}), Expected("-2147483648"));
    EXPECT_EQ(Logged(std::uint64_t{18446744073709551615u}), Expected("18446744073709551615"));
    EXPECT_EQ(Logged(-61.0f), Expected("-61"));
    EXPECT_EQ(Logged(0.1f), Expected("0.1"));
}

// What a fresh stream makes of a number.
template <class Number>
std::string Streamed(Number value) {
    std::wostringstream stream;
    stream << value;
    return LineText({1, stream.str(), {}}).substr(2);
}

TEST_F(LogLineTest, HasNumbersAsAStreamWritesThem) {
    using Limits = std::numeric_limits<float>;
    for (const float value : {0.0f,
                              -0.0f,
                              0.1f,
                              1e-4f,
                              1e-5f,
                              99999.95f,
                              100000.0f,
                              123456.7f,
                              999999.5f,
                              1e6f,
                              1e10f,
                              -1e-10f,
                              Limits::min(),
                              Limits::max(),
                              Limits::lowest(),
                              Limits::denorm_min(),
                              Limits::infinity(),
                              -Limits::infinity(),
                              Limits::quiet_NaN(),
                              -Limits::quiet_NaN()}) {
        EXPECT_EQ(Logged(value), Expected(Streamed(value)));
    }
    std::mt19937 random(1);
    for (int round = 0; round < 5000; ++round) {
        const auto bits = static_cast<std::uint32_t>(random());
        float value = 0;
        std::memcpy(&value, &bits, sizeof value);
        ASSERT_EQ(Logged(value), Expected(Streamed(value))) << std::hex << bits;
        const auto whole = static_cast<std::int32_t>(bits);
        ASSERT_EQ(Logged(whole), Expected(Streamed(whole)));
    }
}

TEST_F(LogLineTest, HasHexadecimalNumbersInSmallLettersWithoutPrefixOrPadding) {
    using Broker::Hex;
    EXPECT_EQ(Logged(Hex{0xABCD}), Expected("abcd"));
    EXPECT_EQ(Logged(Hex{0}), Expected("0"));
    EXPECT_EQ(Logged(Hex{-1}), Expected("ffffffff"));
    EXPECT_EQ(Logged(Hex{-2147483647 - 1}), Expected("80000000"));
    // What comes after it is decimal again.
    EXPECT_EQ(Logged(Hex{31}, std::string_view("-"), std::int32_t{31}), Expected("1f-31"));
}

// A locale with a decimal comma that groups digits.
class Grouping : public std::numpunct<wchar_t> {
    wchar_t do_decimal_point() const override { return L','; }
    wchar_t do_thousands_sep() const override { return L'.'; }
    std::string do_grouping() const override { return "\3"; }
};

TEST_F(LogLineTest, HasNumbersAsTheProgramsLocaleWritesThem) {
    std::locale::global(std::locale(std::locale::classic(), new Grouping));
    EXPECT_EQ(Logged(-61.5f), Expected("-61,5"));
    EXPECT_EQ(Logged(std::int32_t{1234567}), Expected("1.234.567"));
    EXPECT_EQ(Logged(Broker::Hex{0x123456}, std::int32_t{1234}), Expected("123.4561.234"));
}

TEST_F(LogLineTest, HasWideTextAsItIs) {
    EXPECT_EQ(Logged(std::wstring_view(L"A1"), std::int32_t{5}), Expected("A15"));
    EXPECT_EQ(Logged(std::wstring_view(L"\x20AC")), Expected("<20ac>"));
    const std::wstring wide(600, L'w');
    EXPECT_EQ(Logged(std::wstring_view(wide)), Expected(std::string(600, 'w')));
    Broker::Log(LOG_LEVEL_DEBUG, kHere, L"message");
    EXPECT_THAT(TakeLines(), ElementsAre(Expected("")));
}

TEST_F(LogLineTest, HasLongTextsInFull) {
    for (const std::size_t length :
         {1u, 200u, 248u, 249u, 250u, 255u, 256u, 257u, 511u, 512u, 513u, 5000u}) {
        std::string text;
        for (std::size_t at = 0; at < length; ++at) {
            text += static_cast<char>('a' + at % 26);
        }
        EXPECT_EQ(Logged(text), Expected(text));
        EXPECT_EQ(Logged(text, std::int32_t{5}, text), Expected(text + '5' + text));
    }
}

TEST_F(LogLineTest, HasOneCharacterForEachByteOfNarrowText) {
    std::string bytes;
    std::wstring expected = L"message";
    const auto& widener = std::use_facet<std::ctype<wchar_t>>(std::locale());
    for (int byte = 1; byte < 256; ++byte) {
        bytes += static_cast<char>(byte);
        expected += widener.widen(static_cast<char>(byte));
    }
    Broker::Log(LOG_LEVEL_DEBUG, kHere, "message", bytes);
    EXPECT_EQ(RecordingLog::Lines().at(0).text,
              expected + L"(PrinterDeviceDiscoverSdk::Sample::Run)");
}

// A facet that has its say on single characters only.
class Shouting : public std::ctype<wchar_t> {
    wchar_t do_widen(char c) const override {
        return c >= 'a' && c <= 'z' ? static_cast<wchar_t>(c - 'a' + 'A')
                                    : std::ctype<wchar_t>::do_widen(c);
    }
};

TEST_F(LogLineTest, WidensEachByteOnItsOwn) {
    std::locale::global(std::locale(std::locale(), new Shouting));
    EXPECT_EQ(Logged(std::string_view("abc-1")),
              "1 MESSAGEABC-1(PRINTERDEVICEDISCOVERSDK::SAMPLE::RUN)");
}

TEST_F(LogLineTest, SurvivesALoggerThatThrows) {
    RecordingLog::OnLine([](const RecordingLog::Line&) { throw 42; });
    EXPECT_NO_THROW(Broker::Log(LOG_LEVEL_DEBUG, kHere, "message"));
    EXPECT_THAT(TakeLines(), ElementsAre(Expected("")));
}

TEST_F(LogLineTest, GoesToTheLoggerOnTheCallingThread) {
    Logged();
    Broker::Log(LOG_LEVEL_DEBUG, kHere, "message");
    EXPECT_EQ(RecordingLog::Lines().at(0).thread, std::this_thread::get_id());
}

}  // namespace

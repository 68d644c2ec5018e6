// SPDX-License-Identifier: Apache-2.0

#include "host/LogHelper/log_stamp.h"

#include <algorithm>
#include <iterator>

namespace LogHelper {

namespace {

constexpr std::string_view kLevels[] = {"trace   ", "debug   ", "info    ", "warning ", "error   "};

std::string_view LevelText(LOG_MESSAGE_LEVEL level) {
    return kLevels[std::clamp(static_cast<int>(level), static_cast<int>(LOG_LEVEL_TRACE),
                              static_cast<int>(LOG_LEVEL_ERROR))];
}

// Appends text. Uses fixed lengths wherever they are known: the stamp is most of the cost of a
// line.
class Pen {
public:
    explicit Pen(char* newAt) : at(newAt) {}

    template <std::size_t Size>
    void Add(const char (&text)[Size]) {
        at = std::copy_n(text, Size - 1, at);
    }
    void Add(std::string_view text) { at = std::copy(text.begin(), text.end(), at); }

    template <int Count>
    void AddDigits(unsigned number) {
        for (int digit = Count - 1; digit >= 0; --digit) {
            at[digit] = Digit(number);
            number /= kBase;
        }
        at += Count;
    }

    void AddNumber(std::uint64_t number) {
        char digits[20];
        char* begin = std::end(digits);
        do {
            *--begin = Digit(number);
            number /= kBase;
        } while (number != 0);
        at = std::copy(begin, std::end(digits), at);
    }

    char* At() const { return at; }

private:
    static constexpr unsigned kBase = 10;

    static char Digit(auto number) { return static_cast<char>('0' + number % kBase); }

    char* at;
};

unsigned Unsigned(auto number) {
    return static_cast<unsigned>(number);
}

}  // namespace

// cppcheck-suppress uninitMemberVar ; text is written before it is read, as far as size says
LogStamp::LogStamp(Time time, std::chrono::minutes fromUtc, std::uint64_t thread,
                   LOG_MESSAGE_LEVEL level) {
    using namespace std::chrono;
    const auto local = floor<milliseconds>(time) + fromUtc;
    const auto day = floor<days>(local);
    const year_month_day date(day);
    const hh_mm_ss clock(local - day);
    constexpr unsigned minutesAnHour = 60;
    const unsigned distance = Unsigned(abs(fromUtc).count());
    Pen pen(text);
    pen.AddDigits<4>(Unsigned(static_cast<int>(date.year())));
    pen.Add("-");
    pen.AddDigits<2>(Unsigned(date.month()));
    pen.Add("-");
    pen.AddDigits<2>(Unsigned(date.day()));
    pen.Add(" ");
    pen.AddDigits<2>(Unsigned(clock.hours().count()));
    pen.Add(":");
    pen.AddDigits<2>(Unsigned(clock.minutes().count()));
    pen.Add(":");
    pen.AddDigits<2>(Unsigned(clock.seconds().count()));
    pen.Add(".");
    pen.AddDigits<3>(Unsigned(clock.subseconds().count()));
    pen.Add(fromUtc < minutes(0) ? " -" : " +");
    pen.AddDigits<2>(distance / minutesAnHour);
    pen.Add(":");
    pen.AddDigits<2>(distance % minutesAnHour);
    pen.Add(" [");
    pen.AddNumber(thread);
    pen.Add("] ");
    pen.Add(LevelText(level));
    size = static_cast<std::size_t>(pen.At() - text);
}

}  // namespace LogHelper

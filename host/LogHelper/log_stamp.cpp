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

std::uint64_t Positive(auto number) {
    return static_cast<std::uint64_t>(number < 0 ? -number : number);
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
    AddNumber(Positive(static_cast<int>(date.year())), 4);
    Add("-");
    AddNumber(static_cast<unsigned>(date.month()), 2);
    Add("-");
    AddNumber(static_cast<unsigned>(date.day()), 2);
    Add(" ");
    AddNumber(Positive(clock.hours().count()), 2);
    Add(":");
    AddNumber(Positive(clock.minutes().count()), 2);
    Add(":");
    AddNumber(Positive(clock.seconds().count()), 2);
    Add(".");
    AddNumber(Positive(clock.subseconds().count()), 3);
    Add(fromUtc < minutes(0) ? " -" : " +");
    constexpr int minutesAnHour = 60;
    AddNumber(Positive(fromUtc.count()) / minutesAnHour, 2);
    Add(":");
    AddNumber(Positive(fromUtc.count()) % minutesAnHour, 2);
    Add(" [");
    AddNumber(thread, 1);
    Add("] ");
    Add(LevelText(level));
}

void LogStamp::Add(std::string_view piece) {
    size += piece.copy(text + size, std::size(text) - size);
}

void LogStamp::AddNumber(std::uint64_t number, int leastDigits) {
    constexpr std::uint64_t base = 10;
    char digits[20];
    char* begin = std::end(digits);
    for (int count = 0; count < leastDigits || number != 0; ++count) {
        *--begin = static_cast<char>('0' + number % base);
        number /= base;
    }
    Add({begin, static_cast<std::size_t>(std::end(digits) - begin)});
}

}  // namespace LogHelper

#pragma once

#include <cstdint>
#include <string_view>

#include "platform/LogHelper/KzLogger.h"
#include "records/location.h"

namespace Broker {

// One log line in the making. Narrow text is gathered and widened in one piece: the stream sees one
// insertion where the pieces would cost one each.
class LogLine {
public:
    void Append(std::string_view narrow);
    void Append(std::wstring_view wide);
    void Append(std::int32_t value);
    void Append(std::uint64_t value);
    void Append(float value);

    // Hands the line to the logger. Whatever the logger does with it stays without consequence.
    void Send(LOG_MESSAGE_LEVEL level);

private:
    void Flush();

    std::wstringstream stream;
    std::size_t gathered = 0;
    char narrowText[256];
};

// Logs the message, the values directly behind it, and the location in parentheses. Narrow text is
// widened byte by byte through the stream's locale, never decoded. Throws only when the stream
// cannot be made for lack of memory.
template <class... Values>
void Log(LOG_MESSAGE_LEVEL level, const Location& where, std::string_view message,
         const Values&... values) {
    LogLine line;
    line.Append(message);
    (line.Append(values), ...);
    line.Append(std::string_view("("));
    line.Append(where.function);
    line.Append(where.suffix);
    line.Append(std::string_view(")"));
    line.Send(level);
}

}  // namespace Broker

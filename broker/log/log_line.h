#pragma once

#include <cstdint>
#include <initializer_list>
#include <string_view>
#include <variant>

#include "broker/log/location.h"
#include "platform/LogHelper/KzLogger.h"

namespace Broker {

// A number that is written in hexadecimal: small letters, no prefix, no padding.
struct Hex {
    std::int32_t value;
};

// What the text of a log line is made of.
using LogPiece =
    std::variant<std::string_view, std::wstring_view, std::int32_t, std::uint64_t, float, Hex>;

// Logs the pieces, one directly behind the other, and the location in parentheses. Narrow text is
// widened byte by byte through the stream's locale, never decoded. Throws only when the stream
// cannot be made for lack of memory; whatever the logger does stays without consequence.
void LogPieces(LOG_MESSAGE_LEVEL level, const Location& where,
               std::initializer_list<LogPiece> pieces);

// The same, of a line that holds a secret: no copy of it stays in memory.
void LogSecretPieces(LOG_MESSAGE_LEVEL level, const Location& where,
                     std::initializer_list<LogPiece> pieces);

// Logs the message and the values behind it.
template <class... Pieces>
void Log(LOG_MESSAGE_LEVEL level, const Location& where, const Pieces&... messageAndValues) {
    LogPieces(level, where, {LogPiece(messageAndValues)...});
}

template <class... Pieces>
void LogSecret(LOG_MESSAGE_LEVEL level, const Location& where, const Pieces&... messageAndValues) {
    LogSecretPieces(level, where, {LogPiece(messageAndValues)...});
}

}  // namespace Broker

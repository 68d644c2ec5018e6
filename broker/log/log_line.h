// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <initializer_list>
#include <string_view>
#include <variant>

#include "broker/log/location.h"
#include "platform/LogHelper/KzLogger.h"

namespace Broker {

// A number to be written in hexadecimal: lower case, no prefix, no padding.
struct Hex {
    std::int32_t value;
};

// One piece of a log line's text.
using LogPiece =
    std::variant<std::string_view, std::wstring_view, std::int32_t, std::uint64_t, float, Hex>;

// Logs the pieces without separators, then the location in parentheses. Narrow text is widened byte
// by byte by the stream's locale, never decoded. Throws only when there is no memory for the
// stream; failures of the logger have no effect.
void LogPieces(LOG_MESSAGE_LEVEL level, const Location& where,
               std::initializer_list<LogPiece> pieces);

// The same for a line with a secret: no copy of the line stays in memory.
void LogSecretPieces(LOG_MESSAGE_LEVEL level, const Location& where,
                     std::initializer_list<LogPiece> pieces);

// Logs the message followed by the values.
template <class... Pieces>
void Log(LOG_MESSAGE_LEVEL level, const Location& where, const Pieces&... messageAndValues) {
    LogPieces(level, where, {LogPiece(messageAndValues)...});
}

template <class... Pieces>
void LogSecret(LOG_MESSAGE_LEVEL level, const Location& where, const Pieces&... messageAndValues) {
    LogSecretPieces(level, where, {LogPiece(messageAndValues)...});
}

}  // namespace Broker

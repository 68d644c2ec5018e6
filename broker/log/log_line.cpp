// SPDX-License-Identifier: Apache-2.0

#include "broker/log/log_line.h"

#include <charconv>
#include <cmath>
#include <iterator>
#include <new>
#include <string>
#include <utility>

#include "broker/log/widening.h"
#include "broker/log/wipe.h"
#include "platform/compiler.h"

namespace Broker {

namespace {

// The stream's initial capacity: enough for nearly every line.
constexpr std::size_t kRoom = 250;
// More than any line with a secret needs: a growing stream leaves a copy of its text in memory.
constexpr std::size_t kRoomForSecrets = 1000;

// Writes to `room` the digits that a stream in the classic locale would write for `value`; this is
// several times faster than the stream. Empty when the stream must write the value itself.
template <std::size_t Size, class Number>
std::string_view Digits(Number value, char (&room)[Size]) {
    const auto [end, error] = std::to_chars(room, room + Size, value);
    return {room, error == std::errc() ? static_cast<std::size_t>(end - room) : 0};
}

template <std::size_t Size>
std::string_view Digits(Hex hex, char (&room)[Size]) {
    constexpr int base = 16;
    const auto [end, error] =
        std::to_chars(room, room + Size, static_cast<std::uint32_t>(hex.value), base);
    return {room, error == std::errc() ? static_cast<std::size_t>(end - room) : 0};
}

std::wostream& operator<<(std::wostream& stream, Hex hex) {
    return stream << std::hex << hex.value << std::dec;
}

template <std::size_t Size>
std::string_view Digits(float value, char (&room)[Size]) {
    if (!std::isfinite(value)) {
        return {};
    }
    constexpr int streamPrecision = 6;
    const auto [end, error] = std::to_chars(room, room + Size, static_cast<double>(value),
                                            std::chars_format::general, streamPrecision);
    return {room, error == std::errc() ? static_cast<std::size_t>(end - room) : 0};
}

// Composes one line. Collects wide text and inserts it into the stream in one piece, because an
// insertion costs more than its text. Errors set the stream's state, as with any insertion.
class Line {
public:
    // cppcheck-suppress uninitMemberVar ; text is written before it is read, as far as gathered
    // says
    explicit Line(std::size_t room) : widen(Widening::Of(stream.getloc())) { MakeRoom(room); }

    void Add(std::string_view narrow) {
        while (!narrow.empty()) {
            const std::string_view piece = narrow.substr(0, Space());
            try {
                ascii &= widen(piece, text + gathered);
            }
            PLATFORM_CATCH_ALL {
                // Keeps the text before it.
                Flush();
                stream.setstate(std::ios_base::badbit);
                return;
            }
            gathered += piece.size();
            narrow.remove_prefix(piece.size());
        }
    }

    void Add(std::wstring_view wide) {
        for (const wchar_t character : wide) {
            ascii &= character < 0x80;
            Add(character);
        }
    }

    void Add(wchar_t character) {
        Space();
        text[gathered++] = character;
    }

    template <class Number>
    void Add(Number value) {
        char room[32];
        const std::string_view digits =
            widen.IsClassic() ? Digits(value, room) : std::string_view();
        if (digits.empty()) {
            Flush();
            stream << value;
        } else {
            Add(digits);
        }
    }

    std::wstringstream& Finish() {
        Flush();
        return stream;
    }

    // Wipes the text of a finished line.
    void WipeAll() {
        std::wstring written = std::move(stream).str();
        written.resize(written.capacity());
        Wipe(written.data(), written.size() * sizeof(wchar_t));
        Wipe(text, sizeof text);
    }

private:
    template <class Work>
    void Attempt(Work work) {
        try {
            work();
        }
        PLATFORM_CATCH_ALL {
            stream.setstate(std::ios_base::badbit);
        }
    }

    // A stream constructed with a string continues in the string's storage; otherwise it allocates
    // its own.
    void MakeRoom(std::size_t characters) {
        try {
            std::wstring room;
            room.reserve(characters);
            stream.str(std::move(room));
        } catch (const std::bad_alloc&) {
            return;
        }
    }

    // The room for more text: at least one character.
    std::size_t Space() {
        if (gathered == std::size(text)) {
            Flush();
        }
        return std::size(text) - gathered;
    }

    void Flush() {
        if (stream.good()) {
            Attempt([&] { ascii ? Insert() : InsertAny(); });
        }
        gathered = 0;
    }

    void Insert() { stream.rdbuf()->sputn(text, static_cast<std::streamsize>(gathered)); }

    // A full stream buffer drops the end-of-file character, to which some locales widen non-ASCII
    // bytes. Such text is inserted as a whole.
    void InsertAny() {
        using Traits = std::wstring_view::traits_type;
        const std::wstring_view piece(text, gathered);
        if (piece.find(Traits::to_char_type(Traits::eof())) == std::wstring_view::npos) {
            Insert();
            return;
        }
        std::wstring whole = stream.str();
        whole += piece;
        stream.str(std::move(whole));
        stream.seekp(0, std::ios_base::end);
    }

    std::wstringstream stream;
    const Widening widen;
    bool ascii = true;
    std::size_t gathered = 0;
    wchar_t text[256];
};

void LogLine(Line& line, LOG_MESSAGE_LEVEL level, const Location& where,
             std::initializer_list<LogPiece> pieces) {
    for (const LogPiece& piece : pieces) {
        // Nearly every piece is narrow text; a branch is cheaper than the jump of a visit.
        if (const auto* text = std::get_if<std::string_view>(&piece)) {
            line.Add(*text);
        } else {
            std::visit([&line](auto value) { line.Add(value); }, piece);
        }
    }
    line.Add(L'(');
    line.Add(where.function);
    line.Add(where.suffix);
    line.Add(L')');
    std::wstringstream& stream = line.Finish();
    try {
        KzLogger::GetInstance().Log(level, stream);
    }
    PLATFORM_CATCH_ALL {
        // A failing logger must not change an operation's behaviour.
        return;
    }
}

}  // namespace

void LogPieces(LOG_MESSAGE_LEVEL level, const Location& where,
               std::initializer_list<LogPiece> pieces) {
    Line line(kRoom);
    LogLine(line, level, where, pieces);
}

void LogSecretPieces(LOG_MESSAGE_LEVEL level, const Location& where,
                     std::initializer_list<LogPiece> pieces) {
    Line line(kRoomForSecrets);
    LogLine(line, level, where, pieces);
    line.WipeAll();
}

}  // namespace Broker

#include "records/log_line.h"

#include <cstring>
#include <locale>

namespace Broker {

void LogLine::Append(std::string_view narrow) {
    while (!narrow.empty()) {
        if (gathered == sizeof narrowText) {
            Flush();
        }
        const std::string_view piece = narrow.substr(0, sizeof narrowText - gathered);
        std::memcpy(narrowText + gathered, piece.data(), piece.size());
        gathered += piece.size();
        narrow.remove_prefix(piece.size());
    }
}

void LogLine::Append(std::wstring_view wide) {
    Flush();
    stream << wide;
}

void LogLine::Append(std::int32_t value) {
    Flush();
    stream << value;
}

void LogLine::Append(std::uint64_t value) {
    Flush();
    stream << value;
}

void LogLine::Append(float value) {
    Flush();
    stream << value;
}

void LogLine::Flush() {
    wchar_t wide[sizeof narrowText];
    std::use_facet<std::ctype<wchar_t>>(stream.getloc())
        .widen(narrowText, narrowText + gathered, wide);
    stream.write(wide, static_cast<std::streamsize>(gathered));
    gathered = 0;
}

void LogLine::Send(LOG_MESSAGE_LEVEL level) {
    Flush();
    try {
        KzLogger::GetInstance().Log(level, stream);
    } catch (...) {
        // A logger that cannot log must not change what an operation does.
        return;
    }
}

}  // namespace Broker

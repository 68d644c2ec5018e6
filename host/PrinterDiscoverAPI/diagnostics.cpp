#include "host/PrinterDiscoverAPI/diagnostics.h"

namespace Host {

void Report(LOG_MESSAGE_LEVEL level, std::wstring_view text, std::wstring_view where) noexcept {
    try {
        std::wstringstream line;
        line << text << L'(' << where << L')';
        KzLogger::GetInstance().Log(level, line);
    } catch (...) {
        return;
    }
}

}  // namespace Host

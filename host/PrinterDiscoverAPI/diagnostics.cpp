// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterDiscoverAPI/diagnostics.h"

#include "platform/compiler.h"

namespace Host {

void Report(LOG_MESSAGE_LEVEL level, std::wstring_view text, std::wstring_view where) {
    try {
        std::wstringstream line;
        line << text << L'(' << where << L')';
        KzLogger::GetInstance().Log(level, line);
    }
    PLATFORM_CATCH_ALL {
        return;
    }
}

}  // namespace Host

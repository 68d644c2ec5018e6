// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterUtil/modules/system_message_windows.h"

#include <array>

#include "base/text/utf8.h"

namespace PrinterUtil {

std::string SystemMessage(DWORD error) {
    std::array<wchar_t, 512> text{};
    const DWORD length = FormatMessageW(
        FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK,
        nullptr, error, 0, text.data(), static_cast<DWORD>(text.size()), nullptr);
    std::string message = Base::ToUtf8(std::wstring_view(text.data(), length));
    message.erase(message.find_last_not_of(" \r\n.") + 1);
    return message + " (error " + std::to_string(error) + ")";
}

}  // namespace PrinterUtil

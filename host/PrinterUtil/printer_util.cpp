// SPDX-License-Identifier: Apache-2.0

#include "platform/PrinterUtil/PrinterUtil.h"

#include "base/text/utf8.h"

std::string PrinterUtil::WStringToString(const std::wstring& text) {
    return Base::ToUtf8(text);
}

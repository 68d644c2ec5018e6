// SPDX-License-Identifier: Apache-2.0

#include "platform/PrinterUtil/PrinterUtil.h"

#include "host/common/utf8.h"

std::string PrinterUtil::WStringToString(const std::wstring& text) {
    return Host::ToUtf8(text);
}

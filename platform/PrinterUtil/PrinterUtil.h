// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

#include "platform/PrinterUtil/export.h"

namespace PrinterUtil {

// Converts `text` to UTF-8. Ill-formed input becomes U+FFFD. Throws only when memory runs out.
PRINTERUTIL_API std::string WStringToString(const std::wstring& text);

}  // namespace PrinterUtil

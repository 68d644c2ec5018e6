#pragma once

#include <string>

#include "platform/PrinterUtil/export.h"

namespace PrinterUtil {

// `text` as UTF-8. Ill-formed input becomes U+FFFD; nothing makes it throw but lack of memory.
PRINTERUTIL_API std::string WStringToString(const std::wstring& text);

}  // namespace PrinterUtil

#pragma once

#include <string>

#include "platform/os.h"

namespace PrinterUtil {

// What the system says about one of its error numbers, in one line.
std::string SystemMessage(DWORD error);

}  // namespace PrinterUtil

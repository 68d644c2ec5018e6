// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

#include "platform/os.h"

namespace PrinterUtil {

// The system's text for an error number, in one line.
std::string SystemMessage(DWORD error);

}  // namespace PrinterUtil

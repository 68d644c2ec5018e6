// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

#include "platform/os.h"

namespace PrinterUtil {

// What stands on the way to a file that is to be trusted.
enum class PathPart { kFile, kFileFolder, kFolderAbove };

// Why an owner and an access list let others change the part, or what its path stands for. Empty
// when only this process's user, the administrators and the system itself can.
std::string WhyOthersMayChange(PSECURITY_DESCRIPTOR descriptor, PathPart part);

}  // namespace PrinterUtil

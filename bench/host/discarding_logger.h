// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <vector>

#include "platform/LogHelper/KzLogger.h"

namespace Bench {

// Keeps the text of every line in `lines` from now on; null goes back to discarding. Not while
// another thread logs.
LOGHELPER_API void RecordLines(std::vector<std::wstring>* lines);

}  // namespace Bench

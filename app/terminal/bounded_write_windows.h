// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string_view>

#include "platform/os.h"

namespace App {

// Writes what a pipe takes within a second, and all of the text to a stream of another kind. For
// the end of the process: without memory and without another thread.
void WriteInTime(HANDLE stream, std::string_view text);

}  // namespace App

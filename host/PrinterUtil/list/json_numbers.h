// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

namespace PrinterUtil {

// Replaces each number too large for floating point, such as 1e999, by 0; every other byte keeps
// its position. So such a number affects only its own entry.
std::string WithoutHugeNumbers(std::string text);

}  // namespace PrinterUtil

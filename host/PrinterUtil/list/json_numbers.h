#pragma once

#include <string>

namespace PrinterUtil {

// The JSON text with 0 in the place of each number that no floating-point number can hold, such as
// 1e999; every other byte stays where it is. Such a number costs only what it is the value of.
std::string WithoutHugeNumbers(std::string text);

}  // namespace PrinterUtil

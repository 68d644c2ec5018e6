#pragma once

#include <string>
#include <vector>

namespace PrinterUtil {

// What stands for no USB identifier at all: it is the identifier of no device.
inline constexpr const char* kNoUsbIdentifier = "-";

// Makes a list of USB hardware identifiers one that the broker can use, and says in a line each
// what was changed. A list without any identifier, which would keep the broker from all printers on
// USB, becomes kNoUsbIdentifier; identifiers come out with capital letters, as devices are found.
std::vector<std::string> MendUsbIdentifiers(std::string& usbIdList);

}  // namespace PrinterUtil

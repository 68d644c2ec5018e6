// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <vector>

namespace PrinterUtil {

// The entry that means "no USB printers"; no device has this identifier.
inline constexpr const char* kNoUsbIdentifier = "-";

// Corrects a list of USB hardware identifiers for the broker, and returns one line for each change.
// A list without identifiers, which would make the broker refuse all USB printers, becomes
// kNoUsbIdentifier. Identifiers are converted to upper case, the form in which devices report them.
std::vector<std::string> MendUsbIdentifiers(std::string& usbIdList);

}  // namespace PrinterUtil

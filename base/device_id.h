// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <string_view>

namespace Base {

// The fields of a printer's IEEE 1284 device id, "MFG:Acme;MDL:Laser;SN:42;". Missing fields are
// empty. The values are the printer's own bytes.
struct DeviceId {
    std::string manufacturer;  // MFG or MANUFACTURER
    std::string model;         // MDL or MODEL
    std::string serialNumber;  // SN, SERN or SERIALNUMBER
};

// Accepts keys in upper or lower case, in short or long form, and blanks around keys and values. If
// several keys mean one field, the first that has a value counts, whatever its form. The text ends
// at a zero byte.
DeviceId ReadDeviceId(std::string_view text);

// The text of a printer's answer when it is asked for its device id: two bytes with their own and
// the text's length, the higher one first, then the text. Makers get the length wrong. A length
// that leaves out its own two bytes, or has the lower byte first, is understood; with any other the
// text is all that came.
std::string_view DeviceIdText(std::string_view answer);

}  // namespace Base

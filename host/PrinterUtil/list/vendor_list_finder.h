// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <filesystem>
#include <string>

namespace PrinterUtil {

struct FoundList {
    std::filesystem::path path;  // absolute; empty when no list was found
    std::string text;
    std::string problem;  // one line; empty when the list was read
    std::string note;     // one line about ignored settings; empty when none were ignored
};

// Finds and reads the vendor list: `chosen` unless empty, else the list named by the environment,
// else the user's, else the list beside this library. A list from `chosen` or the environment must
// exist.
FoundList FindVendorList(const std::filesystem::path& chosen);

}  // namespace PrinterUtil

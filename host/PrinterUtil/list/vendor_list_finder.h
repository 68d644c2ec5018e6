#pragma once

#include <filesystem>
#include <string>

namespace PrinterUtil {

struct FoundList {
    std::filesystem::path path;  // absolute; empty when no list was found
    std::string text;
    std::string problem;  // one line; empty when the list was read
    std::string note;     // one line about what did not count; empty when all did
};

// Finds and reads the vendor list: `chosen` when it is not empty, else the one that the environment
// names, else the user's, else the one beside this library. A list that was named has to be there.
FoundList FindVendorList(const std::filesystem::path& chosen);

}  // namespace PrinterUtil

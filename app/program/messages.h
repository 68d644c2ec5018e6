#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace App {

// To standard error, in the program's name. The lines may hold a device's text.
void Complain(const std::string& text);
void Warn(const std::string& text);
// A warning for each; of many the first ones.
void WarnOfAll(const std::vector<std::string>& problems);

// "1 printer", "2 printers", or whatever it is.
template <class Item>
std::string CountOf(std::size_t count) {
    return std::to_string(count) + " " + (count == 1 ? Item::kOne : Item::kMany);
}

// Each as a line of its own below a text, indented; of many the first ones.
std::string Lines(const std::vector<std::string>& problems);

// Where to read why something failed, and how to see it.
std::string AdviceToReadLog();

// What to do when a scan has found less than expected.
std::string AdviceAfterScan();

}  // namespace App

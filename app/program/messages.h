// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "app/outcome/exit_status.h"

namespace App {

// Write to standard error, preceded by the program's name. The text may contain a device's text.
void Complain(const std::string& text);
void Warn(const std::string& text);
// A warning for each; of many the first ones.
void WarnOfAll(const std::vector<std::string>& problems);

// "1 printer", "2 printers", or the same for other items.
template <class Item>
std::string CountOf(std::size_t count) {
    return std::to_string(count) + " " + (count == 1 ? Item::kOne : Item::kMany);
}

// Each as a line of its own below a text, indented; of many the first ones.
std::string Lines(const std::vector<std::string>& problems);

// Advice on where the log explains a failure, and how to show it.
std::string AdviceToReadLog();

// Complains with that advice. Returns kNoneFound.
ExitStatus FailedSeeLog(const std::string& what);

// Advice for a scan that has found less than expected.
std::string AdviceAfterScan();

}  // namespace App

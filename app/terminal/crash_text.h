// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "DeviceDiscover/vendor_activity.h"

namespace App {

// The line that says how the program ended and which vendors were being called. Needs no
// allocation, for a signal handler.
class CrashText {
public:
    // `end`: how the program ended, "the program crashed (SIGSEGV)".
    explicit CrashText(std::string_view end);

    // The text without the program's name and without the end of the line.
    std::string_view View() const { return {text.data(), length}; }

private:
    void Append(std::string_view more);
    // Names the running calls on this thread, or on the others, after `lead`. Returns whether there
    // were any.
    bool AppendCalls(bool onThisThread, std::string_view lead);

    // Names the modules that are being loaded. Whether there were any.
    bool AppendModules();

    std::array<char, 1024> text;
    std::size_t length = 0;
};

}  // namespace App

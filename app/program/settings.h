// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "platform/LogHelper/KzLogger.h"

namespace App {

// The options that all commands share.
struct Settings {
    std::string vendorList;  // empty: the library looks for it
    std::string logFile;     // empty: in the user's state folder
    std::string logLevel;    // empty: all of the broker's lines into the log file
    bool json = false;
    std::optional<std::chrono::duration<double>> vendorTime;  // for each answer

    // The time limit for a vendor's answer, by default `limit`.
    std::chrono::steady_clock::duration LimitOr(std::chrono::steady_clock::duration limit) const;

    // Whether log lines also go to standard error.
    bool LogsToTerminal() const;

    // Whether standard output is a terminal on which lines can be redrawn, and no log lines would
    // break them.
    bool DrawsOnTerminal() const;
};

// Passes the settings to the application's libraries, before their first use. Throws Problem when
// the log file cannot be written.
void Apply(const Settings& settings);

}  // namespace App

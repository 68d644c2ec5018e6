// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace App {

// The options that all commands share.
struct Settings {
    std::string vendorList;  // empty: the library looks for it
    std::string logFile;     // empty: in the user's state folder
    std::string logLevel;    // empty: all of the broker's lines into the log file
    bool json = false;
    std::optional<std::chrono::duration<double>> vendorTime;  // for each answer
};

// Passes the settings to the application's libraries and to the functions below. Call this once,
// before the first use of either. Throws Problem when the log file cannot be written.
void Apply(const Settings& settings);

// Whether results are written as JSON.
bool WritesJson();

// Whether standard output is a terminal on which lines can be redrawn, and no log lines would break
// them.
bool DrawsOnTerminal();

// How long to wait for an answer: as the user has set, by default `limit`.
std::chrono::steady_clock::duration AnswerLimitOr(std::chrono::steady_clock::duration limit);

}  // namespace App

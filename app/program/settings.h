#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "platform/LogHelper/KzLogger.h"

namespace App {

// What every command can be told.
struct Settings {
    std::string vendorList;  // empty: where the library looks
    std::string logFile;     // empty: in the user's state folder
    std::string logLevel;    // empty: all of the broker's lines into the log file
    bool json = false;
    std::optional<std::chrono::duration<double>> vendorTime;  // for each answer

    // How long to wait for an answer that by default may take `limit`.
    std::chrono::steady_clock::duration LimitOr(std::chrono::steady_clock::duration limit) const;

    // Whether log lines go to standard error too.
    bool LogsToTerminal() const;

    // Whether standard output is a terminal on which lines can be drawn over, without log lines
    // that would tear them.
    bool DrawsOnTerminal() const;
};

// Hands the settings to the application's libraries, before anything else uses them. Throws Problem
// when the log file cannot be written.
void Apply(const Settings& settings);

}  // namespace App

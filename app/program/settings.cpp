// SPDX-License-Identifier: Apache-2.0

#include "app/program/settings.h"

#include <map>

#include "app/outcome/problem.h"
#include "app/program/log_control.h"
#include "app/program/log_file.h"
#include "app/terminal/console.h"
#include "host/PrinterUtil/vendor_list.h"

namespace App {

namespace {

constexpr const char* kOff = "off";

const std::map<std::string, LOG_MESSAGE_LEVEL> kLevels{{"trace", LOG_LEVEL_TRACE},
                                                       {"debug", LOG_LEVEL_DEBUG},
                                                       {"info", LOG_LEVEL_INFO},
                                                       {"warning", LOG_LEVEL_WARNING},
                                                       {"error", LOG_LEVEL_ERROR}};

// Those of this process. Never destroyed: vendors' threads may still run while the process ends.
Settings& Applied() {
    static Settings& settings = *new Settings;
    return settings;
}

void RequireWritable(const std::string& file) {
    const std::string reason = PrepareLogFile(file);
    if (!reason.empty()) {
        throw Problem("cannot write the log file " + file + ": " + reason +
                      "\nName another with --log-file, in a folder that exists.");
    }
}

}  // namespace

void Apply(const Settings& settings) {
    Applied() = settings;
    const bool toFile = settings.logLevel != kOff;
    if (!settings.logFile.empty() && toFile) {
        RequireWritable(settings.logFile);
    }
    const bool toTerminal = toFile && !settings.logLevel.empty();
    const LOG_MESSAGE_LEVEL level = toTerminal ? kLevels.at(settings.logLevel) : LOG_LEVEL_DEBUG;
    const bool isDone = ConfigureLog(level, toTerminal, toFile, toFile ? settings.logFile : "");
    if (!isDone && !(settings.logLevel.empty() && settings.logFile.empty())) {
        throw Problem(
            "--log-level and --log-file do not work: the library LogHelper in use cannot be "
            "configured"
            "\nLeave them out, or use a LogHelper that has the function LogHelperConfigure.");
    }
    if (!settings.vendorList.empty()) {
        PrinterUtil::UseVendorList(settings.vendorList);
    }
}

bool WritesJson() {
    return Applied().json;
}

bool DrawsOnTerminal() {
    const std::string& level = Applied().logLevel;
    const bool logsToError = !level.empty() && level != kOff;
    return OutputScreen().has_value() && !(logsToError && ErrorIsTerminal());
}

std::chrono::steady_clock::duration AnswerLimitOr(std::chrono::steady_clock::duration limit) {
    const auto& time = Applied().vendorTime;
    return time ? std::chrono::duration_cast<std::chrono::steady_clock::duration>(*time) : limit;
}

}  // namespace App

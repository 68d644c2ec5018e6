// SPDX-License-Identifier: Apache-2.0

#include "app/program/settings.h"

#include <map>

#include "app/outcome/problem.h"
#include "app/program/log_file.h"
#include "app/terminal/console.h"
#include "host/LogHelper/log_settings.h"
#include "host/PrinterUtil/vendor_list.h"

namespace App {

namespace {

constexpr const char* kOff = "off";

const std::map<std::string, LOG_MESSAGE_LEVEL> kLevels{{"trace", LOG_LEVEL_TRACE},
                                                       {"debug", LOG_LEVEL_DEBUG},
                                                       {"info", LOG_LEVEL_INFO},
                                                       {"warning", LOG_LEVEL_WARNING},
                                                       {"error", LOG_LEVEL_ERROR}};

void RequireWritable(const std::string& file) {
    const std::string reason = PrepareLogFile(file);
    if (!reason.empty()) {
        throw Problem("cannot write the log file " + file + ": " + reason +
                      "\nName another with --log-file, in a folder that exists.");
    }
}

}  // namespace

std::chrono::steady_clock::duration Settings::LimitOr(
    std::chrono::steady_clock::duration limit) const {
    using std::chrono::steady_clock;
    return vendorTime ? std::chrono::duration_cast<steady_clock::duration>(*vendorTime) : limit;
}

bool Settings::LogsToTerminal() const {
    return !logLevel.empty() && logLevel != kOff;
}

bool Settings::DrawsOnTerminal() const {
    return OutputScreen().has_value() && !(LogsToTerminal() && ErrorIsTerminal());
}

void Apply(const Settings& settings) {
    LogHelper::Settings log;
    if (settings.logLevel == kOff) {
        log.file = false;
    } else if (!settings.logLevel.empty()) {
        log.level = kLevels.at(settings.logLevel);
        log.terminal = true;
    }
    if (!settings.logFile.empty() && log.file) {
        RequireWritable(settings.logFile);
        log.filePath = settings.logFile;
    }
    LogHelper::Configure(log);
    if (!settings.vendorList.empty()) {
        PrinterUtil::UseVendorList(settings.vendorList);
    }
}

}  // namespace App

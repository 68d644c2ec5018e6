#include "app/settings.h"

#include <filesystem>
#include <fstream>
#include <map>

#include "app/problem.h"
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
    const std::filesystem::path path(std::u8string(file.begin(), file.end()));
    if (!std::ofstream(path, std::ios::app)) {
        throw Problem("cannot write the log file " + file +
                      "\nName another with --log-file, in a folder that exists.");
    }
}

}  // namespace

bool Settings::LogsToTerminal() const {
    return !logLevel.empty() && logLevel != kOff;
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

// SPDX-License-Identifier: Apache-2.0

#include "app/program/messages.h"

#include <sstream>

#include "app/terminal/console.h"
#include "app/terminal/text.h"
#include "base/first_lines.h"
#include "host/LogHelper/log_settings.h"

namespace App {

namespace {

// Empty without one, or when it could not be written.
std::string LogFile() {
    LogHelper::Flush();
    return LogHelper::LogFilePath();
}

}  // namespace

void Complain(const std::string& text) {
    std::istringstream stream("devicediscover: " + text);
    std::string shown;
    for (std::string line; std::getline(stream, line);) {
        shown += DisplayText(line) + "\n";
    }
    WriteError(shown);
}

void Warn(const std::string& text) {
    Complain("warning: " + text);
}

void WarnOfAll(const std::vector<std::string>& problems) {
    for (const std::string& problem : Base::FirstLines(problems)) {
        Warn(problem);
    }
}

std::string Lines(const std::vector<std::string>& problems) {
    std::string text;
    for (const std::string& problem : Base::FirstLines(problems)) {
        text += "\n  " + problem;
    }
    return text;
}

std::string AdviceToReadLog() {
    const std::string log = LogFile();
    return log.empty() ? "There is no log; --log-level warning shows the reason as it happens."
                       : "The reason is in the log (" + log +
                             "); --log-level warning shows it as it happens.";
}

ExitStatus FailedSeeLog(const std::string& what) {
    Complain(what + "\n" + AdviceToReadLog());
    return kNoneFound;
}

std::string AdviceAfterScan() {
    const std::string log = LogFile();
    return (log.empty() ? "There is no log of what each vendor did"
                        : "What each vendor did is in the log (" + log + ")") +
           ".\nTry a longer --seconds, `devicediscover vendors` to see what each vendor's modules "
           "can do,\nor --log-level error to see failures as they happen.";
}

}  // namespace App

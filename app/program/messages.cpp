// SPDX-License-Identifier: Apache-2.0

#include "app/program/messages.h"

#include <sstream>

#include "app/program/log_control.h"
#include "app/terminal/console.h"
#include "base/first_lines.h"
#include "base/text/display_text.h"

namespace App {

namespace {

// "the log (FILE)", or the log of a library that does not tell the file. Empty without a log, or
// when it could not be written.
std::string TheLog(const std::optional<std::string>& file) {
    return !file           ? "the log of the library LogHelper in use"
           : file->empty() ? std::string()
                           : "the log (" + *file + ")";
}

}  // namespace

void Complain(const std::string& text) {
    std::istringstream stream("devicediscover: " + text);
    std::string shown;
    for (std::string line; std::getline(stream, line);) {
        shown += Base::DisplayText(line) + "\n";
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
    const std::optional<std::string> file = LogFilePath();
    const std::string log = TheLog(file);
    if (log.empty()) {
        return "There is no log; --log-level warning shows the reason as it happens.";
    }
    return "The reason is in " + log +
           (file ? "; --log-level warning shows it as it happens." : ".");
}

ExitStatus FailedSeeLog(const std::string& what) {
    Complain(what + "\n" + AdviceToReadLog());
    return kNoneFound;
}

std::string AdviceAfterScan() {
    const std::string log = TheLog(LogFilePath());
    return (log.empty() ? "There is no log of what each vendor did"
                        : "What each vendor did is in " + log) +
           ".\nTry a longer --seconds, `devicediscover vendors` to see what each vendor's modules "
           "can do,\nor --log-level error to see failures as they happen.";
}

}  // namespace App

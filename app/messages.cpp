#include "app/messages.h"

#include <sstream>

#include "app/console.h"
#include "app/text.h"
#include "host/LogHelper/log_settings.h"

namespace App {

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

std::string Lines(const std::vector<std::string>& problems) {
    std::string text;
    for (const std::string& problem : problems) {
        text += "\n  " + problem;
    }
    return text;
}

std::string AdviceToReadLog() {
    const std::string log = LogHelper::LogFilePath();
    return "The reason is in the log" + (log.empty() ? "" : " (" + log + ")") +
           "; --log-level warning shows it as it happens.";
}

std::string AdviceAfterScan() {
    const std::string log = LogHelper::LogFilePath();
    return "What each vendor did is in the log" + (log.empty() ? "" : " (" + log + ")") +
           ".\nTry a longer --seconds, `devicediscover vendors` to see what each vendor's modules "
           "can do,\nor --log-level error to see failures as they happen.";
}

}  // namespace App

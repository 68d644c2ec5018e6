// SPDX-License-Identifier: Apache-2.0

#include "app/commands/common_options.h"

#include "app/items/network.h"
#include "app/program/settings.h"

namespace App {

void AddSettings(Command& command, Settings& settings) {
    const std::size_t first = command.options.size();
    command.AddFlag("--json", settings.json, "Write one JSON object per line");
    command.AddFile("--vendors", settings.vendorList, "Read the list of vendors from this file");
    command.AddSeconds(
        "--vendor-seconds", [&settings](Seconds time) { settings.vendorTime = time; },
        "How long to wait for each answer of a vendor or of the system");
    command.options.back().standard = "30; 180 to join a network";
    command
        .AddText("--log-level", "LEVEL", settings.logLevel,
                 "Keep no log (off), or log from this level up, also to standard error")
        .choices = {"trace", "debug", "info", "warning", "error", "off"};
    command.AddFile("--log-file", settings.logFile, "Write the log to this file");
    for (std::size_t at = first; at < command.options.size(); ++at) {
        command.options[at].isCommon = true;
    }
}

void AddScanOptions(Command& command, ScanOptions& options) {
    command.AddSeconds("--seconds", options.time, "How long to look");
    command.AddFlag("--watch", options.watch, "Look until Ctrl-C").excludes = {"--seconds"};
}

void AddNetwork(Command& command, std::string& network) {
    command.AddText("--network", "NAME", network, "The network's name", CheckNetworkName)
        .isRequired = true;
}

void AddPassPhrase(Command& command, PassPhraseOptions& options) {
    command.AddFile("--pass-phrase-file", options.file,
                    "Read the pass phrase from this file; -: from standard input");
    command.AddFlag("--open", options.open, "The network has no pass phrase").excludes = {
        "--pass-phrase-file"};
}

const char* const kPassPhraseDetails = R"(

The program asks for the pass phrase on the terminal and does not show it. With
--pass-phrase-file it reads the file's only line or, with -, one line of standard
input. A pass phrase is never an argument: other users can see arguments.)";

std::vector<ExitText> ExitTexts(const std::string& found, const std::string& noneFound,
                                const std::string& couldNotRun) {
    return {{kFound, found},
            {kNoneFound, noneFound},
            {kUsage, "wrong arguments"},
            {kCouldNotRun, couldNotRun}};
}

}  // namespace App

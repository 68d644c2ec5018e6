// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

#include "app/commands/command.h"
#include "app/dialogue/pass_phrase.h"
#include "app/output/scan_run.h"
#include "app/program/settings.h"

// Options and texts that several commands share.

namespace App {

// The options of all commands.
void AddSettings(Command& command, Settings& settings);

// --seconds and --watch.
void AddScanOptions(Command& command, ScanOptions& options);

// --network, which must be given.
void AddNetwork(Command& command, std::string& network);

// --pass-phrase-file and --open.
void AddPassPhrase(Command& command, PassPhraseOptions& options);

// What the details of a command with a pass phrase say of it.
extern const char* const kPassPhraseDetails;

// The exit statuses of a command; the texts of wrong arguments and of --json are the same for all.
std::vector<ExitText> ExitTexts(const std::string& found, const std::string& noneFound,
                                const std::string& couldNotRun = "could not run");

}  // namespace App

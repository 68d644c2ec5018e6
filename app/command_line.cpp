// SPDX-License-Identifier: Apache-2.0

#include "app/command_line.h"

#include <exception>
#include <string>
#include <utility>

#include "app/command_parser.h"
#include "app/commands/commands.h"
#include "app/outcome/problem.h"
#include "app/program/messages.h"
#include "app/program/settings.h"
#include "app/terminal/console.h"
#include "app/terminal/crash_report.h"

namespace App {

namespace {

ExitStatus WrongArguments(const ParsedArguments& parsed, const std::string& explanation) {
    Complain(explanation + "\nRun `" + parsed.words + " --help` for how to use it.");
    return kUsage;
}

ExitStatus Run(const ParsedArguments& parsed, const Settings& settings) {
    try {
        Apply(settings);
        if (settings.json) {
            ReportCrashesInJson();
        }
        return parsed.command->run();
    } catch (const WrongInput& problem) {
        return WrongArguments(parsed, problem.what());
    }
}

}  // namespace

ExitStatus RunCommandLine(std::vector<std::string> arguments) {
    Settings settings;
    const Command program = ProgramCommand(settings);
    const ParsedArguments parsed = Parse(program, std::move(arguments));
    if (!parsed.problem.empty()) {
        return WrongArguments(parsed, parsed.problem);
    }
    if (!parsed.output.empty()) {
        WriteOutput(parsed.output);
        return kFound;
    }
    return Run(parsed, settings);
}

}  // namespace App

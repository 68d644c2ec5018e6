#include "app/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <sstream>

#include "app/console.h"
#include "app/messages.h"
#include "app/scan_command.h"
#include "app/state_command.h"
#include "app/vendors_command.h"

namespace App {

namespace {

constexpr const char* kExitStatuses =
    "Exit status: 0 found, 1 none found, 2 wrong arguments, 3 could not run.";

constexpr const char* kExamples = R"(Examples:
  devicediscover scan                     look for printers for 5 seconds
  devicediscover scan --json --watch      one JSON object a line, until Ctrl-C
  devicediscover state CN12345678         would that printer take a job?
  devicediscover vendors                  what can each vendor's modules do?
`devicediscover COMMAND --help` has more on each command.

)";

constexpr const char* kScanExamples = R"(Examples:
  devicediscover scan                     a live table for 5 seconds
  devicediscover scan --seconds 30        give slow printers more time
  devicediscover scan --watch             until Ctrl-C
  devicediscover scan --json | jq .address
  devicediscover scan --vendors ./vendors.json --log-level debug

On a terminal the printers stand in a table that is drawn anew as the scan goes
on. Elsewhere each is a line, written when it is found: serial number, make and
model, address, port and vendor, separated by tabs. Ctrl-C stops the scan
properly; a second one ends the program at once.

)";

constexpr const char* kStateExamples = R"(Examples:
  devicediscover state CN12345678         look for it, then ask its vendor
  devicediscover state CN12345678 --seconds 30 --json

The exit status is 0 when the printer was found, whatever its state.

)";

constexpr const char* kVendorsExamples = R"(Examples:
  devicediscover vendors
  devicediscover vendors --vendors ./vendors.json
  devicediscover vendors --json | jq '.modules[].problem'

Without --vendors the list is the one that the environment variable
DEVICEDISCOVER_VENDORS names, else vendors.json in your configuration folder,
else the one beside the library. The exit status is 0 when at least one module
can be loaded.

)";

constexpr double kShortest = 0.1;
constexpr double kLongest = 86400;

// What is wrong with a number of seconds; nothing when it is fine.
std::string CheckSeconds(const std::string& text) {
    double seconds = 0;
    const bool isNumber = CLI::detail::lexical_cast(text, seconds);
    // Written so that it refuses what is no number at all.
    if (isNumber && seconds >= kShortest && seconds <= kLongest) {
        return {};
    }
    return "'" + text + "' is not a number from 0.1 to 86400";
}

void AddSeconds(CLI::App& command, std::chrono::duration<double>& time, const std::string& use) {
    command
        .add_option_function<double>(
            "--seconds",
            [&time](const double& seconds) { time = std::chrono::duration<double>(seconds); },
            use + ", from 0.1 to 86400 (default 5)")
        ->type_name("N")
        ->check(CheckSeconds);
}

// An empty name is most often a variable of the shell that is not set.
std::string CheckFileName(const std::string& name) {
    return name.empty() ? "the file name is empty; leave the option out for the default" : "";
}

void AddSettings(CLI::App& command, Settings& settings) {
    command.add_flag("--json", settings.json, "Write one JSON object a line");
    command.add_option("--vendors", settings.vendorList, "The list of supported vendors")
        ->type_name("FILE")
        ->check(CheckFileName);
    command
        .add_option("--log-level", settings.logLevel,
                    "Log from this level on, to standard error too:\n"
                    "trace, debug, info, warning or error;\noff: keep no log at all")
        ->type_name("LEVEL")
        ->check([](const std::string& level) -> std::string {
            const auto levels = {"trace", "debug", "info", "warning", "error", "off"};
            const bool known = std::find(levels.begin(), levels.end(), level) != levels.end();
            return known ? ""
                         : "'" + level + "' is none of trace, debug, info, warning, error, off";
        });
    command.add_option("--log-file", settings.logFile, "Write the log to this file")
        ->type_name("FILE")
        ->check(CheckFileName);
}

CLI::App& AddCommand(CLI::App& app, const std::string& name, const std::string& description,
                     const std::string& examples, Settings& settings) {
    CLI::App& command = *app.add_subcommand(name, description);
    command.footer(examples + kExitStatuses);
    AddSettings(command, settings);
    return command;
}

std::string Explanation(const CLI::App& app, const CLI::ParseError& error) {
    if (!app.get_subcommands().empty() || error.get_name() != "RequiredError") {
        return error.what();
    }
    const std::vector<std::string> others = app.remaining();
    return (others.empty() ? "a command is needed"
                           : "there is no command or option '" + others[0] + "'") +
           ": scan, state or vendors";
}

ExitStatus WrongArguments(const CLI::App& app, const CLI::ParseError& error) {
    const auto chosen = app.get_subcommands();
    const std::string command = chosen.empty() ? "" : " " + chosen.front()->get_name();
    Complain(Explanation(app, error) + "\nRun `devicediscover" + command +
             " --help` for how it is used.");
    return kUsage;
}

}  // namespace

ExitStatus RunCommandLine(std::vector<std::string> arguments) {
    Settings settings;
    ScanOptions scanOptions;
    StateOptions stateOptions;

    CLI::App app("Finds printers through the modules of their vendors.", "devicediscover");
    app.set_version_flag("--version", "devicediscover " DEVICEDISCOVER_VERSION,
                         "Print the version and exit");
    app.require_subcommand(1);
    app.get_formatter()->column_width(34);
    app.footer(std::string(kExamples) + kExitStatuses);

    CLI::App& scan = AddCommand(app, "scan", "Look for printers and show them as they are found.",
                                kScanExamples, settings);
    AddSeconds(scan, scanOptions.time, "How long to look");
    scan.add_flag("--watch", scanOptions.watch, "Look until Ctrl-C")->excludes("--seconds");

    CLI::App& state =
        AddCommand(app, "state", "Find one printer and ask its vendor whether it would take a job.",
                   kStateExamples, settings);
    state.add_option("SERIAL", stateOptions.serialNumber, "The printer's serial number")
        ->required();
    AddSeconds(state, stateOptions.time, "How long to look for it");

    CLI::App& vendors = AddCommand(
        app, "vendors", "Show each supported vendor, its modules and their entry points.",
        kVendorsExamples, settings);

    try {
        std::reverse(arguments.begin(), arguments.end());
        app.parse(std::move(arguments));
    } catch (const CLI::Success& asked) {
        std::ostringstream text;
        app.exit(asked, text, text);
        WriteOutput(text.str());
        return kFound;
    } catch (const CLI::ParseError& error) {
        return WrongArguments(app, error);
    }
    Apply(settings);
    if (scan.parsed()) {
        return Scan(settings, scanOptions);
    }
    return vendors.parsed() ? Vendors(settings) : State(settings, stateOptions);
}

}  // namespace App

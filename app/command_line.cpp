// SPDX-License-Identifier: Apache-2.0

#include "app/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <functional>
#include <sstream>
#include <string_view>

#include "app/command_help.h"
#include "app/commands/ap_command.h"
#include "app/commands/ping_command.h"
#include "app/commands/scan_command.h"
#include "app/commands/setup_command.h"
#include "app/commands/state_command.h"
#include "app/commands/usb_command.h"
#include "app/commands/vendors_command.h"
#include "app/commands/wifi_command.h"
#include "app/items/network.h"
#include "app/outcome/problem.h"
#include "app/output/json_output.h"
#include "app/program/messages.h"
#include "app/running/cancellation.h"
#include "app/terminal/console.h"
#include "app/terminal/crash_report.h"

namespace App {

namespace {

constexpr double kShortest = 0.1;
constexpr double kLongest = 86400;

// Why the text is not a valid number of seconds; empty when it is.
std::string CheckSeconds(const std::string& text) {
    double seconds = 0;
    const bool isNumber = CLI::detail::lexical_cast(text, seconds);
    // Written so that it also refuses NaN.
    if (isNumber && seconds >= kShortest && seconds <= kLongest) {
        return {};
    }
    return "'" + text + "' is not a number from 0.1 to 86400";
}

void AddSeconds(CLI::App& command, const std::string& name, std::chrono::duration<double>& time,
                const std::string& use) {
    std::ostringstream description;
    description << use << ", from 0.1 to 86400 (default " << time.count() << ")";
    command
        .add_option_function<double>(
            name, [&time](const double& seconds) { time = std::chrono::duration<double>(seconds); },
            description.str())
        ->type_name("N")
        ->check(CheckSeconds);
}

// A flag without a value: refuses any value except a redundant `true`.
CLI::Option* AddFlag(CLI::App& command, const std::string& name, bool& value,
                     const std::string& use) {
    return command.add_flag(name, value, use)->disable_flag_override();
}

void AddScanOptions(CLI::App& command, ScanOptions& options) {
    AddSeconds(command, "--seconds", options.time, "How long to look");
    AddFlag(command, "--watch", options.watch, "Look until Ctrl-C")->excludes("--seconds");
}

// An empty name usually comes from an unset shell variable.
std::string CheckFileName(const std::string& name) {
    return name.empty() ? "the file name is empty; leave the option out for the default" : "";
}

void AddSettings(CLI::App& command, Settings& settings) {
    AddFlag(command, "--json", settings.json, "Write one JSON object a line");
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
    command
        .add_option_function<double>(
            "--vendor-seconds",
            [&settings](const double& seconds) {
                settings.vendorTime = std::chrono::duration<double>(seconds);
            },
            "How long to wait for each answer, from 0.1 to 86400\n(default 30; 180 to join a "
            "network)")
        ->type_name("N")
        ->check(CheckSeconds);
    command.add_option("--log-file", settings.logFile, "Write the log to this file")
        ->type_name("FILE")
        ->check(CheckFileName);
}

void AddNetworkName(CLI::App& command, const std::string& option, std::string& name,
                    const std::string& use,
                    std::string (&check)(const std::string&) = CheckNetworkName) {
    command.add_option(option, name, use)->type_name("NAME")->check(check);
}

void AddPassPhrase(CLI::App& command, PassPhraseOptions& options) {
    CLI::Option* const file =
        command
            .add_option("--pass-phrase-file", options.file,
                        "Read the pass phrase from this file;\n-: from standard input")
            ->type_name("FILE")
            ->check(CheckFileName);
    AddFlag(command, "--open", options.open, "The network has no pass phrase")->excludes(file);
}

// Whether an argument may be meant as a pass phrase: error messages must not repeat it.
bool TakesPassPhrase(const CLI::App& command) {
    return command.get_option_no_throw("--pass-phrase-file") != nullptr;
}

// The commands of the program and their actions.
class Commands {
public:
    Commands(CLI::App& application, Settings& appSettings)
        : app(application), settings(appSettings) {}

    CLI::App& Group(const std::string& name, const std::string& description, const char* help) {
        CLI::App& group = *app.add_subcommand(name, description);
        group.require_subcommand(1);
        group.footer(std::string(help) + Help::kExitStatuses);
        return group;
    }

    CLI::App& Add(CLI::App& parent, const std::string& name, const std::string& description,
                  const std::string& help, std::function<ExitStatus()> run) {
        CLI::App& command = *parent.add_subcommand(name, description);
        command.footer(help);
        AddSettings(command, settings);
        commands.emplace_back(&command, std::move(run));
        return command;
    }

    // Runs the selected command.
    ExitStatus Run() const {
        const auto chosen = std::find_if(commands.begin(), commands.end(), [](const auto& command) {
            return command.first->parsed();
        });
        return chosen->second();
    }

private:
    CLI::App& app;
    Settings& settings;
    std::vector<std::pair<CLI::App*, std::function<ExitStatus()>>> commands;
};

std::string WithStatuses(const char* help) {
    return std::string(help) + Help::kExitStatuses;
}

struct Options {
    Settings settings;
    ScanOptions scan;
    StateOptions state;
    SetupOptions setup;
    ScanOptions networkScan;
    CheckOptions check;
    ScanOptions usbWatch{std::chrono::duration<double>(kLongest), true};
    UsbNetworksOptions usbNetworks;
    UsbConfigureOptions usbConfigure;
    PassPhraseOptions passPhrase;
    std::string network;
    std::string address;
};

void AddPrinterCommands(CLI::App& app, Commands& commands, Options& all) {
    AddScanOptions(
        commands.Add(app, "scan", "Look for printers and show them as they are found.",
                     WithStatuses(Help::kScan), [&] { return Scan(all.settings, all.scan); }),
        all.scan);

    CLI::App& state = commands.Add(
        app, "state", "Find one printer and ask its vendor whether it would take a job.",
        WithStatuses(Help::kState), [&] { return State(all.settings, all.state); });
    state.add_option("SERIAL", all.state.serialNumber, "The printer's serial number")->required();
    state
        .add_option(
            "--address", all.state.address,
            "Where it is, when several have that number:\nas `devicediscover scan` shows it")
        ->type_name("ADDRESS");
    AddSeconds(state, "--seconds", all.state.time, "How long to look for it");

    commands.Add(app, "vendors", "Show each supported vendor, its modules and their entry points.",
                 WithStatuses(Help::kVendors), [&] { return Vendors(all.settings); });
}

void AddWifiCommands(CLI::App& app, Commands& commands, Options& all) {
    CLI::App& wifi = commands.Group("wifi", "This computer's own Wi-Fi.", Help::kWifi);
    commands.Add(wifi, "list", "Show the networks in range.", WithStatuses(Help::kWifiList),
                 [&] { return WifiList(all.settings); });
    commands.Add(wifi, "offer", "Show the networks that a printer can be put on.",
                 WithStatuses(Help::kWifiOffer), [&] { return WifiOffer(all.settings); });
    commands.Add(wifi, "current", "Show the network that this computer is joined to.",
                 WithStatuses(Help::kWifiCurrent), [&] { return WifiCurrent(all.settings); });
    CLI::App& join =
        commands.Add(wifi, "join", "Join this computer to a network.",
                     std::string(Help::kWifiJoin) + Help::kPassPhrase + Help::kExitStatuses,
                     [&] { return WifiJoin(all.settings, all.network, all.passPhrase); });
    AddNetworkName(join, "NAME", all.network, "The network's name", CheckHostNetworkName);
    join.get_option("NAME")->required();
    AddPassPhrase(join, all.passPhrase);

    CLI::App& ping =
        commands.Add(app, "ping", "Ask whether a printer answers at an address.",
                     WithStatuses(Help::kPing), [&] { return Ping(all.settings, all.address); });
    ping.add_option("ADDRESS", all.address, "Its IPv4 address, such as 192.168.1.20")
        ->required()
        ->check(CLI::ValidIPV4);
}

void AddAccessPointCommands(Commands& commands, Options& all) {
    CLI::App& ap = commands.Group(
        "ap", "A new printer through its own Wi-Fi network, which this computer is joined to.",
        Help::kAp);
    AddScanOptions(commands.Add(ap, "scan", "Show the networks that the printer can be put on.",
                                WithStatuses(Help::kApScan),
                                [&] { return AccessPointScan(all.settings, all.networkScan); }),
                   all.networkScan);
    CLI::App& configure = commands.Add(
        ap, "configure", "Put the printer on a network.",
        std::string(Help::kApConfigure) + Help::kPassPhrase + Help::kExitStatuses,
        [&] { return AccessPointConfigure(all.settings, all.network, all.passPhrase); });
    AddNetworkName(configure, "--network", all.network, "The network's name");
    configure.get_option("--network")->required();
    AddPassPhrase(configure, all.passPhrase);
    commands.Add(ap, "info", "Show the printer.", WithStatuses(Help::kApInfo),
                 [&] { return AccessPointInfo(all.settings); });
    CLI::App& check = commands.Add(ap, "check", "Ask whether a printer is on the local network.",
                                   WithStatuses(Help::kApCheck),
                                   [&] { return AccessPointCheck(all.settings, all.check); });
    CLI::Option* const serial = check.add_option("SERIAL", all.check.serialNumber,
                                                 "The printer's serial number, or its UUID");
    check.add_option("--vendor", all.check.vendor, "Its vendor's productId")
        ->type_name("ID")
        ->needs(serial);
}

void AddUsbSerialNumber(CLI::App& command, std::string& serialNumber) {
    command
        .add_option("SERIAL", serialNumber,
                    "The printer's serial number, or its place on USB;\nnot needed where only one "
                    "is plugged in")
        ->check([](const std::string& text) -> std::string {
            return text.empty() ? "the serial number is empty; leave it out for the only printer"
                                : "";
        });
}

void AddUsbWatch(CLI::App& usb, Commands& commands, Options& all) {
    CLI::App& watch = commands.Add(
        usb, "watch", "Show printers as they are plugged in from now on.",
        WithStatuses(Help::kUsbWatch), [&] { return UsbWatch(all.settings, all.usbWatch); });
    watch
        .add_option_function<double>(
            "--seconds",
            [&all](const double& seconds) {
                all.usbWatch = {std::chrono::duration<double>(seconds), false};
            },
            "How long to watch, from 0.1 to 86400\n(default: until Ctrl-C)")
        ->type_name("N")
        ->check(CheckSeconds);
}

void AddUsbCommands(Commands& commands, Options& all) {
    CLI::App& usb = commands.Group("usb", "Printers on USB.", Help::kUsb);
    commands.Add(usb, "list", "Show the USB printers that are installed on this computer.",
                 WithStatuses(Help::kUsbList), [&] { return UsbList(all.settings); });
    commands.Add(usb, "ports", "Show the printers that are plugged in.",
                 WithStatuses(Help::kUsbPorts), [&] { return UsbPorts(all.settings); });
    AddUsbWatch(usb, commands, all);
    CLI::App& networks =
        commands.Add(usb, "networks", "Show the networks that a printer on USB can be put on.",
                     WithStatuses(Help::kUsbNetworks),
                     [&] { return UsbNetworks(all.settings, all.usbNetworks); });
    AddUsbSerialNumber(networks, all.usbNetworks.serialNumber);
    networks
        .add_option(
            "--option", all.usbNetworks.option,
            "A whole number for the printer's vendor (default 0);\nfor driverless the weakest "
            "signal to show, up to 100")
        ->type_name("N")
        ->check([](const std::string& text) -> std::string {
            int number = 0;
            return CLI::detail::lexical_cast(text, number) ? ""
                                                           : "'" + text + "' is no whole number";
        });
    CLI::App& configure =
        commands.Add(usb, "configure", "Put a printer on USB on a network.",
                     std::string(Help::kUsbConfigure) + Help::kPassPhrase + Help::kExitStatuses,
                     [&] { return UsbConfigure(all.settings, all.usbConfigure); });
    AddUsbSerialNumber(configure, all.usbConfigure.serialNumber);
    AddNetworkName(configure, "--network", all.usbConfigure.network, "The network's name");
    configure.get_option("--network")->required();
    AddPassPhrase(configure, all.usbConfigure.passPhrase);
}

void AddSetupCommand(CLI::App& app, Commands& commands, Options& all) {
    CLI::App& setup =
        commands.Add(app, "setup", "Put a new printer on a Wi-Fi network, and find it there.",
                     std::string(Help::kPassPhrase) + Help::kSetup,
                     [&] { return Setup(all.settings, all.setup); });
    setup
        .add_option_function<std::string>(
            "--usb",
            [&all](const std::string& serialNumber) {
                all.setup.usb = true;
                all.setup.usbSerialNumber = serialNumber;
            },
            "The printer is on USB, not on Wi-Fi; its serial\nnumber or place there where more "
            "than one is\nplugged in")
        ->expected(0, 1)
        ->type_name("[SERIAL]");
    AddNetworkName(setup, "--network", all.setup.network, "The network to put the printer on");
    AddPassPhrase(setup, all.setup.passPhrase);
    AddFlag(setup, "--no-rejoin", all.setup.noRejoin, "Do not join this computer to that network");
    AddSeconds(setup, "--timeout", all.setup.timeout, "How long to look for the printer there");
    AddSeconds(setup, "--seconds", all.setup.listTime, "How long to look for networks");
    setup.get_option("--seconds")->excludes("--usb");
}

// The innermost selected command, and the words that name it.
std::pair<const CLI::App*, std::string> Chosen(const CLI::App& app) {
    const CLI::App* command = &app;
    std::string words;
    while (!command->get_subcommands().empty()) {
        command = command->get_subcommands().front();
        words += " " + command->get_name();
    }
    return {command, words};
}

// "scan, state or vendors"
std::string SubcommandsOf(const CLI::App& command) {
    std::string text;
    const auto all = command.get_subcommands([](const CLI::App*) { return true; });
    for (std::size_t index = 0; index < all.size(); ++index) {
        text += (index == 0                ? ""
                 : index + 1 == all.size() ? " or "
                                           : ", ") +
                all[index]->get_name();
    }
    return text;
}

// The option's name without its value, which may be a pass phrase: "--name" or "-x".
std::string WithoutValue(const std::string& argument) {
    if (!argument.starts_with('-')) {
        return argument;
    }
    constexpr std::string_view ofNames = "-abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
    const std::string name = argument.substr(0, argument.find_first_not_of(ofNames));
    return name.starts_with("--") ? name : name.substr(0, 2);
}

std::string AboutExtras(const CLI::App& command) {
    if (TakesPassPhrase(command)) {
        return "there is an argument too many. A pass phrase is never one: give it at the prompt, "
               "or with\n--pass-phrase-file";
    }
    const std::vector<std::string> extras = command.remaining();
    if (!extras.empty()) {
        return "there is no argument or option '" + WithoutValue(extras[0]) + "'";
    }
    for (const CLI::App* outer = command.get_parent(); outer != nullptr;
         outer = outer->get_parent()) {
        const std::vector<std::string> early = outer->remaining();
        if (!early.empty()) {
            return "'" + WithoutValue(early[0]) +
                   "' stands before the command; options go behind it";
        }
    }
    return "there is an argument too many";
}

std::string AboutMismatch(const std::string& text) {
    constexpr std::string_view valueOfFlag = " was given a disallowed flag override";
    return text.ends_with(valueOfFlag)
               ? "--" + text.substr(0, text.size() - valueOfFlag.size()) + " takes no value"
               : text;
}

// Never repeats an argument that may be a pass phrase.
std::string Explanation(const CLI::App& app, const CLI::ParseError& error) {
    const auto [command, words] = Chosen(app);
    if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::ExtrasError)) {
        return AboutExtras(*command);
    }
    if (error.get_name() == "ArgumentMismatch") {
        return AboutMismatch(error.what());
    }
    const std::string subcommands = SubcommandsOf(*command);
    if (subcommands.empty() || error.get_name() != "RequiredError") {
        return error.what();
    }
    const std::vector<std::string> others = command->remaining();
    return (others.empty() ? "a command is needed"
                           : "there is no command or option '" + WithoutValue(others[0]) + "'") +
           ": " + subcommands;
}

ExitStatus WrongArguments(const CLI::App& app, const std::string& explanation) {
    Complain(explanation + "\nRun `devicediscover" + Chosen(app).second +
             " --help` for how it is used.");
    return kUsage;
}

// Reports why the command could not run; with --json also on standard output, if it still has a
// reader.
ExitStatus CouldNotRun(const Settings& settings, const std::string& problem) {
    Complain(problem);
    if (settings.json) {
        try {
            WriteOutput(ProblemJson(problem) + "\n");
        } catch (const OutputClosed&) {
            return kCouldNotRun;
        } catch (const Problem&) {
            return kCouldNotRun;  // the problem may be that the output cannot be written
        }
    }
    return kCouldNotRun;
}

ExitStatus Run(const CLI::App& app, const Commands& commands, const Settings& settings) {
    try {
        Apply(settings);
        if (settings.json) {
            ReportCrashesInJson();
        }
        return commands.Run();
    } catch (const Interrupted&) {
        Complain("interrupted.");
        return kNoneFound;
    } catch (const WrongInput& problem) {
        return WrongArguments(app, problem.what());
    } catch (const Problem& problem) {
        return CouldNotRun(settings, problem.what());
    }
}

}  // namespace

ExitStatus RunCommandLine(std::vector<std::string> arguments) {
    Options options;
    CLI::App app(
        "Finds printers, and puts them on a network, through the modules of their vendors.",
        "devicediscover");
    app.set_version_flag("--version", "devicediscover " DEVICEDISCOVER_VERSION,
                         "Print the version and exit")
        ->disable_flag_override();
    app.require_subcommand(1);
    app.get_formatter()->column_width(34);
    app.footer(WithStatuses(Help::kApplication));

    Commands commands(app, options.settings);
    AddPrinterCommands(app, commands, options);
    AddWifiCommands(app, commands, options);
    AddAccessPointCommands(commands, options);
    AddUsbCommands(commands, options);
    AddSetupCommand(app, commands, options);

    try {
        std::reverse(arguments.begin(), arguments.end());
        app.parse(std::move(arguments));
    } catch (const CLI::Success& asked) {
        std::ostringstream text;
        app.exit(asked, text, text);
        WriteOutput(text.str());
        return kFound;
    } catch (const CLI::ParseError& error) {
        return WrongArguments(app, Explanation(app, error));
    }
    return Run(app, commands, options.settings);
}

}  // namespace App

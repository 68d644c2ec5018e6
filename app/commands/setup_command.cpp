// SPDX-License-Identifier: Apache-2.0

#include "app/commands/setup_command.h"

#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/commands/common_options.h"
#include "app/dialogue/pass_phrase.h"
#include "app/dialogue/prompt.h"
#include "app/library/access_point_printer.h"
#include "app/library/host_wifi.h"
#include "app/library/vendor_texts.h"
#include "app/outcome/problem.h"
#include "app/program/messages.h"
#include "app/running/cancellation.h"
#include "app/setup/printer_search.h"
#include "app/setup/setup_progress.h"
#include "app/setup/setup_route.h"
#include "base/first_lines.h"

namespace App {

namespace {

struct SetupOptions {
    bool usb = false;             // over USB, not through the printer's access point
    std::string usbSerialNumber;  // empty: the only printer that is plugged in
    std::string network;          // empty: the user picks from a list
    PassPhraseOptions passPhrase;
    bool noRejoin = false;  // the host does not join the network
    Seconds listTime{5};    // how long to look for networks to offer
    Seconds timeout{60};    // how long to look for the printer afterwards
};

constexpr int kJoinAttempts = 3;
constexpr auto kJoinPause = std::chrono::seconds(2);

std::string NameOf(const Printer& printer) {
    return fmt::format("{}, serial number {}",
                       printer.makeAndModel.empty() ? "A printer" : printer.makeAndModel,
                       printer.serialNumber.empty() ? "not known" : printer.serialNumber);
}

// "192.0.2.7 port 631 and 192.0.2.8 port 631"; of many the first ones, "and N more".
std::string PlacesOf(const std::vector<Printer>& printers) {
    std::vector<std::string> places;
    places.reserve(printers.size());
    for (const Printer& printer : printers) {
        places.push_back(fmt::format("{} port {}", printer.address, printer.port));
    }
    if (const std::size_t rest = places.size() - std::min(places.size(), Base::kMaxLines);
        rest > 0) {
        places.resize(Base::kMaxLines);
        places.push_back(fmt::format("{} more", rest));
    }
    return fmt::format("{}", fmt::join(places, " and "));
}

// `found`: the printers with the printer's serial number.
std::string IsOn(const std::string& network, const Printer& printer,
                 const std::vector<Printer>& found) {
    if (found.empty()) {
        return fmt::format(
            "{}, is on {}, its vendor says; `devicediscover scan` shows where, "
            "maybe under another serial number",
            NameOf(printer), network);
    }
    const std::string places = PlacesOf(found);
    return found.size() == 1
               ? fmt::format("{}, is on {} at {}", NameOf(found.front()), network, places)
               : fmt::format("{}, is on {}; that serial number was found at {}", NameOf(printer),
                             network, places);
}

// Runs one set-up, step by step.
class Journey {
public:
    explicit Journey(const SetupOptions& setupOptions)
        : options(setupOptions),
          route(setupOptions.usb ? UsbRoute(setupOptions.usbSerialNumber)
                                 : AccessPointRoute(setupOptions.listTime)) {}

    ExitStatus Run();

private:
    void Steps();
    Printer WhichPrinter();
    std::string WhichNetwork();
    std::shared_ptr<Base::Secret> WhichPassPhrase(const std::string& network);
    void Configure(const std::string& network, const std::shared_ptr<Base::Secret>& passPhrase,
                   const std::string& vendor);
    void Rejoin(const std::string& network, const std::shared_ptr<Base::Secret>& passPhrase,
                const Printer& printer);
    JoinOutcome Join(const std::string& network, const std::shared_ptr<Base::Secret>& passPhrase);
    void Find(const std::string& network, const Printer& printer);
    std::string StateOfThings() const;
    std::string WayBack() const;
    const char* WasPutOn() const { return unconfirmed ? "was given" : "was put on"; }

    const SetupOptions& options;
    SetupProgress progress;
    const std::unique_ptr<SetupRoute> route;
    bool unconfirmed = false;  // only the network shows whether the printer joined
    std::string leftFor;       // the network for which this computer leaves its own
};

ExitStatus Journey::Run() {
    try {
        Steps();
        return kFound;
    } catch (const StepFailed& failure) {
        StepEvent event;
        event.result = failure.result;
        progress.Failed("failed", failure.what() + WayBack(), event);
        return kNoneFound;
    } catch (const Interrupted&) {
        progress.Failed("interrupted", "interrupted. " + StateOfThings() + WayBack());
        return kNoneFound;
    } catch (const WrongInput& problem) {
        progress.Failed("failed", problem.what() + WayBack());
        return kUsage;
    } catch (const std::exception& problem) {  // also: no thread, or no memory
        progress.Failed("failed", problem.what() + WayBack());
        return kCouldNotRun;
    }
}

// Starts this computer's return to the network that it left, and says so.
std::string Journey::WayBack() const {
    if (leftFor.empty() || !GoBackFrom(leftFor)) {
        return {};
    }
    return fmt::format(
        "\nThis computer goes back to the network it was on; `devicediscover wifi join {}` joins "
        "{} again.",
        leftFor, leftFor);
}

void Journey::Steps() {
    const Printer printer = WhichPrinter();
    if (route->LeavesNetwork() && !options.noRejoin) {
        RememberNetwork();
    }
    const std::string network = WhichNetwork();
    std::shared_ptr<Base::Secret> passPhrase = WhichPassPhrase(network);
    Configure(network, passPhrase, printer.vendor);
    Rejoin(network, passPhrase, printer);
    passPhrase.reset();  // nothing needs it any more
    Find(network, printer);
}

Printer Journey::WhichPrinter() {
    progress.Begin(SetupStep::Printer);
    Printer printer = route->FindPrinter();
    StepEvent event;
    event.printers = {printer};
    progress.Done(fmt::format("{}, vendor {}", NameOf(printer), printer.vendor), event);
    return printer;
}

std::string Journey::WhichNetwork() {
    progress.Begin(SetupStep::Network);
    std::string network = options.network;
    if (network.empty()) {
        network = route->PickNetwork();
    }
    if (network.empty()) {
        throw StepFailed("no network was picked.\nName it with --network NAME.");
    }
    StepEvent event;
    event.network = network;
    progress.Done(network, event);
    return network;
}

std::shared_ptr<Base::Secret> Journey::WhichPassPhrase(const std::string& network) {
    progress.Begin(SetupStep::PassPhrase);
    std::shared_ptr<Base::Secret> passPhrase = GetPassPhrase(options.passPhrase, network);
    RequirePrinterPassPhrase(*passPhrase);
    progress.Done(passPhrase->View().empty() ? "None: the network is open" : "Given");
    return passPhrase;
}

void Journey::Configure(const std::string& network, const std::shared_ptr<Base::Secret>& passPhrase,
                        const std::string& vendor) {
    progress.Begin(SetupStep::Configure);
    const int result = route->Configure(network, passPhrase);
    unconfirmed = IsUnconfirmed(result, vendor, route->ConfigureEntryPoint());
    if (result != 0 && !unconfirmed) {
        const SetupRoute::Failure failure = route->ExplainConfigure(result);
        throw StepFailed(fmt::format("the printer was not put on {}: {}\n{} {}", network,
                                     failure.why, failure.advice, AdviceToReadLog()),
                         result);
    }
    StepEvent event;
    event.network = network;
    event.result = result;
    progress.Done(unconfirmed ? "The printer was given " + network +
                                    " and closed its own network; whether it joined shows below"
                              : "The printer was put on " + network,
                  event);
}

void Journey::Rejoin(const std::string& network, const std::shared_ptr<Base::Secret>& passPhrase,
                     const Printer& printer) {
    progress.Begin(SetupStep::Rejoin);
    if (options.noRejoin) {
        progress.Skipped("Skipped: --no-rejoin");
        return;
    }
    if (!route->LeavesNetwork()) {
        progress.Skipped("This computer stays on the network it is on");
        return;
    }
    if (const JoinOutcome outcome = Join(network, passPhrase); !outcome.joined) {
        const std::string& reason = outcome.problem.reason;
        throw StepFailed(
            fmt::format("this computer could not join {}{}; the printer {} it.\nJoin it by "
                        "hand, then `devicediscover ap check {} --vendor {}` tells whether the "
                        "printer\nis there, and `devicediscover scan` where. {}",
                        network, reason.empty() ? "" : " (" + reason + ")", WasPutOn(),
                        printer.serialNumber, printer.vendor, AdviceToReadLog()));
    }
    StepEvent event;
    event.network = network;
    progress.Done("This computer is on " + network, event);
}

JoinOutcome Journey::Join(const std::string& network,
                          const std::shared_ptr<Base::Secret>& passPhrase) {
    for (int attempt = 1;; ++attempt) {
        if (CurrentAccessPoint().network == network) {
            return {true, {}};
        }
        leftFor = network;
        JoinOutcome outcome = JoinNetwork(network, passPhrase);
        if (outcome.joined || attempt == kJoinAttempts) {
            return outcome;
        }
        // The network may not be back in the list yet.
        Cancellation::GetInstance().WaitUntil(Cancellation::Clock::now() + kJoinPause,
                                              [] { return false; });
    }
}

void Journey::Find(const std::string& network, const Printer& printer) {
    progress.Begin(SetupStep::Find);
    const SearchOutcome outcome = SearchPrinter(printer, options.timeout);
    const std::string places = PlacesOf(outcome.printers);
    if (!outcome.isOnNetwork && !outcome.failures.empty()) {
        throw Problem(
            fmt::format("{} {} {}; it is not known whether the printer is there: every "
                        "vendor's scan has failed{}",
                        NameOf(printer), WasPutOn(), network, Lines(outcome.failures)));
    }
    if (!outcome.isOnNetwork && outcome.printers.empty()) {
        throw StepFailed(fmt::format(
            "{} {} {}, but was not found there within {:g} s{}.\nSome printers "
            "take longer: `devicediscover scan --watch` shows it when it is there. Is "
            "this computer\non the same network (`devicediscover wifi current`)?",
            NameOf(printer), WasPutOn(), network, options.timeout.count(),
            outcome.vendorsResult == 0 ? ""
                                       : ": " + VendorsResult(outcome.vendorsResult, printer.vendor,
                                                              "IsLocalAreaNetworkOK")));
    }
    if (!outcome.isOnNetwork) {
        throw StepFailed(
            fmt::format(
                "{}: a printer with that serial number was found at {}, but the vendor "
                "does not find the printer that was put on {}: {}\nTry "
                "`devicediscover ap check {} --vendor {}` in a moment.",
                NameOf(printer), places, network,
                VendorsResult(outcome.vendorsResult, printer.vendor, "IsLocalAreaNetworkOK"),
                printer.serialNumber, printer.vendor),
            outcome.vendorsResult);
    }
    StepEvent event;
    event.network = network;
    event.printers = outcome.printers;
    progress.Done(IsOn(network, printer, outcome.printers), event);
}

std::string Journey::StateOfThings() const {
    if (progress.Current() < SetupStep::Configure) {
        return "Nothing was changed; start the set-up again when you like.";
    }
    if (progress.Current() == SetupStep::Configure) {
        return "It is not known whether the printer was put on the network. If `devicediscover "
               "scan` on that\nnetwork does not show it, start the set-up again.";
    }
    return fmt::format(
        "The printer {} the network: `devicediscover scan` on that network shows it.", WasPutOn());
}

void RequirePick() {
    const std::string obstacle = ObstacleToAsking();
    if (!obstacle.empty()) {
        throw WrongInput("cannot ask for the network: " + obstacle +
                         "\nName it with --network NAME; `devicediscover ap scan` and "
                         "`devicediscover usb networks` show\nwhich there are.");
    }
}

ExitStatus Setup(const SetupOptions& options) {
    options.passPhrase.Require();
    if (options.network.empty()) {
        RequirePick();
    }
    CancelOnInterrupt();
    return Journey(options).Run();
}

constexpr const char* kSetupDetails =
    R"(First join this computer to the new printer's own network: `devicediscover wifi
list` shows it, `devicediscover wifi join NAME` joins it. With --usb plug the
printer in instead; this computer stays on its network, which should be the one
that the printer will use.

The steps are: which printer; which network, picked from a list on a terminal;
its pass phrase; putting the printer on it; joining this computer to it; finding
the printer there. A step that fails says what to do. Ctrl-C stops at any step.
If one of the last two steps fails, this computer returns to the network it was
on, provided that network is open or saved, and in range.

With --json each step is an object when it starts and when it ends, and questions
go to standard error.

Printers may share a serial number. The vendor decides whether this printer is on
the network. If several with its number were found, all their places are shown;
the JSON key is then "printers" instead of "printer". A printer may have another
serial number on the network than on USB: then the vendor's answer is enough, no
place is shown, and JSON has neither key.)";

}  // namespace

Command SetupCommand() {
    const auto options = std::make_shared<SetupOptions>();
    Command command{
        .name = "setup",
        .summary = "Put a new printer on a Wi-Fi network, and find it there.",
        .examples = {{"setup", "asks for network and pass phrase"},
                     {"setup --network Office --pass-phrase-file office.txt --json"},
                     {"setup --no-rejoin", "this computer keeps its network"},
                     {"setup --usb", "the printer is on a USB cable"},
                     {"setup --usb CN12345678", "one of several on USB"}},
        .details = std::string(kSetupDetails) + kPassPhraseDetails,
        .exitTexts = {{kFound, "the printer was found on the network"},
                      {kNoneFound, "a step failed or was interrupted"},
                      {kUsage, "wrong arguments, or a pass phrase too long for a printer"},
                      {kCouldNotRun,
                       "could not run: no vendor can do it, no vendor looks for the "
                       "printer any more, or a file cannot be read"}},
        .run = [options] { return Setup(*options); }};
    Option usb{"--usb", "SERIAL",
               "The printer is on USB, not on Wi-Fi; its serial number or place, if several are "
               "plugged in",
               [options](const std::string& serialNumber) -> std::string {
                   options->usb = true;
                   options->usbSerialNumber = serialNumber;
                   return {};
               }};
    usb.isValueOptional = true;
    command.options.push_back(std::move(usb));
    command.AddText("--network", "NAME", options->network, "The network to put the printer on",
                    CheckNetworkName);
    AddPassPhrase(command, options->passPhrase);
    command.AddFlag("--no-rejoin", options->noRejoin, "Do not join this computer to that network");
    command.AddSeconds("--timeout", options->timeout, "How long to look for the printer there");
    command.AddSeconds("--seconds", options->listTime, "How long to look for networks").excludes = {
        "--usb"};
    return command;
}

}  // namespace App

// SPDX-License-Identifier: Apache-2.0

#include "app/commands/wifi_command.h"

#include <memory>
#include <string>

#include "app/commands/common_options.h"
#include "app/library/host_wifi.h"
#include "app/outcome/problem.h"
#include "app/output/answer.h"
#include "app/output/item_output.h"
#include "app/output/json_output.h"
#include "app/program/messages.h"
#include "app/program/settings.h"
#include "app/terminal/console.h"
#include "base/text/display_text.h"

namespace App {

namespace {

ExitStatus ShowHostNetworks(const HostNetworks& found, const std::string& none) {
    const auto& [networks, problem] = found;
    if (networks.empty() && problem.kind != PRINTER_WIFI_DONE) {
        throw Problem("could not look for networks: " + problem.reason + ".");
    }
    if (networks.empty()) {
        Complain(none + "\n" + AdviceToReadLog());
        return kNoneFound;
    }
    WriteItems(networks, HostNetworkJson);
    return kFound;
}

ExitStatus ShowInRange() {
    return ShowHostNetworks(NetworksInRange(),
                            "no network is in range, or this computer has no Wi-Fi.");
}

ExitStatus ShowOffered() {
    return ShowHostNetworks(NetworksToOffer(),
                            "no network in range is one that a printer can be put on; "
                            "`devicediscover wifi list` shows all.");
}

ExitStatus ShowCurrent() {
    const AccessPoint joined = CurrentAccessPoint();
    if (joined.problem.HidesTheAnswer()) {
        throw Problem("it is not known which Wi-Fi network this computer is on: " +
                      joined.problem.reason + ".");
    }
    if (joined.network.empty() && joined.hardwareAddress.empty() && joined.interfaceName.empty()) {
        const std::string& reason = joined.problem.reason;
        Complain("this computer is joined to no Wi-Fi network" +
                 (reason.empty() ? "" : ": " + reason) +
                 ".\n`devicediscover wifi join NAME` joins one. If it is joined already:\n" +
                 AdviceToReadLog());
        return kNoneFound;
    }
    const std::string line = WritesJson()
                                 ? AccessPointJson(joined)
                                 : Cell(joined.network) + "\t" + Cell(joined.hardwareAddress) +
                                       "\t" + Cell(joined.interfaceName);
    WriteOutput(line + "\n");
    return kFound;
}

ExitStatus JoinWifi(const std::string& network, const PassPhraseOptions& options) {
    options.Require();
    const auto [joined, problem] = JoinNetwork(network, GetPassPhrase(options, network));
    if (WritesJson()) {
        WriteAnswer(JoinJson(network, joined, problem.reason) + "\n");
    } else if (joined) {
        WriteAnswer("joined " + Base::DisplayText(network) + "\n");
    }
    if (!joined) {
        Complain("could not join " + network +
                 (problem.reason.empty() ? "" : ": " + problem.reason) +
                 ".\nIs it in range (`devicediscover wifi list`), and is the pass phrase right? " +
                 AdviceToReadLog());
    }
    return joined ? kFound : kNoneFound;
}

struct WifiJoinOptions {
    std::string network;
    PassPhraseOptions passPhrase;
};

Command WifiJoinCommand() {
    const auto options = std::make_shared<WifiJoinOptions>();
    Command command{
        .name = "join",
        .summary = "Join this computer to a network.",
        .examples = {{"wifi join Office"},
                     {"wifi join Office --pass-phrase-file office.txt"},
                     {"wifi join Guests --open"}},
        .details =
            std::string(
                R"(If this computer cannot join the network, or you press Ctrl-C, it returns to the
network it was on, provided that network is open or saved, and in range.)") +
            kPassPhraseDetails,
        .exitTexts = ExitTexts("joined", "not joined"),
        .run = [options] { return JoinWifi(options->network, options->passPhrase); }};
    command.AddText("NAME", "", options->network, "The network's name", CheckHostNetworkName)
        .isRequired = true;
    AddPassPhrase(command, options->passPhrase);
    return command;
}

}  // namespace

Command WifiCommand() {
    const Command list{
        .name = "list",
        .summary = "Show the networks in range.",
        .examples = {{"wifi list"}, {"wifi list --json | jq -r .network"}},
        .details =
            R"(Shows each network's name, signal (0 to 100) and protection, and whether a
printer can be put on it. A network that hides its name is shown as -. When the
output is not a terminal, columns are separated by tabs.)",
        .exitTexts = ExitTexts("at least one network is in range", "no network is in range"),
        .run = ShowInRange};
    const Command offer{
        .name = "offer",
        .summary = "Show the networks that a printer can be put on.",
        .examples = {{"wifi offer", "the networks to offer for a printer"}},
        .details = "Shows those of `devicediscover wifi list` that a printer can be put on.",
        .exitTexts = ExitTexts("there is at least one", "there is none"),
        .run = ShowOffered};
    const Command current{
        .name = "current",
        .summary = "Show the network that this computer is joined to.",
        .examples = {{"wifi current"}, {"wifi current --json | jq -r .network"}},
        .details =
            R"(Shows the network's name, the access point's hardware address and this computer's
interface, separated by tabs.)",
        .exitTexts = ExitTexts("joined to a network", "joined to none",
                               "could not run; the system's Wi-Fi service does not run or does "
                               "not answer"),
        .run = ShowCurrent};
    return {.name = "wifi",
            .summary = "This computer's own Wi-Fi.",
            .examples = {{"wifi list", "networks in range of this computer"},
                         {"wifi current", "which of them it is joined to"},
                         {"wifi join Office", "asks for the pass phrase"}},
            .exitTexts = ExitTexts("found or done", "not found or not done"),
            .commands = {list, offer, current, WifiJoinCommand()}};
}

}  // namespace App

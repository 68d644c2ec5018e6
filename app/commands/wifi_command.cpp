// SPDX-License-Identifier: Apache-2.0

#include "app/commands/wifi_command.h"

#include "app/library/host_wifi.h"
#include "app/outcome/problem.h"
#include "app/output/item_output.h"
#include "app/output/json_output.h"
#include "app/program/messages.h"
#include "app/terminal/console.h"
#include "app/terminal/text.h"

namespace App {

namespace {

ExitStatus Show(const Settings& settings, const HostNetworks& found, const std::string& none) {
    const auto& [networks, problem] = found;
    if (networks.empty() && problem.kind != PRINTER_WIFI_DONE) {
        throw Problem("could not look for networks: " + problem.reason + ".");
    }
    if (networks.empty()) {
        Complain(none + "\n" + AdviceToReadLog());
        return kNoneFound;
    }
    WriteItems(settings, networks, HostNetworkJson);
    return kFound;
}

}  // namespace

ExitStatus WifiList(const Settings& settings) {
    return Show(settings, NetworksInRange(settings),
                "no network is in range, or this computer has no Wi-Fi that could tell.");
}

ExitStatus WifiOffer(const Settings& settings) {
    return Show(settings, NetworksToOffer(settings),
                "no network in range is one that a printer can be put on; "
                "`devicediscover wifi list` shows all.");
}

ExitStatus WifiCurrent(const Settings& settings) {
    const AccessPoint joined = CurrentAccessPoint(settings);
    if (joined.problem.HidesTheAnswer()) {
        throw Problem("it is not known which Wi-Fi network this computer is on: " +
                      joined.problem.reason + ".");
    }
    if (joined.network.empty() && joined.hardwareAddress.empty() && joined.interfaceName.empty()) {
        const std::string& reason = joined.problem.reason;
        Complain("this computer is joined to no Wi-Fi network" +
                 (reason.empty() ? "" : ": " + reason) +
                 ".\n`devicediscover wifi join NAME` joins one. Should it be joined already:\n" +
                 AdviceToReadLog());
        return kNoneFound;
    }
    const std::string line = settings.json
                                 ? AccessPointJson(joined)
                                 : Cell(joined.network) + "\t" + Cell(joined.hardwareAddress) +
                                       "\t" + Cell(joined.interfaceName);
    WriteOutput(line + "\n");
    return kFound;
}

ExitStatus WifiJoin(const Settings& settings, const std::string& network,
                    const PassPhraseOptions& options) {
    options.Require(settings);
    const auto [joined, problem] =
        JoinNetwork(settings, network, GetPassPhrase(settings, options, network));
    if (settings.json) {
        WriteOutput(JoinJson(network, joined, problem.reason) + "\n");
    } else if (joined) {
        WriteOutput("joined " + DisplayText(network) + "\n");
    }
    if (!joined) {
        Complain("could not join " + network +
                 (problem.reason.empty() ? "" : ": " + problem.reason) +
                 ".\nIs it in range (`devicediscover wifi list`), and is the pass phrase right? " +
                 AdviceToReadLog());
    }
    return joined ? kFound : kNoneFound;
}

}  // namespace App

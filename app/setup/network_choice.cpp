// SPDX-License-Identifier: Apache-2.0

#include "app/setup/network_choice.h"

#include <algorithm>
#include <charconv>
#include <optional>

#include "app/dialogue/prompt.h"
#include "app/items/network.h"
#include "app/library/access_point_printer.h"
#include "app/library/host_wifi.h"
#include "app/outcome/problem.h"
#include "app/output/scan_run.h"
#include "app/program/messages.h"
#include "app/program/status_line.h"
#include "app/running/cancellation.h"
#include "app/terminal/console.h"
#include "app/terminal/table.h"
#include "base/text/display_text.h"

namespace App {

namespace {

using Clock = NetworkList::Clock;
using NetworkSource = std::function<std::vector<Network>()>;

// Whether the printer's vendor looks for networks; otherwise this computer's own list is used.
bool Start(std::optional<NetworkScanSession>& session) {
    try {
        session.emplace();
        return true;
    } catch (const NoScan&) {
        return false;
    } catch (const NoVendor&) {
        return false;
    }
}

// The names in the order of the networks, without duplicates.
std::vector<std::string> NamesToOffer(const NetworkSource& seenByPrinter,
                                      const std::string& leftOut) {
    std::vector<std::string> names;
    const auto add = [&](const std::string& name) {
        if (name != leftOut && CheckNetworkName(name).empty() &&
            std::find(names.begin(), names.end(), name) == names.end()) {
            names.push_back(name);
        }
    };
    for (const Network& network : seenByPrinter()) {
        add(network.name);
    }
    if (names.empty()) {
        const HostNetworks host = NetworksToOffer();
        for (const HostNetwork& network : host.networks) {
            add(network.name);
        }
        if (host.networks.empty() && host.problem.kind != PRINTER_WIFI_DONE) {
            Warn("could not look for networks: " + host.problem.reason + ".");
        }
    }
    return names;
}

void WriteList(const std::vector<std::string>& names) {
    Table table{{{"", Column::Number}, {"NETWORK", Column::Yielding}}, {}};
    for (std::size_t index = 0; index < names.size(); ++index) {
        table.rows.push_back({std::to_string(index + 1), Base::DisplayText(names[index])});
    }
    std::string text;
    const std::size_t columns = OutputScreen().value_or(ScreenSize{80, 24}).columns;
    for (const std::string& line : TableLines(table, columns, Overflow::Wrap)) {
        text += line + "\n";
    }
    WritePrompt(text);
}

// The name with the number in `answer`, counted from 1; null when there is none.
const std::string* Numbered(const std::vector<std::string>& names, const std::string& answer) {
    std::size_t number = 0;
    const char* const end = answer.data() + answer.size();
    const auto read = std::from_chars(answer.data(), end, number);
    const bool isNumber = read.ec == std::errc() && read.ptr == end;
    return isNumber && number >= 1 && number <= names.size() ? &names[number - 1] : nullptr;
}

// Returns nothing when the user wants a new list.
std::optional<std::string> Pick(const std::vector<std::string>& names) {
    const std::string question = names.empty()
                                     ? "No network was found. Type a name, or Enter to look again: "
                                     : "Number or name, or Enter to look again: ";
    for (;;) {
        const std::optional<std::string> answer = AskLine(question);
        if (!answer) {
            return "";
        }
        if (answer->empty()) {
            return std::nullopt;
        }
        if (const std::string* const name = Numbered(names, *answer)) {
            return *name;
        }
        const bool isListed = std::find(names.begin(), names.end(), *answer) != names.end();
        const bool isNumber = answer->find_first_not_of("0123456789") == std::string::npos;
        const std::string problem =
            isNumber && !isListed ? "there is no number " + *answer : CheckNetworkName(*answer);
        if (problem.empty()) {
            return *answer;
        }
        Complain(problem + ".");
    }
}

}  // namespace

std::string ChooseNetwork(const NetworkSource& seenByPrinter, const std::string& leftOut) {
    for (;;) {
        const std::vector<std::string> names = NamesToOffer(seenByPrinter, leftOut);
        if (!names.empty()) {
            WriteList(names);
        }
        if (const std::optional<std::string> picked = Pick(names)) {
            return *picked;
        }
    }
}

std::vector<Network> SeenFromAccessPoint(std::chrono::duration<double> time) {
    NetworkList& list = NetworkList::GetInstance();
    std::optional<NetworkScanSession> session;
    if (!Start(session)) {
        return {};
    }
    StatusLine status("");
    const auto end = Clock::now() + std::chrono::duration_cast<Clock::duration>(time);
    constexpr auto tick = std::chrono::milliseconds(200);
    while (Clock::now() < end && !session->HasEnded()) {
        list.WaitForNews(std::min(end, Clock::now() + tick));
        Cancellation::GetInstance().Check();
        status.Draw(ScanStatus<Network>(list.GetItems().size(), false, end));
    }
    session->Stop();
    return list.GetItems();
}

}  // namespace App

// SPDX-License-Identifier: Apache-2.0

#include "app/commands/usb_command.h"

#include <memory>
#include <string>

#include "app/commands/common_options.h"
#include "app/dialogue/pass_phrase.h"
#include "app/library/usb/usb_device.h"
#include "app/library/usb/usb_watch_session.h"
#include "app/output/answer.h"
#include "app/output/item_output.h"
#include "app/output/json_output.h"
#include "app/program/messages.h"
#include "app/program/settings.h"
#include "base/text/display_text.h"

namespace App {

namespace {

struct UsbNetworksOptions {
    std::string serialNumber;  // empty: the only one that is plugged in
    int option = 0;            // for the printer's vendor
};

struct UsbConfigureOptions {
    std::string serialNumber;  // empty: the only one that is plugged in
    std::string network;
    PassPhraseOptions passPhrase;
};

// Runs `work` on the printer if it is plugged in.
template <class Work>
ExitStatus WithPrinter(const std::string& serialNumber, Work work) {
    try {
        return work(FindPluggedIn(serialNumber));
    } catch (const NoUsbPrinter& none) {
        Complain(none.what());
        return kNoneFound;
    }
}

ExitStatus ShowNetworksOf(const UsbPrinter& printer, int option) {
    const NetworksAnswer answer = NetworksSeenBy(printer, option);
    if (answer.result != 0) {
        return FailedSeeLog("no networks: " +
                            UsbExplanation(printer, answer.result, "USBWifiScan"));
    }
    if (answer.networks.empty()) {
        return FailedSeeLog(
            "the printer reports no network.\nYou can still name one: `devicediscover usb "
            "configure "
            "--network NAME`." +
            AboutNoNetworks(printer));
    }
    WriteItems(answer.networks, NetworkJson);
    return kFound;
}

ExitStatus ConfigureOverUsb(const UsbPrinter& printer, const UsbConfigureOptions& options) {
    const std::string& network = options.network;
    const std::shared_ptr<Base::Secret> passPhrase = GetPassPhrase(options.passPhrase, network);
    RequirePrinterPassPhrase(*passPhrase);
    const int result = ConfigureNetwork(printer, network, passPhrase);
    if (WritesJson()) {
        WriteAnswer(UsbConfigureJson(printer, network, result) + "\n");
    } else if (result == 0) {
        WriteAnswer("the printer was put on " + Base::DisplayText(network) + "\n");
    }
    return result == 0 ? kFound
                       : FailedSeeLog("the printer was not put on " + network + ": " +
                                      UsbExplanation(printer, result, "PrinterUSBNetConfigEvent"));
}

// Says that printers already plugged in are not reported, so that the user does not wait for them.
void WarnAboutPluggedIn(std::size_t count) {
    if (count > 0) {
        Complain(CountOf<Printer>(count) + (count == 1 ? " is" : " are") +
                 " plugged in already, and not shown; `devicediscover usb ports` shows " +
                 (count == 1 ? "it." : "them."));
    }
}

// Throws Problem when the watch has reported nothing, and a vendor's answer is still awaited: the
// user who ends it knows that.
void RequireAnswers(const UsbWatchSession& session) {
    const std::vector<std::string> unanswered = session.Unanswered(true);
    if (!unanswered.empty() && !ArrivalList::GetInstance().IsCancelled()) {
        throw Problem("it is not known which printers were plugged in" + Lines(unanswered) +
                      "\nTry again, watch longer, or wait longer with --vendor-seconds N; a vendor "
                      "that never answers needs another module.");
    }
    WarnOfAll(session.Unanswered(false));
}

ExitStatus ShowInstalled() {
    const std::vector<InstalledPrinter> printers = InstalledPrinters();
    if (printers.empty()) {
        return FailedSeeLog(
            "no USB printer is installed on this computer.\n"
            "`devicediscover usb ports` shows those that are plugged in.");
    }
    WriteItems(printers, InstalledPrinterJson);
    return kFound;
}

ExitStatus ShowPluggedIn() {
    const PluggedPrinters plugged = PrintersPluggedIn();
    if (plugged.printers.empty()) {
        Complain(NoneIsPluggedIn(plugged));
        return kNoneFound;
    }
    WriteItems(plugged.printers, UsbPrinterJson);
    WarnOfAll(plugged.problems);
    return kFound;
}

ExitStatus WatchUsb(const ScanOptions& options) {
    UsbWatchSession session;
    WarnAboutPluggedIn(CountPluggedIn(session.ThereBefore()));
    const auto view = ViewFor<Arrival>(ArrivalJson);
    const bool isAnyReported = RunScan(session, *view, options);
    WarnOfAll(session.Unreported());
    if (isAnyReported) {
        WarnOfAll(session.Unanswered(false));
        return kFound;
    }
    RequireAnswers(session);
    return FailedSeeLog(
        "no printer was plugged in that a vendor reports.\n`devicediscover usb ports` shows those "
        "that were there already.");
}

ExitStatus ShowNetworksSeen(const UsbNetworksOptions& options) {
    return WithPrinter(options.serialNumber, [&](const UsbPrinter& printer) {
        return ShowNetworksOf(printer, options.option);
    });
}

ExitStatus ConfigureUsbPrinter(const UsbConfigureOptions& options) {
    options.passPhrase.Require();
    return WithPrinter(options.serialNumber, [&](const UsbPrinter& printer) {
        return ConfigureOverUsb(printer, options);
    });
}

void AddUsbSerialNumber(Command& command, std::string& serialNumber) {
    command.AddText("SERIAL", "", serialNumber,
                    "The printer's serial number, or its place on USB; not needed if only one "
                    "printer is plugged in",
                    [](const std::string& text) {
                        return text.empty()
                                   ? "the serial number is empty; leave it out for the only printer"
                                   : "";
                    });
}

Command UsbListCommand() {
    return {.name = "list",
            .summary = "Show the USB printers that are installed on this computer.",
            .examples = {{"usb list"}, {"usb list --json | jq 'select(.onNetwork == false)'"}},
            .details =
                R"(Shows the installed USB printers, plugged in or not: serial number, model, and
whether the printer is installed over the network, too:
  yes  an installed network printer has the same serial number
  no   no installed network printer is known to have that serial number
  -    the USB printer's own serial number is not known (in JSON: null)
Most print spoolers do not know the serial numbers of network printers; the
spooler of Windows never does. When the output is not a terminal, columns are
separated by tabs.)",
            .exitTexts = ExitTexts("at least one is installed", "none is installed",
                                   "could not run; the print spooler does not answer"),
            .run = ShowInstalled};
}

Command UsbPortsCommand() {
    return {.name = "ports",
            .summary = "Show the printers that are plugged in.",
            .examples = {{"usb ports"}, {"usb ports --json | jq -r .serialNumber"}},
            .details =
                R"(Shows serial number, make and model, place on USB, and vendor, as the printer's
vendor reports them. A printer without a serial number may have its place
instead, such as usb:1-4, also in JSON; the place changes when the printer is
plugged in elsewhere.

A warning names each printer that no vendor reports, with the USB identifier to
put into the vendor list.)",
            .exitTexts = ExitTexts("at least one is plugged in",
                                   "no vendor reports a printer that is plugged in",
                                   "could not run; the system cannot say what is plugged in"),
            .run = ShowPluggedIn};
}

Command UsbWatchCommand() {
    const auto options = std::make_shared<ScanOptions>(ScanOptions{Seconds(0), true});
    Command command{
        .name = "watch",
        .summary = "Show printers as they are plugged in from now on.",
        .examples = {{"usb watch", "until Ctrl-C"},
                     {"usb watch --seconds 60"},
                     {"usb watch --json | jq -r .serialNumber"}},
        .details =
            R"(Shows each printer about a second after it is plugged in: time (in JSON: UTC),
serial number, make and model, place on USB, and vendor. When a printer is
plugged in again it is shown again, and so are the others of its model. Printers
that were plugged in before are only counted, on standard error.

Warnings at the end name the models that no vendor reports, and the vendors that
have not answered within --vendor-seconds. If the system's device service says
nothing, the kernel's own events are used, and a warning says so.)",
        .exitTexts = ExitTexts("a printer was plugged in", "none was plugged in",
                               "could not watch; or nothing was reported, and a vendor has not "
                               "answered"),
        .run = [options] { return WatchUsb(*options); }};
    command
        .AddSeconds(
            "--seconds",
            [options](Seconds time) {
                *options = {time, false};
            },
            "How long to watch")
        .standard = "until Ctrl-C";
    return command;
}

Command UsbNetworksCommand() {
    const auto options = std::make_shared<UsbNetworksOptions>();
    Command command{
        .name = "networks",
        .summary = "Show the networks that a printer on USB can be put on.",
        .examples = {{"usb networks", "the only printer that is plugged in"},
                     {"usb networks CN12345678"},
                     {"usb networks usb:1-4", "the printer at that place"},
                     {"usb networks --json | jq -r .network"}},
        .details =
            R"(Shows name and signal. Each vendor measures the signal in its own way; some
vendors report the networks in range of this computer. `devicediscover usb ports`
shows serial numbers and places. When the output is not a terminal, columns are
separated by tabs.)",
        .exitTexts = ExitTexts("at least one network", "no network, or no such printer"),
        .run = [options] { return ShowNetworksSeen(*options); }};
    AddUsbSerialNumber(command, options->serialNumber);
    command.AddWholeNumber("--option", options->option,
                           "A whole number for the printer's vendor, which decides what it means");
    return command;
}

Command UsbConfigureCommand() {
    const auto options = std::make_shared<UsbConfigureOptions>();
    Command command{
        .name = "configure",
        .summary = "Put a printer on USB on a network.",
        .examples = {{"usb configure CN12345678 --network Office"},
                     {"usb configure --network Office --pass-phrase-file office.txt"},
                     {"usb configure usb:1-4 --network Guests --open"}},
        .details =
            std::string(
                R"(`devicediscover usb ports` shows serial numbers and places. `devicediscover setup
--usb` also finds the printer on the network afterwards.)") +
            kPassPhraseDetails,
        .exitTexts = ExitTexts("the printer was put on the network",
                               "it was not, or there is no such printer"),
        .run = [options] { return ConfigureUsbPrinter(*options); }};
    AddUsbSerialNumber(command, options->serialNumber);
    AddNetwork(command, options->network);
    AddPassPhrase(command, options->passPhrase);
    return command;
}

}  // namespace

Command UsbCommand() {
    return {.name = "usb",
            .summary = "Printers on USB.",
            .examples = {{"usb list", "which of them is not on the network?"},
                         {"usb ports", "what is plugged in?"},
                         {"usb watch", "what is plugged in from now on?"},
                         {"usb networks CN12345678", "which networks does that printer see?"},
                         {"usb configure CN12345678 --network Office"}},
            .details =
                R"(`devicediscover setup --usb` puts a printer on a network and finds it there.)",
            .exitTexts = ExitTexts("found or done", "not found or not done"),
            .commands = {UsbListCommand(), UsbPortsCommand(), UsbWatchCommand(),
                         UsbNetworksCommand(), UsbConfigureCommand()}};
}

}  // namespace App

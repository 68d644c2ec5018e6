// SPDX-License-Identifier: Apache-2.0

#include "app/commands/usb_command.h"

#include "app/library/usb/usb_device.h"
#include "app/library/usb/usb_watch_session.h"
#include "app/output/item_output.h"
#include "app/output/json_output.h"
#include "app/program/messages.h"
#include "app/terminal/console.h"
#include "app/terminal/text.h"

namespace App {

namespace {

ExitStatus Failed(const std::string& what) {
    Complain(what + "\n" + AdviceToReadLog());
    return kNoneFound;
}

// Runs `work` on the printer if it is plugged in.
template <class Work>
ExitStatus With(const Settings& settings, const std::string& serialNumber, Work work) {
    try {
        return work(FindPluggedIn(settings, serialNumber));
    } catch (const NoUsbPrinter& none) {
        Complain(none.reason);
        return kNoneFound;
    }
}

ExitStatus ShowNetworks(const Settings& settings, const UsbPrinter& printer, int option) {
    const NetworksAnswer answer = NetworksSeenBy(settings, printer, option);
    if (answer.result != 0) {
        return Failed("no networks: " + UsbExplanation(printer, answer.result, "USBWifiScan"));
    }
    if (answer.networks.empty()) {
        return Failed(
            "the printer reports no network.\nName one all the same: `devicediscover usb configure "
            "--network NAME`." +
            AboutNoNetworks(printer));
    }
    WriteItems(settings, answer.networks, NetworkJson);
    return kFound;
}

ExitStatus Configure(const Settings& settings, const UsbPrinter& printer,
                     const UsbConfigureOptions& options) {
    const std::string& network = options.network;
    const std::shared_ptr<Base::Secret> passPhrase =
        GetPassPhrase(settings, options.passPhrase, network);
    RequirePrinterPassPhrase(*passPhrase);
    const int result = ConfigureNetwork(settings, printer, network, passPhrase);
    if (settings.json) {
        WriteOutput(UsbConfigureJson(printer, network, result) + "\n");
    } else if (result == 0) {
        WriteOutput("the printer was put on " + DisplayText(network) + "\n");
    }
    return result == 0 ? kFound
                       : Failed("the printer was not put on " + network + ": " +
                                UsbExplanation(printer, result, "PrinterUSBNetConfigEvent"));
}

// Says that printers already plugged in are not reported, so that the user does not wait for them.
void TellWhatIsThere(std::size_t count) {
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

}  // namespace

ExitStatus UsbList(const Settings& settings) {
    const std::vector<InstalledPrinter> printers = InstalledPrinters(settings);
    if (printers.empty()) {
        return Failed(
            "no USB printer is installed on this computer.\n"
            "`devicediscover usb ports` shows those that are plugged in.");
    }
    WriteItems(settings, printers, InstalledPrinterJson);
    return kFound;
}

ExitStatus UsbPorts(const Settings& settings) {
    const PluggedPrinters plugged = PrintersPluggedIn(settings);
    if (plugged.printers.empty()) {
        Complain(NoneIsPluggedIn(plugged));
        return kNoneFound;
    }
    WriteItems(settings, plugged.printers, UsbPrinterJson);
    WarnOfAll(plugged.problems);
    return kFound;
}

ExitStatus UsbWatch(const Settings& settings, const ScanOptions& options) {
    UsbWatchSession session(settings);
    TellWhatIsThere(CountPluggedIn(session.ThereBefore()));
    const auto view = ViewFor<Arrival>(settings, ArrivalJson);
    const bool isAnyReported = RunScan(session, *view, options);
    WarnOfAll(session.Unreported());
    if (isAnyReported) {
        WarnOfAll(session.Unanswered(false));
        return kFound;
    }
    RequireAnswers(session);
    return Failed(
        "no printer was plugged in that a vendor reports.\n`devicediscover usb ports` shows those "
        "that were there already.");
}

ExitStatus UsbNetworks(const Settings& settings, const UsbNetworksOptions& options) {
    return With(settings, options.serialNumber, [&](const UsbPrinter& printer) {
        return ShowNetworks(settings, printer, options.option);
    });
}

ExitStatus UsbConfigure(const Settings& settings, const UsbConfigureOptions& options) {
    options.passPhrase.Require(settings);
    return With(settings, options.serialNumber,
                [&](const UsbPrinter& printer) { return Configure(settings, printer, options); });
}

}  // namespace App

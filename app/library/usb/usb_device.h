#pragma once

#include <memory>
#include <string>
#include <vector>

#include "app/items/network.h"
#include "app/items/usb_printer.h"
#include "app/library/usb/usb_vendors.h"
#include "app/program/settings.h"
#include "base/secret.h"

namespace App {

// The USB printers that are installed on the host. Throws Problem when the print spooler does not
// say. This and the others may take a while, and throw Interrupted.
std::vector<InstalledPrinter> InstalledPrinters(const Settings& settings);

// What is plugged in, whether or not a vendor reports it, and how many printers that are. Throws
// Problem when the system cannot say.
UsbPortMap PortsPluggedIn(const Settings& settings);
std::size_t CountPluggedIn(const UsbPortMap& ports);

// The same when the program is about to end; nothing when the system does not say soon.
UsbPortMap PortsPluggedInAtLast();

// The printers that are plugged in.
struct PluggedPrinters {
    std::vector<UsbPrinter> printers;  // as their vendors report them
    std::vector<std::string>
        problems;  // a line for each port whose printers are not all among them
};

// Throws Problem when no printer on USB could be reached at all.
PluggedPrinters PrintersPluggedIn(const Settings& settings);

// Says why no printer is shown, and what to do.
std::string NoneIsPluggedIn(const PluggedPrinters& plugged);

// Why a printer cannot be talked to, and what to do.
struct NoUsbPrinter {
    std::string reason;
};

// The printer with that serial number or at that place, as it is or as a table shows it; where the
// name is empty, the only one that is plugged in. Throws NoUsbPrinter, WrongInput when that may be
// one or the other, and as PrintersPluggedIn.
UsbPrinter FindPluggedIn(const Settings& settings, const std::string& name);

// The networks that the printer sees. `option` goes to its vendor as it stands.
struct NetworksAnswer {
    int result;  // 0: success
    std::vector<Network> networks;
};
NetworksAnswer NetworksSeenBy(const Settings& settings, const UsbPrinter& printer, int option);

// Puts the printer on a network; 0: success.
int ConfigureNetwork(const Settings& settings, const UsbPrinter& printer,
                     const std::string& network, const std::shared_ptr<Base::Secret>& passPhrase);

// What more there is to know about a printer that reports no network; mostly nothing.
std::string AboutNoNetworks(const UsbPrinter& printer);

// What it means that the entry point's result was not 0, and how to go on where that is known.
// Throws Problem when no vendor could have been asked at all.
std::string UsbExplanation(const UsbPrinter& printer, int result, const std::string& entryPoint);

}  // namespace App

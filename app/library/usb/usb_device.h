// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <string>
#include <vector>

#include "app/items/network.h"
#include "app/items/usb_printer.h"
#include "app/library/usb/usb_vendors.h"
#include "app/outcome/ending.h"
#include "base/secret.h"

namespace App {

// Lists the USB printers that are installed on the host. Throws Problem when the print spooler does
// not answer. Like the other operations, may take a while and throws Interrupted.
std::vector<InstalledPrinter> InstalledPrinters();

// Lists and counts the plugged-in printers, whether or not a vendor reports them. Throws Problem
// when the system cannot list them.
UsbPortMap PortsPluggedIn();
std::size_t CountPluggedIn(const UsbPortMap& ports);

// The same when the program is about to end; empty when the system does not answer soon.
UsbPortMap PortsPluggedInAtLast();

// The printers that are plugged in.
struct PluggedPrinters {
    std::vector<UsbPrinter> printers;   // as their vendors report them
    std::vector<std::string> problems;  // a line for each port with unreported printers
};

// Throws Problem when no vendor can serve printers on USB at all.
PluggedPrinters PrintersPluggedIn();

// Explains why no printer is shown, and what to do.
std::string NoneIsPluggedIn(const PluggedPrinters& plugged);

// Why a printer cannot be used, and what to do.
class NoUsbPrinter : public Ending {
public:
    using Ending::Ending;
};

// Finds the printer whose serial number or place is `name`, in its own form or as a table shows it;
// if `name` is empty, the only plugged-in printer. Throws NoUsbPrinter if there is none, WrongInput
// if several match, and whatever PrintersPluggedIn throws.
UsbPrinter FindPluggedIn(const std::string& name);

// The networks that the printer sees. `option` goes to its vendor unchanged.
struct NetworksAnswer {
    int result;  // 0: success
    std::vector<Network> networks;
};
NetworksAnswer NetworksSeenBy(const UsbPrinter& printer, int option);

// Puts the printer on a network; 0: success.
int ConfigureNetwork(const UsbPrinter& printer, const std::string& network,
                     const std::shared_ptr<Base::Secret>& passPhrase);

// Further advice about a printer that reports no network; usually empty.
std::string AboutNoNetworks(const UsbPrinter& printer);

// Explains a result other than 0 of the entry point, with advice if there is any. Throws Problem
// when no vendor could be called at all.
std::string UsbExplanation(const UsbPrinter& printer, int result, const std::string& entryPoint);

}  // namespace App

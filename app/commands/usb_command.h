// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

#include "app/dialogue/pass_phrase.h"
#include "app/outcome/exit_status.h"
#include "app/output/scan_run.h"
#include "app/program/settings.h"

namespace App {

// Lists the USB printers that are installed on the host, and whether each is on the network;
// kNoneFound when there are none.
ExitStatus UsbList(const Settings& settings);

// Lists the printers that are plugged in; kNoneFound when there are none.
ExitStatus UsbPorts(const Settings& settings);

// Shows printers as they are plugged in; kNoneFound when there were none.
ExitStatus UsbWatch(const Settings& settings, const ScanOptions& options);

struct UsbNetworksOptions {
    std::string serialNumber;  // empty: the only one that is plugged in
    int option = 0;            // for the printer's vendor
};

// Lists the networks that the printer sees; kNoneFound when there are none, or no such printer.
ExitStatus UsbNetworks(const Settings& settings, const UsbNetworksOptions& options);

struct UsbConfigureOptions {
    std::string serialNumber;  // empty: the only one that is plugged in
    std::string network;
    PassPhraseOptions passPhrase;
};

// Puts the printer on a network; kNoneFound when that fails.
ExitStatus UsbConfigure(const Settings& settings, const UsbConfigureOptions& options);

}  // namespace App

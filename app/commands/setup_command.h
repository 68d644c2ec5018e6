// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <chrono>
#include <string>

#include "app/dialogue/pass_phrase.h"
#include "app/outcome/exit_status.h"
#include "app/program/settings.h"

namespace App {

struct SetupOptions {
    bool usb = false;             // over USB, not through the printer's access point
    std::string usbSerialNumber;  // empty: the only printer that is plugged in
    std::string network;          // empty: the user picks from a list
    PassPhraseOptions passPhrase;
    bool noRejoin = false;                      // the host does not join the network
    std::chrono::duration<double> listTime{5};  // how long to look for networks to offer
    std::chrono::duration<double> timeout{60};  // how long to look for the printer afterwards
};

// Puts a new printer on a network and finds it there. After a set-up through the printer's access
// point, the host joins the network, too. kFound when all steps succeeded, kNoneFound when a step
// failed or was interrupted.
ExitStatus Setup(const Settings& settings, const SetupOptions& options);

}  // namespace App

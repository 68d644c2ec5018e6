#pragma once

#include <chrono>
#include <string>

#include "app/dialogue/pass_phrase.h"
#include "app/outcome/exit_status.h"
#include "app/program/settings.h"

namespace App {

struct SetupOptions {
    bool usb = false;  // a printer on USB, not one whose access point the host is joined to
    std::string usbSerialNumber;  // which one; empty: the only one that is plugged in
    std::string network;          // empty: picked from a list
    PassPhraseOptions passPhrase;
    bool noRejoin = false;                      // the host does not join that network
    std::chrono::duration<double> listTime{5};  // how long to look for networks to pick from
    std::chrono::duration<double> timeout{60};  // how long to look for the printer afterwards
};

// Puts a new printer on a network and finds it there. When it was reached through its own access
// point, the host is joined to the network on the way. kFound when all of that worked, kNoneFound
// when a step failed or was interrupted.
ExitStatus Setup(const Settings& settings, const SetupOptions& options);

}  // namespace App

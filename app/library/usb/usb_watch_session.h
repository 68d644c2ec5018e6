// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "app/items/usb_printer.h"
#include "app/library/usb/usb_vendors.h"
#include "app/running/running_work.h"

namespace App {

// Watches for printers being plugged in, from construction to Stop. Arrivals go to the process's
// ArrivalList.
class UsbWatchSession {
public:
    // Names on standard error each vendor that cannot take part. Throws Problem when none can, or
    // when USB cannot be watched, and Interrupted.
    UsbWatchSession();

    // The printers that were already plugged in, and are not reported.
    const UsbPortMap& ThereBefore() const { return before; }

    // What is wrong with the watch itself, when it begins, and with what is asked.
    std::vector<std::string> TakeRemarks();

    // See RunningWork::Stop. After it no printer is reported.
    void Stop(const std::function<void()>& onWait = [] {}) { watch->Stop(onWait); }

    // Once it has stopped: a line for each model that came, is there now and was not reported, and
    // for what no vendor has answered; the latter with what was remarked only on request.
    std::vector<std::string> Unreported() const;
    std::vector<std::string> Unanswered(bool alsoRemarked) const;

private:
    UsbPortMap before;
    std::optional<RunningWork> watch;
    std::string trouble;  // as last reported
};

}  // namespace App

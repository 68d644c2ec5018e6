// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

#include "app/dialogue/pass_phrase.h"
#include "app/outcome/exit_status.h"
#include "app/output/scan_run.h"
#include "app/program/settings.h"

namespace App {

// The commands for a printer's own access point. All except AccessPointCheck need the host to be
// joined to one, and return kNoneFound when it is not.

// Shows the networks that the printer can be put on, as they are found; kNoneFound when there are
// none.
ExitStatus AccessPointScan(const Settings& settings, const ScanOptions& options);

// Puts the printer on a network; kNoneFound when that fails.
ExitStatus AccessPointConfigure(const Settings& settings, const std::string& network,
                                const PassPhraseOptions& passPhrase);

ExitStatus AccessPointInfo(const Settings& settings);

struct CheckOptions {
    std::string serialNumber;  // empty: the printer whose access point the host is joined to
    std::string vendor;        // empty: all, one after the other
};

// Tells whether the printer is on the local network; kNoneFound when it is not.
ExitStatus AccessPointCheck(const Settings& settings, const CheckOptions& options);

}  // namespace App

// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <chrono>
#include <string>

#include "app/outcome/exit_status.h"
#include "app/program/settings.h"

namespace App {

struct StateOptions {
    std::string serialNumber;
    std::string address;                    // chooses among printers with this number; empty: any
    std::chrono::duration<double> time{5};  // how long to look for the printer
};

// Looks for the printer with the serial number and asks its vendor whether the printer accepts
// jobs. kFound when it was found, in any state; kNoneFound also when several were found.
ExitStatus State(const Settings& settings, const StateOptions& options);

}  // namespace App

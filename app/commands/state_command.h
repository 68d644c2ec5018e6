#pragma once

#include <chrono>
#include <string>

#include "app/outcome/exit_status.h"
#include "app/program/settings.h"

namespace App {

struct StateOptions {
    std::string serialNumber;
    std::string address;                    // of the printer, where several share it; empty: any
    std::chrono::duration<double> time{5};  // how long to look for the printer
};

// Looks for the printer with that serial number and asks its vendor whether it would take a job.
// kFound when it was found, whatever its state; kNoneFound also when several were.
ExitStatus State(const Settings& settings, const StateOptions& options);

}  // namespace App

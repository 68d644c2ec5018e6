#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include "app/items/printer.h"
#include "app/program/settings.h"
#include "base/secret.h"

namespace App {

// Why a step failed, and how to go on.
struct StepFailed {
    std::string problem;
    std::optional<int> result;
};

// How a journey reaches the printer before it is on the network. All may throw StepFailed, Problem
// and Interrupted.
class SetupRoute {
public:
    virtual ~SetupRoute() = default;

    // The printer, to be called before the others.
    virtual Printer FindPrinter() = 0;

    // The network that the user picks; an empty one when none was picked.
    virtual std::string PickNetwork() = 0;

    // Puts the printer on the network; 0: success.
    virtual int Configure(const std::string& network,
                          const std::shared_ptr<Base::Secret>& passPhrase) = 0;

    // Why that result was not 0, and what to do before the next attempt.
    struct Failure {
        std::string why;
        std::string advice;
    };
    virtual Failure ExplainConfigure(int result) = 0;

    // Whether the host has left its own network to reach the printer.
    virtual bool LeavesNetwork() const = 0;
};

// Through the printer's own access point, which the host is joined to. `listTime` is how long to
// look for networks.
std::unique_ptr<SetupRoute> AccessPointRoute(const Settings& settings,
                                             std::chrono::duration<double> listTime);

// Through its USB cable. Without a serial number it is the only one that is plugged in.
std::unique_ptr<SetupRoute> UsbRoute(const Settings& settings, const std::string& serialNumber);

}  // namespace App

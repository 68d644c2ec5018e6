// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include "app/items/printer.h"
#include "app/outcome/ending.h"
#include "base/secret.h"

namespace App {

// Why a step failed, with advice.
class StepFailed : public Ending {
public:
    // `vendorsResult`: what the vendor returned, if the vendor was called.
    explicit StepFailed(const std::string& problem, std::optional<int> vendorsResult = std::nullopt)
        : Ending(problem), result(vendorsResult) {}

    const std::optional<int> result;
};

// The way to reach the printer before it is on the network. All operations may throw StepFailed,
// Problem and Interrupted.
class SetupRoute {
public:
    virtual ~SetupRoute() = default;

    // Finds the printer. Call this first.
    virtual Printer FindPrinter() = 0;

    // Asks the user to pick a network; empty if none was picked.
    virtual std::string PickNetwork() = 0;

    // Puts the printer on the network; 0: success.
    virtual int Configure(const std::string& network,
                          const std::shared_ptr<Base::Secret>& passPhrase) = 0;

    // The entry point of the vendor that Configure calls.
    virtual const char* ConfigureEntryPoint() const = 0;

    // Explains a result other than 0, and what to do before the next attempt.
    struct Failure {
        std::string why;
        std::string advice;
    };
    virtual Failure ExplainConfigure(int result) = 0;

    // Whether the host leaves its own network to reach the printer.
    virtual bool LeavesNetwork() const = 0;
};

// Through the printer's own access point, which the host is joined to. `listTime`: how long to look
// for networks.
std::unique_ptr<SetupRoute> AccessPointRoute(std::chrono::duration<double> listTime);

// Through USB. An empty serial number means the only plugged-in printer.
std::unique_ptr<SetupRoute> UsbRoute(const std::string& serialNumber);

}  // namespace App

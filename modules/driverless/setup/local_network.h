// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>

#include "VendorSdk/records.h"
#include "modules/driverless/printer/printer.h"

namespace Driverless {

// Looks for a printer on the local network during its own lifetime.
class Arrival {
public:
    explicit Arrival(const Printer& printer);
    ~Arrival();

    // Whether the printer has been announced and answers; waits for the answer. The caller must
    // know whether the answer comes through the printer's own network.
    bool HasCome();

    Arrival(const Arrival&) = delete;
    Arrival& operator=(const Arrival&) = delete;

private:
    class State;
    const std::unique_ptr<State> state;
};

// Asks whether the record's printer is announced on the local network and answers there. Returns
// IsLocalAreaNetworkOK's result.
int IsOnLocalNetwork(const VendorSdk::DeviceInfo& record);

}  // namespace Driverless

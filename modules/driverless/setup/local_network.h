#pragma once

#include <memory>

#include "VendorSdk/records.h"
#include "modules/driverless/printer/printer.h"

namespace Driverless {

// Looks on the local network for a printer, as long as it exists.
class Arrival {
public:
    explicit Arrival(const Printer& printer);
    ~Arrival();

    // Whether it was announced by now and answers, which is waited for. Where it answers through
    // its own network is for the caller to know.
    bool HasCome();

    Arrival(const Arrival&) = delete;
    Arrival& operator=(const Arrival&) = delete;

private:
    class State;
    const std::unique_ptr<State> state;
};

// Whether the record's printer is announced on the local network and answers there.
// IsLocalAreaNetworkOK's result.
int IsOnLocalNetwork(const VendorSdk::DeviceInfo& record);

}  // namespace Driverless

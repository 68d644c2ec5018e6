// SPDX-License-Identifier: Apache-2.0

#pragma once

// One scan for the Wi-Fi networks in range.

#include <memory>
#include <optional>

#include "VendorSdk/records.h"
#include "modules/driverless/common/report_gate.h"
#include "modules/driverless/common/scan.h"
#include "modules/driverless/setup/host_wifi.h"

namespace Driverless {

class NetworkScan : public Scan {
public:
    explicit NetworkScan(VendorSdk::WifiCallbackInfo* listener);
    ~NetworkScan() override;

    // Reports the networks that the host already knows, then scans repeatedly until it is stopped.
    // Ends if the first scan fails. Returns StartAPWifiScan's result.
    int Run() override;

    bool Stop(std::chrono::milliseconds patience) override;

    NetworkScan(const NetworkScan&) = delete;
    NetworkScan& operator=(const NetworkScan&) = delete;

private:
    class Inbox;

    std::optional<NetworksFound> TakeLook(Look look);
    void Report(const NetworkInRange& network);

    VendorSdk::WifiCallbackInfo* const info;
    const std::shared_ptr<Inbox> inbox;
    ReportGate gate;
};

}  // namespace Driverless

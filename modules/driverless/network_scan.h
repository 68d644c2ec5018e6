#pragma once

// One look at the Wi-Fi networks in range.

#include <memory>

#include "VendorSdk/records.h"
#include "host_wifi.h"
#include "report_gate.h"
#include "scan.h"

namespace Driverless {

class NetworkScan : public Scan {
public:
    explicit NetworkScan(VendorSdk::WifiCallbackInfo* listener);
    ~NetworkScan() override;

    // Looks again and again until it is stopped; StartAPWifiScan's result.
    int Run() override;

    bool Stop(std::chrono::milliseconds patience) override;

    NetworkScan(const NetworkScan&) = delete;
    NetworkScan& operator=(const NetworkScan&) = delete;

private:
    class Inbox;

    void Report(const NetworkInRange& network);

    VendorSdk::WifiCallbackInfo* const info;
    const std::shared_ptr<Inbox> inbox;
    ReportGate gate;
};

}  // namespace Driverless

// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/items/network.h"
#include "app/items/printer.h"
#include "app/library/vendor_scans.h"
#include "app/outcome/ending.h"
#include "app/outcome/problem.h"
#include "app/running/running_work.h"
#include "base/secret.h"

namespace App {

// A vendor's result, with the record.
struct DeviceAnswer {
    int result;
    PrinterDeviceDiscoverSdk::DeviceInfo device;
};

// Operations on the printer whose access point the host is joined to. Each calls the printer's
// vendor, may take a while, and throws Interrupted.
DeviceAnswer AskForDevice();
int ConfigureNetwork(const std::string& network, const std::shared_ptr<Base::Secret>& passPhrase);

// Asks the vendor whether the printer is on the local network: 0 means yes.
int CheckLocalNetwork(const PrinterDeviceDiscoverSdk::DeviceInfo& device);

// No vendor has the entry point.
class NoVendor : public Problem {
public:
    using Problem::Problem;
};

// Explains a result other than 0 of the entry point, with advice if there is any. `vendor` returned
// the result; empty: any vendor. Throws NoVendor when no vendor has the entry point, and Problem
// when it is not known which network the host is joined to.
std::string Explanation(int result, const std::string& entryPoint, const std::string& vendor = {});

// A Wi-Fi scan by the vendor of that printer, from construction to Stop. Networks go to the
// process's NetworkList.
class NetworkScanSession {
public:
    // Throws NoScan when no scan could be started, NoVendor when no vendor can scan, and
    // Interrupted; a scan that starts after that runs until the process ends.
    NetworkScanSession();

    // See RunningWork::Stop.
    void Stop(const std::function<void()>& onWait = [] {});

    // Whether the vendor's scan has failed.
    bool HasEnded();

    // The reasons.
    const std::vector<std::string>& Failures() const { return scans.Failures(); }

private:
    VendorScans scans{VendorScans::kForNetworks};
    std::optional<RunningWork> scan;
};

// Why a scan was not started although a vendor has the entry point.
class NoScan : public Ending {
public:
    using Ending::Ending;
};

}  // namespace App

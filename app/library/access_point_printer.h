#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/items/network_list.h"
#include "app/items/printer.h"
#include "app/library/vendor_scans.h"
#include "app/outcome/problem.h"
#include "app/program/settings.h"
#include "app/running/running_work.h"
#include "base/secret.h"

namespace App {

// What a vendor answered, with what came with it.
struct DeviceAnswer {
    int result;
    PrinterDeviceDiscoverSdk::DeviceInfo device;
};

// The printer whose access point the host is joined to. Each asks its vendor, may take a while, and
// throws Interrupted.
DeviceAnswer AskForDevice(const Settings& settings);
int ConfigureNetwork(const Settings& settings, const std::string& network,
                     const std::shared_ptr<Base::Secret>& passPhrase);

// Asks the vendor whether the printer is on the local network: 0 is yes.
int CheckLocalNetwork(const Settings& settings, const PrinterDeviceDiscoverSdk::DeviceInfo& device);

// No vendor has the entry point.
class NoVendor : public Problem {
public:
    using Problem::Problem;
};

// What it means that the entry point's result was not 0, and how to go on where that is known.
// `vendor` is whose result it is; empty: any. Throws NoVendor when no vendor could have been asked
// at all, and Problem when it is not known which network the host is joined to.
std::string Explanation(const Settings& settings, int result, const std::string& entryPoint,
                        const std::string& vendor = {});

// "the vendor's result N", with the meaning where it is known.
std::string VendorsResult(int result, const std::string& vendor);

// Whether the vendor's result says how things are, and not only that it could not be found out.
bool IsAnswer(int result, const std::string& vendor);

// Whether it says of a printer that it took a network, and not whether it joined.
bool IsUnconfirmed(int result, const std::string& vendor);

// A Wi-Fi scan by the vendor of that printer, from construction to Stop. What is found goes to the
// process's NetworkList.
class NetworkScanSession {
public:
    // Throws NoScan when no scan could be started, NoVendor when no vendor has one, Interrupted:
    // then a scan that is started all the same runs until the process ends.
    explicit NetworkScanSession(const Settings& settings);

    // As that of RunningWork.
    void Stop(const std::function<void()>& onWait = [] {});

    // Whether nobody looks any more: the vendor's scan has failed.
    bool HasEnded();

    // Why not.
    const std::vector<std::string>& Failures() const { return scans.Failures(); }

private:
    VendorScans scans{VendorScans::kForNetworks};
    std::optional<RunningWork> scan;
};

// Why a scan was not started, though vendors could do it.
struct NoScan {
    std::string reason;
};

}  // namespace App

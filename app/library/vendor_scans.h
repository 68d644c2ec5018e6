// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "app/running/vendor_calls.h"

namespace App {

// Tracks the scans that were started in the vendors' modules, through the library's record of
// calls.
class VendorScans {
public:
    struct Kind {
        const char* entryPoint;  // runs as long as the scan
        const char* wanted;      // what the scan looks for: "printers"
    };
    static constexpr Kind kForPrinters{"StartDeviceScan", "printers"};
    static constexpr Kind kForNetworks{"StartAPWifiScan", "networks"};

    // `vendors`: the product ids of the vendors whose scan is started from now on; if empty, all
    // vendors whose scan begins.
    explicit VendorScans(const Kind& kind, std::vector<std::string> vendors = {});

    // Reads the calls again. Does nothing after Freeze: a stopped vendor may return any result.
    void Update();
    void Freeze() { frozen = true; }

    // Once they were told to stop: waits until all have returned, but for a moment only, and looks
    // for results that are known to mean that the vendor could not look.
    void AwaitReturns();

    // Whether each vendor's scan has failed, so that nobody looks any more.
    bool HasEnded() const { return !vendors.empty() && failures.size() == vendors.size(); }

    // One line for each vendor whose scan has failed, with its result, in the order of the
    // failures.
    const std::vector<std::string>& Failures() const { return failures; }

private:
    void AddThoseThatBegan();
    std::optional<VendorCall> LatestOf(const std::string& vendor) const;
    std::string FailureOf(const std::string& vendor) const;
    void AddFailure(const std::string& vendor, const std::string& failure);

    const Kind kind;
    const bool isGiven;  // whether the constructor got `vendors`
    std::vector<std::string> vendors;
    std::vector<std::string> failed;
    std::vector<std::string> failures;
    const std::uint64_t start;
    bool frozen = false;
};

}  // namespace App

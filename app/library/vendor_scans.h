#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "app/running/vendor_calls.h"

namespace App {

// What has become of the scans that were started in the vendors' modules, as the library saw it.
class VendorScans {
public:
    struct Kind {
        const char* entryPoint;  // that runs as long as the scan
        const char* wanted;      // what is looked for: "printers"
    };
    static constexpr Kind kForPrinters{"StartDeviceScan", "printers"};
    static constexpr Kind kForNetworks{"StartAPWifiScan", "networks"};

    // `vendors` are the product ids of those whose scan is started from now on; without them, all
    // whose scan is seen to begin.
    explicit VendorScans(const Kind& kind, std::vector<std::string> vendors = {});

    // Looks again. Until Freeze: a vendor that was told to stop may return anything.
    void Update();
    void Freeze() { frozen = true; }

    // Once they were told to stop: waits until all have returned, but for a moment only, and looks
    // for results that are known to mean that the vendor could not look.
    void AwaitReturns();

    // Whether each vendor's scan has failed, so that nobody looks any more.
    bool HasEnded() const { return !vendors.empty() && failures.size() == vendors.size(); }

    // One line for each vendor whose scan has failed, with its result, in the order in which that
    // was seen.
    const std::vector<std::string>& Failures() const { return failures; }

private:
    void AddThoseThatBegan();
    std::optional<VendorCall> LatestOf(const std::string& vendor) const;
    std::string FailureOf(const std::string& vendor) const;
    void AddFailure(const std::string& vendor, const std::string& failure);

    const Kind kind;
    const bool isGiven;  // who the vendors are
    std::vector<std::string> vendors;
    std::vector<std::string> failed;
    std::vector<std::string> failures;
    const std::uint64_t start;
    bool frozen = false;
};

}  // namespace App

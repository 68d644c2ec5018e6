#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace App {

// What has become of the scans that were started in the vendors' modules, as the library saw it.
class VendorScans {
public:
    // `vendors` are the product ids of those whose scan is started from now on.
    explicit VendorScans(std::vector<std::string> vendors);

    // Looks again. Until Freeze: a vendor that was told to stop may return anything.
    void Update();
    void Freeze() { frozen = true; }

    // Whether each vendor's scan has failed, so that nobody looks any more.
    bool HasEnded() const { return !vendors.empty() && failures.size() == vendors.size(); }

    // One line for each vendor whose scan has failed, with its result, in the order in which that
    // was seen.
    const std::vector<std::string>& Failures() const { return failures; }

private:
    std::vector<std::string> vendors;
    std::vector<std::string> failed;
    std::vector<std::string> failures;
    const std::uint64_t start;
    bool frozen = false;
};

}  // namespace App

#include "app/vendor_scans.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "app/access_point_printer.h"
#include "app/vendor_calls.h"

namespace App {

namespace {

// The latest scan of that vendor that began after `since`.
std::optional<VendorCall> LatestScan(const std::string& vendor, std::uint64_t since) {
    std::optional<VendorCall> latest;
    for (const VendorCall& call : VendorCalls()) {
        if (vendor == call.productId && std::string("StartDeviceScan") == call.entryPoint &&
            call.began >= since && (!latest || call.began > latest->began)) {
            latest = call;
        }
    }
    return latest;
}

// Why the vendor does not look; empty when it may. A scan that succeeds may return early and go on
// on threads of its own.
std::string FailureOf(const std::string& vendor, const VendorCall& call) {
    if (call.state == VendorCallState::kLeftByException) {
        return "vendor " + vendor + " does not look for printers: its scan has thrown an exception";
    }
    const bool failed = call.state == VendorCallState::kReturned && call.result != 0;
    return failed ? "vendor " + vendor +
                        " does not look for printers: " + VendorsResult(call.result, vendor)
                  : "";
}

}  // namespace

VendorScans::VendorScans(std::vector<std::string> startedVendors)
    : vendors(std::move(startedVendors)), start(CallClockNow()) {}

void VendorScans::Update() {
    if (frozen) {
        return;
    }
    for (const std::string& vendor : vendors) {
        if (std::find(failed.begin(), failed.end(), vendor) != failed.end()) {
            continue;
        }
        const auto call = LatestScan(vendor, start);
        const std::string failure = call ? FailureOf(vendor, *call) : "";
        if (!failure.empty()) {
            failed.push_back(vendor);
            failures.push_back(failure);
        }
    }
}

}  // namespace App

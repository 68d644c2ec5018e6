#include "app/vendor_scans.h"

#include <algorithm>
#include <chrono>
#include <optional>
#include <utility>

#include "DeviceDiscover/vendor_activity.h"
#include "app/access_point_printer.h"

namespace App {

namespace {

using PrinterDeviceDiscoverSdk::VendorCall;
using PrinterDeviceDiscoverSdk::VendorCallState;

std::uint64_t Now() {
    const std::chrono::nanoseconds time = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<std::uint64_t>(time.count());
}

// The latest scan of that vendor that began after `since`.
std::optional<VendorCall> LatestScan(const std::string& vendor, std::uint64_t since) {
    std::optional<VendorCall> latest;
    for (std::size_t row = 0; row < PrinterDeviceDiscoverSdk::VendorCallRows(); ++row) {
        VendorCall call{};
        if (PrinterDeviceDiscoverSdk::ReadVendorCall(row, call) && vendor == call.productId &&
            std::string("StartDeviceScan") == call.entryPoint && call.began >= since &&
            (!latest || call.began > latest->began)) {
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
    : vendors(std::move(startedVendors)), start(Now()) {}

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

#include "app/vendor_scans.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "app/access_point_printer.h"
#include "app/vendor_calls.h"

namespace App {

namespace {

// The calls of that entry point that began after `since`, in the order of their rows.
std::vector<VendorCall> CallsOf(const char* entryPoint, std::uint64_t since) {
    std::vector<VendorCall> calls;
    for (const VendorCall& call : VendorCalls()) {
        if (std::string(entryPoint) == call.entryPoint && call.began >= since) {
            calls.push_back(call);
        }
    }
    return calls;
}

bool Holds(const std::vector<std::string>& texts, const std::string& text) {
    return std::find(texts.begin(), texts.end(), text) != texts.end();
}

}  // namespace

VendorScans::VendorScans(const Kind& whatKind, std::vector<std::string> startedVendors)
    : kind(whatKind),
      isGiven(!startedVendors.empty()),
      vendors(std::move(startedVendors)),
      start(CallClockNow()) {}

void VendorScans::AddThoseThatBegan() {
    for (const VendorCall& call : CallsOf(kind.entryPoint, start)) {
        if (!Holds(vendors, call.productId)) {
            vendors.emplace_back(call.productId);
        }
    }
}

// Why the vendor does not look, by its latest scan; empty when it may. A scan that succeeds may
// return early and go on on threads of its own.
std::string VendorScans::FailureOf(const std::string& vendor) const {
    std::optional<VendorCall> latest;
    for (const VendorCall& call : CallsOf(kind.entryPoint, start)) {
        if (vendor == call.productId && (!latest || call.began > latest->began)) {
            latest = call;
        }
    }
    const std::string text = "vendor " + vendor + " does not look for " + kind.wanted + ": ";
    if (latest && latest->state == VendorCallState::kLeftByException) {
        return text + "its scan has thrown an exception";
    }
    const bool hasReturned = latest && latest->state == VendorCallState::kReturned;
    return hasReturned && latest->result != 0 ? text + VendorsResult(latest->result, vendor) : "";
}

void VendorScans::Update() {
    if (frozen) {
        return;
    }
    if (!isGiven) {
        AddThoseThatBegan();
    }
    for (const std::string& vendor : vendors) {
        const std::string failure = Holds(failed, vendor) ? "" : FailureOf(vendor);
        if (!failure.empty()) {
            failed.push_back(vendor);
            failures.push_back(failure);
        }
    }
}

}  // namespace App

// SPDX-License-Identifier: Apache-2.0

#include "app/library/vendor_scans.h"

#include <algorithm>
#include <chrono>
#include <thread>
#include <utility>

#include "app/library/vendor_texts.h"

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
      start(VendorCallClock()) {}

void VendorScans::AddThoseThatBegan() {
    for (const VendorCall& call : CallsOf(kind.entryPoint, start)) {
        if (!Holds(vendors, call.productId)) {
            vendors.emplace_back(call.productId);
        }
    }
}

std::optional<VendorCall> VendorScans::LatestOf(const std::string& vendor) const {
    std::optional<VendorCall> latest;
    for (const VendorCall& call : CallsOf(kind.entryPoint, start)) {
        if (vendor == call.productId && (!latest || call.began > latest->began)) {
            latest = call;
        }
    }
    return latest;
}

// Why the vendor does not look, by its latest scan; empty when it may. A scan that succeeds may
// return early and go on on threads of its own.
std::string VendorScans::FailureOf(const std::string& vendor) const {
    const std::optional<VendorCall> latest = LatestOf(vendor);
    const std::string text = "vendor " + vendor + " does not look for " + kind.wanted + ": ";
    if (latest && latest->state == VendorCallState::kLeftByException) {
        return text + "its scan threw an exception or ended its thread";
    }
    const bool hasReturned = latest && latest->state == VendorCallState::kReturned;
    return hasReturned && latest->result != 0
               ? text + VendorsResult(latest->result, vendor, kind.entryPoint)
               : "";
}

void VendorScans::Update() {
    if (frozen) {
        return;
    }
    if (!isGiven) {
        AddThoseThatBegan();
    }
    for (const std::string& vendor : vendors) {
        AddFailure(vendor, FailureOf(vendor));
    }
}

void VendorScans::AddFailure(const std::string& vendor, const std::string& failure) {
    if (!failure.empty() && !Holds(failed, vendor)) {
        failed.push_back(vendor);
        failures.push_back(failure);
    }
}

void VendorScans::AwaitReturns() {
    constexpr auto kMoment = std::chrono::seconds(1);
    constexpr auto kTick = std::chrono::milliseconds(20);
    const auto isUnderWay = [this](const std::string& vendor) {
        const std::optional<VendorCall> latest = LatestOf(vendor);
        return latest && latest->state == VendorCallState::kUnderWay;
    };
    if (!isGiven) {
        AddThoseThatBegan();
    }
    const auto end = std::chrono::steady_clock::now() + kMoment;
    while (std::any_of(vendors.begin(), vendors.end(), isUnderWay) &&
           std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(kTick);
    }
    for (const std::string& vendor : vendors) {
        const std::optional<VendorCall> latest = LatestOf(vendor);
        if (latest && latest->state == VendorCallState::kReturned &&
            !IsAnswer(latest->result, vendor, kind.entryPoint)) {
            AddFailure(vendor, FailureOf(vendor));
        }
    }
}

}  // namespace App

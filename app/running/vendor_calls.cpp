// SPDX-License-Identifier: Apache-2.0

#include "app/running/vendor_calls.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>

namespace App {

namespace {

bool IsScan(const VendorCall& call) {
    const std::string_view name = call.entryPoint;
    return name == "StartDeviceScan" || name == "StartAPWifiScan";
}

}  // namespace

std::vector<VendorCall> VendorCalls() {
    std::vector<VendorCall> calls;
    VendorCall call;
    for (std::size_t row = 0; row < PrinterDeviceDiscoverSdk::VendorCallRows(); ++row) {
        if (PrinterDeviceDiscoverSdk::ReadVendorCall(row, call)) {
            calls.push_back(call);
        }
    }
    return calls;
}

std::vector<VendorCall> AwaitedCalls(std::uint64_t since) {
    std::vector<VendorCall> calls = VendorCalls();
    std::erase_if(calls, [since](const VendorCall& call) {
        return call.state != VendorCallState::kUnderWay || call.began < since || IsScan(call);
    });
    return calls;
}

bool AnyVendorIsCalled() {
    const std::vector<VendorCall> calls = VendorCalls();
    return std::any_of(calls.begin(), calls.end(), [](const VendorCall& call) {
        return call.state == VendorCallState::kUnderWay;
    });
}

std::string NamesOf(const std::vector<VendorCall>& calls) {
    std::vector<std::string> names;
    for (const VendorCall& call : calls) {
        const std::string name = fmt::format("vendor {} ({})", call.productId, call.entryPoint);
        if (std::find(names.begin(), names.end(), name) == names.end()) {
            names.push_back(name);
        }
    }
    std::string text;
    for (std::size_t at = 0; at < names.size(); ++at) {
        text += (at == 0 ? "" : at + 1 == names.size() ? " and " : ", ") + names[at];
    }
    return text;
}

}  // namespace App

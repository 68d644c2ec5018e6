// SPDX-License-Identifier: Apache-2.0

#include "broker/binding/call_row.h"

#include <algorithm>
#include <cstring>

#include "broker/binding/call_clock.h"
#include "broker/binding/current_thread.h"

namespace Broker {

namespace {

// The vendor's name, truncated to what the row keeps.
std::string_view Kept(std::string_view productId) {
    return productId.substr(0, sizeof(CallRow::Call::productId) - 1);
}

}  // namespace

bool CallRow::IsOf(std::string_view productId, const char* entryPoint) const {
    return exportName == entryPoint && std::string_view(vendor, vendorLength) == Kept(productId);
}

void CallRow::Own(std::string_view productId, const char* entryPoint) {
    vendorLength = Kept(productId).copy(vendor, sizeof vendor - 1);
    exportName = entryPoint;
}

bool CallRow::Take(std::string_view productId, const char* entryPoint) {
    std::uint64_t before = progress.load(std::memory_order_acquire);
    const Phase phase = static_cast<Phase>(before & kPhaseMask);
    if (phase == kBeginning || phase == kUnderWay ||
        (phase == kEnded && !IsOf(productId, entryPoint))) {
        return false;
    }
    const std::uint64_t call = (before >> kPhaseBits) + 1;
    if (!progress.compare_exchange_strong(before, call << kPhaseBits | kBeginning)) {
        return false;
    }
    if (phase == kNew) {
        Own(productId, entryPoint);
    }
    // Each store is a release: a reader that sees one of them sees that the call before is over.
    began.store(CallClock(), std::memory_order_release);
    thread.store(CurrentThread(), std::memory_order_release);
    progress.store(call << kPhaseBits | kUnderWay, std::memory_order_release);
    return true;
}

void CallRow::End(CallState state, int vendorsResult) {
    result.store(vendorsResult, std::memory_order_release);
    ending.store(state, std::memory_order_release);
    const std::uint64_t call = progress.load(std::memory_order_relaxed) >> kPhaseBits;
    progress.store(call << kPhaseBits | kEnded, std::memory_order_release);
}

void CallRow::Copy(Call& call, Phase phase) const {
    const bool isUnderWay = phase == kUnderWay;
    call = {};
    std::copy_n(vendor, vendorLength, call.productId);
    std::copy_n(exportName, std::min(std::strlen(exportName), sizeof call.entryPoint - 1),
                call.entryPoint);
    call.began = began.load(std::memory_order_acquire);
    call.state = isUnderWay ? CallState::kUnderWay : ending.load(std::memory_order_acquire);
    call.result = isUnderWay ? 0 : result.load(std::memory_order_acquire);
    call.isOnThisThread = isUnderWay && thread.load(std::memory_order_acquire) == CurrentThread();
}

bool CallRow::Read(Call& call) const {
    // The reader may have interrupted the thread that writes the row; then the row never changes.
    constexpr int attempts = 100;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        const std::uint64_t before = progress.load(std::memory_order_acquire);
        const Phase phase = static_cast<Phase>(before & kPhaseMask);
        if (phase == kNew) {
            return false;
        }
        if (phase == kBeginning) {
            continue;
        }
        Call read;
        Copy(read, phase);
        if (progress.load(std::memory_order_acquire) == before) {
            call = read;
            return true;
        }
    }
    return false;
}

}  // namespace Broker

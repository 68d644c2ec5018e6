// SPDX-License-Identifier: Apache-2.0

#include "app/running/work.h"

#include <algorithm>

#include "app/outcome/problem.h"

namespace App {

namespace {

std::string TextOf(const std::exception_ptr& failure) {
    try {
        std::rethrow_exception(failure);
    } catch (const std::exception& error) {
        return std::string(": ") + error.what();
    } catch (...) {
        return {};
    }
}

// The vendor's thread has ended without a result or an exception.
bool IsEndOfThread(const std::exception_ptr& failure) {
    try {
        std::rethrow_exception(failure);
    } catch (const std::future_error&) {
        return true;
    } catch (...) {
        return false;
    }
}

}  // namespace

void Rethrow(const std::exception_ptr& failure, std::uint64_t began) {
    std::vector<VendorCall> calls = VendorCalls();
    std::erase_if(calls, [began](const VendorCall& call) {
        return call.state != VendorCallState::kLeftByException || call.began < began;
    });
    if (IsEndOfThread(failure)) {
        throw Problem((calls.empty() ? "a vendor" : NamesOf(calls)) +
                      " ended the thread on which it was called");
    }
    if (calls.empty()) {
        std::rethrow_exception(failure);
    }
    throw Problem(NamesOf(calls) + " threw an exception" + TextOf(failure) +
                  "\nA module must not throw: ask the vendor for a corrected one.");
}

}  // namespace App

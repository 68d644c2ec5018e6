// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string_view>

#include "broker/binding/call_table.h"

namespace Broker {

// Records a call of a vendor's entry point during its own lifetime. Destroyed without Returned, it
// records that the call was left by an exception.
class CallNote {
public:
    CallNote(std::string_view productId, const char* entryPoint)
        : row(Calls().Begin(productId, entryPoint)) {}
    ~CallNote() {
        if (row != nullptr) {
            row->End(CallRow::CallState::kLeftByException, 0);
        }
    }
    CallNote(const CallNote&) = delete;
    CallNote& operator=(const CallNote&) = delete;

    // Records that the call has returned `result`, and returns `result`.
    int Returned(int result) {
        if (row != nullptr) {
            row->End(CallRow::CallState::kReturned, result);
            row = nullptr;
        }
        return result;
    }

private:
    CallRow* row;
};

}  // namespace Broker

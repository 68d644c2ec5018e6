#pragma once

#include <string_view>

#include "broker/binding/call_table.h"

namespace Broker {

// Notes a call of a vendor's entry point for as long as it lives. Whoever leaves it without having
// returned was thrown out.
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

    // The call has returned `result`, which this passes on.
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

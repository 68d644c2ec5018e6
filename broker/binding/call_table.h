// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "broker/binding/call_row.h"

namespace Broker {

// The calls of vendors' entry points, in rows that never move. Needs no lock and is never
// destroyed: vendors are called until the process is gone.
class CallTable {
public:
    static constexpr std::size_t kRows = 512;

    // Takes a row for a call that begins on this thread. Null when none is free; the call is then
    // counted.
    CallRow* Begin(std::string_view productId, const char* entryPoint);

    const CallRow& RowAt(std::size_t index) const { return rows[index]; }
    std::uint64_t Unrecorded() const { return unrecorded; }

private:
    std::array<CallRow, kRows> rows;
    std::atomic<std::uint64_t> unrecorded = 0;
};

// The process's table.
CallTable& Calls();

}  // namespace Broker

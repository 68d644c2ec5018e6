// SPDX-License-Identifier: Apache-2.0

#include "broker/binding/call_table.h"

#include <functional>

#include "broker/binding/call_clock.h"

namespace Broker {

namespace {

constinit CallTable calls;

// The row where the search begins and usually ends. An entry point's name is always the same string
// at the same address.
std::size_t FirstRow(std::string_view productId, const char* entryPoint) {
    constexpr unsigned alike = 3;  // the addresses of names differ above these bits
    return (std::hash<std::string_view>()(productId) +
            (reinterpret_cast<std::uintptr_t>(entryPoint) >> alike)) %
           CallTable::kRows;
}

}  // namespace

CallRow* CallTable::Begin(std::string_view productId, const char* entryPoint) {
    const std::size_t first = FirstRow(productId, entryPoint);
    for (std::size_t step = 0; step < kRows; ++step) {
        CallRow& row = rows[(first + step) % kRows];
        if (row.Take(productId, entryPoint)) {
            return &row;
        }
    }
    ++unrecorded;
    return nullptr;
}

CallTable& Calls() {
    return calls;
}

}  // namespace Broker

namespace PrinterDeviceDiscoverSdk {

std::size_t VendorCallRows() {
    return Broker::CallTable::kRows;
}

std::uint64_t VendorCallClock() {
    return Broker::CallClock();
}

bool ReadVendorCall(std::size_t row, VendorCall& call) {
    return row < Broker::CallTable::kRows && Broker::Calls().RowAt(row).Read(call);
}

std::uint64_t UnrecordedVendorCalls() {
    return Broker::Calls().Unrecorded();
}

}  // namespace PrinterDeviceDiscoverSdk

// SPDX-License-Identifier: Apache-2.0

// The table of the vendors' calls: its rows, and who finds none.

#include "broker/binding/call_table.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>

#include "broker/binding/call_note.h"

namespace {

using Broker::CallNote;
using Broker::CallRow;
using Broker::CallTable;
using Call = CallRow::Call;
using State = CallRow::CallState;

constexpr char kScan[] = "StartDeviceScan";
constexpr char kStop[] = "StopDeviceScan";

// How many rows hold a call in that state.
std::size_t Count(const CallTable& table, State state) {
    std::size_t count = 0;
    Call call;
    for (std::size_t row = 0; row < CallTable::kRows; ++row) {
        count += table.RowAt(row).Read(call) && call.state == state ? 1u : 0u;
    }
    return count;
}

Call Latest(const CallRow& row) {
    Call call{};
    EXPECT_TRUE(row.Read(call));
    return call;
}

TEST(CallTableTest, ALaterCallOfTheSameEntryPointHasTheSameRow) {
    const auto table = std::make_unique<CallTable>();
    CallRow* const first = table->Begin("alpha", kScan);
    ASSERT_NE(first, nullptr);
    first->End(State::kReturned, 4);
    EXPECT_EQ(table->Begin("alpha", kScan), first);
    EXPECT_EQ(Latest(*first).state, State::kUnderWay);
    EXPECT_EQ(Latest(*first).result, 0);
    first->End(State::kReturned, -9);
    EXPECT_EQ(Latest(*first).result, -9);
}

TEST(CallTableTest, CallsSideBySideAndOtherEntryPointsHaveRowsOfTheirOwn) {
    const auto table = std::make_unique<CallTable>();
    CallRow* const one = table->Begin("alpha", kScan);
    CallRow* const two = table->Begin("alpha", kScan);
    CallRow* const other = table->Begin("beta", kScan);
    CallRow* const stop = table->Begin("alpha", kStop);
    EXPECT_EQ(Count(*table, State::kUnderWay), 4u);
    EXPECT_NE(one, two);
    EXPECT_STREQ(Latest(*other).productId, "beta");
    EXPECT_STREQ(Latest(*stop).entryPoint, kStop);
}

TEST(CallTableTest, ACallWithoutARowIsOnlyCounted) {
    const auto table = std::make_unique<CallTable>();
    CallRow* last = nullptr;
    for (std::size_t call = 0; call < CallTable::kRows; ++call) {
        last = table->Begin("alpha", kScan);
        ASSERT_NE(last, nullptr);
    }
    EXPECT_EQ(table->Unrecorded(), 0u);
    EXPECT_EQ(table->Begin("beta", kScan), nullptr);
    EXPECT_EQ(table->Begin("alpha", kScan), nullptr);
    EXPECT_EQ(table->Unrecorded(), 2u);
    last->End(State::kReturned, 0);
    EXPECT_EQ(table->Begin("alpha", kScan), last);
}

TEST(CallTableTest, AVendorsNameIsCutToItsField) {
    const auto table = std::make_unique<CallTable>();
    const std::string name(200, 'v');
    CallRow* const row = table->Begin(name, kScan);
    EXPECT_EQ(Latest(*row).productId, name.substr(0, sizeof Call::productId - 1));
    row->End(State::kReturned, 0);
    EXPECT_EQ(table->Begin(name, kScan), row);
}

TEST(CallTableTest, WhoeverIsThrownOutLeavesByException) {
    try {
        const CallNote note("alpha", kScan);
        EXPECT_EQ(Count(Broker::Calls(), State::kUnderWay), 1u);
        throw std::runtime_error("a vendor's");
    } catch (const std::runtime_error&) {
    }
    EXPECT_EQ(Count(Broker::Calls(), State::kUnderWay), 0u);
    EXPECT_EQ(Count(Broker::Calls(), State::kLeftByException), 1u);
}

TEST(CallTableTest, AReaderNeverSeesTheResultOfAnotherCall) {
    const auto table = std::make_unique<CallTable>();
    std::atomic<bool> isOver = false;
    // Each call returns its number, and its number is odd where it left by an exception.
    std::thread writer([&] {
        for (int number = 1; number <= 20000; ++number) {
            CallRow* const row = table->Begin("alpha", kScan);
            row->End(number % 2 == 1 ? State::kLeftByException : State::kReturned, number);
        }
        isOver = true;
    });
    int latest = 0;
    std::uint64_t began = 0;
    while (!isOver) {
        Call call;
        for (std::size_t row = 0; row < CallTable::kRows; ++row) {
            if (!table->RowAt(row).Read(call)) {
                continue;
            }
            EXPECT_GE(call.began, began);
            began = call.began;
            if (call.state == State::kUnderWay) {
                EXPECT_EQ(call.result, 0);
                continue;
            }
            EXPECT_EQ(call.result % 2 == 1, call.state == State::kLeftByException);
            EXPECT_GE(call.result, latest);
            latest = call.result;
        }
    }
    writer.join();
}

}  // namespace

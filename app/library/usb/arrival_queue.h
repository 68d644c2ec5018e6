// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace App {

// Decides when the vendors are asked about printers that were plugged in: so many questions run at
// a time, and so many arrivals wait. A question that is late makes room for another, up to a total
// that late ones count in too: a vendor that never answers costs a thread for each.
class ArrivalQueue {
public:
    using Time = std::chrono::steady_clock::time_point;
    using Duration = std::chrono::steady_clock::duration;

    struct Limits {
        std::size_t inTime;   // questions under way that are not late yet
        std::size_t inAll;    // questions under way
        std::size_t waiting;  // arrivals
    };

    struct Arrival {
        std::wstring deviceId;
        std::size_t unlessTold;  // it is not asked about when so many were told of by then
    };

    struct Question {
        std::uint64_t number;
        Arrival arrival;
    };

    explicit ArrivalQueue(const Limits& mostAtATime) : limits(mostAtATime) {}

    // How long a question may take before it is late.
    void SetPatience(Duration limit) { patience = limit; }

    // `due` is when to ask at the earliest, no earlier than the arrival's before. Without room the
    // arrival is missed.
    void Add(Arrival arrival, Time due);
    void Miss() { ++missed; }

    // The next question to ask now; nothing when none is due, or there is no room.
    std::optional<Question> Begin(Time now);
    void End(std::uint64_t number) { questions.erase(number); }

    // The identifiers of the questions that have become late since the last call.
    std::vector<std::wstring> TakeLate(Time now);

    // When Begin or TakeLate has something to say, unless a question ends or an arrival comes
    // before; nothing when only those matter.
    std::optional<Time> Next() const;

    // The arrivals that were missed, and those that are due and wait for room.
    std::size_t Unasked(Time now) const;
    bool HasMissed() const { return missed != 0; }

private:
    struct Waiting {
        Arrival arrival;
        Time due;
    };
    struct UnderWay {
        std::wstring deviceId;
        Time lateAt;
        bool isLate;
    };

    bool HasRoom() const;
    std::size_t CountInTime() const;

    const Limits limits;
    Duration patience = Duration::max();
    std::deque<Waiting> arrivals;
    std::map<std::uint64_t, UnderWay> questions;
    std::uint64_t begun = 0;
    std::size_t missed = 0;
};

}  // namespace App

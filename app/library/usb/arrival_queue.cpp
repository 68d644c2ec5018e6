// SPDX-License-Identifier: Apache-2.0

#include "app/library/usb/arrival_queue.h"

#include <algorithm>
#include <utility>

namespace App {

void ArrivalQueue::Add(Arrival arrival, Time due) {
    if (arrivals.size() < limits.waiting) {
        arrivals.push_back({std::move(arrival), due});
    } else {
        ++missed;
    }
}

std::optional<ArrivalQueue::Question> ArrivalQueue::Begin(Time now) {
    if (arrivals.empty() || arrivals.front().due > now || !HasRoom()) {
        return std::nullopt;
    }
    const Question question{++begun, std::move(arrivals.front().arrival)};
    arrivals.pop_front();
    const Time lateAt = patience < Time::max() - now ? now + patience : Time::max();
    questions.emplace(question.number, UnderWay{question.arrival.deviceId, lateAt, false});
    return question;
}

std::vector<std::wstring> ArrivalQueue::TakeLate(Time now) {
    std::vector<std::wstring> late;
    for (auto& [number, question] : questions) {
        if (!question.isLate && question.lateAt <= now) {
            question.isLate = true;
            late.push_back(question.deviceId);
        }
    }
    return late;
}

std::optional<ArrivalQueue::Time> ArrivalQueue::Next() const {
    std::optional<Time> next;
    if (!arrivals.empty() && HasRoom()) {
        next = arrivals.front().due;
    }
    for (const auto& [number, question] : questions) {
        if (!question.isLate && question.lateAt != Time::max()) {
            next = next ? std::min(*next, question.lateAt) : question.lateAt;
        }
    }
    return next;
}

std::size_t ArrivalQueue::Unasked(Time now) const {
    if (HasRoom()) {
        return missed;  // what is due is asked about at once
    }
    const auto due = std::count_if(arrivals.begin(), arrivals.end(),
                                   [now](const Waiting& waiting) { return waiting.due <= now; });
    return missed + static_cast<std::size_t>(due);
}

bool ArrivalQueue::HasRoom() const {
    return questions.size() < limits.inAll && CountInTime() < limits.inTime;
}

std::size_t ArrivalQueue::CountInTime() const {
    const auto count = std::count_if(questions.begin(), questions.end(),
                                     [](const auto& one) { return !one.second.isLate; });
    return static_cast<std::size_t>(count);
}

}  // namespace App

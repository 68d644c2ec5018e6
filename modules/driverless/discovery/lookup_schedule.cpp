// SPDX-License-Identifier: Apache-2.0

#include "modules/driverless/discovery/lookup_schedule.h"

#include <algorithm>
#include <utility>

namespace Driverless {

namespace {

// The pause before a stopped look-up is repeated doubles at most this often.
constexpr std::size_t kMaxDoublings = 4;

}  // namespace

void LookupSchedule::Announced(const ServiceId& id, Time now) {
    if (!services.emplace(id, Known{State::Later, now}).second) {
        return;
    }
    std::set<ServiceId>& sameName = names[NameOf(id)];
    sameName.insert(id);
    if (id.kind == ServiceKind::Ipp) {
        Wait(id);
        // The others of that name can wait.
        for (const ServiceId& other : sameName) {
            const Known& known = services.at(other);
            if (known.state == State::Later && handedBack.count(other) == 0) {
                PutOff(other, known.since + kDelayWithIpp);
            }
        }
        return;
    }
    const bool hasIpp = sameName.begin()->kind == ServiceKind::Ipp;
    PutOff(id, now + (hasIpp ? kDelayWithIpp : kDelayWithoutIpp));
}

void LookupSchedule::Gone(const ServiceId& id, Time now) {
    const auto known = services.find(id);
    if (known == services.end()) {
        return;
    }
    Leave(id);
    services.erase(known);
    handedBack.erase(id);
    const auto sameName = names.find(NameOf(id));
    sameName->second.erase(id);
    const auto source = answered.find(NameOf(id));
    if (source != answered.end() && source->second == id) {
        answered.erase(source);
        for (const ServiceId& other : sameName->second) {
            if (services.at(other).state == State::Later && handedBack.count(other) == 0) {
                PutOff(other, now + kDelayWithoutIpp);
            }
        }
    }
    if (sameName->second.empty()) {
        names.erase(sameName);
    }
}

void LookupSchedule::Found(const ServiceId& id, Time now) {
    const auto known = services.find(id);
    if (known != services.end()) {
        WindowOf(id).Finish(id, now);
        Leave(id);
        known->second.state = State::Done;
        handedBack.erase(id);
        refusedUntil.reset();
    }
}

void LookupSchedule::Refused(const ServiceId& id, Time now) {
    refusedUntil = now + kDelayAfterRefusal;
    if (services.count(id) > 0) {
        Leave(id);
        PutOff(id, *refusedUntil);
    }
}

void LookupSchedule::Answered(const ServiceId& id) {
    if (services.count(id) > 0) {
        answered.insert_or_assign(NameOf(id), id);
    }
}

void LookupSchedule::Clear() {
    for (const auto& [id, known] : services) {
        WindowOf(id).Remove(id);
    }
    services.clear();
    dueTimes.clear();
    due.clear();
    names.clear();
    answered.clear();
    handedBack.clear();
    refusedUntil.reset();
}

// Plain IPP comes first in any case.
bool LookupSchedule::ComesLast(const ServiceId& id) const {
    return id.kind != ServiceKind::Ipp && answered.count(NameOf(id)) > 0;
}

bool LookupSchedule::MustWait(const ServiceId& id, Time now) const {
    return ComesLast(id) && now < services.at(id).since + kDelayWhenAnswered;
}

void LookupSchedule::Wait(const ServiceId& id) {
    services.at(id).state = State::Waiting;
    WindowOf(id).Add(id.interface, id, handedBack.count(id) > 0 || ComesLast(id));
}

void LookupSchedule::Leave(const ServiceId& id) {
    WindowOf(id).Remove(id);
    const auto time = dueTimes.find(id);
    if (time != dueTimes.end()) {
        due.erase({time->second, id});
        dueTimes.erase(time);
    }
}

void LookupSchedule::PutOff(const ServiceId& id, Time until) {
    Leave(id);
    services.at(id).state = State::Later;
    dueTimes.emplace(id, until);
    due.emplace(until, id);
}

LookupSchedule::Work LookupSchedule::Advance(Time now) {
    Work work;
    TakeDue(now);
    if (refusedUntil && now >= *refusedUntil) {
        refusedUntil.reset();
    }
    Exchange(plain, now, work);
    Exchange(others, now, work);
    work.next = Next(now);
    return work;
}

std::optional<LookupSchedule::Time> LookupSchedule::Next(Time now) const {
    std::optional<Time> next = refusedUntil;
    const auto sooner = [&next](std::optional<Time> time) {
        if (time) {
            next = next ? std::min(*next, *time) : time;
        }
    };
    if (!due.empty()) {
        sooner(due.begin()->first);
    }
    if (!refusedUntil) {
        sooner(plain.Next());
        sooner(others.Next());
        if (plain.IsWaiting() || others.IsWaiting()) {
            sooner(now + kSliceOfLookup / 4);
        }
    }
    return next;
}

void LookupSchedule::TakeDue(Time now) {
    while (!due.empty() && due.begin()->first <= now) {
        const ServiceId id = due.begin()->second;
        if (MustWait(id, now)) {
            PutOff(id, services.at(id).since + kDelayWhenAnswered);
        } else {
            Leave(id);
            Wait(id);
        }
    }
}

// Slow look-ups make room for waiting ones, one for one.
void LookupSchedule::Exchange(Window& window, Time now, Work& work) {
    std::optional<ServiceId> old;
    do {
        old = window.TakeBack(now, kSliceOfLookup, refusedUntil.has_value());
        if (old) {
            const std::size_t times = std::min(handedBack[*old]++, kMaxDoublings);
            work.end.push_back(*old);
            PutOff(*old, now + kDelayAfterSlice * (1U << times));
            refusedUntil.reset();
        }
        Fill(window, now, work);
    } while (old);
}

void LookupSchedule::Fill(Window& window, Time now, Work& work) {
    while (!refusedUntil) {
        const auto id = window.Take(now);
        if (!id) {
            return;
        }
        if (MustWait(*id, now)) {
            PutOff(*id, services.at(*id).since + kDelayWhenAnswered);
        } else {
            services.at(*id).state = State::UnderWay;
            work.begin.push_back(*id);
        }
    }
}

}  // namespace Driverless

#include "lookup_schedule.h"

#include <algorithm>
#include <utility>

namespace Driverless {

namespace {

// A service that is never found is looked up ever more rarely.
constexpr std::size_t kMaxDoublings = 4;

}  // namespace

void LookupSchedule::Announced(const ServiceId& id, Time now) {
    if (!states.emplace(id, State::Later).second) {
        return;
    }
    std::set<ServiceId>& services = names[NameOf(id)];
    services.insert(id);
    if (id.kind == ServiceKind::Ipp) {
        Wait(id);
        // The others of that name can wait.
        for (const ServiceId& other : services) {
            if (states.at(other) == State::Later && handedBack.count(other) == 0) {
                PutOff(other, now + kDelayWithIpp);
            }
        }
        return;
    }
    const bool hasIpp = services.begin()->kind == ServiceKind::Ipp;
    PutOff(id, now + (hasIpp ? kDelayWithIpp : kDelayWithoutIpp));
}

void LookupSchedule::Gone(const ServiceId& id, Time now) {
    const auto known = states.find(id);
    if (known == states.end()) {
        return;
    }
    Leave(id);
    states.erase(known);
    handedBack.erase(id);
    const auto services = names.find(NameOf(id));
    services->second.erase(id);
    const auto source = answered.find(NameOf(id));
    if (source != answered.end() && source->second == id) {
        answered.erase(source);
        for (const ServiceId& other : services->second) {
            if (states.at(other) == State::Later) {
                PutOff(other, now + kDelayWithoutIpp);
            }
        }
    }
    if (services->second.empty()) {
        names.erase(services);
    }
}

void LookupSchedule::Found(const ServiceId& id) {
    const auto known = states.find(id);
    if (known != states.end()) {
        Leave(id);
        known->second = State::Done;
        handedBack.erase(id);
        refusedUntil.reset();
    }
}

void LookupSchedule::Refused(const ServiceId& id, Time now) {
    refusedUntil = now + kDelayAfterRefusal;
    if (states.count(id) > 0) {
        Leave(id);
        PutOff(id, *refusedUntil);
    }
}

void LookupSchedule::Answered(const ServiceId& id) {
    if (states.count(id) > 0) {
        answered.insert_or_assign(NameOf(id), id);
    }
}

void LookupSchedule::Clear() {
    for (const auto& [id, state] : states) {
        WindowOf(id).Remove(id);
    }
    states.clear();
    dueTimes.clear();
    due.clear();
    names.clear();
    answered.clear();
    handedBack.clear();
    refusedUntil.reset();
}

void LookupSchedule::Wait(const ServiceId& id) {
    states[id] = State::Waiting;
    WindowOf(id).Add(id.interface, id, handedBack.count(id) > 0);
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
    states[id] = State::Later;
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

// What is not needed is left, until the service that makes it so is gone.
void LookupSchedule::TakeDue(Time now) {
    while (!due.empty() && due.begin()->first <= now) {
        const ServiceId id = due.begin()->second;
        Leave(id);
        if (id.kind == ServiceKind::Ipp || IsNeeded(id)) {
            Wait(id);
        }
    }
}

// Those that have lasted make room for those that wait, one for one.
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
        if (id->kind == ServiceKind::Ipp || IsNeeded(*id)) {
            states[*id] = State::UnderWay;
            work.begin.push_back(*id);
        } else {
            Leave(*id);
            states[*id] = State::Later;
        }
    }
}

}  // namespace Driverless

// SPDX-License-Identifier: Apache-2.0

#pragma once

// Decides when to look up which announced service. Knows neither network nor clock.
//
// A hostile host can announce any number of services, also such that cannot be looked up. So
// look-ups have windows that the interfaces share, and plain IPP has its own window; a slow look-up
// is stopped when others wait, and repeated after all services not looked up yet.

#include <chrono>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "modules/driverless/discovery/fair_window.h"
#include "modules/driverless/printer/service.h"

namespace Driverless {

// Plain IPP is looked up first, because it tells the most. Other services of a printer with plain
// IPP are looked up after kDelayWithIpp, those of a printer without it after kDelayWithoutIpp.
constexpr std::chrono::milliseconds kDelayWithoutIpp{100};
constexpr std::chrono::milliseconds kDelayWithIpp{1000};

// Anybody may announce plain IPP under a printer's name, and answer. So a name that has answered
// only makes its other services wait for longer, and come after those that were not looked up yet.
constexpr std::chrono::milliseconds kDelayWhenAnswered{2000};

// Avahi refuses to look up many services at once for one client.
constexpr std::chrono::milliseconds kDelayAfterRefusal{250};

// How long a look-up runs at least, and how long a stopped look-up pauses.
constexpr std::chrono::milliseconds kSliceOfLookup{300};
constexpr std::chrono::milliseconds kDelayAfterSlice{1000};

class LookupSchedule {
public:
    using Time = std::chrono::steady_clock::time_point;

    struct Work {
        std::vector<ServiceId> end;    // look-ups to end
        std::vector<ServiceId> begin;  // look-ups to begin, after ending those
        std::optional<Time> next;      // when to call Advance again, if nothing happens before
    };

    void Announced(const ServiceId& id, Time now);
    void Gone(const ServiceId& id, Time now);

    // The look-up has ended.
    void Found(const ServiceId& id, Time now);

    // Avahi refused to begin the look-up.
    void Refused(const ServiceId& id, Time now);

    // The printer of that service has answered: the rest of that name is looked up last, as long as
    // the service is there.
    void Answered(const ServiceId& id);

    void Clear();

    Work Advance(Time now);

    // When to call Advance again, if nothing happens before. Differs from the `next` of the last
    // Work if one of its look-ups was refused.
    std::optional<Time> Next(Time now) const;

private:
    using Name = std::tuple<std::string, std::string, int>;
    using Window = FairWindow<int, ServiceId>;  // the owners are interfaces
    enum class State { Later, Waiting, UnderWay, Done };
    struct Known {
        State state;
        Time since;  // delays run from here: who announces the name again and again adds none
    };

    static Name NameOf(const ServiceId& id) { return {id.name, id.domain, id.interface}; }
    Window& WindowOf(const ServiceId& id) { return id.kind == ServiceKind::Ipp ? plain : others; }
    bool ComesLast(const ServiceId& id) const;
    bool MustWait(const ServiceId& id, Time now) const;
    void Wait(const ServiceId& id);
    void Leave(const ServiceId& id);
    void PutOff(const ServiceId& id, Time until);
    void TakeDue(Time now);
    void Exchange(Window& window, Time now, Work& work);
    void Fill(Window& window, Time now, Work& work);

    std::map<ServiceId, Known> services;
    std::map<ServiceId, Time> dueTimes;
    std::set<std::pair<Time, ServiceId>> due;
    std::map<Name, std::set<ServiceId>> names;
    std::map<Name, ServiceId> answered;  // with the service that answered
    std::map<ServiceId, std::size_t> handedBack;
    std::optional<Time> refusedUntil;

    // Avahi answers most look-ups from its cache within milliseconds. It allows a client 1,024
    // objects; these limits stay below. One interface gets half of each.
    Window plain{{64, 512, std::chrono::milliseconds(40)}};
    Window others{{32, 256, std::chrono::milliseconds(40)}};
};

}  // namespace Driverless

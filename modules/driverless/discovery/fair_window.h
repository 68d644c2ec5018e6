// SPDX-License-Identifier: Apache-2.0

#pragma once

// Shares a limited number of running work items fairly among owners. Knows no clock: callers pass
// the time.
//
// Slow work must not block the window: one limit applies only to young work, a second limit to all
// work. For both limits, an owner may use at most as much as stays free beside its own share, so
// that a late owner finds room, however much earlier owners have taken. Of an owner's waiting
// items, the oldest and the newest begin in turns: neither a long queue ahead of an item nor a
// stream of newer items delays it for long.

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <iterator>
#include <map>
#include <optional>
#include <set>
#include <tuple>
#include <utility>

namespace Driverless {

template <typename Owner, typename Item>
class FairWindow {
public:
    using Time = std::chrono::steady_clock::time_point;

    struct Limits {
        std::size_t young;                // limit for young running work, of all owners
        std::size_t all;                  // limit for running work, of all owners
        std::chrono::milliseconds youth;  // how long running work counts as young
    };

    explicit FairWindow(const Limits& windowLimits) : limits(windowLimits) {}

    // Changes the limit for running work. Work that already runs continues.
    void LimitAll(std::size_t most) { limits.all = most; }

    // Queues an item after its owner's other items. An item with `again` begins after all items
    // queued for the first time. Does nothing for an item that is already in the window.
    void Add(const Owner& owner, const Item& item, bool again = false) {
        if (!tickets.emplace(item, Ticket{owner, {again, lastNumber + 1}}).second) {
            return;
        }
        Share& share = shares[owner];
        Unrank(owner, share);
        share.waiting.emplace(Place{again, ++lastNumber}, item);
        Rank(owner, share);
    }

    // Removes an item that is finished or no longer wanted.
    void Remove(const Item& item) {
        const auto found = tickets.find(item);
        if (found == tickets.end()) {
            return;
        }
        const auto share = shares.find(found->second.owner);
        Unrank(share->first, share->second);
        if (!End(share->second, item)) {
            share->second.waiting.erase(found->second.place);
        }
        tickets.erase(found);
        if (share->second.waiting.empty() && share->second.since.empty()) {
            shares.erase(share);
        } else {
            Rank(share->first, share->second);
        }
    }

    // Removes an item whose work is done. The work is done in order: while items are finished,
    // those that began later are not slow but in a queue, and stay young.
    void Finish(const Item& item, Time now) {
        const auto found = tickets.find(item);
        if (found == tickets.end()) {
            return;
        }
        const auto& since = shares.at(found->second.owner).since;
        const auto begun = since.find(item);
        if (begun != since.end()) {
            newestFinished = std::max(newestFinished, begun->second);
            lastFinish = now;
        }
        Remove(item);
    }

    // The next item that may begin now. The owner with the least running work goes first; among
    // equals, the owner that was served longest ago.
    std::optional<Item> Take(Time now) {
        GrowOld(now);
        if (ranks.empty()) {
            return std::nullopt;
        }
        const Owner owner = std::get<2>(*ranks.begin());
        Share& share = shares.at(owner);
        if (!HasRoom(share)) {
            return std::nullopt;
        }
        Unrank(owner, share);
        const Item item = TakeFrom(share);
        Begin(share, item, now);
        share.served = ++turns;
        Rank(owner, share);
        return item;
    }

    // Takes back the longest-running item of the owner with the most running items, if it has run
    // for at least `slice`, an owner waits, and the limit for all work is reached or `noRoom` is
    // set. The item counts as removed.
    std::optional<Item> TakeBack(Time now, std::chrono::milliseconds slice, bool noRoom = false) {
        if (ranks.empty() || (!noRoom && HasRoomForAll(shares.at(std::get<2>(*ranks.begin()))))) {
            return std::nullopt;
        }
        const Share* greediest = nullptr;
        for (const auto& [owner, share] : shares) {
            if (greediest == nullptr || share.since.size() > greediest->since.size()) {
                greediest = &share;
            }
        }
        if (greediest == nullptr || greediest->order.empty() ||
            greediest->order.begin()->first + slice > now) {
            return std::nullopt;
        }
        const Item item = greediest->order.begin()->second;
        Remove(item);
        return item;
    }

    bool IsWaiting() const { return !ranks.empty(); }

    // The time when running work grows old and makes room, if an owner waits.
    std::optional<Time> Next() const {
        if (ranks.empty() || youngest.empty()) {
            return std::nullopt;
        }
        return EndOfYouth();
    }

    std::size_t UnderWay() const { return all; }

private:
    // The position of a waiting item: items queued for the first time go first, then by order of
    // arrival.
    using Place = std::pair<bool, std::uint64_t>;

    struct Ticket {
        Owner owner;
        Place place;
    };

    struct Share {
        std::map<Place, Item> waiting;
        std::map<Item, Time> since;  // running items
        std::set<std::pair<Time, Item>> order;
        std::size_t young = 0;
        std::uint64_t served = 0;
        bool newestIsNext = false;
    };

    static Item TakeFrom(Share& share) {
        const auto firstAgain = share.waiting.lower_bound({true, 0});
        const bool newest = share.newestIsNext && firstAgain != share.waiting.begin();
        share.newestIsNext = !newest;
        return std::move(
            share.waiting.extract(newest ? std::prev(firstAgain) : share.waiting.begin()).mapped());
    }

    bool HasRoomForAll(const Share& share) const {
        return all < limits.all && (share.since.empty() || share.since.size() < limits.all - all);
    }

    bool HasRoom(const Share& share) const {
        const std::size_t now = youngest.size();
        const bool young =
            now < limits.young && (share.young == 0 || share.young < limits.young - now);
        return young && HasRoomForAll(share);
    }

    void Rank(const Owner& owner, const Share& share) {
        if (!share.waiting.empty()) {
            ranks.emplace(share.since.size(), share.served, owner);
        }
    }

    void Unrank(const Owner& owner, const Share& share) {
        ranks.erase({share.since.size(), share.served, owner});
    }

    void Begin(Share& share, const Item& item, Time now) {
        share.since.emplace(item, now);
        share.order.emplace(now, item);
        youngest.emplace(now, item);
        ++share.young;
        ++all;
    }

    // False when the item has not begun.
    bool End(Share& share, const Item& item) {
        const auto begun = share.since.find(item);
        if (begun == share.since.end()) {
            return false;
        }
        share.young -= youngest.erase({begun->second, item});
        share.order.erase({begun->second, item});
        share.since.erase(begun);
        --all;
        return true;
    }

    // Of the item that began first.
    Time EndOfYouth() const {
        const Time begun = youngest.begin()->first;
        const bool isQueued = lastFinish && begun >= newestFinished;
        return (isQueued ? std::max(begun, *lastFinish) : begun) + limits.youth;
    }

    void GrowOld(Time now) {
        while (!youngest.empty() && EndOfYouth() <= now) {
            --shares.at(tickets.at(youngest.begin()->second).owner).young;
            youngest.erase(youngest.begin());
        }
    }

    Limits limits;
    std::map<Item, Ticket> tickets;
    std::map<Owner, Share> shares;
    std::set<std::tuple<std::size_t, std::uint64_t, Owner>> ranks;  // of the owners that wait
    std::set<std::pair<Time, Item>> youngest;
    Time newestFinished = Time::min();  // the latest begin of a finished item
    std::optional<Time> lastFinish;
    std::size_t all = 0;
    std::uint64_t turns = 0;
    std::uint64_t lastNumber = 0;
};

}  // namespace Driverless

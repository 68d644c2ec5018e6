// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <numeric>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace App {

// The items of a scan. Vendors' threads add to it, several at once; the program's own thread waits
// for what is new. Items of one Key are the same one, maybe with news about it, unless they are ==;
// an item without a key is like no other.
template <class Item>
class ItemList {
public:
    using Clock = std::chrono::steady_clock;

    // The process's list. Never destroyed: vendors may report while the process ends.
    static ItemList& GetInstance() {
        static ItemList& list = *new ItemList;
        return list;
    }

    // Adds the item, or updates it.
    void Add(const Item& item);

    // Ends all current and later waits.
    void Cancel();
    bool IsCancelled() const;

    // Waits for news, for the time `until`, or for Cancel. Returns the items added or changed since
    // the last call, in the order in which they were first found.
    std::vector<Item> WaitForNews(Clock::time_point until);

    std::vector<Item> GetItems() const;

    // The same, the last reported item first, whether or not it had changed.
    std::vector<Item> GetLatestFirst() const;

private:
    ItemList() = default;

    mutable std::mutex mutex;
    std::condition_variable changed;
    std::vector<Item> items;
    std::unordered_map<std::string, std::size_t> known;  // indices into `items`, by key
    std::vector<std::uint64_t> reported;  // of each item: the number of its latest report
    std::uint64_t reports = 0;
    std::set<std::size_t> news;  // indices into `items`
    bool cancelled = false;
};

template <class Item>
void ItemList<Item>::Add(const Item& item) {
    const std::lock_guard lock(mutex);
    const std::optional<std::string> key = item.Key();
    const std::size_t index =
        key ? known.try_emplace(*key, items.size()).first->second : items.size();
    if (index == items.size()) {
        items.push_back(item);
        reported.push_back(++reports);
    } else {
        reported[index] = ++reports;
        if (items[index] == item) {
            return;
        }
        items[index] = item;
    }
    news.insert(index);
    changed.notify_all();
}

template <class Item>
void ItemList<Item>::Cancel() {
    const std::lock_guard lock(mutex);
    cancelled = true;
    changed.notify_all();
}

template <class Item>
bool ItemList<Item>::IsCancelled() const {
    const std::lock_guard lock(mutex);
    return cancelled;
}

template <class Item>
std::vector<Item> ItemList<Item>::WaitForNews(Clock::time_point until) {
    std::unique_lock lock(mutex);
    changed.wait_until(lock, until, [this] { return cancelled || !news.empty(); });
    std::vector<Item> found;
    for (const std::size_t index : std::exchange(news, {})) {
        found.push_back(items[index]);
    }
    return found;
}

template <class Item>
std::vector<Item> ItemList<Item>::GetItems() const {
    const std::lock_guard lock(mutex);
    return items;
}

template <class Item>
std::vector<Item> ItemList<Item>::GetLatestFirst() const {
    const std::lock_guard lock(mutex);
    std::vector<std::size_t> order(items.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(), [this](std::size_t one, std::size_t other) {
        return reported[one] > reported[other];
    });
    std::vector<Item> latest;
    for (const std::size_t index : order) {
        latest.push_back(items[index]);
    }
    return latest;
}

}  // namespace App

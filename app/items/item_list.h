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
    struct Row {
        Item item;
        std::uint64_t reported;  // the number of its latest report
    };

    ItemList() = default;

    mutable std::mutex mutex;
    std::condition_variable changed;
    std::vector<Row> rows;
    std::unordered_map<std::string, std::size_t> known;  // indices into `rows`, by key
    std::uint64_t reports = 0;
    std::set<std::size_t> news;  // indices into `rows`
    bool cancelled = false;
};

template <class Item>
void ItemList<Item>::Add(const Item& item) {
    const std::lock_guard lock(mutex);
    const std::optional<std::string> key = item.Key();
    const auto found = key ? known.find(*key) : known.end();
    const std::size_t index = found == known.end() ? rows.size() : found->second;
    if (index == rows.size()) {
        rows.push_back({item, ++reports});
        if (key) {
            known.emplace(*key, index);  // last: a key leads to a row also when memory runs out
        }
    } else {
        rows[index].reported = ++reports;
        if (rows[index].item == item) {
            return;
        }
        rows[index].item = item;
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
        found.push_back(rows[index].item);
    }
    return found;
}

template <class Item>
std::vector<Item> ItemList<Item>::GetItems() const {
    const std::lock_guard lock(mutex);
    std::vector<Item> items;
    items.reserve(rows.size());
    for (const Row& row : rows) {
        items.push_back(row.item);
    }
    return items;
}

template <class Item>
std::vector<Item> ItemList<Item>::GetLatestFirst() const {
    const std::lock_guard lock(mutex);
    std::vector<std::size_t> order(rows.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(), [this](std::size_t one, std::size_t other) {
        return rows[one].reported > rows[other].reported;
    });
    std::vector<Item> latest;
    latest.reserve(rows.size());
    for (const std::size_t index : order) {
        latest.push_back(rows[index].item);
    }
    return latest;
}

}  // namespace App

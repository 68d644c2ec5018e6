#pragma once

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <set>
#include <utility>
#include <vector>

namespace App {

// The items of a scan. Vendors' threads add to it, several at once; the program's own thread waits
// for what is new. An item tells by IsSame whether another is the same one, maybe with news about
// it, and by == whether there is no news.
template <class Item>
class ItemList {
public:
    using Clock = std::chrono::steady_clock;

    // The one list of the process. It is never destroyed: vendors may report while the process
    // ends.
    static ItemList& GetInstance() {
        static ItemList& list = *new ItemList;
        return list;
    }

    // Adds the item, or renews what is known of it.
    void Add(const Item& item);

    // Ends every wait, now and later.
    void Cancel();
    bool IsCancelled() const;

    // Waits until there is something new, until `until`, or until Cancel. Returns the items that
    // were added or have changed since the last call, in the order in which they were first found.
    std::vector<Item> WaitForNews(Clock::time_point until);

    std::vector<Item> GetItems() const;

    // The same, the one that was reported last at the front, with news about it or without.
    std::vector<Item> GetLatestFirst() const;

private:
    ItemList() = default;

    mutable std::mutex mutex;
    std::condition_variable changed;
    std::vector<Item> items;
    std::vector<std::size_t> reported;  // indices into `items`, the one reported last at the end
    std::set<std::size_t> news;         // indices into `items`
    bool cancelled = false;
};

template <class Item>
void ItemList<Item>::Add(const Item& item) {
    const std::lock_guard lock(mutex);
    const auto known = std::find_if(items.begin(), items.end(),
                                    [&](const Item& other) { return other.IsSame(item); });
    const auto index = static_cast<std::size_t>(known - items.begin());
    reported.erase(std::remove(reported.begin(), reported.end(), index), reported.end());
    reported.push_back(index);
    if (known == items.end()) {
        items.push_back(item);
    } else if (*known == item) {
        return;
    } else {
        *known = item;
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
    std::vector<Item> latest;
    for (auto index = reported.rbegin(); index != reported.rend(); ++index) {
        latest.push_back(items[*index]);
    }
    return latest;
}

}  // namespace App

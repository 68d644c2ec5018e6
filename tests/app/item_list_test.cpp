// SPDX-License-Identifier: Apache-2.0

#include "app/items/item_list.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <new>

namespace App {

namespace {

using testing::ElementsAre;
using testing::Lt;

struct Thing {
    std::string name;
    int state = 0;

    std::optional<std::string> Key() const {
        ++looks;
        return name.empty() ? std::nullopt : std::optional(name);
    }
    bool operator==(const Thing& other) const {
        ++looks;
        return state == other.state;
    }
    static inline std::size_t looks = 0;
};

// The one list of the process serves each test in turn.
std::vector<int> States(const std::vector<Thing>& things) {
    std::vector<int> states;
    for (const Thing& thing : things) {
        states.push_back(thing.state);
    }
    return states;
}

TEST(ItemListTest, KeepsItemsByKeyInOrderAndTheLatestFirst) {
    auto& list = ItemList<Thing>::GetInstance();
    const auto now = ItemList<Thing>::Clock::now();
    list.Add({"a", 1});
    list.Add({"b", 2});
    list.Add({"", 3});
    list.Add({"", 3});
    EXPECT_THAT(States(list.WaitForNews(now)), ElementsAre(1, 2, 3, 3));
    list.Add({"a", 1});
    EXPECT_THAT(States(list.WaitForNews(now)), ElementsAre()) << "it is known as it is";
    EXPECT_THAT(States(list.GetLatestFirst()), ElementsAre(1, 3, 3, 2));
    list.Add({"b", 4});
    EXPECT_THAT(States(list.WaitForNews(now)), ElementsAre(4));
    EXPECT_THAT(States(list.GetItems()), ElementsAre(1, 4, 3, 3));
    EXPECT_THAT(States(list.GetLatestFirst()), ElementsAre(4, 1, 3, 3));
}

// Cannot be copied while memory is short.
struct Heavy {
    std::string name;
    int state;

    Heavy(std::string ofName, int ofState) : name(std::move(ofName)), state(ofState) {}
    Heavy(const Heavy& other) : name(other.name), state(other.state) {
        if (isMemoryShort) {
            throw std::bad_alloc();
        }
    }
    Heavy(Heavy&&) = default;
    Heavy& operator=(const Heavy&) = default;
    std::optional<std::string> Key() const { return name; }
    bool operator==(const Heavy& other) const { return state == other.state; }
    static inline bool isMemoryShort = false;
};

TEST(ItemListTest, AnItemThatDoesNotFitIsNotTakenForTheNextOne) {
    auto& list = ItemList<Heavy>::GetInstance();
    Heavy::isMemoryShort = true;
    EXPECT_THROW(list.Add({"a", 1}), std::bad_alloc);
    Heavy::isMemoryShort = false;
    list.Add({"b", 2});
    list.Add({"a", 3});
    std::vector<int> states;
    for (const Heavy& item : list.GetItems()) {
        states.push_back(item.state);
    }
    EXPECT_THAT(states, ElementsAre(2, 3));
}

TEST(ItemListTest, LooksAtNoOtherItemToAddOne) {
    auto& list = ItemList<Thing>::GetInstance();
    constexpr int count = 20000;
    Thing::looks = 0;
    for (int round = 0; round < 2; ++round) {
        for (int number = 0; number < count; ++number) {
            list.Add({std::to_string(number), round});
        }
    }
    EXPECT_THAT(Thing::looks, Lt(4U * count));
}

}  // namespace

}  // namespace App

// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include <ostream>
#include <utility>
#include <vector>

#include "host/PrinterDiscoverAPI/wifi/linux/attempt_answers_linux.h"

namespace {

struct Answer {
    std::uint32_t state;
    std::uint32_t reason = 0;
};

struct Row {
    const char* what;
    bool offersSae;
    std::vector<Answer> adapter;
    const char* meaning;
    std::vector<Answer> attempt = {};
};

std::ostream& operator<<(std::ostream& stream, const Row& row) {
    return stream << row.what;
}

// From disconnected, through prepare and configure: the service always asks itself for the pass
// phrase first, which it has been given.
std::vector<Answer> Tried(const std::vector<Answer>& then) {
    std::vector<Answer> all{{40}, {50}, {60}, {40}, {50}};
    all.insert(all.end(), then.begin(), then.end());
    return all;
}

constexpr const char* kBrokenOff =
    "the access point broke off the handshake; the pass phrase may be wrong";
constexpr const char* kNotCompleted =
    "the handshake was not completed; the pass phrase may be wrong, or the access point out of "
    "range";
constexpr const char* kNoAnswer = "the access point does not answer; it may be out of range";
constexpr const char* kAddressMissing = "the network gave the host no address";

// As NetworkManager 1.42 gave them with simulated radios, and the rest as it documents them.
const Row kRows[] = {
    {"handshake broken off", false, Tried({{60, 8}, {120, 7}, {30}}), kBrokenOff},
    {"WPA3, wrong pass phrase", true, Tried({{120, 53}, {30}}), kNotCompleted},
    {"access point that dies in the middle", false, Tried({{60}, {120, 7}, {30}}), kNotCompleted},
    {"access point that was gone", false, Tried({{120, 53}, {30}}), kNoAnswer},
    {"network that is lost after the handshake", false, Tried({{70}, {80}, {120, 53}}), kNoAnswer},
    {"supplicant that waits in vain", false, Tried({{120, 11}}), kNoAnswer},
    {"supplicant that was refused", false, Tried({{120, 8}}), kBrokenOff},
    {"saved network without its pass phrase",
     false,
     {{40}, {50}, {60}, {120, 7}},
     "it needs a "
     "pass phrase, and the host has none saved"},
    {"no lease", false, Tried({{70}, {120, 5}}), kAddressMissing},
    {"DHCP that does not start", false, Tried({{70}, {120, 15}}), kAddressMissing},
    {"DHCP with an error", false, Tried({{70}, {120, 16}}), kAddressMissing},
    {"DHCP that fails", false, Tried({{70}, {120, 17}}), kAddressMissing},
    {"settings that the supplicant refuses", false, Tried({{120, 9}}),
     "the adapter cannot join such a network"},
    {"supplicant that fails", false, Tried({{120, 10}}), "the adapter cannot join such a network"},
    {"profile that is deleted", true, Tried({{110, 38}, {30, 38}}),
     "the connection was deleted meanwhile"},
    {"user who ends it", false, Tried({{70}, {110, 39}, {30, 39}}), "someone ended it"},
    {"other connection", false, Tried({{110, 60}, {30, 60}}),
     "another connection took the adapter"},
    {"adapter that is removed", false, Tried({{70}, {80}, {10, 36}}),
     "the Wi-Fi adapter was removed"},
    {"link that goes down", false, Tried({{20}}),
     "the Wi-Fi adapter was switched off, or its link is down"},
    {"connection before, which made room",
     false,
     {{110, 60}, {30, 60}, {40}, {50}, {30}},
     "NetworkManager gave up, reason 0"},
    {"unknown reason", false, Tried({{120, 99}}), "NetworkManager gave up, reason 99"},
    {"no answer at all", false, {}, "NetworkManager gave up, reason 0"},
    {"attempt: user", false, Tried({{30}}), "someone ended it", {{1, 0}, {4, 2}}},
    {"attempt: service", false, Tried({{30}}), "NetworkManager was ended", {{4, 4}}},
    {"attempt: address", false, Tried({{30}}), kAddressMissing, {{4, 5}}},
    {"attempt: time", false, Tried({{30}}), kNoAnswer, {{4, 6}}},
    {"attempt: secrets", false, Tried({{30}}), kNotCompleted, {{4, 9}}},
    {"attempt: profile", false, Tried({{30}}), "the connection was deleted meanwhile", {{4, 11}}},
    {"attempt: adapter", false, Tried({{30}}), "the Wi-Fi adapter was removed", {{4, 14}}},
    {"the adapter's reason before the attempt's", false, Tried({{120, 53}}), kNoAnswer, {{4, 3}}},
};

class AttemptAnswers : public testing::TestWithParam<Row> {};

TEST_P(AttemptAnswers, MeanWhatTheTableSays) {
    Host::AttemptAnswers answers(GetParam().offersSae);
    for (const auto& [state, reason] : GetParam().adapter) {
        answers.AdapterIs(state, reason);
    }
    for (const auto& [state, reason] : GetParam().attempt) {
        answers.AttemptIs(state, reason);
    }
    EXPECT_EQ(answers.WhyEnded(), GetParam().meaning);
}

INSTANTIATE_TEST_SUITE_P(Rows, AttemptAnswers, testing::ValuesIn(kRows));

TEST(AttemptAnswersTest, OnlyABrokenHandshakeIsRefusedBeforeTheEnd) {
    Host::AttemptAnswers answers(false);
    for (const auto& [state, reason] : Tried({{60}})) {
        answers.AdapterIs(state, reason);
        EXPECT_FALSE(answers.IsRefused());
    }
    answers.AdapterIs(60, 8);
    EXPECT_TRUE(answers.IsRefused());
}

TEST(AttemptAnswersTest, TheTimeLimitNamesWhatIsMissing) {
    Host::AttemptAnswers answers(false);
    EXPECT_EQ(answers.WhyNotIn(30), "not joined within 30 s");
    answers.AdapterIs(50, 0);
    EXPECT_EQ(answers.WhyNotIn(30), "the access point did not let the host in within 30 s");
    answers.AdapterIs(70, 0);
    EXPECT_EQ(answers.WhyNotIn(30), "the network gave the host no address within 30 s");
}

}  // namespace

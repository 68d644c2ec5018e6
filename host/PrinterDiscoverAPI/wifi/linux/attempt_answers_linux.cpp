// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterDiscoverAPI/wifi/linux/attempt_answers_linux.h"

#include <algorithm>
#include <iterator>
#include <optional>

namespace Host {

namespace {

using Stage = AttemptAnswers::Stage;

enum AdapterState : std::uint32_t {
    kUnavailable = 20,
    kPrepare = 40,
    kConfig = 50,
    kNeedAuth = 60,
    kIpConfig = 70,
    kActivated = 100,
    kFailed = 120
};

enum Reason : std::uint32_t {
    kNothing = 0,
    kUnknown = 1,
    kNoAddress = 5,
    kNoSecrets = 7,
    kSupplicantDisconnected = 8,
    kSupplicantMisconfigured = 9,
    kSupplicantFailed = 10,
    kSupplicantTimedOut = 11,
    kDhcpNotStarted = 15,
    kDhcpError = 16,
    kDhcpFailed = 17,
    kAdapterRemoved = 36,
    kConnectionRemoved = 38,
    kEndedByUser = 39,
    kNameNotFound = 53,
    kOtherConnection = 60
};

enum AttemptReason : std::uint32_t {
    kAttemptNothing = 1,
    kUserDisconnected = 2,
    kServiceStopped = 4,
    kAddressInvalid = 5,
    kConnectTimedOut = 6,
    kAttemptNoSecrets = 9,
    kProfileRemoved = 11,
    kDeviceRemoved = 14
};

constexpr const char* kAddressMissing = "the network gave the host no address";
constexpr const char* kNoAnswer = "the access point does not answer; it may be out of range";
constexpr const char* kCannot = "the adapter cannot join such a network";
constexpr const char* kBrokenOff =
    "the access point broke off the handshake; the pass phrase may be wrong";
constexpr const char* kNotCompleted =
    "the handshake was not completed; the pass phrase may be wrong, or the access point out of "
    "range";
constexpr const char* kNoneSaved = "it needs a pass phrase, and the host has none saved";
constexpr const char* kDeleted = "the connection was deleted meanwhile";
constexpr const char* kRemoved = "the Wi-Fi adapter was removed";
constexpr const char* kEnded = "someone ended it";

// An empty field matches every value.
struct Meaning {
    std::optional<Stage> stage;
    std::optional<std::uint32_t> reason;
    std::optional<bool> sae;
    const char* words;
};

// The first match counts. The service cannot distinguish a wrong pass phrase from an access point
// that disappears during the attempt, so the texts state neither as certain.
constexpr Meaning kMeanings[] = {
    {{}, kAdapterRemoved, {}, kRemoved},
    {{}, kConnectionRemoved, {}, kDeleted},
    {{}, kEndedByUser, {}, kEnded},
    {{}, kOtherConnection, {}, "another connection took the adapter"},
    {Stage::kAdapterDown, {}, {}, "the Wi-Fi adapter was switched off, or its link is down"},
    {Stage::kRefused, {}, {}, kBrokenOff},
    {Stage::kWantsSecrets, kNoSecrets, {}, kNoneSaved},
    {{}, kNoSecrets, {}, kNotCompleted},
    {{}, kSupplicantDisconnected, {}, kBrokenOff},
    {{}, kNameNotFound, true, kNotCompleted},
    {{}, kNameNotFound, {}, kNoAnswer},
    {{}, kSupplicantTimedOut, {}, kNoAnswer},
    {{}, kSupplicantMisconfigured, {}, kCannot},
    {{}, kSupplicantFailed, {}, kCannot},
    {{}, kNoAddress, {}, kAddressMissing},
    {{}, kDhcpNotStarted, {}, kAddressMissing},
    {{}, kDhcpError, {}, kAddressMissing},
    {{}, kDhcpFailed, {}, kAddressMissing},
};

// Used if the adapter gave no reason.
constexpr Meaning kMeaningsOfAttempt[] = {
    {{}, kUserDisconnected, {}, kEnded},
    {{}, kServiceStopped, {}, "NetworkManager was ended"},
    {{}, kAddressInvalid, {}, kAddressMissing},
    {{}, kConnectTimedOut, {}, kNoAnswer},
    {{}, kAttemptNoSecrets, {}, kNotCompleted},
    {{}, kProfileRemoved, {}, kDeleted},
    {{}, kDeviceRemoved, {}, kRemoved},
};

template <class T>
bool Fits(const std::optional<T>& wanted, T value) {
    return !wanted || *wanted == value;
}

template <class Table>
const char* Find(const Table& table, Stage stage, std::uint32_t reason, bool sae) {
    const auto* const found =
        std::find_if(std::begin(table), std::end(table), [&](const Meaning& row) {
            return Fits(row.stage, stage) && Fits(row.reason, reason) && Fits(row.sae, sae);
        });
    return found == std::end(table) ? nullptr : found->words;
}

bool Tells(std::uint32_t reason) {
    return reason != kNothing && reason != kUnknown;
}

}  // namespace

void AttemptAnswers::AdapterIs(std::uint32_t state, std::uint32_t why) {
    if (hasFailed) {
        return;
    }
    Advance(state, why);
    if (state == kPrepare) {
        reason = kNothing;  // the earlier reason was about the former connection
    } else if (state == kFailed) {
        hasFailed = true;
        reason = why;
    } else if (Tells(why)) {
        reason = why;
    }
}

void AttemptAnswers::Advance(std::uint32_t state, std::uint32_t why) {
    if (state <= kUnavailable) {
        stage = Stage::kAdapterDown;
    } else if (state == kPrepare || state == kConfig) {
        hasTried = hasTried || stage == Stage::kWantsSecrets;
        stage = Stage::kReaching;
    } else if (state == kNeedAuth && why == kSupplicantDisconnected) {
        stage = Stage::kRefused;
    } else if (state == kNeedAuth) {
        stage = hasTried ? Stage::kTriedInVain : Stage::kWantsSecrets;
    } else if (state >= kIpConfig && state <= kActivated) {
        stage = Stage::kAddress;
    }
}

void AttemptAnswers::AttemptIs(std::uint32_t /*state*/, std::uint32_t why) {
    if (why > kAttemptNothing) {
        attemptReason = why;
    }
}

std::string AttemptAnswers::WhyEnded() const {
    if (const char* const words = Find(kMeanings, stage, reason, isSae)) {
        return words;
    }
    if (const char* const words = Find(kMeaningsOfAttempt, stage, attemptReason, isSae)) {
        return words;
    }
    return "NetworkManager gave up, reason " + std::to_string(reason);
}

std::string AttemptAnswers::WhyNotIn(long seconds) const {
    const std::string why = stage == Stage::kAddress    ? kAddressMissing
                            : stage == Stage::kReaching ? "the access point did not let the host in"
                                                        : "not joined";
    return why + " within " + std::to_string(seconds) + " s";
}

}  // namespace Host

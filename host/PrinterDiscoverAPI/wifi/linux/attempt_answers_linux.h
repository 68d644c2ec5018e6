// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <string>

namespace Host {

// Explains NetworkManager's answers to one attempt to join, in words for people. The numbers are
// those of its D-Bus interface.
class AttemptAnswers {
public:
    // `offersSae`: the access point has WPA3. Of a failed WPA3 handshake the service reports only
    // that it did not end.
    explicit AttemptAnswers(bool offersSae) : isSae(offersSae) {}

    // The adapter, or the attempt itself, has entered a state.
    void AdapterIs(std::uint32_t state, std::uint32_t why);
    void AttemptIs(std::uint32_t state, std::uint32_t why);

    // Whether the handshake failed: the service now only asks for another pass phrase.
    bool IsRefused() const { return stage == Stage::kRefused; }

    // The reason for an attempt that has ended, and for one that did not end in time.
    std::string WhyEnded() const;
    std::string WhyNotIn(long seconds) const;

    // The progress of the attempt.
    enum class Stage {
        kNone,
        kReaching,      // connecting to the access point
        kWantsSecrets,  // the service asks for secrets before the first try
        kTriedInVain,   // the service asks for other secrets after a try
        kRefused,       // the same, and the access point had ended the try
        kAddress,       // waiting for an address from the network
        kAdapterDown
    };

private:
    void Advance(std::uint32_t state, std::uint32_t why);

    const bool isSae;
    Stage stage = Stage::kNone;
    bool hasTried = false;
    bool hasFailed = false;
    std::uint32_t reason = 0;         // the adapter's
    std::uint32_t attemptReason = 0;  // the attempt's own
};

}  // namespace Host

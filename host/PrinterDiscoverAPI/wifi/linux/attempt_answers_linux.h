#pragma once

#include <cstdint>
#include <string>

namespace Host {

// What NetworkManager's answers to one attempt to join mean, in words for people. The numbers are
// those of its D-Bus interface; one table has them all.
class AttemptAnswers {
public:
    // `offersSae`: the access point has WPA3, of whose failed handshakes the service says only that
    // they did not end.
    explicit AttemptAnswers(bool offersSae) : isSae(offersSae) {}

    // The adapter has come into a state, and the attempt itself has.
    void AdapterIs(std::uint32_t state, std::uint32_t why);
    void AttemptIs(std::uint32_t state, std::uint32_t why);

    // Whether the handshake broke off: the service only asks for another pass phrase now.
    bool IsRefused() const { return stage == Stage::kRefused; }

    // Of one that has ended, and of one that has not in time.
    std::string WhyEnded() const;
    std::string WhyNotIn(long seconds) const;

    // How far it has come.
    enum class Stage {
        kNone,
        kReaching,      // the access point
        kWantsSecrets,  // the service does, before the first try
        kTriedInVain,   // and wants others after it
        kRefused,       // and the access point had ended it
        kAddress,       // the network is to give one
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

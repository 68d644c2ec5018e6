#pragma once

// What a printer is told of a Wi-Fi network.

#include <string>
#include <string_view>

namespace Driverless {

// A pass phrase. Each copy of it is wiped from memory when it goes.
class PassPhrase {
public:
    PassPhrase() = default;
    explicit PassPhrase(std::string_view passPhrase) : text(passPhrase) {}
    PassPhrase(const PassPhrase& other) = default;
    PassPhrase& operator=(const PassPhrase&) = delete;
    ~PassPhrase();

    const std::string& Text() const { return text; }

    // `words` of somebody else's, who may quote the pass phrase, without it.
    std::string MaskedIn(std::string words) const;

private:
    std::string text;
};

struct WifiSettings {
    std::string name;  // UTF-8
    PassPhrase passPhrase;
};

// Why these settings cannot be sent; empty when they can. The name has 1 to 32 bytes of UTF-8, the
// pass phrase 8 to 63 bytes, or none for a network without one.
std::string ProblemWith(const WifiSettings& settings);

}  // namespace Driverless

#pragma once

// The host's own Wi-Fi, through the application's library for it, whose service may hang: it is
// asked on threads that can be left behind.

#include <chrono>
#include <functional>
#include <future>
#include <optional>
#include <string>
#include <vector>

namespace Driverless {

struct HostNetwork {
    std::string name;       // UTF-8; empty: the host is joined to none
    std::string interface;  // of the host
};

// The network that the host is joined to; nothing when that is not known within `patience`, or
// cannot be known: who would take that for "none" would take a printer's own network for another.
// Throws what keeps the question from being asked (out of memory, no further thread).
std::optional<HostNetwork> CurrentNetwork(std::chrono::milliseconds patience);

// Goes back to a network for a visit, without a pass phrase; whether the host is there. Takes up to
// `patience`, and leaves for it the network that the host is on.
bool Visit(const std::string& network, std::chrono::seconds patience);

// Sends the host back to the network that it left for a visit, if any.
void EndVisit();

// Networks that a printer can be put on.
struct NetworkInRange {
    std::string name;  // UTF-8
    int quality = 0;   // of the signal, 0 to 100
};

struct NetworksFound {
    std::vector<NetworkInRange> networks;
    std::optional<std::string> problem;  // why the host could not look
};

enum class Look {
    Known,  // at what the host knows already: at once, and maybe out of date
    Fresh,  // after a new scan
};

// The networks in range: `take` is called once, on another thread, with what is ready then: them,
// or what was thrown on the way. It throws nothing itself.
void FindNetworks(Look look, std::function<void(std::future<NetworksFound>)> take);

// The same, fresh, for who waits; nothing when they are not known within `patience`. Throws what
// was thrown on the way.
std::optional<std::vector<NetworkInRange>> NetworksInRange(std::chrono::milliseconds patience);

}  // namespace Driverless

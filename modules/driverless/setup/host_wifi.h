// SPDX-License-Identifier: Apache-2.0

#pragma once

// The host's own Wi-Fi, through the application's library PrinterDiscoverAPI. Its service may hang,
// so it is called on threads that can be abandoned.

#include <chrono>
#include <functional>
#include <future>
#include <optional>
#include <string>
#include <vector>

namespace Driverless {

struct HostNetwork {
    std::string name;       // UTF-8; empty: the host is not joined
    std::string interface;  // the host's interface
};

// The network that the host is joined to; nothing when that is not known within `patience`. A
// caller must not treat "not known" as "not joined": it would mistake a printer's own network for
// another. Throws when the request cannot be started (out of memory, no further thread).
std::optional<HostNetwork> CurrentNetwork(std::chrono::milliseconds patience);

// Joins `network` for a visit, without a pass phrase, and leaves the host's current network. Takes
// up to `patience`. Returns whether the host has joined.
bool Visit(const std::string& network, std::chrono::seconds patience);

// Starts the host's return to the network that it left for a visit, if any.
void EndVisit();

// Networks that a printer can be put on.
struct NetworkInRange {
    std::string name;  // UTF-8
    int quality = 0;   // of the signal, 0 to 100
};

struct NetworksFound {
    std::vector<NetworkInRange> networks;
    std::optional<std::string> problem;  // why the host could not scan
};

enum class Look {
    Known,  // the networks that the host already knows: at once, maybe out of date
    Fresh,  // after a new scan
};

// Finds the networks in range. Calls `take` once, on another thread, with a ready future of the
// networks or of an exception. `take` must not throw.
void FindNetworks(Look look, std::function<void(std::future<NetworksFound>)> take);

// The same after a new scan, for a caller that waits; nothing when the networks are not known
// within `patience`. Throws the exception of the search.
std::optional<std::vector<NetworkInRange>> NetworksInRange(std::chrono::milliseconds patience);

}  // namespace Driverless

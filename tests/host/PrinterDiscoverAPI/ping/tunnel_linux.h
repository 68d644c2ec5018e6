// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace HostTest {

// An IPv4 packet with an ICMP message in it, as bytes.
using IcmpPacket = std::vector<std::uint8_t>;

// Where parts of a packet lie whose IPv4 header has no options.
inline constexpr std::size_t kSourceAt = 12;
inline constexpr std::size_t kTargetAt = 16;
inline constexpr std::size_t kIcmpAt = 20;
inline constexpr std::size_t kIdAt = 24;
inline constexpr std::size_t kSequenceAt = 26;
inline constexpr std::size_t kPayloadAt = 28;

// The right answer to an echo request.
IcmpPacket ReplyTo(const IcmpPacket& request);

// An error message from 10.99.1.254 about a packet, quoting its first `quoted` bytes.
IcmpPacket ErrorAbout(const IcmpPacket& packet, std::uint8_t type, std::uint8_t code,
                      std::size_t quoted = 28);

// The same with lengths and checksums made right after a change.
IcmpPacket Sealed(IcmpPacket packet);

// The other end of the tunnel: all the hosts of 10.99.1.0/24, which answer each echo request as the
// test says.
class Tunnel {
public:
    using Send = std::function<void(const IcmpPacket&)>;
    using Behaviour = std::function<void(const IcmpPacket& request, const Send& send)>;

    explicit Tunnel(Behaviour whatItDoes);
    ~Tunnel();
    Tunnel(const Tunnel&) = delete;
    Tunnel& operator=(const Tunnel&) = delete;

    int Requests() const { return requests; }

private:
    void Run();

    const Behaviour behaviour;
    const int descriptor;
    std::atomic<int> requests = 0;
    std::atomic<bool> ended = false;
    std::thread thread;
};

}  // namespace HostTest

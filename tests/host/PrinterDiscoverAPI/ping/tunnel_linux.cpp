// SPDX-License-Identifier: Apache-2.0

#include "tests/host/PrinterDiscoverAPI/ping/tunnel_linux.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <linux/if.h>
#include <linux/if_tun.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace HostTest {

namespace {

constexpr std::uint8_t kEchoReply = 0;
constexpr std::uint8_t kEchoRequest = 8;
constexpr std::size_t kLengthAt = 2;
constexpr std::size_t kTimeToLiveAt = 8;
constexpr std::size_t kProtocolAt = 9;
constexpr std::size_t kHeaderChecksumAt = 10;
constexpr std::size_t kIcmpChecksumAt = kIcmpAt + 2;

void PutNumber(IcmpPacket& packet, std::size_t at, std::size_t number) {
    packet[at] = static_cast<std::uint8_t>(number >> 8);
    packet[at + 1] = static_cast<std::uint8_t>(number);
}

// Writes the Internet checksum of the bytes from `begin` to `end` at `at`.
void PutChecksum(IcmpPacket& packet, std::size_t begin, std::size_t end, std::size_t at) {
    PutNumber(packet, at, 0);
    std::size_t sum = 0;
    for (std::size_t index = begin; index < end; ++index) {
        sum += (index - begin) % 2 == 0 ? std::size_t{packet[index]} << 8 : packet[index];
    }
    while (sum > 0xFFFF) {
        sum = (sum & 0xFFFF) + (sum >> 16);
    }
    PutNumber(packet, at, ~sum & 0xFFFF);
}

bool IsEchoRequest(const IcmpPacket& packet) {
    return packet.size() >= kPayloadAt && packet[0] == 0x45 &&
           packet[kProtocolAt] == IPPROTO_ICMP && packet[kIcmpAt] == kEchoRequest;
}

bool HasInput(int descriptor) {
    pollfd input{descriptor, POLLIN, 0};
    return poll(&input, 1, 10) == 1;
}

// A tunnel drops what is sent through it until the system has noticed that its end is open.
void AwaitUse(int tunnel) {
    const int sender = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    sockaddr_in anyone{};
    anyone.sin_family = AF_INET;
    anyone.sin_port = htons(9);
    inet_pton(AF_INET, "10.99.1.99", &anyone.sin_addr);
    do {
        sendto(sender, "", 0, 0, reinterpret_cast<const sockaddr*>(&anyone), sizeof anyone);
    } while (!HasInput(tunnel));
    close(sender);
}

int OpenTunnel() {
    const int descriptor = open("/dev/net/tun", O_RDWR | O_CLOEXEC);
    ifreq request{};
    std::strcpy(request.ifr_name, "tunnel");
    request.ifr_flags = IFF_TUN | IFF_NO_PI;
    if (descriptor < 0 || ioctl(descriptor, TUNSETIFF, &request) != 0) {
        throw std::runtime_error("there is no tunnel");
    }
    AwaitUse(descriptor);
    return descriptor;
}

// It stays open: opening it takes its time.
int TheTunnel() {
    static const int descriptor = OpenTunnel();
    return descriptor;
}

}  // namespace

IcmpPacket Sealed(IcmpPacket packet) {
    PutNumber(packet, kLengthAt, packet.size());
    PutChecksum(packet, 0, kIcmpAt, kHeaderChecksumAt);
    PutChecksum(packet, kIcmpAt, packet.size(), kIcmpChecksumAt);
    return packet;
}

IcmpPacket ReplyTo(const IcmpPacket& request) {
    IcmpPacket reply = request;
    std::swap_ranges(&reply[kSourceAt], &reply[kSourceAt + 4], &reply[kTargetAt]);
    reply[kTimeToLiveAt] = 57;
    reply[kIcmpAt] = kEchoReply;
    return Sealed(std::move(reply));
}

IcmpPacket ErrorAbout(const IcmpPacket& packet, std::uint8_t type, std::uint8_t code,
                      std::size_t quoted) {
    IcmpPacket error(packet.begin(), packet.begin() + kIcmpAt);
    error[kTimeToLiveAt] = 64;
    std::copy_n(&packet[kSourceAt], 4, &error[kTargetAt]);
    const std::uint8_t router[] = {10, 99, 1, 254};
    std::copy_n(router, sizeof router, &error[kSourceAt]);
    error.insert(error.end(), {type, code, 0, 0, 0, 0, 0, 0});
    error.insert(error.end(), packet.begin(),
                 packet.begin() + static_cast<std::ptrdiff_t>(std::min(quoted, packet.size())));
    return Sealed(std::move(error));
}

Tunnel::Tunnel(Behaviour whatItDoes)
    : behaviour(std::move(whatItDoes)), descriptor(TheTunnel()), thread([this] { Run(); }) {}

Tunnel::~Tunnel() {
    ended = true;
    thread.join();
}

void Tunnel::Run() {
    const Send send = [this](const IcmpPacket& packet) {
        [[maybe_unused]] const ssize_t sent = write(descriptor, packet.data(), packet.size());
    };
    while (!ended) {
        if (!HasInput(descriptor)) {
            continue;
        }
        IcmpPacket packet(2000);
        const ssize_t size = read(descriptor, packet.data(), packet.size());
        packet.resize(size < 0 ? 0 : static_cast<std::size_t>(size));
        if (IsEchoRequest(packet)) {
            ++requests;
            behaviour(packet, send);
        }
    }
}

}  // namespace HostTest

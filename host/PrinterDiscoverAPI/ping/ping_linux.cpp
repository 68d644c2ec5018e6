// SPDX-License-Identifier: Apache-2.0

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

// The kernel's header, also for the filter of raw sockets; after the C library's own headers.
#include <linux/errqueue.h>
#include <linux/filter.h>
#include <linux/icmp.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <optional>
#include <system_error>
#include <utility>

#include "host/PrinterDiscoverAPI/ping/ping.h"

namespace {

using Clock = std::chrono::steady_clock;

// The shortest header of an IPv4 packet.
constexpr std::size_t kShortestIpHeader = 20;

struct EchoPacket {
    icmphdr header;
    Host::EchoPayload payload;
};
static_assert(sizeof(EchoPacket) == sizeof(icmphdr) + sizeof(Host::EchoPayload));

std::uint16_t Checksum(const EchoPacket& packet) {
    std::array<std::uint16_t, sizeof packet / 2> words;
    std::memcpy(words.data(), &packet, sizeof packet);
    std::uint32_t sum = 0;
    for (const std::uint16_t word : words) {
        sum += word;
    }
    sum = (sum & 0xFFFF) + (sum >> 16);
    sum += sum >> 16;
    return static_cast<std::uint16_t>(~sum);
}

EchoPacket NewRequest() {
    const Host::EchoPayload numbers = Host::UniqueEchoPayload();
    EchoPacket packet{};
    packet.header.type = ICMP_ECHO;
    packet.header.un.echo.id = static_cast<std::uint16_t>(numbers[0]);
    packet.header.un.echo.sequence = static_cast<std::uint16_t>(numbers[0] >> 16);
    packet.payload = numbers;
    packet.header.checksum = Checksum(packet);
    return packet;
}

std::string ErrorText(int error) {
    return std::system_category().message(error);
}

bool IsPermission(int error) {
    return error == EACCES || error == EPERM;
}

// A socket that sends and receives ICMP, closed with its owner.
class IcmpSocket {
public:
    IcmpSocket() {
        // Members of the system's ping_group_range may open a datagram socket.
        descriptor = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, IPPROTO_ICMP);
        datagramError = descriptor < 0 ? errno : 0;
        if (IsPermission(datagramError) || datagramError == EPROTONOSUPPORT) {
            descriptor = socket(AF_INET, SOCK_RAW | SOCK_CLOEXEC, IPPROTO_ICMP);
            rawError = descriptor < 0 ? errno : 0;
        }
        if (IsOpen()) {
            Configure();
        }
    }
    ~IcmpSocket() {
        if (IsOpen()) {
            close(descriptor);
        }
    }
    IcmpSocket(const IcmpSocket&) = delete;
    IcmpSocket& operator=(const IcmpSocket&) = delete;

    bool IsOpen() const { return descriptor >= 0; }
    bool IsRaw() const { return datagramError != 0; }
    int Descriptor() const { return descriptor; }

    // Why it is not open.
    Host::Echo Problem() const {
        if (IsPermission(rawError)) {
            return {Host::EchoResult::kNotAllowed,
                    {},
                    "ping is not allowed: neither a datagram ICMP socket (" +
                        ErrorText(datagramError) +
                        "; the process's group must be in net.ipv4.ping_group_range) nor a raw one "
                        "(" +
                        ErrorText(rawError) + "; CAP_NET_RAW is needed)"};
        }
        return {
            Host::EchoResult::kNotAsked, {}, ErrorText(rawError != 0 ? rawError : datagramError)};
    }

private:
    void Configure() const {
        const int yes = 1;
        setsockopt(descriptor, IPPROTO_IP, IP_RECVTTL, &yes, sizeof yes);
        if (!IsRaw()) {
            // ICMP errors about our request arrive in the error queue.
            setsockopt(descriptor, IPPROTO_IP, IP_RECVERR, &yes, sizeof yes);
            return;
        }
        // A raw socket receives every ICMP packet of the host.
        icmp_filter filter{};
        filter.data = ~((1U << ICMP_ECHOREPLY) | (1U << ICMP_DEST_UNREACH) |
                        (1U << ICMP_TIME_EXCEEDED) | (1U << ICMP_PARAMETERPROB));
        setsockopt(descriptor, SOL_RAW, ICMP_FILTER, &filter, sizeof filter);
    }

    int descriptor = -1;
    int datagramError = 0;
    int rawError = 0;
};

struct ReceivedPacket {
    in_addr source;
    std::uint32_t timeToLive = 0;
    int error = 0;  // from the error queue: the system's error number
    std::size_t size = 0;
    alignas(8) unsigned char bytes[512];
};

void ReadControl(msghdr& message, ReceivedPacket& packet) {
    for (cmsghdr* part = CMSG_FIRSTHDR(&message); part != nullptr;
         part = CMSG_NXTHDR(&message, part)) {
        if (part->cmsg_level != IPPROTO_IP) {
            continue;
        }
        if (part->cmsg_type == IP_TTL) {
            int timeToLive = 0;
            std::memcpy(&timeToLive, CMSG_DATA(part), sizeof timeToLive);
            packet.timeToLive = static_cast<std::uint32_t>(timeToLive);
        } else if (part->cmsg_type == IP_RECVERR) {
            sock_extended_err error{};
            std::memcpy(&error, CMSG_DATA(part), sizeof error);
            packet.error = static_cast<int>(error.ee_errno);
        }
    }
}

// The next packet, or the next entry of the error queue, without waiting.
bool Receive(const IcmpSocket& socket, int flags, ReceivedPacket& packet) {
    sockaddr_in source{};
    iovec buffer{packet.bytes, sizeof packet.bytes};
    alignas(cmsghdr) unsigned char control[256];
    msghdr message{};
    message.msg_name = &source;
    message.msg_namelen = sizeof source;
    message.msg_iov = &buffer;
    message.msg_iovlen = 1;
    message.msg_control = control;
    message.msg_controllen = sizeof control;
    const ssize_t size = recvmsg(socket.Descriptor(), &message, flags | MSG_DONTWAIT);
    if (size < 0) {
        return false;
    }
    packet.size = static_cast<std::size_t>(size);
    packet.source = source.sin_addr;
    packet.error = 0;
    ReadControl(message, packet);
    return true;
}

// Raw sockets receive every ICMP packet of the host. This filter keeps only replies and errors for
// our request, so that other traffic cannot overflow the receive buffer. It also drops packets that
// are too short for its checks.
void KeepOnly(const IcmpSocket& socket, const EchoPacket& request) {
    constexpr std::uint32_t kErrorHeader = sizeof(icmphdr);
    constexpr std::uint32_t kNumbersAt = offsetof(icmphdr, un);  // the id and the sequence
    constexpr std::uint32_t kAll = 0xFFFFFFFF;
    std::uint32_t numbers = 0;
    std::memcpy(&numbers, &request.header.un, sizeof numbers);
    sock_filter program[] = {
        // Skip the header; for an error, also skip the quoted header.
        {BPF_LDX | BPF_B | BPF_MSH, 0, 0, 0},
        {BPF_LD | BPF_B | BPF_IND, 0, 0, 0},
        {BPF_JMP | BPF_JEQ | BPF_K, 6, 0, ICMP_ECHOREPLY},
        {BPF_LD | BPF_B | BPF_IND, 0, 0, kErrorHeader},
        {BPF_ALU | BPF_AND | BPF_K, 0, 0, 0x0F},
        {BPF_ALU | BPF_LSH | BPF_K, 0, 0, 2},
        // Adding and constants both have the number 0.
        // NOLINTNEXTLINE(misc-redundant-expression)
        {BPF_ALU | BPF_ADD | BPF_K, 0, 0, kErrorHeader},
        {BPF_ALU | BPF_ADD | BPF_X, 0, 0, 0},
        {BPF_MISC | BPF_TAX, 0, 0, 0},
        {BPF_LD | BPF_W | BPF_IND, 0, 0, kNumbersAt},
        {BPF_JMP | BPF_JEQ | BPF_K, 0, 1, ntohl(numbers)},
        {BPF_RET | BPF_K, 0, 0, kAll},
        {BPF_RET | BPF_K, 0, 0, 0},
    };
    const sock_fprog filter{static_cast<unsigned short>(std::size(program)), program};
    const bool keeps =
        setsockopt(socket.Descriptor(), SOL_SOCKET, SO_ATTACH_FILTER, &filter, sizeof filter) == 0;
    // Drop packets that arrived before the filter was set.
    ReceivedPacket packet;
    while (keeps && Receive(socket, 0, packet)) {
    }
}

// The length of the IPv4 header at the start of `bytes`; nothing when it is incomplete.
std::optional<std::size_t> IpHeaderLength(const unsigned char* bytes, std::size_t size) {
    if (size < kShortestIpHeader) {
        return std::nullopt;
    }
    const std::size_t length = (bytes[0] & 0x0FU) * std::size_t{4};
    if (bytes[0] >> 4 != 4 || length < kShortestIpHeader || length > size) {
        return std::nullopt;
    }
    return length;
}

// One echo request and the search for its reply.
class Exchange {
public:
    Exchange(const IcmpSocket& icmpSocket, in_addr whom, Clock::time_point until)
        : socket(icmpSocket), target(whom), deadline(until), request(NewRequest()) {}

    Host::Echo Run() {
        if (socket.IsRaw()) {
            KeepOnly(socket, request);
        }
        if (const int error = Send(); error != 0) {
            return {Host::EchoResult::kNotAsked, {}, ErrorText(error)};
        }
        while (verdict == Verdict::kNone && WaitForInput()) {
            if (!socket.IsRaw()) {
                ReadErrors();
            }
            ReceivedPacket packet;
            if (verdict == Verdict::kNone && Receive(socket, 0, packet)) {
                Examine(packet);
            }
        }
        if (verdict == Verdict::kAnswered) {
            return {Host::EchoResult::kAnswered, reply, {}};
        }
        return {Host::EchoResult::kSilent, {}, {}};
    }

private:
    enum class Verdict { kNone, kAnswered, kRefused };

    int Send() {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr = target;
        sent = Clock::now();
        for (;;) {
            if (sendto(socket.Descriptor(), &request, sizeof request, 0,
                       reinterpret_cast<const sockaddr*>(&address), sizeof address) >= 0) {
                return 0;
            }
            if (errno != EINTR) {
                return errno;
            }
        }
    }

    // False when the time is over, but even then the socket is checked once.
    bool WaitForInput() {
        for (;;) {
            const auto left = std::max(std::chrono::nanoseconds(deadline - Clock::now()),
                                       std::chrono::nanoseconds(0));
            const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(left);
            const timespec limit{seconds.count(), (left - seconds).count()};
            pollfd input{socket.Descriptor(), POLLIN, 0};
            const int ready = ppoll(&input, 1, &limit, nullptr);
            if (ready > 0) {
                return left.count() > 0 || !std::exchange(lastLook, true);
            }
            if (ready == 0 || errno != EINTR) {
                return false;
            }
        }
    }

    // The kernel has selected the errors for this socket's id; they contain the destination of the
    // request.
    void ReadErrors() {
        ReceivedPacket packet;
        while (verdict == Verdict::kNone && Receive(socket, MSG_ERRQUEUE, packet)) {
            if (packet.error != 0 && packet.source.s_addr == target.s_addr &&
                IsRequest(packet.bytes, packet.size)) {
                verdict = Verdict::kRefused;
            }
        }
    }

    void Examine(const ReceivedPacket& packet) {
        const unsigned char* bytes = packet.bytes;
        std::size_t size = packet.size;
        if (socket.IsRaw()) {
            const auto ipHeader = IpHeaderLength(bytes, size);
            if (!ipHeader) {
                return;
            }
            bytes += *ipHeader;
            size -= *ipHeader;
        }
        if (size < sizeof(icmphdr)) {
            return;
        }
        if (bytes[0] == ICMP_ECHOREPLY) {
            ExamineReply(packet, bytes, size);
        } else {
            ExamineError(bytes + sizeof(icmphdr), size - sizeof(icmphdr));
        }
    }

    void ExamineReply(const ReceivedPacket& packet, const unsigned char* bytes, std::size_t size) {
        if (packet.source.s_addr != target.s_addr || size != sizeof request ||
            !IsOurs(bytes, size) || !IsWhole(bytes)) {
            return;
        }
        const auto took =
            std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - sent);
        reply.address = packet.source.s_addr;
        reply.roundTripTime = static_cast<std::uint32_t>(took.count());
        reply.timeToLive = packet.timeToLive;
        reply.dataSize = static_cast<std::uint32_t>(size - sizeof(icmphdr));
        verdict = Verdict::kAnswered;
    }

    // An ICMP error quotes the start of the packet that caused it.
    void ExamineError(const unsigned char* quoted, std::size_t size) {
        const auto ipHeader = IpHeaderLength(quoted, size);
        if (!ipHeader || std::memcmp(quoted + 16, &target, sizeof target) != 0 ||
            quoted[9] != IPPROTO_ICMP) {
            return;
        }
        if (IsRequest(quoted + *ipHeader, size - *ipHeader)) {
            verdict = Verdict::kRefused;
        }
    }

    // Raw sockets also receive damaged packets. The checksum over an intact packet is zero.
    static bool IsWhole(const unsigned char* reply) {
        EchoPacket packet;
        std::memcpy(&packet, reply, sizeof packet);
        return Checksum(packet) == 0;
    }

    bool IsRequest(const unsigned char* bytes, std::size_t size) const {
        return size >= sizeof(icmphdr) && bytes[0] == ICMP_ECHO && IsOurs(bytes, size);
    }

    // Whether an echo has our id, sequence number and payload, as far as quoted. For a datagram
    // socket the kernel sets and checks the id.
    bool IsOurs(const unsigned char* bytes, std::size_t size) const {
        icmphdr header;
        std::memcpy(&header, bytes, sizeof header);
        const std::size_t payload = std::min(size - sizeof header, sizeof request - sizeof header);
        return header.un.echo.sequence == request.header.un.echo.sequence &&
               (!socket.IsRaw() || header.un.echo.id == request.header.un.echo.id) &&
               std::memcmp(bytes + sizeof header, request.payload.data(), payload) == 0;
    }

    const IcmpSocket& socket;
    const in_addr target;
    const Clock::time_point deadline;
    const EchoPacket request;
    Clock::time_point sent;
    bool lastLook = false;
    Verdict verdict = Verdict::kNone;
    PrinterDiscoverAPI::PingReply reply{};
};

}  // namespace

namespace Host {

Echo SendEcho(const char* address, std::chrono::milliseconds timeout) {
    const Clock::time_point deadline = Clock::now() + timeout;
    in_addr target{};
    if (inet_pton(AF_INET, address, &target) != 1) {
        return {EchoResult::kBadAddress, {}, {}};
    }
    const IcmpSocket socket;
    if (!socket.IsOpen()) {
        return socket.Problem();
    }
    return Exchange(socket, target, deadline).Run();
}

}  // namespace Host

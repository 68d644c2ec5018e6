// SPDX-License-Identifier: Apache-2.0

// The system's headers need this order.
#include "platform/os.h"

#include <winsock2.h>
#include <ws2tcpip.h>

#include <iphlpapi.h>

#include <icmpapi.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "host/PrinterDiscoverAPI/ping/ping.h"

namespace {

// The shortest timeout in milliseconds: the system refuses 0.
constexpr std::uint32_t kShortestTimeout = 1;
// The longest timeout: the system may treat larger values as endless.
constexpr std::uint32_t kLongestTimeout = 0x7FFFFFFF;

class IcmpFile {
public:
    IcmpFile() : handle(IcmpCreateFile()), error(IsOpen() ? ERROR_SUCCESS : GetLastError()) {}
    ~IcmpFile() {
        if (IsOpen()) {
            IcmpCloseHandle(handle);
        }
    }
    IcmpFile(const IcmpFile&) = delete;
    IcmpFile& operator=(const IcmpFile&) = delete;

    bool IsOpen() const { return handle != INVALID_HANDLE_VALUE; }
    HANDLE Handle() const { return handle; }

    Host::Echo Problem() const {
        const std::string number = "error " + std::to_string(error);
        if (error == ERROR_ACCESS_DENIED) {
            return {Host::EchoResult::kNotAllowed, {}, "ping is not allowed: " + number};
        }
        return {Host::EchoResult::kNotAsked, {}, number};
    }

private:
    HANDLE handle;
    DWORD error;
};

// Whether the error means that no host answered, not that the request could not be sent.
bool IsSilence(DWORD error) {
    switch (error) {
        case IP_REQ_TIMED_OUT:
        case IP_DEST_NET_UNREACHABLE:
        case IP_DEST_HOST_UNREACHABLE:
        case IP_DEST_PROT_UNREACHABLE:
        case IP_DEST_PORT_UNREACHABLE:
        case IP_TTL_EXPIRED_TRANSIT:
        case IP_TTL_EXPIRED_REASSEM:
        case IP_PARAM_PROBLEM:
            return true;
        default:
            return false;
    }
}

Host::Echo NotAsked(DWORD error) {
    if (IsSilence(error)) {
        return {Host::EchoResult::kSilent, {}, {}};
    }
    if (error == ERROR_ACCESS_DENIED) {
        return {Host::EchoResult::kNotAllowed, {}, "ping is not allowed: error 5"};
    }
    return {Host::EchoResult::kNotAsked, {}, "error " + std::to_string(error)};
}

bool IsOurs(const ICMP_ECHO_REPLY& reply, IN_ADDR target, const Host::EchoPayload& payload) {
    return reply.Status == IP_SUCCESS && reply.Address == target.S_un.S_addr &&
           reply.DataSize == sizeof payload &&
           std::memcmp(reply.Data, payload.data(), sizeof payload) == 0;
}

}  // namespace

namespace Host {

Echo SendEcho(const char* address, std::chrono::milliseconds timeout) {
    IN_ADDR target{};
    if (InetPtonA(AF_INET, address, &target) != 1) {
        return {EchoResult::kBadAddress, {}, {}};
    }
    const IcmpFile file;
    if (!file.IsOpen()) {
        return file.Problem();
    }
    EchoPayload payload = UniqueEchoPayload();
    // Room for the reply, its data, an ICMP error and the system's own status block.
    alignas(ICMP_ECHO_REPLY) unsigned char buffer[sizeof(ICMP_ECHO_REPLY) + sizeof payload + 64];
    const DWORD milliseconds = static_cast<DWORD>(
        std::clamp<std::int64_t>(timeout.count(), kShortestTimeout, kLongestTimeout));
    if (IcmpSendEcho(file.Handle(), target.S_un.S_addr, payload.data(), sizeof payload, nullptr,
                     buffer, sizeof buffer, milliseconds) == 0) {
        return NotAsked(GetLastError());
    }
    ICMP_ECHO_REPLY reply;
    std::memcpy(&reply, buffer, sizeof reply);
    if (!IsOurs(reply, target, payload)) {
        return {EchoResult::kSilent, {}, {}};
    }
    return {EchoResult::kAnswered,
            {reply.Address, reply.RoundTripTime, reply.Options.Ttl, reply.DataSize},
            {}};
}

}  // namespace Host

// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <sys/socket.h>

#include <atomic>
#include <chrono>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>

struct gnutls_session_int;
struct gnutls_certificate_credentials_st;

namespace Base {

// A connection with one deadline for connecting, TLS and every byte. A peer that sends slowly or
// endlessly cannot hold the caller longer.
class ByteStream {
public:
    using Clock = std::chrono::steady_clock;

    explicit ByteStream(Clock::time_point end) : deadline(end) {}
    ~ByteStream();

    // Connects, after closing an earlier connection. On false see Problem().
    bool Connect(const sockaddr* address, socklen_t size);

    // Starts TLS. Accepts any certificate, because printers sign their own. Sends `host` as the
    // server name unless it is an address.
    bool StartTls(const std::string& host);

    bool Write(std::string_view bytes);

    // The number of bytes read; 0 when the peer has closed; nothing on failure.
    std::optional<std::size_t> Read(std::span<char> room);

    // Aborts the current operation of another thread, and all later ones.
    void Cut();

    bool IsOver() const { return isCut || Clock::now() >= deadline; }
    const std::string& Problem() const { return problem; }
    // Whether the host refused the last Connect because no program listens on the port.
    bool IsRefused() const { return isRefused; }

    ByteStream(const ByteStream&) = delete;
    ByteStream& operator=(const ByteStream&) = delete;

private:
    bool Open(int family);
    void Close();
    bool Await(short events);
    bool AwaitTls();
    bool Fail(const std::string& reason);
    bool FailWith(int error);

    const Clock::time_point deadline;
    std::atomic<bool> isCut{false};
    std::mutex mutex;  // guards the socket, so that a shutdown never hits a reused descriptor
    int connection = -1;
    gnutls_session_int* tls = nullptr;
    bool isEncrypted = false;
    bool isRefused = false;
    gnutls_certificate_credentials_st* credentials = nullptr;
    std::string problem;
};

}  // namespace Base

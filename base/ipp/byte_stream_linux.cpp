// SPDX-License-Identifier: Apache-2.0

#include "base/ipp/byte_stream_linux.h"

#include <arpa/inet.h>
#include <gnutls/gnutls.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>

namespace Base {

namespace {

constexpr const char* kLate = "no answer in time";
constexpr const char* kCut = "broken off";

bool IsAddress(const std::string& host) {
    std::array<unsigned char, sizeof(in6_addr)> address{};
    return inet_pton(AF_INET, host.c_str(), address.data()) == 1 ||
           inet_pton(AF_INET6, host.c_str(), address.data()) == 1;
}

bool IsPassing(int tlsResult) {
    return tlsResult == GNUTLS_E_AGAIN || tlsResult == GNUTLS_E_INTERRUPTED;
}

}  // namespace

ByteStream::~ByteStream() {
    Close();
}

bool ByteStream::Connect(const sockaddr* address, socklen_t size) {
    Close();
    isRefused = false;
    if (!Open(address->sa_family)) {
        return false;
    }
    if (connect(connection, address, size) == 0) {
        return true;
    }
    if (errno != EINPROGRESS) {
        return FailWith(errno);
    }
    int error = 0;
    socklen_t errorSize = sizeof error;
    if (!Await(POLLOUT)) {
        return false;
    }
    getsockopt(connection, SOL_SOCKET, SO_ERROR, &error, &errorSize);
    isRefused = error == ECONNREFUSED;
    return error == 0 || FailWith(error);
}

bool ByteStream::Open(int family) {
    const int opened = socket(family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (opened < 0) {
        return FailWith(errno);
    }
    // Send the request and its header immediately, each when it is written.
    const int on = 1;
    if (family != AF_UNIX) {
        setsockopt(opened, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    }
    const std::lock_guard lock(mutex);
    connection = opened;
    return !isCut || Fail(kCut);
}

void ByteStream::Close() {
    if (tls != nullptr) {
        if (isEncrypted) {
            gnutls_bye(tls, GNUTLS_SHUT_WR);
        }
        gnutls_deinit(tls);
        gnutls_certificate_free_credentials(credentials);
        tls = nullptr;
        isEncrypted = false;
    }
    const std::lock_guard lock(mutex);
    if (connection >= 0) {
        close(connection);
        connection = -1;
    }
}

bool ByteStream::StartTls(const std::string& host) {
    // Hold one more reference than the library itself: otherwise it shuts down at process exit
    // under threads that still use it.
    [[maybe_unused]] static const int kept = gnutls_global_init();
    if (gnutls_certificate_allocate_credentials(&credentials) != GNUTLS_E_SUCCESS) {
        return Fail("no memory for TLS");
    }
    if (gnutls_init(&tls, GNUTLS_CLIENT | GNUTLS_NONBLOCK | GNUTLS_NO_SIGNAL) != GNUTLS_E_SUCCESS) {
        gnutls_certificate_free_credentials(credentials);
        tls = nullptr;
        return Fail("no memory for TLS");
    }
    // Old printers support only old versions.
    gnutls_set_default_priority_append(tls, "+VERS-TLS1.1:+VERS-TLS1.0:%COMPAT", nullptr, 0);
    gnutls_credentials_set(tls, GNUTLS_CRD_CERTIFICATE, credentials);
    if (!host.empty() && !IsAddress(host)) {
        gnutls_server_name_set(tls, GNUTLS_NAME_DNS, host.data(), host.size());
    }
    gnutls_transport_set_int(tls, connection);
    int result = gnutls_handshake(tls);
    while (result != GNUTLS_E_SUCCESS) {
        if (gnutls_error_is_fatal(result) != 0) {
            return Fail(std::string("TLS: ") + gnutls_strerror(result));
        }
        if (IsOver() || (IsPassing(result) && !AwaitTls())) {
            return Fail(isCut ? kCut : kLate);
        }
        result = gnutls_handshake(tls);
    }
    isEncrypted = true;
    return true;
}

bool ByteStream::Write(std::string_view bytes) {
    while (!bytes.empty()) {
        if (IsOver()) {
            return Fail(isCut ? kCut : kLate);
        }
        const auto sent = tls == nullptr
                              ? send(connection, bytes.data(), bytes.size(), MSG_NOSIGNAL)
                              : gnutls_record_send(tls, bytes.data(), bytes.size());
        if (sent >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(sent));
            continue;
        }
        const bool isPassing =
            tls == nullptr ? errno == EAGAIN || errno == EINTR : IsPassing(static_cast<int>(sent));
        if (!isPassing) {
            return tls == nullptr
                       ? FailWith(errno)
                       : Fail(std::string("TLS: ") + gnutls_strerror(static_cast<int>(sent)));
        }
        if (!(tls == nullptr ? Await(POLLOUT) : AwaitTls())) {
            return false;
        }
    }
    return true;
}

std::optional<std::size_t> ByteStream::Read(std::span<char> room) {
    while (true) {
        if (IsOver()) {
            Fail(isCut ? kCut : kLate);
            return std::nullopt;
        }
        const auto size = tls == nullptr ? recv(connection, room.data(), room.size(), 0)
                                         : gnutls_record_recv(tls, room.data(), room.size());
        // Some peers end TLS without a close notification.
        if (size >= 0 || (tls != nullptr && size == GNUTLS_E_PREMATURE_TERMINATION)) {
            return static_cast<std::size_t>(std::max<ssize_t>(size, 0));
        }
        const bool isPassing = tls == nullptr ? errno == EAGAIN || errno == EINTR
                                              : gnutls_error_is_fatal(static_cast<int>(size)) == 0;
        if (!isPassing) {
            tls == nullptr ? FailWith(errno)
                           : Fail(std::string("TLS: ") + gnutls_strerror(static_cast<int>(size)));
            return std::nullopt;
        }
        const bool isWaiting = tls == nullptr || IsPassing(static_cast<int>(size));
        if (isWaiting && !(tls == nullptr ? Await(POLLIN) : AwaitTls())) {
            return std::nullopt;
        }
    }
}

void ByteStream::Cut() {
    isCut = true;
    const std::lock_guard lock(mutex);
    if (connection >= 0) {
        shutdown(connection, SHUT_RDWR);
    }
}

bool ByteStream::Await(short events) {
    while (!IsOver()) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
        constexpr std::chrono::milliseconds kLongest{60000};
        pollfd file{connection, events, 0};
        const int count = poll(&file, 1, static_cast<int>(std::clamp(left, {}, kLongest).count()));
        if (count > 0) {
            return !isCut || Fail(kCut);
        }
        if (count < 0 && errno != EINTR) {
            return FailWith(errno);
        }
    }
    return Fail(isCut ? kCut : kLate);
}

bool ByteStream::AwaitTls() {
    return Await(gnutls_record_get_direction(tls) == 0 ? POLLIN : POLLOUT);
}

bool ByteStream::Fail(const std::string& reason) {
    problem = reason;
    return false;
}

bool ByteStream::FailWith(int error) {
    return Fail(std::generic_category().message(error));
}

}  // namespace Base

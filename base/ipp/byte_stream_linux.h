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

// A connection with one deadline for everything: being made, TLS, every byte. No peer can keep a
// caller longer, however slowly or endlessly it speaks.
class ByteStream {
public:
    using Clock = std::chrono::steady_clock;

    explicit ByteStream(Clock::time_point end) : deadline(end) {}
    ~ByteStream();

    // Closes an earlier connection. False: see Problem().
    bool Connect(const sockaddr* address, socklen_t size);

    // Encrypts from here on. Any certificate will do: printers have made theirs themselves. `host`
    // is the name that the peer is told, unless it is an address.
    bool StartTls(const std::string& host);

    bool Write(std::string_view bytes);

    // The number of bytes that came; 0 at the peer's end; nothing on failure.
    std::optional<std::size_t> Read(std::span<char> room);

    // Ends what another thread is doing here, and everything that comes.
    void Cut();

    bool IsOver() const { return isCut || Clock::now() >= deadline; }
    const std::string& Problem() const { return problem; }
    // Whether the last Connect found a host on which nobody listens.
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
    std::mutex
        mutex;  // of the socket: another thread may shut it down, not one that took its place
    int connection = -1;
    gnutls_session_int* tls = nullptr;
    bool isEncrypted = false;
    bool isRefused = false;
    gnutls_certificate_credentials_st* credentials = nullptr;
    std::string problem;
};

}  // namespace Base

// SPDX-License-Identifier: Apache-2.0

#include "base/ipp/ipp_exchange_linux.h"

#include <array>

#include "base/ipp/http_answer.h"
#include "base/secret.h"

namespace Base {

namespace {

constexpr int kHttpOk = 200;

// Percent-encodes blanks, control characters, non-ASCII bytes and `forbidden` characters. `text`
// may come from a stranger.
std::string Encoded(std::string_view text, std::string_view forbidden) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string encoded;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte > ' ' && byte < 0x7F && forbidden.find(c) == std::string_view::npos) {
            encoded += c;
        } else {
            encoded += '%';
            encoded += kDigits[byte >> 4U];
            encoded += kDigits[byte & 0xFU];
        }
    }
    return encoded;
}

std::string Authority(const IppTarget& target) {
    std::string authority = Encoded(target.host, "/?#@[]\"<>\\");
    if (authority.find(':') != std::string::npos) {
        authority.insert(0, 1, '[');
        authority += ']';
    }
    return authority.append(":").append(std::to_string(target.port));
}

// An already encoded path stays unchanged.
std::string Path(const IppTarget& target) {
    return Encoded(target.resource, "?#\"<>\\");
}

std::string Head(const IppTarget& target, std::size_t size) {
    std::string head =
        "POST " + Path(target) + " HTTP/1.1\r\nHost: " + Authority(target) +
        "\r\nContent-Type: application/ipp\r\nContent-Length: " + std::to_string(size) + "\r\n";
    if (!target.authorization.empty()) {
        head += "Authorization: " + target.authorization + "\r\n";
    }
    return head + "\r\n";
}

// An answer in progress: parses the bytes as they arrive.
class Answer {
public:
    explicit Answer(const IppLimits& limits) : http(limits.bytes), ipp(limits) {}

    // Whether more is needed.
    bool Take(std::string_view bytes) { return GoesOn(http.Take(bytes)); }
    void End() { GoesOn(http.End()); }

    void MoveTo(IppReply& reply) {
        reply.httpStatus = http.Status();
        if (isWhole) {
            reply.message = ipp.Take(http.TakeBody());
        } else {
            reply.problem = problem;
        }
    }

private:
    bool GoesOn(HttpAnswer::State state) {
        if (state == HttpAnswer::State::Refused) {
            problem = http.Problem();
        }
        if (http.Status() != kHttpOk) {
            if (state == HttpAnswer::State::Whole) {
                problem = "HTTP status " + std::to_string(http.Status());
            }
            return state == HttpAnswer::State::Unfinished;
        }
        return !ReadMessage(state) && state == HttpAnswer::State::Unfinished;
    }

    // Whether the message is decided. A complete message is accepted whatever HTTP says: some
    // printers send a wrong length, or none and keep the connection open.
    bool ReadMessage(HttpAnswer::State state) {
        switch (ipp.Read(http.Body())) {
            case IppReader::State::Whole:
                isWhole = true;
                return true;
            case IppReader::State::Refused:
                problem = "no valid IPP answer: " + ipp.Problem();
                return true;
            default:
                if (state == HttpAnswer::State::Whole) {
                    problem = "no valid IPP answer: " + ipp.Problem();
                }
                return false;
        }
    }

    HttpAnswer http;
    IppReader ipp;
    bool isWhole = false;
    std::string problem;
};

}  // namespace

IppReply ExchangeIpp(ByteStream& stream, const IppTarget& target, std::string_view request,
                     const IppLimits& limits, std::atomic<bool>* sent) {
    // Write the request separately from its header: it may hold a secret and must not be copied.
    const bool isSent = stream.Write(Head(target, request.size())) && stream.Write(request);
    if (isSent && sent != nullptr) {
        *sent = true;
    }
    IppReply reply;
    // A server may refuse before it has read the whole request.
    Answer answer(limits);
    std::array<char, 65536> room{};
    const WipeAtEnd wiped(room);
    while (true) {
        const auto size = stream.Read(room);
        if (!size) {
            answer.MoveTo(reply);
            reply.problem = stream.Problem();
            return reply;
        }
        if (*size == 0) {
            answer.End();
            break;
        }
        if (!answer.Take({room.data(), *size})) {
            break;
        }
    }
    answer.MoveTo(reply);
    return reply;
}

std::string IppUri(std::string_view scheme, const IppTarget& target) {
    return std::string(scheme) + "://" + Authority(target) + Path(target);
}

}  // namespace Base

// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <atomic>
#include <optional>
#include <string>
#include <string_view>

#include "base/ipp/byte_stream_linux.h"
#include "base/ipp/ipp_message.h"
#include "base/ipp/ipp_reader.h"

namespace Base {

// The destination of a request.
struct IppTarget {
    std::string host;
    std::uint16_t port = 0;
    std::string resource;
    std::string authorization;  // the HTTP header of that name; empty for none
};

struct IppReply {
    int httpStatus = 0;  // 0: no HTTP response
    std::optional<IppMessage> message;
    std::string problem;  // the reason if there is no message
};

// Sends a request over a new connection and reads its answer. Sends one request only: does not
// follow redirections or authenticate. Refuses an answer as soon as it exceeds a limit. Sets
// `sent`, unless null, when the whole request has been sent, for threads that do not wait for the
// answer.
IppReply ExchangeIpp(ByteStream& stream, const IppTarget& target, std::string_view request,
                     const IppLimits& limits, std::atomic<bool>* sent = nullptr);

// Returns "ipp://host:631/path", with characters that a URI must not contain percent-encoded.
std::string IppUri(std::string_view scheme, const IppTarget& target);

}  // namespace Base

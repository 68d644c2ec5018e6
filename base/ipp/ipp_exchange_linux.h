#pragma once

#include <atomic>
#include <optional>
#include <string>
#include <string_view>

#include "base/ipp/byte_stream_linux.h"
#include "base/ipp/ipp_message.h"
#include "base/ipp/ipp_reader.h"

namespace Base {

// Where a request goes.
struct IppTarget {
    std::string host;
    std::uint16_t port = 0;
    std::string resource;
    std::string authorization;  // HTTP's field of that name; empty for none
};

struct IppReply {
    int httpStatus = 0;  // 0: no HTTP answer
    std::optional<IppMessage> message;
    std::string problem;  // why there is no message
};

// Sends a request over a connection that has just been made, and reads its answer. One request, one
// answer: nothing is repeated for a server that redirects, or wants to know who asks. An answer
// that breaks a limit is refused as soon as it does. Sets `sent`, unless it is null, when the whole
// request has gone out: for threads that do not wait for the answer.
IppReply ExchangeIpp(ByteStream& stream, const IppTarget& target, std::string_view request,
                     const IppLimits& limits, std::atomic<bool>* sent = nullptr);

// "ipp://host:631/path", with what must not stand in a URI encoded.
std::string IppUri(std::string_view scheme, const IppTarget& target);

}  // namespace Base

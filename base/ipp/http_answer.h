// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "base/secret.h"

namespace Base {

// Parses the response to one HTTP request as its bytes arrive. Knows no network. Keeps only the
// body, up to its limit.
class HttpAnswer {
public:
    enum class State { Unfinished, Whole, Refused };

    // The limit for the headers, including those of interim responses (100 Continue), and the
    // trailer. Real headers have less than 1 KiB.
    static constexpr std::size_t kMaxHeadSize = std::size_t{32} * 1024;

    explicit HttpAnswer(std::size_t bodySize)
        : maxBodySize(bodySize), roomForChunkHeads(bodySize + kMaxHeadSize) {}

    State Take(std::string_view bytes);
    // Reports the end of the connection.
    State End();

    // The HTTP status; 0 until the headers are complete. The body of a response other than 200 is
    // ignored.
    int Status() const { return isHeadWhole ? status : 0; }
    // The body received so far.
    std::string_view Body() const { return body; }
    WipedBytes TakeBody() { return std::move(body); }
    // Why the response was refused.
    const std::string& Problem() const { return problem; }

private:
    enum class Part { StatusLine, Fields, Body, BodyToEnd, ChunkHead, Chunk, ChunkEnd, Trailer };

    State Refuse(const std::string& reason);
    State TakeLine(std::string_view& bytes);
    State TakeBody(std::string_view& bytes);
    State AcceptLine();
    State AcceptStatusLine();
    State AcceptField();
    State AcceptLength(std::string_view value);
    State AcceptChunkHead();
    State EndHead();

    const std::size_t maxBodySize;
    std::size_t roomForHead = kMaxHeadSize;
    std::size_t roomForChunkHeads;
    Part part = Part::StatusLine;
    State state = State::Unfinished;
    WipedBytes line;
    int status = 0;
    bool isHeadWhole = false;
    bool isChunked = false;
    bool hasLength = false;
    std::size_t left = 0;  // bytes of the body or chunk still to come
    WipedBytes body;       // a server may quote a secret of the request
    std::string problem;
};

}  // namespace Base

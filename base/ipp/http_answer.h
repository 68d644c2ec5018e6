#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "base/secret.h"

namespace Base {

// Reads the answer to one HTTP request while its bytes come. Knows no network; holds no more than
// the body, and never more of that than it was allowed.
class HttpAnswer {
public:
    enum class State { Unfinished, Whole, Refused };

    // For the head, with those of interim answers (100 Continue) before it, and the trailer. Real
    // ones have less than 1 KiB.
    static constexpr std::size_t kMaxHeadSize = std::size_t{32} * 1024;

    explicit HttpAnswer(std::size_t bodySize)
        : maxBodySize(bodySize), roomForChunkHeads(bodySize + kMaxHeadSize) {}

    State Take(std::string_view bytes);
    // The connection has ended.
    State End();

    // The status; 0 as long as the head is not whole. An answer other than 200 has no body here.
    int Status() const { return isHeadWhole ? status : 0; }
    // As far as it has come.
    std::string_view Body() const { return body; }
    WipedBytes TakeBody() { return std::move(body); }
    // Why the answer was refused.
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
    std::size_t left = 0;  // of the body, or of its chunk
    WipedBytes body;       // a server may quote a secret of the request
    std::string problem;
};

}  // namespace Base

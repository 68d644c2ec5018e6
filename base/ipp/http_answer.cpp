// SPDX-License-Identifier: Apache-2.0

#include "base/ipp/http_answer.h"

#include <algorithm>
#include <charconv>

#include "base/text/ascii_case.h"
#include "base/text/trimmed.h"

namespace Base {

namespace {

constexpr std::string_view kBlanks = " \t";
constexpr int kOk = 200;
constexpr int kSwitching = 101;

// Parses an unsigned number that fills the whole text.
template <class Number>
bool ReadNumber(std::string_view text, Number& number, int base) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
    return error == std::errc() && end == text.data() + text.size() && text.front() != '-';
}

}  // namespace

HttpAnswer::State HttpAnswer::Take(std::string_view bytes) {
    while (state == State::Unfinished && !bytes.empty()) {
        const bool isInBody = part == Part::Body || part == Part::BodyToEnd || part == Part::Chunk;
        state = isInBody ? TakeBody(bytes) : TakeLine(bytes);
    }
    return state;
}

HttpAnswer::State HttpAnswer::End() {
    if (state != State::Unfinished) {
        return state;
    }
    state = part == Part::BodyToEnd ? State::Whole
                                    : Refuse(isHeadWhole ? "the connection ended within the answer"
                                                         : "the connection ended before an answer");
    return state;
}

HttpAnswer::State HttpAnswer::Refuse(const std::string& reason) {
    problem = reason;
    return State::Refused;
}

// Takes bytes up to the end of the line. Skipped bytes count towards the limit, too.
HttpAnswer::State HttpAnswer::TakeLine(std::string_view& bytes) {
    const bool isInChunks = part == Part::ChunkHead || part == Part::ChunkEnd;
    std::size_t& room = isInChunks ? roomForChunkHeads : roomForHead;
    const std::size_t end = bytes.find('\n');
    const std::size_t size = end == std::string_view::npos ? bytes.size() : end + 1;
    if (size > room || (isInChunks && line.size() + size > kMaxHeadSize)) {
        return Refuse("an HTTP head without an end");
    }
    room -= size;
    line.append(bytes.substr(0, std::min(end, bytes.size())));
    bytes.remove_prefix(size);
    if (end == std::string_view::npos) {
        return State::Unfinished;
    }
    if (line.ends_with('\r')) {
        line.pop_back();
    }
    const State next = AcceptLine();
    line.clear();
    return next;
}

HttpAnswer::State HttpAnswer::TakeBody(std::string_view& bytes) {
    const std::size_t size = part == Part::BodyToEnd ? bytes.size() : std::min(left, bytes.size());
    if (size > maxBodySize - body.size()) {
        return Refuse("an answer of more than " + std::to_string(maxBodySize) + " bytes");
    }
    body.append(bytes.substr(0, size));
    bytes.remove_prefix(size);
    if (part == Part::BodyToEnd) {
        return State::Unfinished;
    }
    left -= size;
    if (left == 0 && part == Part::Chunk) {
        part = Part::ChunkEnd;
    }
    return left == 0 && part == Part::Body ? State::Whole : State::Unfinished;
}

HttpAnswer::State HttpAnswer::AcceptLine() {
    switch (part) {
        case Part::StatusLine:
            return AcceptStatusLine();
        case Part::Fields:
            return line.empty() ? EndHead() : AcceptField();
        case Part::ChunkHead:
            return AcceptChunkHead();
        case Part::ChunkEnd:
            part = Part::ChunkHead;
            return line.empty() ? State::Unfinished : Refuse("a chunk longer than it says");
        default:
            return line.empty() ? State::Whole : State::Unfinished;
    }
}

// "HTTP/1.1 200 OK"
HttpAnswer::State HttpAnswer::AcceptStatusLine() {
    const std::string_view text = line;
    const std::size_t blank = std::min(text.find(' '), text.size());
    const std::string_view rest = Trimmed(text.substr(blank), kBlanks);
    const std::string_view number = rest.substr(0, rest.find(' '));
    if (!text.starts_with("HTTP/1.") || number.size() != 3 || !ReadNumber(number, status, 10) ||
        status < 100) {
        return Refuse("no HTTP answer");
    }
    part = Part::Fields;
    isChunked = false;
    hasLength = false;
    return State::Unfinished;
}

HttpAnswer::State HttpAnswer::AcceptField() {
    const std::string_view text = line;
    const std::size_t colon = std::min(text.find(':'), text.size());
    const std::string name = LowerCase(text.substr(0, colon));
    const std::string_view value = Trimmed(text.substr(std::min(colon + 1, text.size())), kBlanks);
    if (name == "content-length") {
        return AcceptLength(value);
    }
    if (name == "transfer-encoding") {
        isChunked = LowerCase(value) == "chunked";
        return isChunked || LowerCase(value) == "identity"
                   ? State::Unfinished
                   : Refuse("an answer in an unknown encoding");
    }
    return State::Unfinished;
}

HttpAnswer::State HttpAnswer::AcceptLength(std::string_view value) {
    hasLength = true;
    return !value.empty() && ReadNumber(value, left, 10) ? State::Unfinished
                                                         : Refuse("a length that is no number");
}

HttpAnswer::State HttpAnswer::EndHead() {
    if (status < kOk && status != kSwitching) {
        part = Part::StatusLine;
        return State::Unfinished;
    }
    isHeadWhole = true;
    if (status != kOk) {
        return State::Whole;
    }
    if (isChunked) {
        part = Part::ChunkHead;
        return State::Unfinished;
    }
    part = hasLength ? Part::Body : Part::BodyToEnd;
    if (hasLength && left > maxBodySize) {
        return Refuse("an answer of more than " + std::to_string(maxBodySize) + " bytes");
    }
    return hasLength && left == 0 ? State::Whole : State::Unfinished;
}

HttpAnswer::State HttpAnswer::AcceptChunkHead() {
    const std::string_view text = line;
    const std::string_view number = Trimmed(text.substr(0, text.find(';')), kBlanks);
    if (number.empty() || !ReadNumber(number, left, 16)) {
        return Refuse("a chunk without a length");
    }
    if (left > maxBodySize - body.size()) {
        return Refuse("an answer of more than " + std::to_string(maxBodySize) + " bytes");
    }
    part = left == 0 ? Part::Trailer : Part::Chunk;
    return State::Unfinished;
}

}  // namespace Base

// SPDX-License-Identifier: Apache-2.0

#include "base/ipp/ipp_reader.h"

#include <utility>

#include "base/ipp/bytes.h"
#include "base/ipp/ipp_tags.h"

namespace Base {

namespace {

// Version, status and the request's number.
constexpr std::size_t kHeadSize = 8;
constexpr std::size_t kLengthSize = 2;

// The fixed length of values with this tag; 0 for a variable length.
std::size_t FixedSizeOf(std::uint8_t tag) {
    if (tag == IppTag::kInteger || tag == IppTag::kEnum) {
        return 4;
    }
    return tag == IppTag::kBoolean ? 1 : 0;
}

}  // namespace

// A value with its tag and, if it is the first value of its attribute, the attribute's name.
struct IppReader::Item {
    std::uint8_t tag = 0;
    IppMessage::Place name;
    IppMessage::Place value;
};

IppReader::State IppReader::Read(std::string_view soFar) {
    bytes = soFar.substr(0, limits.bytes);
    std::size_t before = at + 1;
    while (state == State::Unfinished && at != before) {
        before = at;
        if (at == 0) {
            state = ReadHead();
        } else if (at < bytes.size()) {
            const std::uint8_t tag = ByteAt(bytes, at);
            state = tag <= IppTag::kLastGroup ? ReadGroup(tag) : ReadItem(tag);
        }
    }
    if (state == State::Unfinished && soFar.size() > limits.bytes) {
        state = Refuse("more than " + std::to_string(limits.bytes) + " bytes");
    }
    bytes = {};
    return state;
}

std::string IppReader::Problem() const {
    const std::string place = " at byte " + std::to_string(at);
    return state == State::Refused ? reason + place : "the answer ends in the middle," + place;
}

IppMessage IppReader::Take(WipedBytes whole) {
    message.bytes = std::move(whole);
    return std::move(message);
}

IppReader::State IppReader::Refuse(const std::string& why) {
    reason = why;
    return State::Refused;
}

IppReader::State IppReader::ReadHead() {
    if (bytes.size() < kHeadSize) {
        return State::Unfinished;
    }
    if (ByteAt(bytes, 0) < 1 || ByteAt(bytes, 0) > 2) {
        return Refuse("no IPP version 1 or 2");
    }
    at = kHeadSize;
    return State::Unfinished;
}

IppReader::State IppReader::ReadGroup(std::uint8_t tag) {
    if (depth != 0) {
        return Refuse("a collection without an end");
    }
    if (tag == IppTag::kReserved) {
        return Refuse("a group without a kind");
    }
    if (tag == IppTag::kEnd) {
        ++at;
        return State::Whole;
    }
    if (!HasRoomForAttribute()) {
        return Refuse("more than " + std::to_string(limits.attributes) + " attributes");
    }
    message.groups.push_back({tag, static_cast<std::uint32_t>(message.attributes.size()), 0});
    ++at;
    return State::Unfinished;
}

IppReader::State IppReader::ReadItem(std::uint8_t tag) {
    const std::size_t nameAt = at + 1 + kLengthSize;
    if (bytes.size() < nameAt) {
        return State::Unfinished;
    }
    const std::size_t nameSize = ShortAt(bytes, at + 1);
    if (nameSize > kMaxNameSize) {
        return Refuse("a name of more than " + std::to_string(kMaxNameSize) + " bytes");
    }
    const std::size_t valueAt = nameAt + nameSize + kLengthSize;
    if (bytes.size() < valueAt) {
        return State::Unfinished;
    }
    const std::size_t valueSize = ShortAt(bytes, valueAt - kLengthSize);
    if (valueSize > kMaxValueSize) {
        return Refuse("a value of more than " + std::to_string(kMaxValueSize) + " bytes");
    }
    if (FixedSizeOf(tag) != 0 && valueSize != FixedSizeOf(tag)) {
        return Refuse("a number of " + std::to_string(valueSize) + " bytes");
    }
    if (bytes.size() < valueAt + valueSize) {
        return State::Unfinished;
    }
    const Item item{tag,
                    {static_cast<std::uint32_t>(nameAt), static_cast<std::uint32_t>(nameSize)},
                    {static_cast<std::uint32_t>(valueAt), static_cast<std::uint32_t>(valueSize)}};
    const State next = Accept(item);
    at = next == State::Refused ? at : valueAt + valueSize;
    return next;
}

IppReader::State IppReader::Accept(const Item& item) {
    if (depth != 0) {
        return AcceptInCollection(item);
    }
    if (item.tag == IppTag::kEndCollection) {
        return Refuse("the end of a collection that has not begun");
    }
    if (message.groups.empty()) {
        return Refuse("an attribute in no group");
    }
    const State added = item.name.size == 0 ? AddValue(item) : AddAttribute(item);
    depth += item.tag == IppTag::kBeginCollection ? 1 : 0;
    return added;
}

IppReader::State IppReader::AcceptInCollection(const Item& item) {
    if (item.tag == IppTag::kEndCollection) {
        --depth;
    } else if (item.tag == IppTag::kBeginCollection && ++depth > kMaxDepth) {
        return Refuse("collections nested deeper than " + std::to_string(kMaxDepth));
    }
    return State::Unfinished;
}

bool IppReader::HasRoomForAttribute() const {
    return message.attributes.size() + message.groups.size() < limits.attributes;
}

IppReader::State IppReader::AddAttribute(const Item& item) {
    if (!HasRoomForAttribute()) {
        return Refuse("more than " + std::to_string(limits.attributes) + " attributes");
    }
    message.attributes.push_back({item.name, static_cast<std::uint32_t>(message.values.size()), 0});
    ++message.groups.back().attributeCount;
    return AddValue(item);
}

IppReader::State IppReader::AddValue(const Item& item) {
    if (message.groups.back().attributeCount == 0) {
        return Refuse("a value of no attribute");
    }
    if (message.values.size() == limits.values) {
        return Refuse("more than " + std::to_string(limits.values) + " values");
    }
    message.values.push_back({item.tag, item.value});
    ++message.attributes.back().valueCount;
    return State::Unfinished;
}

}  // namespace Base

// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <string_view>

#include "base/ipp/ipp_message.h"

namespace Base {

// The limits of an IPP answer.
struct IppLimits {
    std::size_t bytes;
    // Limits for attributes and groups, and for values. The contents of collections count only
    // towards the bytes.
    std::size_t attributes;
    std::size_t values;
};

// Checks and parses an IPP answer as it arrives, without recursion and with bounded memory. Knows
// no network.
class IppReader {
public:
    enum class State { Unfinished, Whole, Refused };

    // The deepest allowed nesting of collections. Real printers use two or three levels.
    static constexpr std::size_t kMaxDepth = 16;
    // The standard allows names of up to 255 bytes.
    static constexpr std::size_t kMaxNameSize = 1023;
    // The standard's limit for the length of a value.
    static constexpr std::size_t kMaxValueSize = 32767;

    explicit IppReader(const IppLimits& mostOfAll) : limits(mostOfAll) {}

    // `soFar` holds the answer from its beginning, as far as it has arrived. Continues where the
    // last call ended. Ignores bytes after a complete message.
    State Read(std::string_view soFar);

    // Why the answer was refused, or what is still missing, with the position.
    std::string Problem() const;

    // Returns the complete answer, which `bytes` holds.
    IppMessage Take(WipedBytes bytes);

private:
    struct Item;

    State Refuse(const std::string& reason);
    State ReadHead();
    State ReadGroup(std::uint8_t tag);
    State ReadItem(std::uint8_t tag);
    State Accept(const Item& item);
    State AcceptInCollection(const Item& item);
    State AddAttribute(const Item& item);
    State AddValue(const Item& item);
    bool HasRoomForAttribute() const;

    const IppLimits limits;
    std::string_view bytes;
    std::size_t at = 0;
    std::size_t depth = 0;
    State state = State::Unfinished;
    std::string reason;
    IppMessage message;
};

}  // namespace Base

#pragma once

#include <string>
#include <string_view>

#include "base/ipp/ipp_message.h"

namespace Base {

// What an IPP answer may have at most.
struct IppLimits {
    std::size_t bytes;
    // Attributes and groups, and their values. What is inside collections counts by its bytes.
    std::size_t attributes;
    std::size_t values;
};

// Checks an IPP answer while it comes, and finds what is in it, without recursion and with memory
// within its limits. Knows no network.
class IppReader {
public:
    enum class State { Unfinished, Whole, Refused };

    // Collections may be nested no deeper. Those of real printers have two or three levels.
    static constexpr std::size_t kMaxDepth = 16;
    // Names have 255 bytes at most by the standard.
    static constexpr std::size_t kMaxNameSize = 1023;
    // The standard's limit for a value.
    static constexpr std::size_t kMaxValueSize = 32767;

    explicit IppReader(const IppLimits& mostOfAll) : limits(mostOfAll) {}

    // `soFar` holds the answer from its beginning, as far as it has come; goes on where the last
    // call ended. What follows a whole message is not looked at.
    State Read(std::string_view soFar);

    // Why the answer was refused, or where it stands when it is not finished, with the place.
    std::string Problem() const;

    // A whole answer; `bytes` holds it.
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

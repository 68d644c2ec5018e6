// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/secret.h"

namespace Base {

// The tag that begins a printer's attributes.
inline constexpr std::uint8_t kIppPrinterGroup = 0x04;
inline constexpr std::uint8_t kIppOperationGroup = 0x01;

class IppMessage;

// One group of attributes. The message must outlive the group. If an attribute occurs twice in a
// group, the first counts.
class IppGroup {
public:
    IppGroup(const IppMessage& owner, std::size_t position) : message(&owner), index(position) {}

    std::uint8_t Tag() const;
    // The first value; empty when there is no such attribute, or when it is not text.
    std::string Text(std::string_view name) const;
    // The same value, as a view into the message.
    std::string_view TextView(std::string_view name) const;
    // All values of the attribute that are text.
    std::vector<std::string> Texts(std::string_view name) const;
    // The first value, if it is an integer or enum.
    std::optional<std::int32_t> Integer(std::string_view name) const;
    std::optional<bool> Boolean(std::string_view name) const;

private:
    const IppMessage* message;
    std::size_t index;
};

// A message that IppReader has checked: its bytes and the positions of its groups and values. The
// contents of collections were checked, too, but are not kept.
class IppMessage {
public:
    std::uint16_t Status() const;
    std::vector<IppGroup> Groups() const;
    // The first group with that tag.
    std::optional<IppGroup> Group(std::uint8_t tag) const;

private:
    friend class IppGroup;
    friend class IppReader;

    struct Place {
        std::uint32_t at = 0;
        std::uint32_t size = 0;
    };
    struct Value {
        std::uint8_t tag = 0;
        Place place;
    };
    struct Attribute {
        Place name;
        std::uint32_t firstValue = 0;
        std::uint32_t valueCount = 0;
    };
    struct GroupRange {
        std::uint8_t tag = 0;
        std::uint32_t firstAttribute = 0;
        std::uint32_t attributeCount = 0;
    };

    std::string_view At(const Place& place) const;
    const Attribute* Find(const GroupRange& group, std::string_view name) const;
    std::optional<std::string_view> TextOf(const Value& value) const;

    WipedBytes bytes;
    std::vector<GroupRange> groups;
    std::vector<Attribute> attributes;
    std::vector<Value> values;
};

}  // namespace Base

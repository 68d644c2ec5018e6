// SPDX-License-Identifier: Apache-2.0

#include "base/ipp/ipp_message.h"

#include <algorithm>

#include "base/ipp/bytes.h"
#include "base/ipp/ipp_tags.h"

namespace Base {

namespace {

constexpr std::size_t kStatusAt = 2;

// The text of a value that holds a language and a text, each preceded by its length.
std::string_view WithoutLanguage(std::string_view value) {
    for (int part = 0; part < 2; ++part) {
        if (value.size() < 2 || ShortAt(value, 0) > value.size() - 2) {
            return {};
        }
        if (part == 1) {
            return value.substr(2, ShortAt(value, 0));
        }
        value.remove_prefix(std::size_t{2} + ShortAt(value, 0));
    }
    return {};
}

}  // namespace

std::uint8_t IppGroup::Tag() const {
    return message->groups[index].tag;
}

std::string IppGroup::Text(std::string_view name) const {
    return std::string(TextView(name));
}

std::string_view IppGroup::TextView(std::string_view name) const {
    const auto* const attribute = message->Find(message->groups[index], name);
    return attribute == nullptr ? std::string_view()
                                : message->TextOf(message->values[attribute->firstValue])
                                      .value_or(std::string_view());
}

std::vector<std::string> IppGroup::Texts(std::string_view name) const {
    std::vector<std::string> texts;
    const auto* const attribute = message->Find(message->groups[index], name);
    for (std::uint32_t i = 0; attribute != nullptr && i < attribute->valueCount; ++i) {
        if (const auto text = message->TextOf(message->values[attribute->firstValue + i])) {
            texts.emplace_back(*text);
        }
    }
    return texts;
}

std::optional<std::int32_t> IppGroup::Integer(std::string_view name) const {
    const auto* const attribute = message->Find(message->groups[index], name);
    if (attribute == nullptr) {
        return std::nullopt;
    }
    const auto& value = message->values[attribute->firstValue];
    if (value.tag != IppTag::kInteger && value.tag != IppTag::kEnum) {
        return std::nullopt;
    }
    const std::string_view bytes = message->At(value.place);
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(ShortAt(bytes, 0)) << 16U |
                                     ShortAt(bytes, 2));
}

std::optional<bool> IppGroup::Boolean(std::string_view name) const {
    const auto* const attribute = message->Find(message->groups[index], name);
    if (attribute == nullptr || message->values[attribute->firstValue].tag != IppTag::kBoolean) {
        return std::nullopt;
    }
    return message->At(message->values[attribute->firstValue].place) != std::string_view("\0", 1);
}

std::uint16_t IppMessage::Status() const {
    return ShortAt(bytes, kStatusAt);
}

std::vector<IppGroup> IppMessage::Groups() const {
    std::vector<IppGroup> all;
    all.reserve(groups.size());
    for (std::size_t i = 0; i < groups.size(); ++i) {
        all.emplace_back(*this, i);
    }
    return all;
}

std::optional<IppGroup> IppMessage::Group(std::uint8_t tag) const {
    const auto found = std::find_if(groups.begin(), groups.end(),
                                    [tag](const GroupRange& one) { return one.tag == tag; });
    if (found == groups.end()) {
        return std::nullopt;
    }
    return IppGroup(*this, static_cast<std::size_t>(found - groups.begin()));
}

std::string_view IppMessage::At(const Place& place) const {
    return std::string_view(bytes).substr(place.at, place.size);
}

const IppMessage::Attribute* IppMessage::Find(const GroupRange& group,
                                              std::string_view name) const {
    for (std::uint32_t i = 0; i < group.attributeCount; ++i) {
        const Attribute& attribute = attributes[group.firstAttribute + i];
        if (At(attribute.name) == name) {
            return &attribute;
        }
    }
    return nullptr;
}

std::optional<std::string_view> IppMessage::TextOf(const Value& value) const {
    if (!IppTag::IsText(value.tag)) {
        return std::nullopt;
    }
    const std::string_view whole = At(value.place);
    const std::string_view text = IppTag::HasLanguage(value.tag) ? WithoutLanguage(whole) : whole;
    return text.substr(0, text.find('\0'));
}

}  // namespace Base

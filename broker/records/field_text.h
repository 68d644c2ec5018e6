// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <cstring>
#include <string_view>

namespace Broker {

// Returns the text of `field`, a member of `record`, up to its terminator. Without a terminator the
// text continues into the next fields, but never beyond the record.
template <class Record>
std::string_view FieldText(const Record& record, const char* field) {
    const char* begin = reinterpret_cast<const char*>(&record);
    const std::size_t offset = static_cast<std::size_t>(field - begin);
    const std::size_t room = sizeof record - offset;
    const void* terminator = std::memchr(begin + offset, '\0', room);
    const std::size_t length =
        terminator == nullptr
            ? room
            : static_cast<std::size_t>(static_cast<const char*>(terminator) - begin) - offset;
    return {begin + offset, length};
}

}  // namespace Broker

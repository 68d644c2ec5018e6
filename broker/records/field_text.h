#pragma once

#include <cstddef>
#include <cstring>
#include <string_view>

namespace Broker {

// The text of a record's field, up to its terminator. A field without one runs on into the fields
// behind it, as far as the record goes and no further. `field` is a member of `record`.
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

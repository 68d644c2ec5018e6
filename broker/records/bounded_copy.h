// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <cstring>

namespace Broker {

// Handles the failures of BoundedCopy.
int RefuseCopy(void* destination, std::size_t capacity, const void* source);

// Copies `count` bytes into a field of `capacity` bytes, with the contract of memcpy_s:
//   - a null `destination`: 22 (EINVAL), nothing written;
//   - `source` not null and `count` within `capacity`: exactly `count` bytes are copied, 0;
//   - else all of `capacity` is zeroed: 22 (EINVAL) for a null `source`, 34 (ERANGE) for a `count`
//     beyond `capacity`.
// On failure errno holds the same value.
inline int BoundedCopy(void* destination, std::size_t capacity, const void* source,
                       std::size_t count) {
    if (destination == nullptr || source == nullptr || count > capacity) {
        return RefuseCopy(destination, capacity, source);
    }
    std::memcpy(destination, source, count);
    return 0;
}

// Copies a field to the field of the same width in the other family's record.
template <std::size_t Width>
int BoundedCopy(char (&destination)[Width], const char (&source)[Width]) {
    return BoundedCopy(destination, Width, source, Width);
}

// Copies a text and its terminator into a field of `capacity` bytes, with the contract of strcpy_s:
//   - a null `destination` or no `capacity`: 22 (EINVAL), nothing written;
//   - a `text` that fits with its terminator is copied, 0;
//   - else the field becomes empty: 22 (EINVAL) for a null `text`, 34 (ERANGE) for one too long.
// On failure errno holds the same value.
int BoundedText(char* destination, std::size_t capacity, const char* text);

template <std::size_t Width>
int BoundedText(char (&destination)[Width], const char* text) {
    return BoundedText(destination, Width, text);
}

}  // namespace Broker

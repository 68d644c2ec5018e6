// SPDX-License-Identifier: Apache-2.0

#include "broker/records/bounded_copy.h"

#include <cerrno>

namespace Broker {

namespace {

constexpr int kInvalidArgument = 22;
constexpr int kOutOfRange = 34;
static_assert(kInvalidArgument == EINVAL && kOutOfRange == ERANGE);

int Fail(int status) {
    errno = status;
    return status;
}

}  // namespace

int RefuseCopy(void* destination, std::size_t capacity, const void* source) {
    if (destination == nullptr) {
        return Fail(kInvalidArgument);
    }
    std::memset(destination, 0, capacity);
    return Fail(source == nullptr ? kInvalidArgument : kOutOfRange);
}

int BoundedText(char* destination, std::size_t capacity, const char* text) {
    if (destination == nullptr || capacity == 0) {
        return Fail(kInvalidArgument);
    }
    if (text == nullptr) {
        destination[0] = '\0';
        return Fail(kInvalidArgument);
    }
    const std::size_t length = std::strlen(text);
    if (length >= capacity) {
        destination[0] = '\0';
        return Fail(kOutOfRange);
    }
    std::memcpy(destination, text, length + 1);
    return 0;
}

}  // namespace Broker

#include "records/bounded_copy.h"

#include <cerrno>
#include <cstring>

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

int BoundedCopy(void* destination, std::size_t capacity, const void* source, std::size_t count) {
    if (destination == nullptr) {
        return Fail(kInvalidArgument);
    }
    if (source != nullptr && capacity >= count) {
        std::memcpy(destination, source, count);
        return 0;
    }
    std::memset(destination, 0, capacity);
    return Fail(source == nullptr ? kInvalidArgument : kOutOfRange);
}

}  // namespace Broker

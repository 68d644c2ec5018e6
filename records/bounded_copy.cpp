#include "records/bounded_copy.h"

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

}  // namespace Broker

#include "app/awaiting.h"

#include "app/vendor_calls.h"

namespace App {

std::string AwaitedVendors(std::uint64_t began) {
    const std::string names = NamesOf(AwaitedCalls(began));
    // It may wait for a call that began before, and holds a lock.
    return names.empty() ? NamesOf(AwaitedCalls()) : names;
}

}  // namespace App

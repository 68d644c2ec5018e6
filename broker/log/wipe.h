// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>

namespace Broker {

// Overwrites memory in a way that the compiler cannot optimise away.
inline void Wipe(void* memory, std::size_t size) {
    volatile char* const bytes = static_cast<char*>(memory);
    for (std::size_t at = 0; at < size; ++at) {
        bytes[at] = 0;
    }
}

// Wipes a plain record that holds a pass phrase at the end of the scope.
template <class Record>
class WipeAtEnd {
public:
    explicit WipeAtEnd(Record& wiped) : record(wiped) {}
    ~WipeAtEnd() { Wipe(&record, sizeof record); }
    WipeAtEnd(const WipeAtEnd&) = delete;
    WipeAtEnd& operator=(const WipeAtEnd&) = delete;

private:
    Record& record;
};

}  // namespace Broker

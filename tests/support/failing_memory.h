// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>

// Memory that runs out: a program that has this built in makes its own allocations fail.
namespace FailingMemory {

enum class Then { Recovers, StaysGone };

// While one of these lives, the allocation of that number by its own thread fails, counted from 1;
// those after it work again, or not.
class FailsAt {
public:
    FailsAt(long number, Then then);
    ~FailsAt();
    FailsAt(const FailsAt&) = delete;
    FailsAt& operator=(const FailsAt&) = delete;
};

// While one of these lives, no thread but its own is given memory.
class FailsForOthers {
public:
    FailsForOthers();
    ~FailsForOthers();
    FailsForOthers(const FailsForOthers&) = delete;
    FailsForOthers& operator=(const FailsForOthers&) = delete;
};

// How many allocations have failed on other threads than that of a FailsForOthers.
long FailedForOthers();

// The bytes of the largest allocation that the calling thread has asked for since its last call of
// this.
std::size_t LargestAllocation();

// Whether the allocation of a FailsAt has failed that was to fail last.
bool HasFailed();

}  // namespace FailingMemory

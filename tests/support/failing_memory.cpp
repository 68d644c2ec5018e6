// SPDX-License-Identifier: Apache-2.0

#include "tests/support/failing_memory.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <new>
#include <utility>

namespace {

thread_local long untilFailure = 0;  // 0: none fails
thread_local bool failed = false;
thread_local std::size_t largest = 0;
thread_local bool staysGone = false;
thread_local bool isFavourite = false;
std::atomic<bool> onlyForFavourite{false};
std::atomic<long> failedForOthers{0};

void* Allocate(std::size_t size) noexcept {
    largest = std::max(largest, size);
    if (onlyForFavourite && !isFavourite) {
        ++failedForOthers;
        return nullptr;
    }
    if (untilFailure > 0 && --untilFailure == 0) {
        failed = true;
        untilFailure = staysGone ? 1 : 0;
        return nullptr;
    }
    return std::malloc(size == 0 ? 1 : size);
}

void* AllocateOrThrow(std::size_t size) {
    void* const memory = Allocate(size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

}  // namespace

namespace FailingMemory {

FailsAt::FailsAt(long number, Then then) {
    failed = false;
    staysGone = then == Then::StaysGone;
    untilFailure = number;
}

FailsAt::~FailsAt() {
    untilFailure = 0;
}

FailsForOthers::FailsForOthers() {
    isFavourite = true;
    onlyForFavourite = true;
}

FailsForOthers::~FailsForOthers() {
    onlyForFavourite = false;
    isFavourite = false;
}

long FailedForOthers() {
    return failedForOthers;
}

std::size_t LargestAllocation() {
    return std::exchange(largest, 0);
}

bool HasFailed() {
    return failed;
}

}  // namespace FailingMemory

// In place of the library's own, for the whole program.

void* operator new(std::size_t size) {
    return AllocateOrThrow(size);
}
void* operator new[](std::size_t size) {
    return AllocateOrThrow(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return Allocate(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return Allocate(size);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, const std::nothrow_t&) noexcept {
    std::free(memory);
}

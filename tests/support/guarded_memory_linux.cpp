// SPDX-License-Identifier: Apache-2.0

#include <sys/mman.h>

#include <new>

#include "tests/support/guarded_memory.h"

namespace {

constexpr std::size_t kPage = 4096;

}  // namespace

GuardedMemory::GuardedMemory(std::size_t size)
    : pages(mmap(nullptr, 2 * kPage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)),
      data(static_cast<char*>(pages) + kPage - size) {
    if (pages == MAP_FAILED || size > kPage ||
        mprotect(static_cast<char*>(pages) + kPage, kPage, PROT_NONE) != 0) {
        throw std::bad_alloc();
    }
}

GuardedMemory::~GuardedMemory() {
    munmap(pages, 2 * kPage);
}

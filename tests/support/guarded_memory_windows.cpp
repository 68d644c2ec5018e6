// SPDX-License-Identifier: Apache-2.0

#include "tests/support/guarded_memory.h"

#include <new>

#include "platform/os.h"

namespace {

constexpr std::size_t kPage = 4096;

}  // namespace

GuardedMemory::GuardedMemory(std::size_t size)
    : pages(VirtualAlloc(nullptr, 2 * kPage, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE)),
      data(static_cast<char*>(pages) + kPage - size) {
    DWORD before = 0;
    if (pages == nullptr || size > kPage ||
        VirtualProtect(static_cast<char*>(pages) + kPage, kPage, PAGE_NOACCESS, &before) == 0) {
        throw std::bad_alloc();
    }
}

GuardedMemory::~GuardedMemory() {
    VirtualFree(pages, 0, MEM_RELEASE);
}

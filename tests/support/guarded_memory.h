// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>

// Memory behind which nothing may be read: whoever reads on crashes at once.
class GuardedMemory {
public:
    explicit GuardedMemory(std::size_t size);
    ~GuardedMemory();
    GuardedMemory(const GuardedMemory&) = delete;
    GuardedMemory& operator=(const GuardedMemory&) = delete;

    // `size` bytes, zero at first, that end where the guard begins.
    void* Data() const { return data; }

private:
    void* pages;
    void* data;
};

// A record in such memory.
template <class Record>
class Guarded {
public:
    Record& operator*() { return *static_cast<Record*>(memory.Data()); }
    Record* operator->() { return static_cast<Record*>(memory.Data()); }

private:
    GuardedMemory memory{sizeof(Record)};
};

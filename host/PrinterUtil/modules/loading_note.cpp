// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterUtil/modules/loading_note.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>

namespace PrinterUtil {

namespace {

constexpr std::size_t kRows = 16;
constexpr std::size_t kLongestPath = 1024;
constexpr std::uint64_t kFree = 0;
constexpr std::uint64_t kBeingWritten = 1;

std::atomic<std::uint64_t> latest = kBeingWritten;
static_assert(std::atomic<std::uint64_t>::is_always_lock_free, "a signal handler reads it");

}  // namespace

struct LoadingNote::Row {
    // A greater number began later.
    std::atomic<std::uint64_t> number = kFree;
    std::array<std::atomic<char>, kLongestPath> path{};

    bool IsInUse() const { return number.load(std::memory_order_acquire) > kBeingWritten; }
};

constinit LoadingNote::Row LoadingNote::rows[kRows];

LoadingNote::LoadingNote(const std::string& path) {
    for (Row& row : rows) {
        std::uint64_t expected = kFree;
        if (row.number.compare_exchange_strong(expected, kBeingWritten)) {
            own = &row;
            break;
        }
    }
    if (own != nullptr) {
        const std::size_t length = std::min(path.size(), kLongestPath - 1);
        std::copy_n(path.begin(), length, own->path.begin());
        own->path[length] = '\0';
        own->number.store(++latest, std::memory_order_release);
    }
}

LoadingNote::~LoadingNote() {
    if (own != nullptr) {
        own->number.store(kFree, std::memory_order_release);
    }
}

std::string LoadingNote::Latest() {
    const Row* const last = std::max_element(
        rows, rows + kRows,
        [](const Row& one, const Row& other) { return one.number < other.number; });
    std::string path;
    if (last->IsInUse()) {
        path.assign(last->path.begin(), std::find(last->path.begin(), last->path.end(), '\0'));
    }
    return path;
}

std::size_t LoadingNote::ReadAll(char* text, std::size_t size) {
    std::size_t length = 0;
    const auto append = [&](char character) {
        if (length + 1 < size) {
            text[length++] = character;
        }
    };
    for (const Row& row : rows) {
        if (!row.IsInUse()) {
            continue;
        }
        if (length > 0) {
            append(',');
            append(' ');
        }
        for (std::size_t at = 0; at < kLongestPath && row.path[at] != '\0'; ++at) {
            append(row.path[at]);
        }
    }
    if (size > 0) {
        text[length] = '\0';
    }
    return length;
}

}  // namespace PrinterUtil

// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <string_view>

namespace LogHelper {

// The lines that wait to be written to the file, in two buffers: one takes new lines while the
// other is written. The caller ensures that only one thread at a time calls Push and Turn. The
// unwritten lines can be read at any time, also by a signal handler, and are always complete lines.
class LineQueue {
public:
    static constexpr std::size_t kCapacity = std::size_t{1024} * 1024;  // bytes, of each buffer

    class Buffer {
    public:
        // The lines that were pushed and are not yet marked as written.
        std::string_view Unwritten() const {
            const std::size_t end = size;
            const std::size_t begin = std::min<std::size_t>(written, end);
            return {text + begin, end - begin};
        }
        void MarkWritten(std::size_t count) { written += count; }

    private:
        friend class LineQueue;
        std::atomic<std::size_t> size{0};
        std::atomic<std::size_t> written{0};
        char text[kCapacity];
    };

    // False when there is no room.
    bool Push(std::string_view line);

    // The number of bytes in the buffer that takes new lines.
    std::size_t Size() const { return Newer().size; }

    // Swaps the buffers and returns the lines pushed so far. The buffer returned by the last Turn
    // must have been written: it takes the next lines.
    Buffer& Turn();

    // Discards all lines.
    void Clear();

    Buffer& Older() { return buffers[1 - newer]; }
    Buffer& Newer() { return buffers[newer]; }

private:
    const Buffer& Newer() const { return buffers[newer]; }

    std::atomic<int> newer{0};
    Buffer buffers[2];
};

}  // namespace LogHelper

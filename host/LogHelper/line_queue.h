#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <string_view>

namespace LogHelper {

// Lines that wait for the file, in two buffers: one takes new lines while the other is written. Its
// user keeps Push and Turn to one thread at a time. What is unwritten can be read at any moment,
// also by a signal handler: a line counts only once it is there as a whole.
class LineQueue {
public:
    static constexpr std::size_t kCapacity = std::size_t{1024} * 1024;  // bytes, of each buffer

    class Buffer {
    public:
        // What has been pushed and not yet been marked as written.
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

    // How many bytes wait in the buffer that takes new lines.
    std::size_t Size() const { return Newer().size; }

    // Hands out what has been pushed so far. What the last turn handed out must be written by now:
    // its buffer takes the next lines.
    Buffer& Turn();

    // Forgets all lines.
    void Clear();

    Buffer& Older() { return buffers[1 - newer]; }
    Buffer& Newer() { return buffers[newer]; }

private:
    const Buffer& Newer() const { return buffers[newer]; }

    std::atomic<int> newer{0};
    Buffer buffers[2];
};

}  // namespace LogHelper

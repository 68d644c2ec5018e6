// SPDX-License-Identifier: Apache-2.0

#include "host/LogHelper/line_queue.h"

#include <algorithm>

namespace LogHelper {

bool LineQueue::Push(std::string_view line) {
    Buffer& buffer = Newer();
    const std::size_t size = buffer.size.load(std::memory_order_relaxed);
    if (line.size() > kCapacity - size) {
        return false;
    }
    std::copy(line.begin(), line.end(), buffer.text + size);
    buffer.size.store(size + line.size(), std::memory_order_release);
    return true;
}

LineQueue::Buffer& LineQueue::Turn() {
    Buffer& older = Older();
    older.size = 0;
    older.written = 0;
    newer = 1 - newer;
    return Older();
}

void LineQueue::Clear() {
    for (Buffer& buffer : buffers) {
        buffer.size = 0;
        buffer.written = 0;
    }
}

}  // namespace LogHelper

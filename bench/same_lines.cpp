// SPDX-License-Identifier: Apache-2.0

#include <stdexcept>
#include <vector>

#include "bench/host/discarding_logger.h"
#include "bench/support.h"

namespace Bench {

namespace {

std::vector<std::wstring> LinesOf(const std::function<void()>& work) {
    std::vector<std::wstring> lines;
    RecordLines(&lines);
    work();
    RecordLines(nullptr);
    return lines;
}

}  // namespace

void RequireSameLines(const std::function<void()>& one, const std::function<void()>& other) {
    const std::vector<std::wstring> lines = LinesOf(one);
    if (lines.empty()) {
        throw std::runtime_error("no line was logged");
    }
    if (lines != LinesOf(other)) {
        throw std::runtime_error("the two sides to be compared do not log the same lines");
    }
}

}  // namespace Bench

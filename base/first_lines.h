// SPDX-License-Identifier: Apache-2.0

#pragma once

// Many lines about one thing tell no more than the first ones and how many more there are.

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace Base {

constexpr std::size_t kMaxLines = 20;

// For lines that come one by one.
class LineLimit {
public:
    // Whether the next line is one of the first.
    bool Admits() {
        const bool isFirst = admitted < kMaxLines;
        ++(isFirst ? admitted : rest);
        return isFirst;
    }

    // How many were not since the last call.
    std::size_t TakeRest() { return std::exchange(rest, 0); }

private:
    std::size_t admitted = 0;
    std::size_t rest = 0;
};

// The first lines, and "and N more" when there are more; for one more only, that one itself.
inline std::vector<std::string> FirstLines(std::vector<std::string> lines) {
    if (lines.size() > kMaxLines + 1) {
        const std::size_t rest = lines.size() - kMaxLines;
        lines.resize(kMaxLines);
        lines.push_back("and " + std::to_string(rest) + " more");
    }
    return lines;
}

}  // namespace Base

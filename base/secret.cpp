// SPDX-License-Identifier: Apache-2.0

#include "base/secret.h"

namespace Base {

void Wipe(void* memory, std::size_t size) {
    volatile char* const bytes = static_cast<char*>(memory);
    for (std::size_t at = 0; at < size; ++at) {
        bytes[at] = 0;
    }
}

void Secret::RemoveLast() {
    Wipe(&characters.back(), 1);
    characters.pop_back();
}

// Makes no intermediate copy of the words: the copy would hold the secret.
std::string Secret::MaskedIn(std::string_view words) const {
    constexpr std::string_view kMask = "***";
    std::string masked;
    while (!characters.empty()) {
        const std::size_t at = words.find(View());
        if (at == std::string_view::npos) {
            break;
        }
        masked.append(words.substr(0, at)).append(kMask);
        words.remove_prefix(at + characters.size());
    }
    return masked.append(words);
}

}  // namespace Base

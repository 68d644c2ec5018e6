#include "app/secret.h"

#include <algorithm>

namespace App {

void Wipe(void* memory, std::size_t size) {
    volatile char* const bytes = static_cast<char*>(memory);
    for (std::size_t at = 0; at < size; ++at) {
        bytes[at] = 0;
    }
}

Secret::Secret(Secret&& other) noexcept {
    characters.swap(other.characters);
}

Secret& Secret::operator=(Secret&& other) noexcept {
    characters.swap(other.characters);
    return *this;
}

Secret::~Secret() {
    Wipe(characters.data(), characters.size());
}

void Secret::Append(char character) {
    if (characters.size() == characters.capacity()) {
        Grow();
    }
    characters.push_back(character);
}

void Secret::RemoveLast() {
    Wipe(&characters.back(), 1);
    characters.pop_back();
}

void Secret::Grow() {
    constexpr std::size_t first = 64;
    std::vector<char> larger;
    larger.reserve(std::max(first, characters.capacity() * 2));
    larger.assign(characters.begin(), characters.end());
    Wipe(characters.data(), characters.size());
    characters.swap(larger);
}

}  // namespace App

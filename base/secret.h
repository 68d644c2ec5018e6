// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Base {

// Overwrites memory in a way that the compiler cannot optimise away.
void Wipe(void* memory, std::size_t size);

// Wipes the text's whole capacity and leaves it empty.
template <class Character>
void Wipe(std::basic_string<Character>& text) {
    text.resize(text.capacity());
    Wipe(text.data(), text.size() * sizeof(Character));
    text.clear();
}

// Wipes a text or a plain record at the end of the scope.
template <class Thing>
class WipeAtEnd {
public:
    explicit WipeAtEnd(Thing& wiped) : thing(wiped) {}
    ~WipeAtEnd() {
        if constexpr (requires { thing.capacity(); }) {
            Wipe(thing);
        } else {
            Wipe(&thing, sizeof thing);
        }
    }
    WipeAtEnd(const WipeAtEnd&) = delete;
    WipeAtEnd& operator=(const WipeAtEnd&) = delete;

private:
    Thing& thing;
};

// An allocator for containers. It wipes all memory that it frees, also when the container grows.
template <class T>
struct WipingAllocator {
    using value_type = T;

    WipingAllocator() = default;
    template <class Other>
    explicit WipingAllocator(const WipingAllocator<Other>& /*other*/) {}

    T* allocate(std::size_t count) { return std::allocator<T>().allocate(count); }
    void deallocate(T* memory, std::size_t count) {
        Wipe(memory, count * sizeof(T));
        std::allocator<T>().deallocate(memory, count);
    }

    bool operator==(const WipingAllocator& /*other*/) const { return true; }
};

// Bytes that may contain a secret. Not for short texts: they are stored inside the object, which
// does not wipe them.
using WipedBytes = std::basic_string<char, std::char_traits<char>, WipingAllocator<char>>;

// A text that leaves no copy in memory after its destruction.
class Secret {
public:
    Secret() = default;
    explicit Secret(std::string_view text) : characters(text.begin(), text.end()) {}

    void Append(char character) { characters.push_back(character); }
    void RemoveLast();

    std::string_view View() const { return {characters.data(), characters.size()}; }

    // Returns `words`, a text from elsewhere that may quote the secret, with the secret masked.
    std::string MaskedIn(std::string_view words) const;

private:
    std::vector<char, WipingAllocator<char>> characters;
};

}  // namespace Base

#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace App {

// Overwrites memory in a way that no optimisation leaves out.
void Wipe(void* memory, std::size_t size);

// A text that leaves no copy of itself in memory once it is gone.
class Secret {
public:
    Secret() = default;
    Secret(Secret&& other) noexcept;
    Secret& operator=(Secret&& other) noexcept;
    ~Secret();

    void Append(char character);
    void RemoveLast();

    std::string_view View() const { return {characters.data(), characters.size()}; }

    Secret(const Secret&) = delete;
    Secret& operator=(const Secret&) = delete;

private:
    void Grow();

    std::vector<char> characters;
};

}  // namespace App

#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace Host {

// The path from the root, without a look at what is there; an empty path stays empty.
std::filesystem::path AbsolutePath(const std::filesystem::path& path);

// Paths as UTF-8 text and back. Where paths are bytes, the bytes stay as they are.
std::string PathToUtf8(const std::filesystem::path& path);
std::filesystem::path PathFromUtf8(std::string_view utf8);

}  // namespace Host

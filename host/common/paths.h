// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace Host {

// Makes the path absolute without accessing the file system; an empty path stays empty.
std::filesystem::path AbsolutePath(const std::filesystem::path& path);

// Convert paths to and from UTF-8. On systems whose paths are bytes, the bytes are unchanged.
std::string PathToUtf8(const std::filesystem::path& path);
std::filesystem::path PathFromUtf8(std::string_view utf8);

}  // namespace Host

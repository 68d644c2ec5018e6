// SPDX-License-Identifier: Apache-2.0

#include "host/common/paths.h"

#include <type_traits>

#include "base/text/utf8.h"

namespace Host {

namespace {

constexpr bool kPathsAreWide = std::is_same_v<std::filesystem::path::value_type, wchar_t>;

}  // namespace

std::filesystem::path AbsolutePath(const std::filesystem::path& path) {
    std::error_code failure;
    const std::filesystem::path absolute = std::filesystem::absolute(path, failure);
    return failure || path.empty() ? path : absolute;
}

std::string PathToUtf8(const std::filesystem::path& path) {
    if constexpr (kPathsAreWide) {
        return Base::ToUtf8(path.wstring());
    } else {
        return path.string();
    }
}

std::filesystem::path PathFromUtf8(std::string_view utf8) {
    if constexpr (kPathsAreWide) {
        return Base::FromUtf8(utf8);
    } else {
        return utf8;
    }
}

}  // namespace Host

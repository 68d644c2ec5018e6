#pragma once

#include <cstdio>
#include <filesystem>
#include <string_view>

// What the log asks of the operating system.
namespace LogHelper {

// Makes the file and the folders on its way where they are missing, for this user only. Throws a
// std::exception when the file cannot be written to, or not without a reader's consent.
void PrepareFile(const std::filesystem::path& path);

// Whether `path` still names the open file: it may have been removed, or moved away by another
// process.
bool IsStillThere(std::FILE* file, const std::filesystem::path& path);

// Writes UTF-8 text to standard error; without consequence when that fails. On Linux the text is
// given up when its reader takes nothing for a second.
void WriteToStandardError(std::string_view text) noexcept;

// Whether the system has ended all other threads already, also those that held a lock.
bool OtherThreadsAreGone() noexcept;

}  // namespace LogHelper

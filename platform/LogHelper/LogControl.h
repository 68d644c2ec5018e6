// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>

#include "platform/LogHelper/KzLogger.h"

// Optional functions of the library LogHelper about its log. A replacement of the library need not
// have them: look them up by name, and work without them if they are missing. Safe from any thread.
extern "C" {

// Replaces the settings for all later lines: lines below `level`, a LOG_MESSAGE_LEVEL, are dropped;
// the others go to standard error if `toTerminal` is not 0, and to the file if `toFile` is not 0.
// `filePath` is terminated UTF-8; empty: the library's own choice. Returns 0 when memory ran out.
LOGHELPER_API int LogHelperConfigure(int level, int toTerminal, int toFile, const char* filePath);

// Writes the path of the file that lines go to, as terminated UTF-8, to the `size` bytes at `text`,
// truncated if too long. Returns its length; 0 and an empty text when there is none.
LOGHELPER_API std::size_t LogHelperFilePath(char* text, std::size_t size);

// Returns when all lines so far have been written to the system. Waits for a slow disk.
LOGHELPER_API void LogHelperFlush();

// For the handler of a signal that ends the process: writes the queued lines and then `text`, of
// `length` bytes, as a line of the error level, to the file.
LOGHELPER_API void LogHelperWriteInSignalHandler(const char* text, std::size_t length);

}  // extern "C"

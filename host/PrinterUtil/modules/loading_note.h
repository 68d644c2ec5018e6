// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <string>

namespace PrinterUtil {

// Notes, as long as it lives, that a module is being loaded. Notes are fixed memory, so that they
// can be read when the process dies; one that finds no room there is not kept.
class LoadingNote {
public:
    explicit LoadingNote(const std::string& path);
    ~LoadingNote();
    LoadingNote(const LoadingNote&) = delete;
    LoadingNote& operator=(const LoadingNote&) = delete;

    // The path of the module whose load started last; empty when none is being loaded.
    static std::string Latest();

    // The paths of all, separated by ", ": terminated, cut where they do not fit. Returns the
    // length. Neither allocates nor waits.
    static std::size_t ReadAll(char* text, std::size_t size);

private:
    struct Row;
    static Row rows[];

    Row* own = nullptr;
};

}  // namespace PrinterUtil

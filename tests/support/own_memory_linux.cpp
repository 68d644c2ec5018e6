// SPDX-License-Identifier: Apache-2.0

#include "tests/support/own_memory_linux.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <thread>

namespace {

constexpr std::size_t kPiece = std::size_t{1} << 20U;
// What sanitizers reserve for themselves is larger, and holds no text.
constexpr std::uint64_t kLargestMapping = std::uint64_t{1} << 32U;

// What is read lies outside of what is searched.
struct Room {
    Room()
        : bytes(static_cast<char*>(
              mmap(nullptr, kPiece, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0))) {}
    ~Room() { munmap(bytes, kPiece); }
    Room(const Room&) = delete;
    Room& operator=(const Room&) = delete;
    char* const bytes;
};

bool StandsAt(const char* place, std::string_view text, std::size_t width) {
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (place[at * width] != text[at] ||
            std::any_of(place + at * width + 1, place + (at + 1) * width,
                        [](char byte) { return byte != '\0'; })) {
            return false;
        }
    }
    return true;
}

void Search(std::string_view piece, std::uint64_t begin, const char* mapping, std::string_view text,
            std::vector<std::string>& places) {
    for (const std::size_t width : {sizeof(char), sizeof(wchar_t)}) {
        const std::size_t size = text.size() * width;
        for (std::size_t at = piece.find(text[0]);
             at != std::string_view::npos && at + size <= piece.size();
             at = piece.find(text[0], at + 1)) {
            if (StandsAt(piece.data() + at, text, width)) {
                char line[200];
                std::snprintf(line, sizeof line, "%" PRIx64 " %s %s", begin + at,
                              width == 1 ? "narrow" : "wide", mapping);
                places.emplace_back(line);
            }
        }
    }
}

std::vector<std::string> SearchAll(std::string_view text) {
    std::vector<std::string> places;
    const Room room;
    const int memory = open("/proc/self/mem", O_RDONLY | O_CLOEXEC);
    std::FILE* const maps = std::fopen("/proc/self/maps", "re");
    char line[512];
    while (memory >= 0 && maps != nullptr && std::fgets(line, sizeof line, maps) != nullptr) {
        std::uint64_t begin = 0;
        std::uint64_t end = 0;
        char access[5] = "";
        char name[100] = "";
        std::sscanf(line, "%" SCNx64 "-%" SCNx64 " %4s %*s %*s %*s %99s", &begin, &end, access,
                    name);
        if (access[1] != 'w' || end - begin > kLargestMapping) {
            continue;
        }
        const std::size_t overlap = text.size() * sizeof(wchar_t);
        for (std::uint64_t at = begin; at < end; at += kPiece - overlap) {
            // The room itself may be part of a larger mapping.
            const auto own = reinterpret_cast<std::uint64_t>(room.bytes);
            if (at >= own && at < own + kPiece) {
                at = own + kPiece - (kPiece - overlap);
                continue;
            }
            const std::uint64_t pieceEnd = at < own ? std::min(end, own) : end;
            const std::size_t size = std::min<std::uint64_t>(kPiece, pieceEnd - at);
            const ssize_t count = pread(memory, room.bytes, size, static_cast<off_t>(at));
            if (count > 0) {
                Search({room.bytes, static_cast<std::size_t>(count)}, at, name, text, places);
            }
        }
    }
    if (memory < 0 || maps == nullptr) {
        places.emplace_back("the memory cannot be read");
    }
    close(memory);
    if (maps != nullptr) {
        std::fclose(maps);
    }
    return places;
}

}  // namespace

// On a stack of its own, lest it overwrites what stands on the caller's.
std::vector<std::string> PlacesInOwnMemory(std::string_view text) {
    std::vector<std::string> places;
    std::thread([&] { places = SearchAll(text); }).join();
    return places;
}

std::vector<std::string> PlacesThatStay(std::string_view text) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    std::vector<std::string> places = PlacesInOwnMemory(text);
    while (!places.empty() && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        places = PlacesInOwnMemory(text);
    }
    return places;
}

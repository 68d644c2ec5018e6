// SPDX-License-Identifier: Apache-2.0

#include "app/library/module_exports.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <istream>
#include <optional>

namespace App {

namespace {

constexpr std::size_t kMaxExports = 65536;
constexpr std::size_t kMaxSections = 4096;
constexpr std::size_t kLongestExport = 512;
constexpr std::uint64_t kLargestFile = std::uint64_t{1} << 40;

// Reads little-endian numbers at any position of a file; nothing beyond its end.
class Image {
public:
    explicit Image(std::istream& stream) : file(stream) {}

    std::optional<std::uint64_t> Number(std::uint64_t at, std::size_t size) {
        std::array<char, 8> bytes{};
        if (Read(at, bytes.data(), size) != size) {
            return std::nullopt;
        }
        std::uint64_t number = 0;
        for (std::size_t index = size; index > 0; --index) {
            number = number << 8 | static_cast<unsigned char>(bytes[index - 1]);
        }
        return number;
    }

    // The same, with 0 for a missing number.
    std::uint64_t NumberOr0(std::uint64_t at, std::size_t size) {
        return Number(at, size).value_or(0);
    }

    bool Has(std::uint64_t at, std::string_view text) {
        std::string found(text.size(), '\0');
        return Read(at, found.data(), found.size()) == found.size() && found == text;
    }

    // The text up to its terminator; empty when it has none or is too long for a name.
    std::string Text(std::uint64_t at) {
        std::string text(kLongestExport, '\0');
        text.resize(Read(at, text.data(), text.size()));
        const std::size_t end = text.find('\0');
        return end == std::string::npos ? std::string() : text.substr(0, end);
    }

private:
    std::size_t Read(std::uint64_t at, char* bytes, std::size_t size) {
        if (at > kLargestFile) {
            return 0;
        }
        file.clear();
        file.seekg(static_cast<std::streamoff>(at));
        file.read(bytes, static_cast<std::streamsize>(size));
        return static_cast<std::size_t>(std::max<std::streamsize>(file.gcount(), 0));
    }

    std::istream& file;
};

// A 64-bit ELF library: the symbols that it exports.
class ElfLibrary {
public:
    explicit ElfLibrary(Image& file)
        : image(file),
          sections(image.NumberOr0(40, 8)),
          count(std::min<std::uint64_t>(image.NumberOr0(60, 2), kMaxSections)) {}

    std::vector<std::string> Names() {
        constexpr std::uint64_t dynamicSymbols = 11;
        constexpr std::uint64_t symbolSize = 24;
        std::vector<std::string> names;
        for (std::uint64_t index = 0; index < count; ++index) {
            const std::uint64_t section = SectionAt(index);
            if (image.NumberOr0(section + 4, 4) != dynamicSymbols) {
                continue;
            }
            const std::uint64_t symbols = image.NumberOr0(section + 24, 8);
            const std::uint64_t texts =
                image.NumberOr0(SectionAt(image.NumberOr0(section + 40, 4)) + 24, 8);
            const std::uint64_t symbolCount = image.NumberOr0(section + 32, 8) / symbolSize;
            for (std::uint64_t at = 0; at < std::min<std::uint64_t>(symbolCount, kMaxExports);
                 ++at) {
                AddName(symbols + at * symbolSize, texts, names);
            }
            break;  // there is one such table
        }
        return names;
    }

private:
    std::uint64_t SectionAt(std::uint64_t index) const {
        constexpr std::uint64_t headerSize = 64;
        return sections + index * headerSize;
    }

    void AddName(std::uint64_t symbol, std::uint64_t texts, std::vector<std::string>& names) {
        constexpr std::uint64_t global = 1;
        constexpr std::uint64_t weak = 2;
        const std::uint64_t binding = image.NumberOr0(symbol + 4, 1) >> 4;
        const bool isDefined = image.NumberOr0(symbol + 6, 2) != 0;
        const std::string name = image.Text(texts + image.NumberOr0(symbol, 4));
        if (isDefined && (binding == global || binding == weak) && !name.empty()) {
            names.push_back(name);
        }
    }

    Image& image;
    const std::uint64_t sections;
    const std::uint64_t count;
};

// A PE library of either width: the names in its export directory.
class PeLibrary {
public:
    PeLibrary(Image& file, std::uint64_t header)
        : image(file),
          optionalHeader(header + 24),
          sections(optionalHeader + image.NumberOr0(header + 20, 2)),
          count(std::min<std::uint64_t>(image.NumberOr0(header + 6, 2), kMaxSections)) {}

    std::vector<std::string> Names() {
        constexpr std::uint64_t wide = 0x20B;
        const std::uint64_t directories =
            optionalHeader + (image.NumberOr0(optionalHeader, 2) == wide ? 112 : 96);
        const auto exports = PlaceOf(image.NumberOr0(directories, 4));
        if (!exports) {
            return {};
        }
        const auto table = PlaceOf(image.NumberOr0(*exports + 32, 4));
        const std::uint64_t nameCount =
            std::min<std::uint64_t>(image.NumberOr0(*exports + 24, 4), kMaxExports);
        std::vector<std::string> names;
        for (std::uint64_t at = 0; table && at < nameCount; ++at) {
            const auto place = PlaceOf(image.NumberOr0(*table + at * 4, 4));
            const std::string name = place ? image.Text(*place) : "";
            if (!name.empty()) {
                names.push_back(name);
            }
        }
        return names;
    }

private:
    // The position in the file of an address of the loaded library.
    std::optional<std::uint64_t> PlaceOf(std::uint64_t address) {
        constexpr std::uint64_t headerSize = 40;
        for (std::uint64_t index = 0; address != 0 && index < count; ++index) {
            const std::uint64_t section = sections + index * headerSize;
            const std::uint64_t begin = image.NumberOr0(section + 12, 4);
            const std::uint64_t size = image.NumberOr0(section + 16, 4);
            if (address >= begin && address - begin < size) {
                return image.NumberOr0(section + 20, 4) + (address - begin);
            }
        }
        return std::nullopt;
    }

    Image& image;
    const std::uint64_t optionalHeader;
    const std::uint64_t sections;
    const std::uint64_t count;
};

bool IsSameButForCase(const std::string& one, const std::string& other) {
    return std::equal(
        one.begin(), one.end(), other.begin(), other.end(),
        [](unsigned char a, unsigned char b) { return std::tolower(a) == std::tolower(b); });
}

// Whether this is the entry point's name with one of the two C++ decorations.
bool IsDecorated(const std::string& name, const std::string& entryPoint) {
    return (name.starts_with("_Z") &&
            name.find(std::to_string(entryPoint.size()) + entryPoint) != std::string::npos) ||
           name.starts_with("?" + entryPoint + "@");
}

// Whether the name has the additions of a calling convention: a leading underscore, or the size of
// the arguments after an @.
bool HasConvention(const std::string& name, const std::string& entryPoint) {
    const std::string plain = name.starts_with('_') ? name.substr(1) : name;
    return name != entryPoint && plain.substr(0, plain.find('@')) == entryPoint;
}

}  // namespace

std::vector<std::string> ExportedNames(std::istream& file) {
    Image image(file);
    if (image.Has(0,
                  "\x7f"
                  "ELF\x02\x01")) {
        return ElfLibrary(image).Names();
    }
    const std::uint64_t header = image.NumberOr0(0x3C, 4);
    if (image.Has(0, "MZ") && image.Has(header, std::string_view("PE\0\0", 4))) {
        return PeLibrary(image, header).Names();
    }
    return {};
}

std::string NearMiss(const std::string& entryPoint, const std::vector<std::string>& names) {
    for (const std::string& name : names) {
        std::string exported = entryPoint;
        exported.append(": the module exports ").append(name);
        if (IsSameButForCase(name, entryPoint)) {
            return exported + "; the name must be the same in upper and lower case";
        }
        if (IsDecorated(name, entryPoint)) {
            return exported + ", a C++ name; declare the function extern \"C\"";
        }
        if (HasConvention(name, entryPoint)) {
            return exported + ", decorated by a calling convention; export it without";
        }
    }
    return {};
}

}  // namespace App

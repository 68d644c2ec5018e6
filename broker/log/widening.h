// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <locale>
#include <string_view>

namespace Broker {

// Widens narrow text byte by byte, like the character-type facet of a locale. The locale must
// outlive this object.
//
// Nearly every process uses the classic locale. Its facet is looked up only once and, if the facet
// keeps ASCII unchanged, ASCII is widened in blocks without the facet.
class Widening {
public:
    static Widening Of(const std::locale& locale) {
        static const Widening classic(std::locale::classic(), Ascii::MayBeKept);
        return locale == std::locale::classic() ? classic : Widening(locale, Ascii::Unknown);
    }

    // Whether this is the classic locale, which keeps ASCII unchanged.
    bool IsClassic() const { return keepsAscii; }

    // Writes to `wide` as many characters as `narrow` has. True when all are unchanged ASCII.
    bool operator()(std::string_view narrow, wchar_t* wide) const {
        const char* from = narrow.data();
        const char* const end = from + narrow.size();
        if (keepsAscii) {
            while (WidenAscii<std::uint64_t, 2>(from, end, wide)) {
            }
            WidenAscii<std::uint64_t, 1>(from, end, wide);
            WidenAscii<std::uint32_t, 1>(from, end, wide);
            for (; from != end && static_cast<unsigned char>(*from) < 0x80; ++from) {
                *wide++ = static_cast<wchar_t>(*from);
            }
        }
        const bool kept = from == end;
        for (; from != end; ++from) {
            *wide++ = facet->widen(*from);
        }
        return kept;
    }

private:
    enum class Ascii { Unknown, MayBeKept };

    static constexpr std::uint64_t kBeyondAscii = 0x8080808080808080;

    Widening(const std::locale& locale, Ascii ascii)
        : facet(&std::use_facet<std::ctype<wchar_t>>(locale)),
          keepsAscii(ascii == Ascii::MayBeKept && KeepsAscii()) {}

    bool KeepsAscii() const {
        bool kept = true;
        for (int code = 0; code < 0x80; ++code) {
            kept = kept && facet->widen(static_cast<char>(code)) == static_cast<wchar_t>(code);
        }
        return kept;
    }

    // Widens a block of Count words and passes both texts over it. False, with nothing done, when
    // so much is not left or is not all ASCII. Compilers vectorise the loop because it runs over a
    // copy of fixed size.
    template <class Word, std::size_t Count>
    static bool WidenAscii(const char*& narrow, const char* end, wchar_t*& wide) {
        Word words[Count];
        constexpr std::size_t size = sizeof words;
        if (end - narrow < static_cast<std::ptrdiff_t>(size)) {
            return false;
        }
        std::memcpy(words, narrow, size);
        Word all = 0;
        for (const Word word : words) {
            all |= word;
        }
        if ((all & static_cast<Word>(kBeyondAscii)) != 0) {
            return false;
        }
        unsigned char block[size];
        std::memcpy(block, narrow, size);
        for (std::size_t at = 0; at < size; ++at) {
            wide[at] = block[at];
        }
        narrow += size;
        wide += size;
        return true;
    }

    const std::ctype<wchar_t>* facet;
    bool keepsAscii;
};

}  // namespace Broker

#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <locale>
#include <string_view>

namespace Broker {

// Makes narrow text wide, byte by byte, as the character-type facet of a locale does. To be used no
// longer than the locale.
//
// Nearly every process stays in the classic locale. There the facet is looked up once for all, and
// ASCII, once the facet is seen to keep it as it is, is widened a block at a time without it.
class Widening {
public:
    static Widening Of(const std::locale& locale) {
        static const Widening classic(std::locale::classic(), Ascii::MayBeKept);
        return locale == std::locale::classic() ? classic : Widening(locale, Ascii::Unknown);
    }

    // Whether the locale is the classic one, in which ASCII stays what it is.
    bool IsClassic() const { return keepsAscii; }

    // Writes as many characters to `wide` as `narrow` has. True when all are ASCII, as they were.
    bool operator()(std::string_view narrow, wchar_t* wide) const {
        const char* from = narrow.data();
        const char* const end = from + narrow.size();
        if (keepsAscii) {
            for (; end - from >= kBlock && WidenAscii(from, wide); from += kBlock) {
                wide += kBlock;
            }
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

    static constexpr std::ptrdiff_t kBlock = 16;
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

    // Widens one block; false, with nothing written, when it is not all ASCII. The loop over a copy
    // of fixed size is what compilers make vector instructions of.
    static bool WidenAscii(const char* narrow, wchar_t* wide) {
        std::uint64_t halves[2];
        static_assert(sizeof halves == kBlock);
        std::memcpy(halves, narrow, kBlock);
        if (((halves[0] | halves[1]) & kBeyondAscii) != 0) {
            return false;
        }
        unsigned char block[kBlock];
        std::memcpy(block, narrow, kBlock);
        for (std::ptrdiff_t at = 0; at < kBlock; ++at) {
            wide[at] = block[at];
        }
        return true;
    }

    const std::ctype<wchar_t>* facet;
    bool keepsAscii;
};

}  // namespace Broker

// SPDX-License-Identifier: Apache-2.0

#pragma once

// What a character does to a line of text.

#include <cstddef>

namespace Base {

// Control characters: U+0000 to U+001F and U+007F to U+009F.
bool IsControl(char32_t codePoint);

// Control characters and the separators of lines and paragraphs.
bool BreaksLine(char32_t codePoint);

// Embeddings, overrides and isolates of the direction of text, and their ends.
bool ChangesDirection(char32_t codePoint);

// Joiners, marks of direction, the byte order mark and other characters that show nothing.
bool IsInvisible(char32_t codePoint);

}  // namespace Base

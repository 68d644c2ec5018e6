#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Writes base/text/width_table.h from the Unicode data of this Python.

usage: make_width_table.py [--check]

With --check nothing is written. Exit status: 0 the table is current, 1 it is not.
"""

import pathlib
import sys
import unicodedata

TABLE = pathlib.Path(__file__).with_name("width_table.h")

# What terminals show otherwise than the data says. The C library's wcwidth has the same exceptions.
DIFFERENT = [
    (0xAD, 0xAD, 1),  # soft hyphen
    # Format characters that are visible: they stand around the digits that follow.
    (0x0600, 0x0605, 1), (0x06DD, 0x06DD, 1), (0x070F, 0x070F, 1), (0x0890, 0x0891, 1),
    (0x08E2, 0x08E2, 1), (0x110BD, 0x110BD, 1), (0x110CD, 0x110CD, 1),
    # Vowels and final consonants of a Hangul syllable: its first consonant takes both columns.
    (0x1160, 0x11FF, 0), (0xD7B0, 0xD7FF, 0),
    # Numbers on black squares, and hexagrams.
    (0x3248, 0x324F, 2), (0x4DC0, 0x4DFF, 2),
    # Places for ideographs, also those that are not yet used.
    (0x3400, 0x4DBF, 2), (0x4E00, 0x9FFF, 2), (0xF900, 0xFAFF, 2), (0x20000, 0x2FFFD, 2),
    (0x30000, 0x3FFFD, 2),
]
EXCEPTIONS = {code_point: columns for first, last, columns in DIFFERENT
              for code_point in range(first, last + 1)}


def width(code_point):
    character = chr(code_point)
    category = unicodedata.category(character)
    if code_point in EXCEPTIONS:
        return EXCEPTIONS[code_point]
    if category in ("Mn", "Me", "Cf"):
        return 0
    return 2 if category != "Cn" and unicodedata.east_asian_width(character) in "WF" else 1


def ranges_of(columns, widths):
    ranges = []
    for code_point, its_width in enumerate(widths):
        if its_width == columns:
            if ranges and ranges[-1][1] == code_point - 1:
                ranges[-1][1] = code_point
            else:
                ranges.append([code_point, code_point])
    return ranges


def array(name, ranges):
    rows = [f"{{0x{first:04X}, 0x{last:04X}}}," for first, last in ranges]
    lines = ["    " + " ".join(rows[at:at + 5]) for at in range(0, len(rows), 5)]
    return [f"inline constexpr CharacterRange {name}[] = {{"] + lines + ["};"]


def table():
    widths = [width(code_point) for code_point in range(sys.maxunicode + 1)]
    lines = [
        "// SPDX-License-Identifier: Apache-2.0",
        "",
        "#pragma once",
        "",
        "// Written by base/text/make_width_table.py from the data of",
        f"// Unicode {unicodedata.unidata_version}; do not edit.",
        "",
        "// clang-format off",
        "",
        "namespace Base {",
        "",
        "struct CharacterRange {",
        "    char32_t first;",
        "    char32_t last;",
        "};",
        "",
        "// Characters that take no column of their own.",
        *array("kNoColumn", ranges_of(0, widths)),
        "",
        "// Characters that take two columns.",
        *array("kTwoColumns", ranges_of(2, widths)),
        "",
        "}  // namespace Base",
    ]
    return "\n".join(lines) + "\n"


def main(arguments):
    if arguments not in ([], ["--check"]):
        print(__doc__, file=sys.stderr)
        return 2
    if not arguments:
        TABLE.write_text(table(), encoding="utf-8")
        return 0
    if TABLE.read_text(encoding="utf-8") == table():
        return 0
    print(f"{TABLE.name} is not what Unicode {unicodedata.unidata_version} gives: run {__file__}")
    return 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))

#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Turns the plain comments of a header into Doxygen's.

usage: doxygen_filter.py HEADER    the result goes to standard output

A comment on lines of its own belongs to what follows; the first one of a file, behind which a blank line
is, to the file. A comment behind code belongs to that code. The lines keep their numbers.
"""

import os
import re
import sys

OWN_LINE = re.compile(r"^(\s*)//( |$)(.*)$")
BEHIND_CODE = re.compile(r"^(.*\S\s+)// (.*)$")
# Words and signs that mean something to Doxygen, and nothing to the headers.
SPECIAL = re.compile(r"[\\@<>#%]|&(?=\w)")


def plain(text):
    return SPECIAL.sub(lambda sign: "\\" + sign.group(0), text)


def blocks(lines):
    """Ranges of lines that are one comment each."""
    begin = None
    for number, line in enumerate(lines + [""]):
        if OWN_LINE.match(line):
            begin = number if begin is None else begin
        elif begin is not None:
            yield begin, number
            begin = None


def converted(name, lines):
    out = list(lines)
    is_first = True
    for begin, end in blocks(lines):
        text = [OWN_LINE.match(line).group(3) for line in lines[begin:end]]
        if text[0].startswith(("SPDX-License-Identifier", "---", "NOLINT")):
            continue
        is_of_file = is_first and end < len(lines) and not lines[end].strip()
        is_first = False
        if not is_of_file and end < len(lines) and not lines[end].strip():
            continue  # belongs to nothing in particular
        for number, part in zip(range(begin, end), text):
            indent = OWN_LINE.match(lines[number]).group(1)
            # Four blanks make a block of code, whose signs mean nothing.
            out[number] = f"{indent}/// {part if part.startswith('    ') else plain(part)}".rstrip()
        if is_of_file:
            out[begin] = out[begin].replace("/// ", f"/// @file {name}\n/// ", 1)
    for number, line in enumerate(lines):
        match = BEHIND_CODE.match(line)
        if match and not OWN_LINE.match(line) and not line.lstrip().startswith("#"):
            out[number] = f"{match.group(1)}///< {plain(match.group(2))}"
    return out


def main(arguments):
    if len(arguments) != 1 or arguments[0].startswith("-"):
        print(__doc__.strip(), file=sys.stderr)
        return 2
    with open(arguments[0], encoding="utf-8") as file:
        lines = file.read().split("\n")
    name = os.path.relpath(arguments[0]).removeprefix("include" + os.sep)
    print("\n".join(converted(name, lines)), end="")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))

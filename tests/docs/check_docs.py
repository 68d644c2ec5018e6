#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Checks what the documents say against the tree: links, paths, commands, quoted messages and programs; and that
each source names its licence.

usage: check_docs.py [SOURCE]    SOURCE: the top of the project (default: that of this script)

Exit status: 0 all is so, 1 something is not, each place named.
"""

import glob
import os
import re
import sys

DOCUMENTS = ["*.md", "docs/*.md", "host/*/README.md", "modules/*/README.md", "bench/README.md"]
GUIDE = "docs/application-guide.md"
MESSAGES = "docs/troubleshooting.md"
# Where what a user reads comes from.
SOURCES = ["app", "base", "host", "modules/driverless", "platform"]

LINK = re.compile(r"\]\(([^)#:\s]+)(?:#[^)]*)?\)")
SPAN = re.compile(r"`([^`\n]+)`")
FENCE = re.compile(r"^```(\w*)\n(.*?)^```$", re.MULTILINE | re.DOTALL)
PATH = re.compile(r"([\w.-]+)/[\w./*-]*$")
PLACEHOLDER = re.compile(r"NAME|FOLDER")
COMMAND = re.compile(r"devicediscover ((?:[a-z]+ ?)+)")
OPTION = re.compile(r"--[a-z][a-z-]+")
SOURCE = re.compile(r"\.(h|cpp|py|cmake)$|^CMakeLists\.txt$")
LICENCE = "SPDX-License-Identifier: Apache-2.0"
LITERALS = re.compile(r'"((?:[^"\\\n]|\\.)*)"')
MESSAGE_ROW = re.compile(r"^\| `([^`]+)` \|", re.MULTILINE)


def read(top, path):
    with open(os.path.join(top, path), encoding="utf-8") as file:
        return file.read()


def documents(top):
    for pattern in DOCUMENTS:
        for path in sorted(glob.glob(os.path.join(top, pattern))):
            yield os.path.relpath(path, top)


def exists(top, path):
    return bool(glob.glob(os.path.join(top, path)))


def plain(text):
    return re.sub(r"\s+", " ", text.replace("\\n", " ").replace('\\"', '"'))


def literals(text):
    """The string literals of a source; those that follow each other are one."""
    found, end = [], None
    for match in LITERALS.finditer(text):
        if end is not None and not text[end:match.start()].strip():
            found[-1] += match.group(1)
        else:
            found.append(match.group(1))
        end = match.end()
    return [plain(one) for one in found]


def sources(top):
    for folder in SOURCES:
        for path in glob.glob(os.path.join(top, folder, "**", "*"), recursive=True):
            if path.endswith((".cpp", ".h", ".json")):
                yield read(top, path)


def broken_links(top, path, text):
    for target in LINK.findall(text):
        if not exists(top, os.path.join(os.path.dirname(path), target)):
            yield f"{path}: links to {target}, which is not there"


def is_path(top, span):
    """Whether it is a path into a folder of the project; what is built is none."""
    match = PATH.match(span)
    return match and match.group(1) != "build" and os.path.isdir(os.path.join(top, match.group(1)))


def missing_paths(top, path, text):
    for span in SPAN.findall(text):
        if is_path(top, span) and not PLACEHOLDER.search(span) and not exists(top, span):
            yield f"{path}: names {span}, which is not there"


def unknown_commands(path, text, words):
    for line in SPAN.findall(text) + re.findall(r"^ {4}(?:\$ )?(devicediscover .*)", text, re.MULTILINE):
        for named in COMMAND.match(line).group(1).split() if COMMAND.match(line) else []:
            if named not in words:
                yield f"{path}: there is no command '{named}': {line}"
        for option in OPTION.findall(line) if line.startswith("devicediscover ") else []:
            if option not in words and option != "--help":
                yield f"{path}: there is no option {option}: {line}"


def unknown_messages(path, text, said):
    for message in MESSAGE_ROW.findall(text):
        for piece in message.split("…"):
            if len(piece.strip()) > 2 and not any(piece.strip() in one for one in said):
                yield f"{path}: nothing says '{piece.strip()}'"


def changed_programs(top, path, text):
    """Each C++ block must stand in the example whose link came last before it."""
    for match in FENCE.finditer(text):
        if match.group(1) != "cpp":
            continue
        links = re.findall(r"\((examples/\w+\.cpp)\)", text[:match.start()])
        if not links:
            yield f"{path}: a program without a link to its example"
        elif match.group(2) not in read(top, os.path.join("docs", links[-1])):
            yield f"{path}: differs from docs/{links[-1]}: {match.group(2).splitlines()[0]}"


def unlicensed(top):
    """Sources whose first lines do not name their licence."""
    for folder, folders, names in os.walk(top):
        if folder == top:
            folders[:] = [name for name in folders if name not in (".git", "build")]
        for name in sorted(names):
            path = os.path.relpath(os.path.join(folder, name), top)
            if SOURCE.search(name) and LICENCE not in read(top, path)[:200]:
                yield f"{path}: does not begin with {LICENCE}"


def main(arguments):
    here = os.path.dirname(os.path.abspath(__file__))
    top = os.path.abspath(arguments[0] if arguments else os.path.join(here, "..", ".."))
    said = [one for text in sources(top) for one in literals(text)]
    words = {word for one in said for word in one.split()}
    found, count = [], 0
    for path in documents(top):
        text = read(top, path)
        count += 1
        found += [*broken_links(top, path, text), *missing_paths(top, path, text),
                  *unknown_commands(path, text, words)]
        if path == MESSAGES:
            found += unknown_messages(path, text, said)
        if path == GUIDE:
            found += changed_programs(top, path, text)
    found += unlicensed(top)
    for complaint in found:
        print(complaint)
    print(f"documents: {count} files, {len(found)} complaints")
    return 1 if found or count == 0 else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))

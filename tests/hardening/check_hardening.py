#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Checks that every program and library of a build tree is hardened.

usage: check_hardening.py BUILD    BUILD: a release build tree, for Linux or Windows

Exit status: 0 all are, 1 some are not, each named with what it lacks, 2 wrong arguments.
"""

import glob
import json
import os
import platform
import re
import subprocess
import sys

TOP = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
BOTH = ["-fstack-protector-strong", "-D_FORTIFY_SOURCE=2"]
ON_X86 = ["-fcf-protection"] if platform.machine() in ("x86_64", "AMD64", "i686") else []
COMPILED_WITH = {"linux": BOTH + ["-fstack-clash-protection"] + ON_X86, "windows": BOTH}
# The folders of what users run; tests and benchmarks may be built as they like.
NOT_SHIPPED = re.compile(r"^(tests|bench)/")
FEWEST_BINARIES = 6


def output(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True,
                          env={**os.environ, "LC_ALL": "C"}).stdout


def elf_lacks(path):
    headers = output("readelf", "-hldW", path)
    if not re.search(r"Type:\s+DYN", headers):
        yield "position independence"
    if not re.search(r"GNU_STACK\s.*\sRW\s", headers):
        yield "a stack that cannot be run"
    if "GNU_RELRO" not in headers:
        yield "RELRO"
    if not re.search(r"BIND_NOW|FLAGS_1.*\bNOW\b", headers):
        yield "BIND_NOW"


def pe_lacks(path):
    headers = output("x86_64-w64-mingw32-objdump", "-p", path)
    for flag in ["DYNAMIC_BASE", "NX_COMPAT", "HIGH_ENTROPY_VA"]:
        if flag not in headers:
            yield flag


def all_symbols(system, path):
    if system == "linux":
        return output("readelf", "--dyn-syms", "-W", path)
    return output("x86_64-w64-mingw32-objdump", "-p", path)


def compiled_without(build, options):
    """Each shipped source whose command lacks an option, or takes it back."""
    with open(os.path.join(build, "compile_commands.json"), encoding="utf-8") as file:
        commands = json.load(file)
    for entry in commands:
        if entry["file"].endswith(".rc"):
            continue
        source = os.path.relpath(entry["file"], TOP)
        words = entry["command"].split()
        product = words[words.index("-o") + 1]
        if source.startswith("..") or NOT_SHIPPED.match(source) or NOT_SHIPPED.match(product):
            continue
        for option in options:
            undone = option.split("=")[0].replace("-D", "-U")
            stands = option in words and (
                undone == option or undone not in words[words.index(option):])
            if not stands:
                yield source, option


def binaries_of(build):
    for place in ["bin", "bin/DeviceDiscover/modules"]:
        for path in sorted(glob.glob(os.path.join(build, place, "*"))):
            if os.path.isfile(path) and not os.path.islink(path):
                with open(path, "rb") as file:
                    start = file.read(4)
                if start == b"\x7fELF" or start[:2] == b"MZ":
                    yield path


def complaints(build):
    system = "windows" if glob.glob(os.path.join(build, "bin", "*.exe")) else "linux"
    lacks = elf_lacks if system == "linux" else pe_lacks
    binaries = list(binaries_of(build))
    if len(binaries) < FEWEST_BINARIES:
        yield f"{build}: only {len(binaries)} binaries to look at"
    guarded = copied = False
    for path in binaries:
        for lacking in lacks(path):
            yield f"{os.path.relpath(path, build)}: lacks {lacking}"
        symbols = all_symbols(system, path)
        guarded |= "__stack_chk_fail" in symbols
        copied |= bool(re.search(r"\w_chk\b", symbols))
    if not guarded:
        yield "no binary has a guarded stack"
    if system == "linux" and not copied:
        yield "no binary calls a checked copy"
    for source, option in compiled_without(build, COMPILED_WITH[system]):
        yield f"{source}: compiled without {option}"


def main(arguments):
    if len(arguments) != 1 or not os.path.isdir(arguments[0]):
        print(__doc__, file=sys.stderr)
        return 2
    found = list(complaints(os.path.abspath(arguments[0])))
    for complaint in found:
        print(complaint)
    print(f"hardening: {len(found)} complaints")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))

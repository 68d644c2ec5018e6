#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Checks that each program and library of a Windows build says what it is, as its properties show it.

usage: check_versions.py BUILD VERSION    BUILD: a build tree for Windows; VERSION: as in 0.1.0

Exit status: 0 all do, 1 some do not, each named with what is wrong, 2 wrong arguments.
"""

import glob
import os
import struct
import sys

OURS = ["DeviceDiscover.dll", "LogHelper.dll", "PrinterAdapter.dll", "PrinterDiscoverAPI.dll",
        "PrinterUtil.dll", "devicediscover.exe"]
RT_VERSION = 16
MAGIC = 0xFEEF04BD


def sections(image):
    """(virtual address, size, place in the file) of each section, and the address of the resources."""
    header = struct.unpack_from("<I", image, 0x3C)[0]
    count, optional_size = struct.unpack_from("<H12xH", image, header + 6)
    optional = header + 24
    first_directory = optional + (112 if struct.unpack_from("<H", image, optional)[0] == 0x20B else 96)
    resources = struct.unpack_from("<I", image, first_directory + 2 * 8)[0]
    rows = []
    for index in range(count):
        size, address, raw_size, raw = struct.unpack_from(
            "<4I", image, optional + optional_size + 40 * index + 8)
        rows.append((address, max(size, raw_size), raw))
    return rows, resources


def version_block(image):
    """The bytes of the first version resource; None without one."""
    rows, resources = sections(image)

    def place(address):
        for begin, size, raw in rows:
            if begin <= address < begin + size:
                return raw + address - begin
        raise ValueError("an address outside all sections")

    if not resources:
        return None
    root = place(resources)

    def children(offset):
        named, numbered = struct.unpack_from("<12xHH", image, root + offset)
        for index in range(named + numbered):
            yield struct.unpack_from("<II", image, root + offset + 16 + 8 * index)

    kinds = [child for number, child in children(0) if number == RT_VERSION]
    if not kinds:
        return None
    offset = kinds[0]
    while offset & 0x80000000:  # a folder: kind, name, language
        offset = next(children(offset & 0x7FFFFFFF))[1]
    address, size = struct.unpack_from("<II", image, root + offset)
    begin = place(address)
    return image[begin:begin + size]


def aligned(offset):
    return (offset + 3) & ~3


def strings(block, offset=0):
    """The texts by their names, from all levels of a version resource."""
    length, value_length, is_text = struct.unpack_from("<3H", block, offset)
    end = offset + length
    at = offset + 6
    name = ""
    while block[at:at + 2] != b"\0\0":
        name += block[at:at + 2].decode("utf-16-le")
        at += 2
    at = aligned(at + 2)
    if is_text and value_length:
        yield name, block[at:at + 2 * value_length].decode("utf-16-le").rstrip("\0")
        return
    at = aligned(at + value_length)
    while at < end:
        yield from strings(block, at)
        at = aligned(at + struct.unpack_from("<H", block, at)[0])


def numbers(block):
    at = block.index(struct.pack("<I", MAGIC))
    high, low = struct.unpack_from("<II", block, at + 8)
    return f"{high >> 16}.{high & 0xFFFF}.{low >> 16}"


def complaints(path, version):
    with open(path, "rb") as file:
        block = version_block(file.read())
    if block is None:
        yield "has no version"
        return
    said = dict(strings(block))
    wanted = {"FileVersion": version, "ProductVersion": version, "ProductName": "DeviceDiscover",
              "OriginalFilename": os.path.basename(path),
              "CompanyName": "The DeviceDiscover authors"}
    for name, text in wanted.items():
        if said.get(name) != text:
            yield f"{name} is {said.get(name)!r}, not {text!r}"
    for name in ["FileDescription", "LegalCopyright"]:
        if not said.get(name):
            yield f"{name} is empty"
    if numbers(block) != version:
        yield f"the number is {numbers(block)}, not {version}"


def main(arguments):
    if len(arguments) != 2 or not os.path.isdir(arguments[0]):
        print(__doc__, file=sys.stderr)
        return 2
    folder = os.path.join(arguments[0], "bin")
    built = sorted(glob.glob(os.path.join(folder, "*.dll")) + glob.glob(os.path.join(folder, "*.exe")))
    found = 0
    for name in OURS:
        if os.path.join(folder, name) not in built:
            print(f"{name}: not built")
            found += 1
    for path in built:
        for complaint in complaints(path, arguments[1]):
            print(f"{os.path.basename(path)}: {complaint}")
            found += 1
    print(f"versions: {len(built)} files, {found} complaints")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))

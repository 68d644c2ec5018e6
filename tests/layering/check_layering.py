#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Checks who includes whom, who knows an operating system or a compiler, and that the application
knows no vendor.

usage: check_layering.py [--folders] [SOURCE]    SOURCE: the top of the project (default: that of this script)

--folders: prints the product's top folders, one a line, and checks nothing.

Exit status: 0 all as planned, 1 something else, each place named.
"""

import os
import re
import sys

# Folder: the project's folders that its files may include, besides itself.
BROKER = ["include/", "platform/", "broker/records/", "broker/log/"]
MAY_INCLUDE = {
    "include/VendorSdk": [],
    "include/DeviceDiscover": ["include/VendorSdk/", "platform/"],
    "platform": [],
    # What the application, its libraries and the modules share.
    "base": [],
    "broker/log": ["include/", "platform/"],
    "broker/records": ["include/", "platform/", "broker/log/"],
    "broker/binding": BROKER,
    "broker/scan": BROKER + ["broker/binding/"],
    "broker/netconn": BROKER + ["broker/binding/"],
    "broker/usb": BROKER + ["broker/binding/", "broker/sdk/"],
    "broker/hostnet": BROKER + ["broker/binding/"],
    "broker/sdk": BROKER + ["broker/binding/"],
    "host/common": ["platform/", "base/"],
    "host/LogHelper": ["platform/", "base/", "host/common/"],
    "host/PrinterUtil": ["platform/", "base/", "host/common/"],
    # The interface that the adapter implements.
    "host/PrinterAdapter": ["platform/", "base/", "host/common/",
                            "include/DeviceDiscover/printer_sdk.h"],
    "host": ["platform/", "base/"],
    "modules/driverless": ["include/VendorSdk/", "base/", "platform/PrinterDiscoverAPI/"],
    "modules": ["include/VendorSdk/", "base/"],
    # The application configures its own libraries, and names no entry point by hand.
    "app": ["include/", "base/", "platform/os.h", "platform/os_calls.h", "platform/process_end.h",
            "platform/LogHelper/", "platform/PrinterUtil/",
            "platform/PrinterAdapter/PrinterListProblem.h",
            "platform/PrinterDiscoverAPI/PrinterUsbControl.h",
            "platform/PrinterDiscoverAPI/PrinterWifiControl.h",
            "host/PrinterDiscoverAPI/ping_report.h",
            "host/PrinterUtil/vendor_list.h"],
    "kit": ["include/VendorSdk/", "broker/binding/", "platform/os.h", "platform/os_calls.h"],
}
INCLUDE_FOLDERS = ["", "include/"]
# What CMake builds besides the product.
BESIDES = {"bench", "tests"}
SUBDIRECTORY = re.compile(r"^\s*add_subdirectory\((\w+)\)", re.MULTILINE)
COMMENT = re.compile(r"//[^\n]*|/\*.*?\*/", re.DOTALL)
SOURCE_FILE = re.compile(r"\.(h|hpp|c|cpp|inc)$")
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.MULTILINE)

OS_WORDS = re.compile(
    r"\b(_WIN32|_WIN64|WIN32|__MINGW\w*|__linux\w*|__unix\w*|__APPLE__|_POSIX\w*|_GNU_SOURCE)\b")
# What only one system has, by the names of its headers.
OS_HEADER = re.compile(
    r"^(windows|winsock2?|ws2tcpip|win\w+|sddl|aclapi|shellapi|shlobj|iphlpapi|psapi|tlhelp32|io|conio"
    r"|direct|process|unistd|dlfcn|link|elf|fcntl|poll|pthread|sched|semaphore|signal|spawn|termios|pty"
    r"|pwd|grp|glob|dirent|strings|langinfo|netdb|ifaddrs|syslog|ucontext|execinfo|features"
    r"|(sys|net|netinet|arpa|linux|asm|bits|winrt|gnu)/\w+)\.h$", re.IGNORECASE)
SYSTEM_INCLUDE = re.compile(r"^\s*#\s*include\s+<([^>]+)>", re.MULTILINE)
MAY_KNOW_THE_OS = re.compile(
    r"(_linux|_windows)\.(cpp|h)$|^platform/(os|os_calls|compiler)\.h$|^include/VendorSdk/entry_points\.h$"
    # A module for one system only.
    r"|^modules/driverless/")

COMPILER_WORDS = re.compile(
    r"\b(__attribute__|__declspec|__builtin_\w+|__asm\w*|__pragma|__extension__|__has_\w*attribute"
    r"|__forceinline|__restrict\w*|__PRETTY_FUNCTION__|__FUNCSIG__|__FUNCTION__"
    r"|_MSC_\w+|__GNUC\w*__|__clang\w*__|__INTEL\w*)\b|#\s*pragma\s+(?!once\b)\w+")
MAY_KNOW_THE_COMPILER = re.compile(r"^platform/compiler\.h$|^include/VendorSdk/entry_points\.h$")


def folders(top):
    """The product's top folders."""
    names = {layer.split("/")[0] for layer in MAY_INCLUDE}
    return sorted(name for name in names if os.path.isdir(os.path.join(top, name)))


def folders_without_a_layer(top):
    path = os.path.join(top, "CMakeLists.txt")
    if not os.path.isfile(path):
        return
    with open(path, encoding="utf-8") as file:
        built = set(SUBDIRECTORY.findall(file.read()))
    for name in sorted(built - BESIDES - set(folders(top))):
        yield f"CMakeLists.txt: builds {name}/, which is in no layer"


def vendors_of(top):
    """The vendors whose modules the project has, by the names of their folders."""
    modules = os.path.join(top, "modules")
    return [entry.name for entry in os.scandir(modules) if entry.is_dir()] if os.path.isdir(modules) else []


def layer_of(path):
    layers = [layer for layer in MAY_INCLUDE if path.startswith(layer + "/")]
    return max(layers, key=len, default=None)


def resolve(top, path, included):
    """The project's path of what `path` includes, or None when it is not the project's."""
    folders = [os.path.dirname(path) + "/"] + INCLUDE_FOLDERS
    for folder in folders:
        candidate = os.path.normpath(folder + included)
        if os.path.isfile(os.path.join(top, candidate)):
            return candidate
    return None


def complaints(top, path):
    layer = layer_of(path)
    with open(os.path.join(top, path), encoding="utf-8") as file:
        text = file.read()
    for included in INCLUDE.findall(text):
        target = resolve(top, path, included)
        if target is None:
            continue
        allowed = [layer + "/"] + MAY_INCLUDE[layer]
        if not any(target.startswith(prefix) for prefix in allowed):
            yield f"{path}: {layer}/ must not include {target}"
    if layer == "app":
        for vendor in vendors_of(top):
            if re.search(rf"\b{vendor}\b", text):
                yield f"{path}: knows a vendor: {vendor}"
    code = COMMENT.sub("", text)
    if not MAY_KNOW_THE_OS.search(path):
        headers = [name for name in SYSTEM_INCLUDE.findall(code) if OS_HEADER.search(name)]
        for word in [match.group(0) for match in OS_WORDS.finditer(code)] + headers:
            yield f"{path}: knows an operating system: {word}"
    if not MAY_KNOW_THE_COMPILER.search(path):
        for match in COMPILER_WORDS.finditer(code):
            yield f"{path}: knows a compiler: {match.group(0)}"


def main(arguments):
    here = os.path.dirname(os.path.abspath(__file__))
    wantsFolders = arguments[:1] == ["--folders"]
    arguments = arguments[1:] if wantsFolders else arguments
    top = os.path.abspath(arguments[0] if arguments else os.path.join(here, "..", ".."))
    if wantsFolders:
        print("\n".join(folders(top)))
        return 0
    files = 0
    found = list(folders_without_a_layer(top))
    for layer_top in folders(top):
        for folder, _, names in os.walk(os.path.join(top, layer_top)):
            for name in sorted(names):
                path = os.path.relpath(os.path.join(folder, name), top)
                if SOURCE_FILE.search(name) and layer_of(path):
                    files += 1
                    found += complaints(top, path)
    for complaint in found:
        print(complaint)
    print(f"layering: {files} files, {len(found)} complaints")
    return 1 if found or files == 0 else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))

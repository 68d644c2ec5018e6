#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Compares what the library exports with the list in the repository.

usage: check_exports.py elf LIBRARY LIST     names that a built libDeviceDiscover.so exports
       check_exports.py pe LIBRARY LIST      names that a built DeviceDiscover.dll exports
       check_exports.py msvc SOURCE LIST     decorated names and sizes that an MSVC application links
                                             to, and the names that the library itself asks of the
                                             application's libraries ("import"), from the headers
                                             below SOURCE, through Clang
       --update as the last argument writes the list anew

Exit status: 0 the same, 1 different, 2 wrong arguments, 3 a tool failed.
"""

import json
import os
import re
import subprocess
import sys
import tempfile

SIZED = [
    "VendorSdk::DeviceInfo", "VendorSdk::WifiConfigInfo", "VendorSdk::DeviceCallbackInfo",
    "VendorSdk::WifiCallbackInfo", "PrinterDeviceDiscoverSdk::DeviceInfo",
    "PrinterDeviceDiscoverSdk::WifiConfigInfo", "PrinterDeviceDiscoverSdk::DeviceCallbackInfo",
    "PrinterDeviceDiscoverSdk::WifiCallbackInfo", "PrinterDeviceDiscoverSdk::ScanInterface",
    "PrinterDeviceDiscoverSdk::ScanInterface::VendorEntry",
    "PrinterDeviceDiscoverSdk::ScanInterfaceListener",
    "PrinterDeviceDiscoverSdk::DiscoverScanInterface",
    "PrinterDeviceDiscoverSdk::NetConnInterface", "PrinterDeviceDiscoverSdk::NetConnInterfaceItem",
    "PrinterDeviceDiscoverSdk::NetConnInterfaceListener",
    "PrinterDeviceDiscoverSdk::DiscoverNetConnInterface",
    "PrinterDeviceDiscoverSdk::UsbConnInterface",
    "PrinterDeviceDiscoverSdk::UsbConnInterface::VendorEntry",
    "PrinterDeviceDiscoverSdk::UsbInterfaceMonitor",
    "PrinterDeviceDiscoverSdk::DiscoverUsbInterface", "PrinterDeviceDiscoverSdk::DeviceUsbInfo",
    "PrinterDeviceDiscoverSdk::VendorCall",
    "DeviceDiscover::PrinterNetInterface", "DeviceDiscover::PrinterWifiInterface",
    "PrinterSdk::PrinterProperty", "PrinterSdk::IPrinterAdapter", "KzXmlElement", "KzXmlAttribute",
    "KzXMLDocument", "PrinterDiscoverAPI::DeviceStateChangeCallbackInfo",
    "PrinterDiscoverAPI::PingReply", "PrinterWifiApiStruct::WlanInfoData", "VendorInfo",
]

# Declared in a class that the library exports, but provided by one of the application's libraries.
OF_THE_APPLICATION = {"?GetInstance@IPrinterAdapter@PrinterSdk@@SAAEAV12@XZ"}


def run(*command):
    try:
        return subprocess.run(command, check=True, capture_output=True, text=True).stdout
    except FileNotFoundError:
        print(f"check_exports: {command[0]} is missing: run scripts/bootstrap", file=sys.stderr)
        sys.exit(3)
    except subprocess.CalledProcessError as error:
        print(error.stderr, file=sys.stderr)
        print(f"check_exports: {command[0]} failed", file=sys.stderr)
        sys.exit(3)


def elf_names(library):
    rows = run("nm", "--dynamic", "--defined-only", library).splitlines()
    return sorted({row.split()[-1] for row in rows})


def pe_names(library):
    names, in_table = set(), False
    for row in run("x86_64-w64-mingw32-objdump", "-p", library).splitlines():
        if row.startswith("[Ordinal/Name Pointer]"):
            in_table = True
        elif in_table and not row.strip():
            break
        elif in_table:
            names.add(row.split()[-1])
    return sorted(names)


def clang(source, *arguments):
    stubs = os.path.join(source, "tests", "exports", "msvc")
    return run("clang++-14", "--target=x86_64-pc-windows-msvc", "-fms-compatibility-version=19.38",
               "-fms-extensions", "-nostdinc", "-std=c++20", "-DDEVICEDISCOVER_BUILDING",
               "-Wall", "-Werror", "-Werror=mismatched-tags", "-I" + stubs,
               "-I" + os.path.join(source, "include"), "-I" + source, *arguments)


def is_exported(node):
    return any(inner.get("kind") == "DLLExportAttr" for inner in node.get("inner", []))


def imported_functions(node, in_imported_class=False):
    """What the application's libraries provide; nobody else makes or destroys their objects."""
    kind = node.get("kind", "")
    imported = any(inner.get("kind") == "DLLImportAttr" for inner in node.get("inner", []))
    if kind == "CXXRecordDecl":
        in_imported_class = imported
    if kind in ("FunctionDecl", "CXXMethodDecl"):
        wanted = (imported or in_imported_class) and not (
            node.get("explicitlyDeleted") or node.get("isImplicit"))
        if wanted and "mangledName" in node:
            yield node["mangledName"]
        return
    for inner in node.get("inner", []):
        yield from imported_functions(inner, in_imported_class)


def destructor_name(node):
    """MSVC links to ??1; Clang's tree names the variant that also destroys virtual bases, and gives a
    virtual one the access letters of one that is not."""
    name = re.sub(r"^\?\?_D(.*)XXZ$", r"??1\1@XZ", node["mangledName"])
    if node.get("virtual"):
        for plain, virtual in (("QEAA", "UEAA"), ("IEAA", "MEAA"), ("AEAA", "EEAA")):
            name = re.sub(plain + "@XZ$", virtual + "@XZ", name)
    return name


def exported_functions(node, in_exported_class=False):
    kind = node.get("kind", "")
    if kind == "CXXRecordDecl":
        in_exported_class = is_exported(node)
        if in_exported_class and node.get("definitionData", {}).get("isPolymorphic"):
            yield f"virtual table of {node['name']}"
    if kind in ("FunctionDecl", "CXXMethodDecl", "CXXConstructorDecl", "CXXDestructorDecl"):
        wanted = (is_exported(node) or in_exported_class) and not (
            node.get("explicitlyDeleted") or node.get("pure") or
            (kind == "CXXDestructorDecl" and node.get("isImplicit")))
        # A defaulted operation that turns out deleted has no definition to export.
        if wanted and "mangledName" in node:
            yield destructor_name(node) if kind == "CXXDestructorDecl" else node["mangledName"]
        return
    for inner in node.get("inner", []):
        yield from exported_functions(inner, in_exported_class)


def msvc_names(source):
    with tempfile.TemporaryDirectory() as folder:
        probe = os.path.join(folder, "probe.cpp")
        with open(probe, "w", encoding="utf-8") as file:
            file.write('#include "DeviceDiscover/DeviceDiscover.h"\n')
            file.write('#include "platform/LogHelper/KzLogger.h"\n')
            file.write('#include "platform/PrinterDiscoverAPI/PrinterPing.h"\n')
            file.write('#include "platform/PrinterUtil/PrinterUtil.h"\n')
            file.write('#include "platform/PrinterUtil/VendorDllMgr.h"\n')
            for number, name in enumerate(SIZED):
                file.write(f'extern "C" const size_t size_{number} = sizeof({name});\n')
        tree = json.loads(clang(source, "-fsyntax-only", "-Xclang", "-ast-dump=json", probe))
        code = clang(source, "-S", "-emit-llvm", "-o", "-", probe)
    sizes = dict(re.findall(r"@size_(\d+) = .*constant i64 (\d+)", code))
    exported = set(exported_functions(tree))
    imported = set(imported_functions(tree)) | exported & OF_THE_APPLICATION
    names = sorted(exported - OF_THE_APPLICATION)
    names += [f"import {name}" for name in sorted(imported)]
    return names + [f"sizeof {name} {sizes[str(number)]}" for number, name in enumerate(SIZED)]


def main(arguments):
    update = arguments[-1:] == ["--update"]
    if update:
        arguments = arguments[:-1]
    readers = {"elf": elf_names, "pe": pe_names, "msvc": msvc_names}
    if len(arguments) != 3 or arguments[0] not in readers:
        print(__doc__, file=sys.stderr)
        return 2
    found = readers[arguments[0]](arguments[1])
    if update:
        with open(arguments[2], "w", encoding="utf-8") as file:
            file.write("\n".join(found) + "\n")
        return 0
    with open(arguments[2], encoding="utf-8") as file:
        listed = file.read().splitlines()
    for name in sorted(set(listed) - set(found)):
        print(f"missing: {name}")
    for name in sorted(set(found) - set(listed)):
        print(f"not in the list: {name}")
    same = set(listed) == set(found)
    print(f"{os.path.basename(arguments[2])}: {len(found)} found, {len(listed)} listed, "
          f"{'the same' if same else 'different'}")
    return 0 if same else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))

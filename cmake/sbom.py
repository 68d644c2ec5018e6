#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Writes the software bill of materials of one package, as SPDX 2.3 in JSON.

usage: sbom.py --name PACKAGE --version VERSION --build BUILD --output FILE [--dlls DLL...] [BINARY...]

BUILD is a Ninja build tree that is complete; BINARY is a program or library of it that the package has,
DLL a library of others that the package has. What is linked is read from the binaries, what was compiled
into them from the headers that the compiler read, and whose it is from the Debian packages that brought
the files. Software that docs/third-party.md does not list is an error: nothing gets into a package
unnoticed. The time in the document is that of SOURCE_DATE_EPOCH.

Exit status: 0 written, 1 something is not listed, 2 wrong arguments, 3 a tool failed.
"""

import argparse
import datetime
import hashlib
import json
import os
import re
import subprocess
import sys
import uuid

TOP = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
DEBIAN = "Organization: Debian"
AUTHORS = "Organization: The DeviceDiscover authors"

# By Debian source package: name in docs/third-party.md, licence, and how it is used. "in" is what becomes a
# part of our binaries through its headers, or stands beside them on Windows.
SOFTWARE = {
    "spdlog": ("spdlog", "MIT", "in"),
    "fmtlib": ("fmt", "MIT", "in, linked"),
    "nlohmann-json3": ("JSON for Modern C++", "MIT", "in"),
    "cli11": ("CLI11", "BSD-3-Clause", "in"),
    "gcc-mingw-w64": ("GCC run-time", "GPL-3.0-or-later WITH GCC-exception-3.1", "in"),
    "mingw-w64": ("mingw-w64", "ZPL-2.1", "in"),
    "cups": ("libcups", "Apache-2.0", "linked"),
    "gnutls28": ("GnuTLS", "LGPL-2.1-or-later", "linked"),
    "avahi": ("Avahi client", "LGPL-2.1-or-later", "linked"),
    "libusb-1.0": ("libusb", "LGPL-2.1-or-later", "linked"),
    "sdbus-cpp": ("sdbus-c++", "LGPL-2.1-or-later", "linked"),
    "systemd": ("libsystemd", "LGPL-2.1-or-later", "linked"),
    "gcc-12": ("GCC run-time", "GPL-3.0-or-later WITH GCC-exception-3.1", "linked"),
    "glibc": ("glibc", "LGPL-2.1-or-later", "linked"),
}
# Headers of the kernel and of the compiler leave nothing of their own in a binary.
OF_THE_SYSTEM = {"linux", "libxcrypt", "gcc-12", "glibc", "gcc-mingw-w64", "mingw-w64"}
WINDOWS_DLL = re.compile(r"^(kernel32|user32|advapi32|msvcrt|ntdll|ws2_32|iphlpapi|cfgmgr32|setupapi|"
                         r"winspool\.drv|ole32|shell32|winhttp|crypt32|bcrypt|dnsapi|wlanapi)(\.dll)?$", re.I)


class NotListed(Exception):
    pass


def output(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True,
                          env={**os.environ, "LC_ALL": "C"}).stdout


class Debian:
    """Which package of this system brought a file."""

    def __init__(self):
        self.packages = {}

    def packages_of(self, paths):
        # A file in /usr/lib may be known as one in /lib, which is the same folder.
        places = {path: [os.path.realpath(path), re.sub("^/usr", "", os.path.realpath(path))]
                  for path in paths}
        command = ["dpkg-query", "--search", *[place for both in places.values() for place in both]]
        rows = subprocess.run(command, check=False, capture_output=True, text=True,
                              env={**os.environ, "LC_ALL": "C"}).stdout.splitlines()
        owners = {row.split(": ")[1]: row.split(": ")[0].split(",")[0] for row in rows if ": " in row}
        found = set()
        for path, both in places.items():
            owner = next((owners[place] for place in both if place in owners), None)
            if not owner:
                raise NotListed(f"{path} is of no Debian package")
            found.add(owner)
        return found

    def package_of(self, path):
        return next(iter(self.packages_of([path])))

    def describe(self, package):
        """(source package, its name, version) of an installed package."""
        if package not in self.packages:
            fields = output("dpkg-query", "--show",
                            "--showformat=${source:Package}|${Package}|${Version}|${Architecture}", package)
            self.packages[package] = fields.split("|")
        return self.packages[package]


def objects_of(build, binary):
    """The object files that a binary consists of, those in static libraries included."""
    found, left = [], [os.path.relpath(binary, build)]
    while left:
        inputs = []
        rows = output("ninja", "-C", build, "-t", "query", left.pop()).splitlines()
        for row in rows[1:]:
            if row.startswith("  outputs:"):
                break
            # Libraries follow "|"; what follows "||" need only be there before.
            if row.startswith("    ") and not row.startswith("    ||"):
                inputs.append(row.strip("| "))
        found += [name for name in inputs if name.endswith((".o", ".obj"))]
        left += [name for name in inputs if name.endswith(".a") and not os.path.isabs(name)]
    return found


def headers_by_object(build):
    headers, current = {}, None
    for row in output("ninja", "-C", build, "-t", "deps").splitlines():
        if row.startswith("    "):
            headers[current].append(row.strip())
        elif ": #deps" in row:
            current = row.split(": #deps")[0]
            headers[current] = []
    return headers


def outside_headers(build, binaries):
    by_object = headers_by_object(build)
    found = set()
    for binary in binaries:
        for name in objects_of(build, binary):
            if name.endswith(".rc.res"):
                continue
            if name not in by_object:
                raise NotListed(f"{name} was not built with what it includes on record")
            found.update(os.path.realpath(os.path.join(build, path)) for path in by_object[name])
    own = (os.path.realpath(TOP) + os.sep, os.path.realpath(build) + os.sep)
    return sorted(path for path in found if not path.startswith(own))


def is_windows(path):
    with open(path, "rb") as file:
        return file.read(2) == b"MZ"


def linked_libraries(binary):
    if is_windows(binary):
        return re.findall(r"DLL Name: (\S+)", output("x86_64-w64-mingw32-objdump", "-p", binary))
    return re.findall(r"\(NEEDED\)\s+Shared library: \[(.*)\]", output("readelf", "-dW", binary))


def place_of(name):
    for row in output("/sbin/ldconfig", "-p").splitlines():
        if row.split(" ")[0].strip() == name and "x86-64" in row:
            return row.split(" => ")[1]
    raise NotListed(f"{name} is linked and is not on this system")


def plain(library):
    return re.sub(r"\.so\..*", ".so", library)


def found_software(arguments):
    """{(source, package, version, architecture): relationship} of all that is in or linked."""
    debian, rows = Debian(), {}
    headers = debian.packages_of(header_samples(arguments))
    own = {plain(os.path.basename(path)) for path in arguments.own}
    linked, system = set(), set()
    for name in {name for binary in arguments.binaries + arguments.dlls for name in linked_libraries(binary)}:
        if plain(name) in own:
            continue
        if WINDOWS_DLL.match(name):
            system.add(name)
        elif name.lower().endswith(".dll"):
            if name not in {os.path.basename(path) for path in arguments.dlls} and not arguments.dlls_beside:
                raise NotListed(f"{name} is linked and not in the package")
        elif not re.match(r"ld-linux|lib(c|m)\.so", name):
            linked.add(debian.package_of(place_of(name)))
        else:
            linked.add("libc6")
    for package in linked:
        rows[tuple(debian.describe(package))] = "DYNAMIC_LINK"
    for dll in arguments.dlls:
        compiler = arguments.dll_origin or "x86_64-w64-mingw32-g++-posix"
        origin = output(compiler, "-print-file-name=" + os.path.basename(dll)).strip()
        rows[tuple(debian.describe(debian.package_of(origin)))] = "CONTAINS"
    sources = {debian.describe(package)[0] for package in linked}
    for package in headers:
        described = tuple(debian.describe(package))
        if described[0] in OF_THE_SYSTEM or described[0] in sources:
            continue
        rows[described] = "STATIC_LINK"
    if arguments.binaries and is_windows(arguments.binaries[0]):
        # Its start-up code is in each program and library.
        rows[tuple(debian.describe("mingw-w64-x86-64-dev"))] = "STATIC_LINK"
    return rows, sorted(system, key=str.lower)


def header_samples(arguments):
    """One header a folder: a folder is brought by one package, but for those that many share."""
    shared, samples = {"/usr/include", "/usr/include/x86_64-linux-gnu"}, {}
    for path in outside_headers(arguments.build, arguments.binaries):
        folder = os.path.dirname(path)
        samples.setdefault(path if folder in shared else folder, path)
    return sorted(samples.values())


def listed(source, version, relationship, third_party):
    """What docs/third-party.md has of this software; an error without it."""
    if source not in SOFTWARE:
        raise NotListed(f"Debian's {source} is {relationship.lower()} and docs/third-party.md and "
                        "cmake/sbom.py do not list it")
    name, licence, kind = SOFTWARE[source]
    if ("linked" if relationship == "DYNAMIC_LINK" else "in") not in kind:
        raise NotListed(f"{name} is {relationship.lower()}; it is listed as '{kind}'")
    rows = [row for row in third_party.splitlines() if row.startswith("|") and name in row]
    if not rows:
        raise NotListed(f"docs/third-party.md has no row about {name}")
    number = re.match(r"(?:\d+:)?([\d.]+)", version).group(1)
    if relationship != "DYNAMIC_LINK" and not any(number in row for row in rows):
        raise NotListed(f"docs/third-party.md lists another version of {name} than {number}")
    return name, licence


def part(name, version, licence, supplier, reference=None):
    row = {
        "SPDXID": "SPDXRef-" + re.sub(r"[^A-Za-z0-9.-]", "-", reference or name),
        "name": reference or name, "versionInfo": version, "supplier": supplier,
        "downloadLocation": "NOASSERTION", "filesAnalyzed": False,
        "licenseConcluded": licence, "licenseDeclared": licence, "copyrightText": "NOASSERTION"}
    if reference:
        row["summary"] = name
    return row


def document(arguments):
    with open(os.path.join(TOP, "docs", "third-party.md"), encoding="utf-8") as file:
        third_party = file.read()
    software, system = found_software(arguments)
    packages = [part(arguments.name, arguments.version, "Apache-2.0", AUTHORS)]
    described = packages[0]["SPDXID"]
    relationships = [("SPDXRef-DOCUMENT", "DESCRIBES", described)]
    for (source, package, version, architecture), relationship in sorted(software.items()):
        name, licence = listed(source, version, relationship, third_party)
        row = part(name, version, licence, DEBIAN, package)
        row["externalRefs"] = [{
            "referenceCategory": "PACKAGE-MANAGER", "referenceType": "purl",
            "referenceLocator": f"pkg:deb/debian/{package}@{version.replace('+', '%2B').replace(':', '%3A')}"
                                f"?arch={architecture}&upstream={source}"}]
        packages.append(row)
        relationships.append((described, relationship, row["SPDXID"]))
    if system:
        row = part("Windows", "10 or later", "NOASSERTION", "Organization: Microsoft")
        row["comment"] = "Libraries of the system: " + ", ".join(system)
        packages.append(row)
        relationships.append((described, "DYNAMIC_LINK", row["SPDXID"]))
    seconds = int(os.environ.get("SOURCE_DATE_EPOCH", datetime.datetime.now().timestamp()))
    created = datetime.datetime.fromtimestamp(seconds, datetime.timezone.utc)
    digest = hashlib.sha256(json.dumps([seconds, packages]).encode()).hexdigest()
    return {
        "spdxVersion": "SPDX-2.3", "dataLicense": "CC0-1.0", "SPDXID": "SPDXRef-DOCUMENT",
        "name": f"{arguments.name}-{arguments.version}",
        "documentNamespace": "urn:uuid:" + str(uuid.uuid5(uuid.NAMESPACE_OID, digest)),
        "creationInfo": {"created": created.strftime("%Y-%m-%dT%H:%M:%SZ"),
                         "creators": [AUTHORS, "Tool: sbom.py-" + arguments.version]},
        "packages": packages,
        "relationships": [{"spdxElementId": one, "relationshipType": kind, "relatedSpdxElement": other}
                          for one, kind, other in relationships]}


def main():
    parser = argparse.ArgumentParser(prog="sbom.py", description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    for name in ["name", "version", "build", "output"]:
        parser.add_argument("--" + name, required=True)
    parser.add_argument("--own", nargs="*", default=[], help="libraries of ours that other packages have")
    parser.add_argument("--dlls", nargs="*", default=[], help="libraries of others that the package has")
    parser.add_argument("--dlls-beside", action="store_true", help="another package has those")
    parser.add_argument("--dll-origin", help="the compiler that brought them")
    parser.add_argument("--binaries", nargs="*", default=[], help="our programs and libraries in the package")
    arguments = parser.parse_args()
    try:
        text = json.dumps(document(arguments), indent=1, ensure_ascii=False) + "\n"
    except NotListed as problem:
        print(f"sbom: {problem}", file=sys.stderr)
        return 1
    except (OSError, subprocess.CalledProcessError) as problem:
        print(f"sbom: {problem} {getattr(problem, 'stderr', '')}", file=sys.stderr)
        return 3
    with open(arguments.output, "w", encoding="utf-8") as file:
        file.write(text)
    return 0


if __name__ == "__main__":
    sys.exit(main())

#!/usr/bin/env python3
"""Holds built driverless modules against what a vendor's module may be: it exports the entry points
and nothing else, and needs nothing of the broker and of the application's libraries.

usage: check_module.py MODULE...

Exit status: 0 so it is, 1 not, 2 wrong arguments, 3 a tool failed.
"""

import re
import subprocess
import sys

EXPORTS = {"StartDeviceScan", "StopDeviceScan", "GetDeviceConnectState", "BeforeConnectEventNotify",
           "ConnectSuccessNotifyEvent", "ConnectFailNotifyEvent"}
# What the module stands on; the sanitizers' libraries where it is built with them.
NEEDED = re.compile(r"lib(avahi-client|avahi-common|cups|stdc\+\+|gcc_s|m|c|pthread|dl|"
                    r"asan|ubsan|tsan)\.so\.\d+|ld-linux.*\.so\.\d+")
OTHERS = re.compile(r"PrinterDeviceDiscoverSdk|KzLogger|VendorDllMgr|LogHelper|PrinterUtil")


def run(*command):
    try:
        return subprocess.run(command, check=True, capture_output=True, text=True).stdout
    except (OSError, subprocess.CalledProcessError) as problem:
        print(f"check_module: {problem}; {getattr(problem, 'stderr', '')}", file=sys.stderr)
        sys.exit(3)


def names(module, which):
    """The module's dynamic symbols, without their versions."""
    lines = run("nm", "-D", which, module).splitlines()
    return {line.split()[-1].partition("@")[0] for line in lines}


def problems(module):
    exports = names(module, "--defined-only")
    for name in sorted(EXPORTS - exports):
        yield f"does not export {name}"
    for name in sorted(exports - EXPORTS):
        yield f"exports {name}"
    needed = re.findall(r"\(NEEDED\).*\[(.*)\]", run("readelf", "-dW", module))
    if not needed:
        yield "names no library that it needs"
    for library in needed:
        if not NEEDED.fullmatch(library):
            yield f"needs {library}"
    for name in sorted(names(module, "--undefined-only")):
        if OTHERS.search(name):
            yield f"leaves {name} to others"


def main():
    if len(sys.argv) < 2:
        print(__doc__, file=sys.stderr)
        return 2
    found = [f"{module}: {problem}" for module in sys.argv[1:] for problem in problems(module)]
    for line in found:
        print(line)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())

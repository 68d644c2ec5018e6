#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Times `devicediscover scan` beside other ways to find printers, on a network with printers in it.

Runs on the browsing side of scripts/lab-network (scripts/bench starts it there). In each round every
tool runs once, in changing order, each after the Avahi of that side has been started afresh, so that
nothing is cached. A tool's clock starts with its process. Its printers count when their lines come,
each once. Memory is the peak of the tool's own process.
"""

import argparse
import json
import os
import re
import statistics
import subprocess
import sys

from scanning import forget_all, resolved_name, scan

PATIENCE = 60.0  # seconds until a tool has failed


class Tool:
    def __init__(self, name, command, printer):
        """`printer` takes a line and returns what identifies its printer, or None."""
        self.name = name
        self.command = command
        self.printer = printer
        self.first = []
        self.all = []
        self.memory = []


def uri(line):
    return line if line.startswith("ipp://") else None


def first_column(line):
    return line.split("\t")[0] or None


def complete_record(line):
    """A printer counts with its own attributes: its serial number is not in its announcement."""
    printer = json.loads(line)
    if not re.fullmatch(r"LAB\d{4}", printer["serialNumber"]):
        raise RuntimeError(f"devicediscover scan reported a printer that it has not asked: {line}")
    return printer["serialNumber"] if printer["makeAndModel"] and printer["address"] else None


def tools(build, printers):
    folder = os.path.join(build, "bench")
    return [
        Tool("devicediscover", [os.path.join(build, "bin", "devicediscover"), "scan", "--json",
                                "--seconds", "60"], complete_record),
        Tool("avahi-browse", ["avahi-browse", "-rp", "_ipp._tcp"], resolved_name),
        Tool("ippfind", ["ippfind", "_ipp._tcp"], uri),
        Tool("cupsEnumDests", [os.path.join(folder, "bench_enum_dests"), str(printers)],
             first_column),
    ]


def run(tool, printers):
    forget_all()
    result = scan(tool.command, tool.printer, printers, PATIENCE)
    if len(result.found) != printers:
        raise RuntimeError(f"{tool.command[0]} found {len(result.found)} of {printers} printers")
    tool.first.append(min(result.found.values()) - result.start)
    tool.all.append(max(result.found.values()) - result.start)
    tool.memory.append(result.memory)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--build", required=True, help="the build tree")
    parser.add_argument("--printers", type=int, default=20)
    parser.add_argument("--rounds", type=int, default=7)
    parser.add_argument("--out", required=True, help="where to write the medians, as JSON")
    arguments = parser.parse_args()
    racers = tools(os.path.abspath(arguments.build), arguments.printers)
    try:
        for number in range(arguments.rounds):
            turn = number % len(racers)
            for tool in racers[turn:] + racers[:turn]:
                run(tool, arguments.printers)
    except (RuntimeError, OSError, subprocess.CalledProcessError) as problem:
        sys.exit(f"scan_race: {problem}")
    with open(arguments.out, "w", encoding="utf-8") as out:
        json.dump({tool.name: {"first": statistics.median(tool.first),
                               "all": statistics.median(tool.all),
                               "memory": statistics.median(tool.memory)} for tool in racers},
                  out, indent=1)


if __name__ == "__main__":
    main()

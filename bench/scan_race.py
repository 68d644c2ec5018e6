#!/usr/bin/env python3
"""Times `devicediscover scan` beside other ways to find printers, on a network with printers in it.

Runs on the browsing side of scripts/lab-network (scripts/bench starts it there). In each round every
tool runs once, in changing order, each after the Avahi of that side has been started afresh, so that
nothing is cached. A tool's clock starts with its process. Its printers count when their lines come,
each once. Memory is the peak of the tool's own process.
"""

import argparse
import json
import os
import pty
import re
import select
import signal
import statistics
import subprocess
import sys
import time
import tty

LAB = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "scripts", "lab-network")
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


def resolved_name(line):
    fields = line.split(";")
    return fields[3] if fields[0] == "=" else None


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


def peak_memory(pid):
    """In kB; None once the process has ended. Not getrusage: it counts this process before exec."""
    try:
        with open(f"/proc/{pid}/status", encoding="ascii") as status:
            found = re.search(r"^VmHWM:\s+(\d+) kB", status.read(), re.MULTILINE)
    except FileNotFoundError:
        return None
    return int(found[1]) if found else None


def lines_of(process, terminal, deadline):
    """The process's lines as they come, an empty one each time that nothing came for a while."""
    rest = b""
    while time.monotonic() < deadline:
        if not select.select([terminal], [], [], 0.02)[0]:
            yield ""
            continue
        try:
            data = os.read(terminal, 65536)
        except OSError:  # all ends of the terminal are closed
            return
        *lines, rest = (rest + data).split(b"\n")
        yield from (line.decode("utf-8", "replace") for line in lines)
    raise RuntimeError(f"{process.args[0]} did not find all printers within {PATIENCE:.0f} s")


def end(process):
    if process.poll() is None:
        process.send_signal(signal.SIGINT)
    try:
        process.wait(5)
    except subprocess.TimeoutExpired:
        process.kill()
        process.wait()


def run(tool, printers):
    subprocess.run([LAB, "cold"], check=True)
    # On a terminal of its own every tool writes each line at once.
    terminal, other_end = pty.openpty()
    tty.setraw(other_end)
    found, memory, first = set(), 0, None
    start = time.monotonic()
    process = subprocess.Popen(tool.command, stdin=subprocess.DEVNULL, stdout=other_end,
                               stderr=subprocess.DEVNULL)
    os.close(other_end)
    try:
        for line in lines_of(process, terminal, start + PATIENCE):
            now = time.monotonic()
            memory = peak_memory(process.pid) or memory
            printer = tool.printer(line) if line else None
            if printer is None or printer in found:
                continue
            found.add(printer)
            first = first or now - start
            if len(found) == printers:
                break
    finally:
        end(process)
        os.close(terminal)
    if len(found) != printers:
        raise RuntimeError(f"{tool.command[0]} found {len(found)} of {printers} printers")
    tool.first.append(first)
    tool.all.append(now - start)
    tool.memory.append(memory)


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

# SPDX-License-Identifier: Apache-2.0
"""Runs a program that lists printers, and notes when it lists which."""

import os
import pty
import re
import select
import signal
import subprocess
import time
import tty

LAB = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "scripts", "lab-network")


class Scan:
    """One run: its start, when each printer came, and the peak memory of the process in kB."""

    def __init__(self):
        self.start = time.monotonic()
        self.found = {}
        self.memory = 0


def resolved_name(line):
    """What identifies the printer in a line of avahi-browse -rp."""
    fields = line.split(";")
    return fields[3] if fields[0] == "=" else None


def peak_memory(pid):
    """In kB; None once the process has ended. Not getrusage: it counts this process before exec."""
    try:
        with open(f"/proc/{pid}/status", encoding="ascii") as status:
            found = re.search(r"^VmHWM:\s+(\d+) kB", status.read(), re.MULTILINE)
    except FileNotFoundError:
        return None
    return int(found[1]) if found else None


def lines_of(terminal, deadline):
    """Lines as they come until the deadline, an empty one each time that nothing came for a while."""
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


def end(process):
    if process.poll() is None:
        process.send_signal(signal.SIGINT)
    try:
        process.wait(5)
    except subprocess.TimeoutExpired:
        process.kill()
        process.wait()


def forget_all():
    """Nothing is cached any more."""
    subprocess.run([LAB, "cold"], check=True)


def scan(command, printer_of, count, patience, at_least=0.0):
    """Runs the command until `count` printers have come, or for `patience` seconds; in any case for
    `at_least` seconds. `printer_of` takes a line and returns what identifies its printer, or None."""
    # On a terminal of its own every program writes each line at once.
    terminal, other_end = pty.openpty()
    tty.setraw(other_end)
    result = Scan()
    process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=other_end,
                               stderr=subprocess.DEVNULL)
    os.close(other_end)
    try:
        for line in lines_of(terminal, result.start + patience):
            now = time.monotonic()
            if not line or not result.found:
                result.memory = peak_memory(process.pid) or result.memory
            printer = printer_of(line) if line else None
            if printer is not None:
                result.found.setdefault(printer, now)
            if len(result.found) >= count and now >= result.start + at_least:
                break
        result.memory = peak_memory(process.pid) or result.memory
    finally:
        end(process)
        os.close(terminal)
    return result

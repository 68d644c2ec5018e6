#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Times `devicediscover scan` among 1,000 printers, and while somebody attacks the network.

Runs on the browsing side of scripts/lab-network (scripts/bench starts it there). The printers and the
attackers are played by tests/network/announcer.py. Under attack there are 20 honest printers, each of
which has to be looked up; the time until all of them are reported with their attributes counts from
their announcement or from the start of the process, whichever is later. The Avahi of the browsing side
is started afresh for each attack. A printer that is not reported in time makes the time PATIENCE.
"""

import argparse
import json
import os
import statistics
import subprocess
import sys
import threading
import time

from scanning import LAB, forget_all, resolved_name, scan

ANNOUNCER = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "tests", "network",
                         "announcer.py")
MANY = 1000
HONEST = 20
PATIENCE = 20.0  # seconds
WATCHED = 3.0  # seconds; memory is that of a scan of at least this time
LATE = 1.0  # seconds after the start of the scan
PAUSE = 3.0  # seconds from one scan among MANY printers to the next

HONEST_PRINTERS = {
    "name": "Honest", "host": "honest", "hosts": True, "address": "10.99.0.20", "port": 9000,
    "count": HONEST, "serve": "answers", "txt": ["rp=ipp/print"],
    "attributes": ["printer-serial-number=HONEST{}"], "bare": True}
ATTACKER = {"host": "attacker", "address": "10.99.0.66", "port": 20000}
ATTACKS = {
    "none": [],
    "40 that are silent": [{"name": "Silent", **ATTACKER, "count": 40, "serve": "silent"}],
    "180 of 300 hang": [
        {"name": "Silent", **ATTACKER, "count": 180, "serve": "silent"},
        {"name": "Other", **ATTACKER, "port": 30000, "count": 100, "serve": "answers"}],
    "900 without SRV": [{"name": "Nowhere", "count": 900}],
    "1,100 without SRV": [{"name": "Nowhere", "count": 1100}],
    "200 new ones a second": [{"name": "Nowhere", "count": 1, "pace": 200}],
    "30 endless answers": [{"name": "Endless", **ATTACKER, "count": 30, "serve": "endless"}],
}
# The printers come when the scan has met all of the attack.
LATER = ("40 that are silent", "1,100 without SRV", "200 new ones a second")


class Announcer:
    """An announcer.py on the printers' side, which is told one thing a line."""

    def __init__(self):
        self.process = subprocess.Popen(
            [LAB, "run-beside-printers", sys.executable, ANNOUNCER, "--network", "10.99.0.1"],
            stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)

    def announce(self, spec):
        self.process.stdin.write(json.dumps(spec) + "\n")
        self.process.stdin.flush()
        if self.process.stdout.readline().strip() != "ready":
            raise RuntimeError(f"could not be announced: {spec}")

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.kill()
        self.process.communicate()


def honest_printer(line):
    serial = json.loads(line)["serialNumber"]
    return serial if serial.startswith("HONEST") else None


def command(build):
    return [os.path.join(build, "bin", "devicediscover"), "scan", "--json", "--seconds", "60"]


def attack(build, name):
    """Seconds until all honest printers have come, peak memory in kB, and how many came."""
    with Announcer() as attacker, Announcer() as honest:
        for spec in ATTACKS[name]:
            attacker.announce(spec)
        announced = []

        def announce():
            announced.append(time.monotonic())
            honest.announce(HONEST_PRINTERS)

        if name not in LATER:
            announce()
        forget_all()
        timer = threading.Timer(LATE, announce)
        if name in LATER:
            timer.start()
        result = scan(command(build), honest_printer, HONEST, PATIENCE, WATCHED)
        timer.cancel()
    since = max(result.start, announced[0])
    count = len(result.found)
    return max(result.found.values()) - since if count == HONEST else PATIENCE, result.memory, count


def many_names(line):
    name = resolved_name(line)
    return name if name and name.startswith("Honest") else None


def thousand(build, rounds):
    """Both tools in turns, with all printers in Avahi's cache; the medians in seconds.

    Avahi does not repeat what it has just asked the network, and is then quicker. The pause lets
    neither tool profit from what the one before has asked.
    """
    tools = {"devicediscover": (command(build), honest_printer),
             "avahi-browse": (["avahi-browse", "-rp", "_ipp._tcp"], many_names)}
    times, memory = {tool: [] for tool in tools}, []
    with Announcer() as honest:
        honest.announce({**HONEST_PRINTERS, "hosts": False, "bare": False, "count": MANY})
        forget_all()
        scan(*tools["avahi-browse"], MANY, 3 * PATIENCE)
        for number in range(rounds):
            for tool in sorted(tools, reverse=number % 2 == 0):
                time.sleep(PAUSE)
                result = scan(*tools[tool], MANY, PATIENCE)
                if len(result.found) != MANY:
                    raise RuntimeError(f"{tool} found {len(result.found)} of {MANY} printers")
                times[tool].append(max(result.found.values()) - result.start)
                if tool == "devicediscover":
                    memory.append(result.memory)
    return {"memory": statistics.median(memory),
            **{tool: statistics.median(seconds) for tool, seconds in times.items()}}


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--build", required=True, help="the build tree")
    parser.add_argument("--rounds", type=int, default=3)
    parser.add_argument("--only", action="append", help="this attack, or 'thousand'")
    parser.add_argument("--out", required=True, help="where to write the medians, as JSON")
    arguments = parser.parse_args()
    build = os.path.abspath(arguments.build)
    chosen = arguments.only or [*ATTACKS, "thousand"]
    results = {}
    try:
        runs = {name: [] for name in ATTACKS if name in chosen}
        for _ in range(arguments.rounds):
            for name, taken in runs.items():
                taken.append(attack(build, name))
                print(f"{name}: {taken[-1][0]:.2f} s, {taken[-1][1]} kB, {taken[-1][2]} printers, "
                      f"load {os.getloadavg()[0]}", flush=True)
        for name, taken in runs.items():
            seconds, memory, _ = zip(*taken)
            results[name] = {"all": statistics.median(seconds), "memory": max(memory)}
        if "thousand" in chosen:
            results["thousand"] = thousand(build, arguments.rounds)
            print(f"thousand: {results['thousand']}, load {os.getloadavg()[0]}", flush=True)
    except (RuntimeError, OSError, ValueError, subprocess.SubprocessError) as problem:
        sys.exit(f"scan_attack: {problem}")
    with open(arguments.out, "w", encoding="utf-8") as out:
        json.dump(results, out, indent=1)


if __name__ == "__main__":
    main()

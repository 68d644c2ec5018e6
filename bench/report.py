#!/usr/bin/env python3
"""Turns what the benchmarks measured into the table of scripts/bench; exit status 1 when a target is
missed."""

import argparse
import json
import os
import sys

VENDORS = (1, 10, 100, 1000)
TOOLS = ("devicediscover", "avahi-browse", "ippfind", "cupsEnumDests")


class Figures:
    """The medians in the folder that scripts/bench filled."""

    def __init__(self, folder):
        self.folder = folder
        self.medians = {}
        for program in ("facade", "relay", "binding"):
            for run in self.read(program)["benchmarks"]:
                if run.get("aggregate_name") == "median":
                    self.medians[run["run_name"]] = run
        self.race = self.read("race") if os.path.exists(self.path("race")) else None

    def path(self, name):
        return os.path.join(self.folder, name + ".json")

    def read(self, name):
        with open(self.path(name), encoding="utf-8") as file:
            return json.load(file)

    def cpu(self, name):
        """Nanoseconds of processor time: what other processes do at the same time counts least."""
        return self.medians[name]["cpu_time"]

    def real(self, name):
        return self.medians[name]["real_time"]


def relay(what, threads):
    return f"{what}/real_time/threads:{threads}"


def binding(what, vendors):
    return f"{what}/{vendors}/real_time"


def nanoseconds(value):
    return f"{value:,.0f} ns"


def measured(figures):
    """The rows of what was measured: name, figure."""
    cpu = figures.cpu
    yield "facade: one GetDeviceConnectState", nanoseconds(cpu("Facade"))
    yield "  the same lines and call by hand", nanoseconds(cpu("FacadeByHand"))
    yield "  floor: three empty streams and the call", nanoseconds(cpu("FacadeFloor"))
    device, floor = "RelayedDevice", "RelayedDeviceFloor"
    yield "relay: one device, one thread", nanoseconds(cpu(relay(device, 1)))
    yield "  floor: one empty stream, one copy, the callback", nanoseconds(cpu(relay(floor, 1)))
    yield "  one device, elapsed, one thread", nanoseconds(figures.real(relay(device, 1)))
    yield "  one device, elapsed, two threads", nanoseconds(figures.real(relay(device, 2)))
    for vendors in VENDORS:
        yield f"binding: {vendors} vendors", nanoseconds(cpu(binding("Binding", vendors)))
        yield "  the same by hand", nanoseconds(cpu(binding("BindingByHand", vendors)))
    for tool in TOOLS if figures.race else ():
        result = figures.race[tool]
        yield (f"scan, 20 printers: {tool}",
               f"first {result['first']:.2f} s, all {result['all']:.2f} s, "
               f"memory {result['memory'] / 1024:.1f} MB")


def targets(figures):
    """The rows of targets: name, ratio, limit, whether the limit is a lower one."""
    cpu, real = figures.cpu, figures.real
    yield "facade / by hand", cpu("Facade") / cpu("FacadeByHand"), 0.70, False
    yield "facade / floor", cpu("Facade") / cpu("FacadeFloor"), 1.60, False
    device, floor = relay("RelayedDevice", 1), relay("RelayedDeviceFloor", 1)
    yield "relayed device / floor", cpu(device) / cpu(floor), 1.60, False
    two = relay("RelayedDevice", 2)
    yield "relay, throughput of two threads / one", real(device) / real(two), 1.80, True
    for vendors in VENDORS:
        ratio = cpu(binding("Binding", vendors)) / cpu(binding("BindingByHand", vendors))
        yield f"binding {vendors} / by hand", ratio, 1.10, False
    if figures.race:
        own = figures.race["devicediscover"]
        for rival, limit in (("avahi-browse", 1.50), ("ippfind", 0.30)):
            for moment, what in (("first", "the first printer"), ("all", "all 20 printers")):
                ratio = own[moment] / figures.race[rival][moment]
                yield f"scan to {what} / {rival}", ratio, limit, False


def update(readme, text):
    """Replaces what stands between the markers of the last table."""
    with open(readme, encoding="utf-8") as file:
        old = file.read()
    begin, end = "<!-- last table -->\n", "<!-- end of the last table -->"
    head, rest = old.split(begin)
    tail = rest.split(end)[1]
    with open(readme, "w", encoding="utf-8") as file:
        file.write(f"{head}{begin}\n```\n{text}```\n\n{end}{tail}")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("folder", help="where the results are")
    parser.add_argument("--update-readme", metavar="FILE", help="write the table there too")
    arguments = parser.parse_args()
    try:
        figures = Figures(arguments.folder)
    except (OSError, ValueError, KeyError) as problem:
        print(f"report: the results in {arguments.folder} cannot be read: {problem!r}", file=sys.stderr)
        return 3
    text = "".join(f"{name:<50} {figure}\n" for name, figure in measured(figures)) + "\n"
    missed = False
    for name, ratio, limit, lower in targets(figures):
        met = ratio >= limit if lower else ratio <= limit
        missed = missed or not met
        bound = "at least" if lower else "at most"
        text += f"{name:<50} {ratio:6.2f}  {bound:>8} {limit:.2f}  {'ok' if met else 'over'}\n"
    print(text, end="")
    if arguments.update_readme:
        update(arguments.update_readme, text)
    return 1 if missed else 0


if __name__ == "__main__":
    sys.exit(main())

#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Turns what the benchmarks measured into the table of scripts/bench.

Exit status: 0 no target missed among those that were measured, 1 some missed, 3 a measurement is
missing or cannot be read. Targets that were left out are named.
"""

import argparse
import json
import operator
import os
import sys

VENDORS = (1, 10, 100, 1000)
CHOICES = (1, 10, 100)
USB_IDS = (1, 100, 10000)
USB_PRINTERS = (10, 100, 1000)
TOOLS = ("devicediscover", "avahi-browse", "ippfind", "cupsEnumDests")
ATTACKS = ("40 that are silent", "180 of 300 hang", "900 without SRV", "1,100 without SRV",
           "200 new ones a second", "30 endless answers")
MIB = 1024  # kB


class Unusable(Exception):
    """What keeps the results from being a table: the file, and what is wrong with it."""


class Figures:
    """The medians in the folder that scripts/bench filled."""

    def __init__(self, folder):
        self.folder = folder
        self.medians = {}
        for program in ("facade", "log", "relay", "binding", "access_point", "ping", "arrival"):
            self.medians.update(self.medians_of(program))
        for program, sizes in (("choice", CHOICES), ("usb", USB_IDS)):
            for size in sizes:
                self.medians.update({f"{name}/{size}": run
                                     for name, run in self.medians_of(f"{program}_{size}").items()})
        self.race, self.attack = (self.read(name) if os.path.exists(self.path(name)) else None
                                  for name in ("race", "attack"))

    def path(self, name):
        return os.path.join(self.folder, name + ".json")

    def read(self, name):
        try:
            with open(self.path(name), encoding="utf-8") as file:
                return json.load(file)
        except (OSError, ValueError) as problem:
            raise Unusable(f"{self.path(name)}: {problem}") from problem

    def part(self, results, program, name):
        try:
            return results[name]
        except (KeyError, TypeError) as problem:
            raise Unusable(f"{self.path(program)}: {name!r} is missing") from problem

    def medians_of(self, program):
        return {self.part(run, program, "run_name"): run
                for run in self.part(self.read(program), program, "benchmarks")
                if run.get("aggregate_name") == "median"}

    def median(self, name, clock):
        if name not in self.medians:
            raise Unusable(f"{self.folder}: the median of {name} is missing")
        time = self.medians[name].get(clock)
        if not isinstance(time, (int, float)) or time <= 0:
            raise Unusable(f"{self.folder}: the median of {name}: {clock} is {time!r}")
        return time

    def cpu(self, name):
        """Nanoseconds of processor time: what other processes do at the same time counts least."""
        return self.median(name, "cpu_time")

    def real(self, name):
        return self.median(name, "real_time")

    def scan(self, tool, moment):
        """Seconds until `moment`, or kilobytes of memory."""
        return self.positive("race", self.race, tool, moment)

    def attacked(self, scan, what):
        """The same of a scan under attack, or of one among 1,000 printers."""
        return self.positive("attack", self.attack, scan, what)

    def positive(self, program, results, scan, what):
        value = self.part(self.part(results, program, scan), program, what)
        if not isinstance(value, (int, float)) or value <= 0:
            raise Unusable(f"{self.path(program)}: {what!r} of {scan} is {value!r}")
        return value


def relay(what, threads):
    return f"{what}/real_time/threads:{threads}"


def logged(threads):
    return f"Logged/process_time/real_time/threads:{threads}"


PLAIN_LOG = "PlainSpdlog/process_time/real_time"


def disk(speed):
    return f"{speed}Disk/iterations:1000/real_time"


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
    for name, what in (("the facade's call", logged(1)), ("with 8 threads", logged(8)),
                       ("plain spdlog, three flushed lines", PLAIN_LOG)):
        yield f"log: {name}, all threads", nanoseconds(cpu(what))
        yield "  elapsed", nanoseconds(figures.real(what))
    for name, what in (("discarded", "Discarded"), ("filtered", "Filtered"),
                       ("switched off", "SwitchedOff")):
        yield f"log: the facade's call, {name}", nanoseconds(cpu(what))
    for speed in ("Fast", "Slow"):
        yield f"log: the facade's call, {speed.lower()} disk", nanoseconds(figures.real(disk(speed)))
    device, floor = "RelayedDevice", "RelayedDeviceFloor"
    yield "relay: one device, one thread", nanoseconds(cpu(relay(device, 1)))
    yield "  floor: one empty stream, one copy, the callback", nanoseconds(cpu(relay(floor, 1)))
    yield "  one device, elapsed, one thread", nanoseconds(figures.real(relay(device, 1)))
    yield "  one device, elapsed, two threads", nanoseconds(figures.real(relay(device, 2)))
    for vendors in VENDORS:
        yield f"binding: {vendors} vendors", nanoseconds(cpu(binding("Binding", vendors)))
        yield "  the same by hand", nanoseconds(cpu(binding("BindingByHand", vendors)))
    yield "access point: one IsLocalAreaNetworkOK", nanoseconds(cpu("LocalNetwork"))
    yield "  the same lines and call by hand", nanoseconds(cpu("LocalNetworkByHand"))
    yield "  floor: three empty streams and the call", nanoseconds(cpu("LocalNetworkFloor"))
    yield "access point: one relayed network", nanoseconds(cpu("RelayedNetwork"))
    yield "  the same lines and callback by hand", nanoseconds(cpu("RelayedNetworkByHand"))
    yield "  floor: four empty streams, one copy, the callback", nanoseconds(cpu("RelayedNetworkFloor"))
    for vendors in CHOICES:
        yield f"access point: the vendor among {vendors}", nanoseconds(cpu(f"Choice/{vendors}"))
        yield "  the same by hand", nanoseconds(cpu(f"ChoiceByHand/{vendors}"))
    for ids in USB_IDS:
        yield f"USB: a port of {ids:,} identifiers, 64 records", nanoseconds(cpu(f"Enumeration/{ids}"))
        yield "  the same by hand", nanoseconds(cpu(f"EnumerationByHand/{ids}"))
    yield "USB: a scan of 128 networks", nanoseconds(cpu("UsbWifiScan/1"))
    yield "  the same by hand", nanoseconds(cpu("UsbWifiScanByHand/1"))
    for printers in USB_PRINTERS:
        time = cpu(f"UsbPrinters/{printers}/1")
        yield f"USB: {printers} printers, as many on the network", nanoseconds(time)
        yield "  each", nanoseconds(time / printers)
    few, most = (cpu(f"UsbPrinters/{printers}/1") / printers
                 for printers in (USB_PRINTERS[0], USB_PRINTERS[-1]))
    yield f"  growth of each from {USB_PRINTERS[0]} to {USB_PRINTERS[-1]}", f"{most / few:.2f}"
    for tool in TOOLS if figures.race else ():
        first, last, memory = (figures.scan(tool, what) for what in ("first", "all", "memory"))
        yield (f"scan, 20 printers: {tool}",
               f"first {first:.2f} s, all {last:.2f} s, memory {memory / 1024:.1f} MB")
    if figures.attack:
        for tool in ("devicediscover", "avahi-browse"):
            yield f"scan, 1,000 printers: {tool}", f"all {figures.attacked('thousand', tool):.2f} s"
        yield "scan, 20 printers, no attack", f"all {figures.attacked('none', 'all'):.2f} s"


def targets(figures):
    """The rows of targets: name, ratio (None: left out), limit, whether the limit is a lower one."""
    cpu, real = figures.cpu, figures.real
    yield "facade / by hand", cpu("Facade") / cpu("FacadeByHand"), 0.70, False
    yield "facade / floor", cpu("Facade") / cpu("FacadeFloor"), 1.60, False
    for clock, figure in (("processor time", cpu), ("elapsed", real)):
        yield f"log: facade / plain spdlog, {clock}", figure(logged(1)) / figure(PLAIN_LOG), 1.50, False
        yield f"log: 8 threads / one, {clock}", figure(logged(8)) / figure(logged(1)), 1.50, False
    yield "log: filtered / discarded", cpu("Filtered") / cpu("Discarded"), 1.10, False
    yield "log: switched off / discarded", cpu("SwitchedOff") / cpu("Discarded"), 1.10, False
    yield "log: slow disk / fast disk", real(disk("Slow")) / real(disk("Fast")), 1.20, False
    device, floor = relay("RelayedDevice", 1), relay("RelayedDeviceFloor", 1)
    yield "relayed device / floor", cpu(device) / cpu(floor), 1.60, False
    two = relay("RelayedDevice", 2)
    yield "relay, throughput of two threads / one", real(device) / real(two), 1.80, True
    for vendors in VENDORS:
        ratio = cpu(binding("Binding", vendors)) / cpu(binding("BindingByHand", vendors))
        yield f"binding {vendors} / by hand", ratio, 1.10, False
    for what, name in (("facade", "LocalNetwork"), ("relayed network", "RelayedNetwork")):
        yield f"access point: {what} / by hand", cpu(name) / cpu(name + "ByHand"), 0.70, False
        yield f"access point: {what} / floor", cpu(name) / cpu(name + "Floor"), 1.60, False
    for vendors in CHOICES:
        ratio = cpu(f"Choice/{vendors}") / cpu(f"ChoiceByHand/{vendors}")
        yield f"access point: vendor among {vendors} / by hand", ratio, 1.15, False
    silent = real("SilentAddress/real_time")
    yield "ping of a silent address, ms", silent, 300, True
    yield "ping of a silent address, ms", silent, 330, False
    yield "ping of loopback, ms", real("Loopback/real_time"), 1, False
    for ids in USB_IDS:
        ratio = cpu(f"Enumeration/{ids}") / cpu(f"EnumerationByHand/{ids}")
        yield f"USB: port of {ids:,} identifiers / by hand", ratio, 0.75, False
    growth = cpu(f"Enumeration/{USB_IDS[-1]}") / cpu(f"Enumeration/{USB_IDS[0]}")
    yield f"USB: port of {USB_IDS[-1]:,} identifiers / of one", growth, 1.30, False
    ratio = cpu("UsbWifiScan/1") / cpu("UsbWifiScanByHand/1")
    yield "USB: scan of 128 networks / by hand", ratio, 0.70, False
    arrival = real("Arrival/iterations:1/real_time")
    yield "USB: plugged in to reported, ms", arrival, 1000, True
    yield "USB: plugged in to reported, ms", arrival, 1020, False
    for rival, limit in (("avahi-browse", 1.50), ("ippfind", 0.30)):
        for moment, what in (("first", "the first printer"), ("all", "all 20 printers")):
            ratio = None
            if figures.race:
                ratio = figures.scan("devicediscover", moment) / figures.scan(rival, moment)
            yield f"scan to {what} / {rival}", ratio, limit, False
    yield from targets_under_attack(figures)


def targets_under_attack(figures):
    attacked = figures.attacked if figures.attack else lambda *_: None

    def combined(combine, *values):
        return None if None in values else combine(*values)

    ratio = combined(operator.truediv, attacked("thousand", "devicediscover"),
                     attacked("thousand", "avahi-browse"))
    yield "scan to all 1,000 printers / avahi-browse", ratio, 0.50, False
    memory = combined(operator.truediv, attacked("thousand", "memory"), MIB)
    yield "scan of 1,000 printers, MiB", memory, 64, False
    for attack in ATTACKS:
        delay = combined(operator.sub, attacked(attack, "all"), attacked("none", "all"))
        yield f"scan, {attack}: s later than without", delay, 1.50, False
        memory = combined(operator.truediv, attacked(attack, "memory"), MIB)
        yield f"scan, {attack}: MiB", memory, 64, False


def table(figures):
    """The text of the table, and whether a target was missed."""
    text = "".join(f"{name:<50} {figure}\n" for name, figure in measured(figures)) + "\n"
    missed = False
    for name, ratio, limit, lower in targets(figures):
        bound = "at least" if lower else "at most"
        if ratio is None:
            shown, verdict = "-", "left out"
        else:
            met = ratio >= limit if lower else ratio <= limit
            missed = missed or not met
            shown, verdict = f"{ratio:.2f}", "ok" if met else "over"
        text += f"{name:<50} {shown:>6}  {bound:>8} {limit:.2f}  {verdict}\n"
    return text, missed


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
    parser = argparse.ArgumentParser(
        description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("folder", help="where the results are")
    parser.add_argument("--update-readme", metavar="FILE", help="write the table there too")
    arguments = parser.parse_args()
    try:
        text, missed = table(Figures(arguments.folder))
    except Unusable as problem:
        print(f"report: {problem}", file=sys.stderr)
        return 3
    print(text, end="")
    if arguments.update_readme:
        update(arguments.update_readme, text)
    return 1 if missed else 0


if __name__ == "__main__":
    sys.exit(main())

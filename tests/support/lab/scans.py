# SPDX-License-Identifier: Apache-2.0
"""Scans on the network that scripts/lab-network made: a probe that scans, what announces itself, and
a test case with printers of its own.

The environment names DEVICEDISCOVER_PROGRAM, SCAN_PROBE, SLOW_AVAHI, DRIVERLESS_MODULE, LAB_NETWORK.
"""

import contextlib
import json
import os
import queue
import re
import subprocess
import sys
import threading
import time
import unittest

from lab import LAB, PATIENCE, lab

PROGRAM = os.environ["DEVICEDISCOVER_PROGRAM"]
PROBE = os.environ["SCAN_PROBE"]
MODULE = os.environ["DRIVERLESS_MODULE"]
TESTS = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
FAKE_PRINTER = os.path.join(TESTS, "network", "fake_printer.py")
ANNOUNCER = os.path.join(TESTS, "network", "announcer.py")

ENVIRONMENT = dict(os.environ)
# Nothing but the list beside the library says which vendors there are.
ENVIRONMENT.pop("DEVICEDISCOVER_VENDORS", None)

# Sanitizers make everything slower; nothing here measures speed.
SLACK = float(os.environ.get("NETWORK_TEST_SLACK", "1"))

IPP, IPPS, PDL_DATASTREAM, LPD = 1, 2, 3, 4
READY, NOT_READY, NO_ANSWER, UNKNOWN, NO_PRINTER, OTHER_PRINTER = 1, 2, 3, 4, 5, 6
NO_BUS, NO_AVAHI, NO_NETWORK, NO_BROWSING, BUS_LOST = 2, 3, 4, 5, 6


def slow_avahi(**milliseconds):
    """The environment of a program for which Avahi takes its time; see slow_avahi.cpp."""
    # The address sanitizer wants to be the first library; nothing of its own is in this one.
    options = filter(None, [os.environ.get("ASAN_OPTIONS"), "verify_asan_link_order=0"])
    return {"LD_PRELOAD": os.environ["SLOW_AVAHI"], "ASAN_OPTIONS": ":".join(options),
            **{"SLOW_AVAHI_" + what.upper(): str(time) for what, time in milliseconds.items()}}


def serial_of(number):
    """The serial number of the lab's printer of that number, which is not in its announcement."""
    return f"LAB{number:04}"


def port_of(number):
    return 8630 + number


def text_of(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


def text_below(folder):
    """Everything that stands in the files of a folder."""
    paths = [os.path.join(parent, name) for parent, _, names in os.walk(folder) for name in names]
    return "".join(text_of(path) for path in paths)


class Probe:
    """A running scan_probe: commands in, events out."""

    COMMAND = [PROBE]
    MODULE_ARGUMENTS = ["--module", MODULE]
    EXIT = "exit"

    def __init__(self, through_broker=False, environment=None, descriptors=None,
                 counts_threads=False):
        limit = [] if descriptors is None else ["prlimit", f"--nofile={descriptors}"]
        if counts_threads:
            limit = with_threads_of_its_own()
        arguments = limit + self.COMMAND + ([] if through_broker else self.MODULE_ARGUMENTS)
        self.process = subprocess.Popen(
            arguments, stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
            text=True, env={**ENVIRONMENT, **(environment or {})})
        self.events = queue.Queue()
        self.seen = []
        self.ended = []
        self.errors = []
        self.readers = [
            threading.Thread(target=self._read, args=(pipe, take), daemon=True)
            for pipe, take in ((self.process.stdout, self._take_event),
                               (self.process.stderr, self.errors.append))]
        for reader in self.readers:
            reader.start()

    @staticmethod
    def _read(pipe, take):
        for line in pipe:
            take(line)
        take(None)

    def _take_event(self, line):
        self.events.put(json.loads(line) if line is not None else None)

    def tell(self, command):
        try:
            self.process.stdin.write(command + "\n")
            self.process.stdin.flush()
        except BrokenPipeError as error:
            raise AssertionError("it ended: " + self.diagnostics()) from error

    def next(self, seconds):
        """The next event; None when there is none in time."""
        try:
            event = self.events.get(timeout=max(seconds, 0))
        except queue.Empty:
            return None
        if event is None:
            raise AssertionError("scan_probe ended: " + self.diagnostics())
        self.seen.append(event)
        return event

    def await_event(self, kind, seconds=PATIENCE, **wanted):
        # The end of a scan and the answer to its stop come in any order.
        if kind == "ended" and self.ended:
            return self.ended.pop(0)
        deadline = time.monotonic() + seconds
        while (event := self.next(deadline - time.monotonic())) is not None:
            if event["event"] == "ended" != kind:
                self.ended.append(event)
            if event["event"] == kind and all(event[k] == v for k, v in wanted.items()):
                return event
        raise AssertionError(f"no {kind} {wanted} in {seconds} s, but {self.seen}; "
                             + self.diagnostics())

    def ask(self, command, serial=""):
        """The result of a command."""
        self.tell(f"{command} {serial}".strip())
        return self.await_event({"stop": "stopped"}.get(command, command))["result"]

    def start(self):
        self.ended.clear()
        self.tell("start")

    def found(self, seconds):
        """Every printer reported within that time."""
        deadline = time.monotonic() + seconds
        while self.next(deadline - time.monotonic()) is not None:
            pass
        return [event for event in self.seen if event["event"] == "found"]

    def await_printers(self, count):
        while sum(event["event"] == "found" for event in self.seen) < count:
            self.await_event("found")
        return [event for event in self.seen if event["event"] == "found"]

    def diagnostics(self):
        return "".join(line for line in self.errors if line is not None)

    def end(self):
        """Leaves the probe's main; its exit status. It may have ended by itself."""
        with contextlib.suppress(BrokenPipeError, ValueError):
            self.process.stdin.write(self.EXIT + "\n")
        with contextlib.suppress(BrokenPipeError):
            self.process.stdin.close()
        try:
            status = self.process.wait(PATIENCE)
        except subprocess.TimeoutExpired:
            self.process.kill()
            raise
        for reader in self.readers:
            reader.join()
        self.process.stdout.close()
        self.process.stderr.close()
        return status


class Announcer:
    """An announcer.py on the printers' side."""

    def __init__(self):
        self.process = subprocess.Popen(
            [LAB, "run-beside-printers", sys.executable, ANNOUNCER, "--network", "10.99.0.1"],
            stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)

    def announce(self, **spec):
        self.process.stdin.write(json.dumps(spec) + "\n")
        self.process.stdin.flush()
        if self.process.stdout.readline().strip() != "ready":
            raise AssertionError(f"could not be announced: {spec}")

    def end(self):
        self.process.kill()
        self.process.wait()
        self.process.stdin.close()
        self.process.stdout.close()


def as_ordinary_user():
    """What runs a command without the rights of the lab's root."""
    with open("/proc/self/uid_map", encoding="ascii") as file:
        has_others = any(int(line.split()[2]) > 65534 for line in file)
    # A lab of an ordinary user knows no other, only fewer rights.
    return ["setpriv"] + (["--reuid=65534", "--regid=65534", "--clear-groups"] if has_others
                          else ["--bounding-set=-net_raw", "--inh-caps=-net_raw"])


def with_threads_of_its_own():
    """What runs a command as a user whose threads are counted, as those of root are not, and who has
    no others."""
    if "--reuid=65534" not in as_ordinary_user():
        return ["unshare", "--map-root-user"]
    into_folders = "+dac_override"  # the lab's are its root's
    return ["setpriv", "--reuid=games", "--regid=games", "--clear-groups", "--inh-caps",
            into_folders, "--ambient-caps", into_folders]


class NetworkTest(unittest.TestCase):
    """Each test has a network with the printers it asks for, and no others."""

    def setUp(self):
        # What an earlier test's printers left in Avahi's cache would be found.
        lab("cold")
        self.probes = []
        self.fakes = []
        self.printers = set()

    def tearDown(self):
        for probe in self.probes:
            status = probe.end()
            self.assertEqual(status, 0, probe.diagnostics())
        for fake in self.fakes:
            self.end_fake(fake)
        for number in self.printers:
            lab("stop-printer", number)

    def probe(self, **options):
        probe = Probe(**options)
        self.probes.append(probe)
        probe.await_event("ready")
        return probe

    def have_printers(self, count):
        lab("printers", count)
        self.printers |= set(range(1, count + 1))

    def start_printer(self, number, *options):
        lab("start-printer", number, *options)
        self.printers.add(number)

    def start_silent_printer(self, number):
        """One that announces nothing."""
        self.start_printer(number, "-r", "off")

    def stop_printer(self, number):
        lab("stop-printer", number)
        self.printers.discard(number)

    def await_forgotten(self, name):
        """Avahi's cache keeps what says good-bye for a second, on a busy machine for longer."""
        entry = ";" + name.replace(" ", "\\032") + ";"
        deadline = time.monotonic() + PATIENCE
        while entry in subprocess.run(["avahi-browse", "-pc", "_ipp._tcp"], capture_output=True,
                                      text=True, timeout=PATIENCE, check=True).stdout:
            self.assertLess(time.monotonic(), deadline, name + " is still there")
            time.sleep(0.05)

    def limit_avahi(self, objects):
        """Starts Avahi afresh, with so many objects for each client."""
        path = os.path.join(os.environ["LAB_NETWORK_STATE"], "b", "avahi.conf")
        with open(path, encoding="utf-8") as file:
            before = file.read()

        def configure(text):
            with open(path, "w", encoding="utf-8") as changed:
                changed.write(text)
            lab("cold")

        self.addCleanup(configure, before)
        configure(before.replace("[server]\n", f"[server]\nobjects-per-client-max={objects}\n"))

    def fake_printer(self, name, port, behaviour="answers", kind="_ipp._tcp", txt=(),
                     attributes=(), count=1):
        arguments = ["--name", name, "--port", str(port), "--type", kind, "--behaviour", behaviour,
                     "--count", str(count)]
        for entry in txt:
            arguments += ["--txt", entry]
        for entry in attributes:
            arguments += ["--attribute", entry]
        fake = subprocess.Popen(
            [LAB, "run-beside-printers", sys.executable, FAKE_PRINTER, *arguments],
            stdout=subprocess.PIPE, text=True)
        self.fakes.append(fake)
        for line in fake.stdout:
            count -= "Established" in line
            if count == 0:
                return
        self.fail(f"{name} could not be announced")

    @staticmethod
    def end_fake(fake):
        fake.terminate()
        fake.wait()
        fake.stdout.close()

    def await_diagnostics(self, probe, text):
        deadline = time.monotonic() + PATIENCE
        while text not in probe.diagnostics():
            self.assertLess(time.monotonic(), deadline, probe.diagnostics())
            time.sleep(0.05)

    def assert_diagnostics(self, probe, pattern):
        """The module wrote exactly one line, and it says this."""
        deadline = time.monotonic() + PATIENCE
        while not probe.errors and time.monotonic() < deadline:
            time.sleep(0.01)
        lines = [line for line in probe.errors if line is not None]
        self.assertEqual(len(lines), 1, lines)
        self.assertRegex(lines[0], "^driverless: .*" + pattern)

    def await_diagnostics(self, probe, pattern):
        """The module has written this, among other lines; a thread of the probe's own reads them."""
        deadline = time.monotonic() + PATIENCE
        while not re.search(pattern, probe.diagnostics()) and time.monotonic() < deadline:
            time.sleep(0.01)
        self.assertRegex(probe.diagnostics(), pattern)

    def found_one(self, within=5):
        probe = self.probe()
        probe.start()
        printer = probe.await_event("found", within * SLACK + 1)
        self.assertEqual(len(probe.found(1.5)), 1, "once")
        return probe, printer


UUID = "7e21a7d4-0000-4000-8000-00000000000"

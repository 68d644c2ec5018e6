# SPDX-License-Identifier: Apache-2.0
"""Journeys on the network that scripts/lab-network made: the application, on a terminal too, and a test
case with a new printer, an office and this host's Wi-Fi.

The environment names NETWORK_MANAGER_MOCK, and what set_ups.py needs.
"""

import contextlib
import fcntl
import json
import os
import pty
import re
import select
import subprocess
import sys
import tempfile
import termios
import threading
import time
import unittest

from lab import LAB, PATIENCE, Lines, lab
from office import BOTH, OFFICE, THERE, HostWifi, announced, move, new_printer
from scans import ENVIRONMENT, FAKE_PRINTER, PROGRAM, SLACK, UUID, text_below
from set_ups import NAME, OWN_NETWORK, PASS_PHRASE, SERIAL, STATE

WRONG, TOO_SHORT = "wrong-horse battery", "seven77"
TWINS_PORT = 9000
STEPS = ["printer", "network", "passPhrase", "configure", "rejoin", "find"]


class Ended:
    """What became of a run of the application."""

    def __init__(self, status, output, errors):
        self.status, self.output, self.errors = status, output, errors

    def objects(self):
        return [json.loads(line) for line in self.output.splitlines()]

    def __str__(self):
        return f"status {self.status}\n{self.output}\n{self.errors}"


class Terminal:
    """The application on a terminal."""

    def __init__(self, arguments, environment):
        self.master, terminal = pty.openpty()
        self.process = subprocess.Popen(
            [PROGRAM, *arguments], stdin=terminal, stdout=terminal, stderr=terminal,
            start_new_session=True, env={**environment, "TERM": "xterm"},
            preexec_fn=lambda: fcntl.ioctl(0, termios.TIOCSCTTY, 0))
        os.close(terminal)
        self.raw = b""
        self.seen = 0

    @property
    def text(self):
        plain = re.sub(r"\x1b\[[?;\d]*[A-Za-z]", "", self.raw.decode("utf-8", "replace"))
        return re.sub(r"\r+\n", "\n", plain)

    def show(self):
        """Whether there may be more."""
        try:
            if select.select([self.master], [], [], 0.05)[0]:
                self.raw += os.read(self.master, 65536)
            return True
        except OSError:  # nobody has the other end open any more
            return False

    def expect(self, pattern):
        deadline = time.monotonic() + PATIENCE
        while not (match := re.search(pattern, self.text[self.seen:])):
            assert self.show() and time.monotonic() < deadline, f"no {pattern!r}: {self.text}"
        self.seen += match.end()

    def answer(self, question, text):
        self.expect(question)
        os.write(self.master, text.encode() + b"\r")

    def status(self):
        while self.show():
            pass
        return self.process.wait(PATIENCE)

    def end(self):
        self.process.kill()
        self.process.wait()
        os.close(self.master)


class JourneyTest(unittest.TestCase):
    def setUp(self):
        lab("cold")
        self.running = []
        self.addCleanup(self.end_all)
        self.wifi = HostWifi()
        self.running.append(self.wifi)
        self.wifi.have_network(OWN_NETWORK, 90)
        self.wifi.have_network(NAME, 60, PASS_PHRASE)
        self.wifi.have_network("HomeNet", 80, "somebody else's")
        self.state = tempfile.mkdtemp(dir=STATE)
        self.given = []

    def end_all(self):
        for one in reversed(self.running):
            one.end()

    def end(self, one):
        self.running.remove(one)
        one.end()

    def printer(self, *arguments):
        folder = os.path.join(self.state, "printer")
        os.makedirs(folder)
        printer = new_printer(folder, f"{NAME}={PASS_PHRASE}", *arguments)
        self.running.append(printer)
        printer.await_line("ready")
        return printer

    def devicediscover(self, *arguments, secret="", on_line=lambda line, process: None,
                       **environment):
        """Runs the application to its end, and looks at each line when it comes."""
        self.given += [secret] if secret else []
        errors_path = os.path.join(self.state, "errors")
        with open(errors_path, "w", encoding="utf-8") as errors:
            process = subprocess.Popen(
                self.command(*arguments), stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                stderr=errors, text=True, env=self.environment(**environment))
        watchdog = threading.Timer(4 * PATIENCE * SLACK, process.kill)
        watchdog.start()
        try:
            with process.stdin, process.stdout:
                with contextlib.suppress(BrokenPipeError):  # one that reads nothing may have ended
                    process.stdin.write(secret + "\n")
                    process.stdin.close()
                lines = []
                for line in process.stdout:
                    lines.append(line)
                    on_line(line, process)
            process.wait()
        finally:
            watchdog.cancel()
            process.kill()
        with open(errors_path, encoding="utf-8") as errors:
            ended = Ended(process.returncode, "".join(lines), errors.read())
        self.assert_secret(ended.output, ended.errors)
        return ended

    @staticmethod
    def command(*arguments):
        return [PROGRAM, *arguments]

    def environment(self, **more):
        return {**ENVIRONMENT, "XDG_STATE_HOME": os.path.join(self.state, "log"), **more}

    def assert_secret(self, *texts):
        """No pass phrase that was given so far shows, in the log file neither."""
        for secret in self.given:
            for text in (*texts, self.log()):
                self.assertNotIn(secret, text)
                self.assertNotIn(json.dumps(secret)[1:-1], text)

    def log(self):
        return text_below(os.path.join(self.state, "log"))

    def await_joinings(self, number):
        deadline = time.monotonic() + PATIENCE
        while len(self.wifi.joinings()) < number:
            self.assertLess(time.monotonic(), deadline, "the host does not join")
            time.sleep(0.05)

    def join_the_printers_network(self):
        joined = self.devicediscover("wifi", "join", OWN_NETWORK, "--open")
        self.assertEqual(joined.status, 0, str(joined))

    # --- the office ---

    def move_to_office(self, *sides):
        """These have left the printer's network; what they find now is the office's."""
        for side, host in sides:
            move(side, host, THERE, OFFICE)
            self.addCleanup(move, side, host, OFFICE, THERE)

    def announce(self):
        self.running.append(announced())

    def announce_twin(self):
        """Another printer that has the serial number."""
        twin = Lines([LAB, "run-beside-printers", sys.executable, FAKE_PRINTER, "--name", "Twin",
                      "--port", str(TWINS_PORT), "--attribute", "printer-serial-number=" + SERIAL,
                      "--attribute", f"printer-uuid=urn:uuid:{UUID}9"])
        self.running.append(twin)
        twin.await_line("Established under name 'Twin'")

    def arrive(self, *sides):
        self.move_to_office(*(sides or BOTH))
        self.announce()

    # --- set-up ---

    def set_up(self, pass_phrase, *arguments, network=NAME, at=None, **environment):
        """Runs `setup`; `at` says what happens when a step starts."""
        def on_line(line, process):
            for step, action in (at or {}).items():
                if (f'"step":"{step}","state":"started"' in line
                        or line.startswith(f"[{STEPS.index(step) + 1}/")):
                    action(process)
        return self.devicediscover(
            "setup", "--network", network, "--pass-phrase-file", "-", *arguments,
            secret=pass_phrase, on_line=on_line, **environment)

    def assert_steps(self, ended, failed=None):
        """Each step starts and is done, up to the one that failed; returns the last object."""
        objects = ended.objects()
        done = STEPS[:STEPS.index(failed)] if failed else STEPS
        expected = [(step, state) for step in done for state in ("started", "done")]
        expected += [(failed, "started"), (failed, "failed")] if failed else []
        self.assertEqual([(one["step"], one["state"]) for one in objects], expected, str(ended))
        return objects[-1]

    def assert_masked_log(self):
        lines = [line for line in self.log().splitlines() if re.search(r"\bpwd", line)]
        self.assertTrue(lines, "the pass phrase's line is in the log")
        for line in lines:
            self.assertRegex(line, r"\bpwd\*\*\*\(")

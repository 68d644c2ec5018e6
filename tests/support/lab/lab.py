# SPDX-License-Identifier: Apache-2.0
"""The network that scripts/lab-network made, and processes in it that tell what happens."""

import os
import select
import subprocess
import time

LAB = os.environ["LAB_NETWORK"]

# Sanitizers make everything slower; nothing here measures speed.
PATIENCE = 30


def lab(*arguments):
    subprocess.run([LAB, *map(str, arguments)], check=True, timeout=60)


def network_manager_property(path, interface, name):
    """The last word of what the system bus says of it: a number, a path, or a text of one word."""
    return subprocess.run(
        ["dbus-send", "--system", "--print-reply=literal",
         "--dest=org.freedesktop.NetworkManager", path,
         "org.freedesktop.DBus.Properties.Get", "string:" + interface, "string:" + name],
        check=True, capture_output=True, text=True, timeout=PATIENCE).stdout.split()[-1]


# Who plays the printer is not what is tested: the thread sanitizer would end it for the order in
# which its framework, which it does not know, takes its locks.
PLAYER_ENVIRONMENT = {**os.environ, "TSAN_OPTIONS": os.environ.get("TSAN_OPTIONS", "") +
                                                    ":report_bugs=0:detect_deadlocks=0"}


class Lines:
    """A process that writes one line an event. What it wrote before it let something be seen is there
    for who has seen that."""

    def __init__(self, arguments, environment=None, stderr=subprocess.DEVNULL):
        self.process = subprocess.Popen(arguments, stdout=subprocess.PIPE, stderr=stderr,
                                        env=environment or PLAYER_ENVIRONMENT)
        os.set_blocking(self.process.stdout.fileno(), False)
        self.rest = b""
        self.unseen = []
        self.seen = []
        self.ended = False

    def _read(self, seconds):
        """Whether something came in that time."""
        output = self.process.stdout.fileno()
        if self.ended or not select.select([output], [], [], max(0, seconds))[0]:
            return False
        data = os.read(output, 65536)
        self.ended = not data
        *lines, self.rest = (self.rest + data).split(b"\n")
        self.unseen += [line.decode().strip() for line in lines]
        return True

    def await_line(self, wanted, seconds=PATIENCE):
        deadline = time.monotonic() + seconds
        while True:
            while self.unseen:
                self.seen.append(self.unseen.pop(0))
                if self.seen[-1] == wanted:
                    return
            if not self._read(deadline - time.monotonic()):
                how = "it ended" if self.ended else f"not in {seconds} s"
                raise AssertionError(f"no '{wanted}', {how}: {self.seen}")

    def next(self, seconds=PATIENCE):
        """The next line; None when there is none in that time."""
        deadline = time.monotonic() + seconds
        while not self.unseen and self._read(deadline - time.monotonic()):
            pass
        self.seen += self.unseen[:1]
        return self.unseen.pop(0) if self.unseen else None

    def all(self):
        while self._read(0):
            pass
        self.seen += self.unseen
        self.unseen = []
        return self.seen

    def given(self):
        """What the printer was given: names and pass phrases as text, and what else it says."""
        def text(digits):
            return "" if digits == "-" else bytes.fromhex(digits).decode()
        calls = [line.split() for line in self.all() if line.startswith("given ")]
        return [(text(call[1]), text(call[2]), *call[3:]) for call in calls]

    def end(self):
        self.process.kill()
        self.process.wait()
        self.process.stdout.close()

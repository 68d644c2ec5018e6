"""The network that scripts/lab-network made, and processes in it that tell what happens."""

import os
import queue
import subprocess
import threading
import time

LAB = os.environ["LAB_NETWORK"]

# Sanitizers make everything slower; nothing here measures speed.
PATIENCE = 30


def lab(*arguments):
    subprocess.run([LAB, *map(str, arguments)], check=True, timeout=60)


# Who plays the printer is not what is tested: the thread sanitizer would end it for the order in
# which its framework, which it does not know, takes its locks.
PLAYER_ENVIRONMENT = {**os.environ, "TSAN_OPTIONS": os.environ.get("TSAN_OPTIONS", "") +
                                                    ":report_bugs=0:detect_deadlocks=0"}


class Lines:
    """A process that writes one line an event."""

    def __init__(self, arguments):
        self.process = subprocess.Popen(arguments, stdout=subprocess.PIPE,
                                        stderr=subprocess.DEVNULL, text=True,
                                        env=PLAYER_ENVIRONMENT)
        self.lines = queue.Queue()
        self.seen = []
        self.reader = threading.Thread(target=self._read, daemon=True)
        self.reader.start()

    def _read(self):
        for line in self.process.stdout:
            self.lines.put(line.strip())
        self.lines.put(None)

    def await_line(self, wanted, seconds=PATIENCE):
        deadline = time.monotonic() + seconds
        while True:
            line = self.lines.get(timeout=max(0.01, deadline - time.monotonic()))
            self.seen.append(line)
            if line == wanted:
                return
            assert line is not None, f"it ended: {self.seen}"

    def all(self):
        while not self.lines.empty():
            self.seen.append(self.lines.get())
        return self.seen

    def given(self):
        """What the printer was given: names and pass phrases as text, and what else it says."""
        def text(digits):
            return "" if digits == "-" else bytes.fromhex(digits).decode()
        calls = [line.split() for line in self.all() if line and line.startswith("given ")]
        return [(text(call[1]), text(call[2]), *call[3:]) for call in calls]

    def end(self):
        self.process.kill()
        self.process.wait()
        self.reader.join()
        self.process.stdout.close()

# SPDX-License-Identifier: Apache-2.0
"""What the tests of commands that need the host's network share: a scripted PrinterDiscoverAPI beside
the program, and a terminal."""

import fcntl
import os
import pty
import re
import select
import shutil
import struct
import subprocess
import termios
import time

import app_test
from app_test import ON_WINDOWS, PROGRAM, AppTest, system_path

SCRIPTED_HOST = os.environ["DEVICEDISCOVER_SCRIPTED_HOST"]
PASS_PHRASE = "correct horse 42"


def network(name, quality=80, security=2, exclude=0):
    """A network in the host's range."""
    return f'network "{name}" {quality} {security} {exclude}'


def reported(name, rssi=50, pwd=""):
    """A network that the printer's vendor reports."""
    return f'network {rssi} "{name}" "{pwd}"'


class Terminal:
    """A program on a terminal: what it wrote, without what steers the terminal."""

    def __init__(self, test, *arguments, columns=200, rows=40, **options):
        test.environment["TERM"] = "xterm"
        self.test = test
        self.master, terminal = pty.openpty()
        test.addCleanup(os.close, self.master)
        fcntl.ioctl(self.master, termios.TIOCSWINSZ, struct.pack("HHHH", rows, columns, 0, 0))
        options.setdefault("stdout", terminal)
        options.setdefault("stderr", terminal)
        self.process = subprocess.Popen(
            test.command(*arguments), env=test.environment, stdin=terminal, start_new_session=True,
            preexec_fn=lambda: fcntl.ioctl(0, termios.TIOCSCTTY, 0), **options)
        # The terminal's settings outlive the program while this end is open.
        self.terminal = terminal
        test.addCleanup(os.close, terminal)
        test.addCleanup(self.process.wait)
        test.addCleanup(self.process.kill)
        self.raw = b""
        self.seen = 0

    @property
    def text(self):
        text = re.sub(r"\x1b\[[?;\d]*[A-Za-z]|\x1b\][^\x07]*\x07", "",
                      self.raw.decode("utf-8", "replace"))
        return re.sub(r"\r+\n", "\n", text)

    def show(self, seconds=0.05):
        if select.select([self.master], [], [], seconds)[0]:
            self.raw += os.read(self.master, 65536)
            return True
        return False

    def expect(self, pattern):
        """Waits until the program writes what matches, behind what was last expected."""
        end = time.monotonic() + app_test.PATIENCE
        while not (match := re.search(pattern, self.text[self.seen:])):
            self.test.assertLess(time.monotonic(), end, f"never {pattern!r} in {self.text!r}")
            if not self.show() and self.process.poll() is not None:
                while self.show():
                    pass
                self.test.assertRegex(self.text[self.seen:], pattern)
        self.seen += match.end()

    def type(self, text):
        # Where the console starts to read a moment after the program has asked.
        if ON_WINDOWS:
            time.sleep(0.3)
        os.write(self.master, text.encode())

    def shows_typing(self):
        return bool(termios.tcgetattr(self.terminal)[3] & termios.ECHO)

    def finish(self):
        end = time.monotonic() + app_test.PATIENCE
        while self.process.poll() is None:
            self.test.assertLess(time.monotonic(), end, self.text)
            self.show()
        while self.show():
            pass
        return self.process.returncode


class HostTest(AppTest):
    def setUp(self):
        super().setUp()
        self.host_record = self.path("host-record")
        self.environment["SCRIPTED_HOST_RECORD"] = system_path(self.host_record)
        self.environment.pop("SCRIPTED_HOST_SCRIPT", None)
        folder = self.path("program")
        os.mkdir(folder)
        if ON_WINDOWS:
            # There the program's own folder comes first.
            for entry in os.scandir(os.path.dirname(PROGRAM)):
                if entry.is_file():
                    self.place(entry.path, folder)
            self.program = os.path.join(folder, os.path.basename(PROGRAM))
        else:
            self.environment["LD_LIBRARY_PATH"] = folder
        replaced = os.path.join(folder, os.path.basename(SCRIPTED_HOST))
        if os.path.exists(replaced):
            os.remove(replaced)
        shutil.copy(SCRIPTED_HOST, replaced)

    def place(self, file, folder):
        try:
            os.link(file, os.path.join(folder, os.path.basename(file)))
        except OSError:
            shutil.copy(file, folder)

    def host(self, *lines):
        """What the host's network does."""
        script = self.write("host-script", "\n".join(lines) + "\n")
        self.environment["SCRIPTED_HOST_SCRIPT"] = system_path(script)

    def host_calls(self, operation=""):
        if not os.path.exists(self.host_record):
            return []
        return [line for line in self.read(self.host_record).splitlines()
                if line.startswith(operation)]

    def assert_no_without_reader(self, *arguments, saying):
        """An answer that nobody reads is no other answer."""
        reader, output = os.pipe()
        os.close(reader)
        process = self.start_app(*arguments, stdout=output)
        os.close(output)
        _, errors = process.communicate(timeout=app_test.PATIENCE)
        self.assertEqual(process.returncode, app_test.NONE_FOUND, errors)
        self.assert_mentions(errors.decode(), saying)

    def arguments_of(self, entry_point):
        """The bytes of the records that the entry point was given."""
        return [bytes.fromhex(line.split()[2]) for line in self.read(self.record_file).splitlines()
                if line.split()[1] == entry_point and line.split()[2] != "-"]

    def assert_not_shown(self, result, secret=PASS_PHRASE):
        self.assertNotIn(secret, result.output)
        self.assertNotIn(secret, result.errors)

    def log(self):
        """All that was logged, wherever."""
        text = ""
        for folder, _, names in os.walk(self.folder):
            for name in names:
                if name.endswith(".log") or name == "log":
                    text += self.read(os.path.join(folder, name))
        return text

    def pass_phrase_file(self, text=PASS_PHRASE + "\n"):
        return system_path(self.write("pass-phrase", text))

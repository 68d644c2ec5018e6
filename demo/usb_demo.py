# SPDX-License-Identifier: Apache-2.0
"""Shows how a printer that is plugged in gets onto a network: `devicediscover` sees it come, and puts
it on a Wi-Fi network over its cable.

Runs inside scripts/lab-network, on the browsing side. The environment names what office.py and
usb_bed.py need, and DEVICEDISCOVER_PROGRAM, whose vendor list is the one beside it.
"""

import os
import signal
import subprocess
import sys
import tempfile
import time

from lab import Lines, lab
from office import Bridge, announced, new_printer
from set_up_demo import INTERRUPTED, LAST_STEP, NETWORK, PASS_PHRASE, PROGRAM, say
from usb_bed import UsbBed

PLACE, SERIAL = "1-1", "RADIO1"
MOST_TRIES, PATIENCE_FOR_REPORT = 5, 5


class Demo:
    def __init__(self, folder):
        self.folder = folder
        self.usb = UsbBed()
        self.running = [self.usb]
        os.environ.update(self.usb.environment())

    def end(self):
        for one in reversed(self.running):
            one.end()

    def start(self, *arguments, **options):
        say("$ devicediscover " + " ".join(arguments))
        return subprocess.Popen(self.usb.seen_by([PROGRAM, *arguments]), text=True, **options)

    def have_printer(self):
        """It waits for a network, and its bridge makes it reachable on this host."""
        folder = os.path.join(self.folder, "printer")
        os.mkdir(folder)
        printer = new_printer(folder, f"{NETWORK}={PASS_PHRASE}", "--serial", SERIAL)
        self.running.append(printer)
        printer.await_line("ready")
        self.running.append(Bridge())

    def watch(self):
        """Until a printer has come. One that came before the watch looked is plugged in again."""
        say("$ devicediscover usb watch")
        watch = Lines(self.usb.seen_by([PROGRAM, "usb", "watch"]), os.environ, stderr=None)
        time.sleep(1)
        say(f"(a printer is plugged in at {PLACE})")
        for _ in range(MOST_TRIES):
            self.usb.plug(PLACE, SERIAL)
            line = watch.next(PATIENCE_FOR_REPORT)
            if line:
                say(line)
                break
            self.usb.unplug(PLACE)
        say("(Ctrl-C)")
        watch.process.send_signal(signal.SIGINT)
        return watch.process.wait()

    def run(self, *arguments):
        return self.start(*arguments).wait()

    def set_up(self):
        process = self.start("setup", "--usb", "--network", NETWORK, "--pass-phrase-file", "-",
                             stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        with process.stdout:
            try:
                process.stdin.write(PASS_PHRASE + "\n")
                process.stdin.close()
            except BrokenPipeError:  # it may have ended without asking for it
                pass
            for line in process.stdout:
                say(line.rstrip("\n"))
                if line.startswith(LAST_STEP):
                    self.running.append(announced())
        return process.wait()

    def show(self):
        self.have_printer()
        for step in (self.watch, lambda: self.run("usb", "ports"), self.set_up):
            status = step()
            say("")
            if status != 0:
                return status
        return 0


def main():
    lab("cold")
    with tempfile.TemporaryDirectory() as folder:
        os.environ.pop("DEVICEDISCOVER_VENDORS", None)
        os.environ.update(XDG_CONFIG_HOME=folder, XDG_STATE_HOME=folder)
        demo = Demo(folder)
        try:
            return demo.show()
        finally:
            demo.end()


if __name__ == "__main__":
    try:
        sys.exit(main())
    except KeyboardInterrupt:
        sys.exit(INTERRUPTED)

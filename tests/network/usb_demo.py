"""Shows how a printer that is plugged in gets onto a network: `devicediscover` sees it come, and puts
it on a Wi-Fi network over its cable.

Runs inside scripts/lab-network, on the browsing side. The environment names what office.py and
usb_bed.py need, and DEVICEDISCOVER_PROGRAM, whose vendor list is the one beside it.
"""

import os
import subprocess
import sys
import tempfile
import time

from lab import PATIENCE, Lines, lab
from office import PRINTER, announced, new_printer
from set_up_demo import INTERRUPTED, LAST_STEP, NETWORK, PASS_PHRASE, PROGRAM, say
from usb_bed import UsbBed

PLACE, SERIAL = "1-1", "RADIO1"
BRIDGE_PORT = "60000"
STARTED = "Start usb Monitor"


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

    def made(self, name):
        path = os.path.join(self.folder, name)
        os.mkdir(path)
        return path

    def begin(self, printer):
        self.running.append(printer)
        printer.await_line("ready")

    def bridged(self):
        """The printer as its bridge on this host has it."""
        self.begin(Lines(["unshare", "-u", PRINTER, self.made("bridged"), "127.0.0.1",
                          "--beside-bridge", "--port", BRIDGE_PORT, "--serial", SERIAL,
                          "--network", f"{NETWORK}={PASS_PHRASE}"]))

    def appear_on_network(self):
        """The same printer, now that it has joined."""
        self.begin(new_printer(self.made("joined"), NETWORK + "=", "--serial", SERIAL))
        self.running.append(announced())

    def await_watch(self):
        log = os.path.join(self.folder, "DeviceDiscover", "DeviceDiscover.log")
        deadline = time.monotonic() + PATIENCE
        while time.monotonic() < deadline:
            if os.path.exists(log):
                with open(log, encoding="utf-8") as file:
                    if STARTED in file.read():
                        break
            time.sleep(0.05)
        time.sleep(1)  # it looks what is there already before it watches

    def watch(self):
        process = self.start("usb", "watch", "--seconds", "5")
        self.await_watch()
        say(f"(a printer is plugged in at {PLACE})")
        self.usb.plug(PLACE, SERIAL)
        return process.wait()

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
                    self.appear_on_network()
        return process.wait()

    def show(self):
        self.bridged()
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

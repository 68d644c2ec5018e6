# SPDX-License-Identifier: Apache-2.0
"""Shows how a new printer gets onto a Wi-Fi network: a printer that speaks the standard opens a
network of its own, and `devicediscover` goes the whole way from there.

Runs inside scripts/lab-network, on the browsing side. The environment names what office.py needs,
and DEVICEDISCOVER_PROGRAM, whose vendor list is the one beside it.
"""

import contextlib
import os
import subprocess
import sys
import tempfile

from lab import lab
from office import BOTH, OFFICE, THERE, HostWifi, announced, move, new_printer

PROGRAM = os.environ["DEVICEDISCOVER_PROGRAM"]
OWN_NETWORK, NETWORK, PASS_PHRASE = "DIRECT-a1-Acme Laser", "Office", "correct-horse battery"
LAST_STEP = "[6/6]"
INTERRUPTED = 130


def say(text):
    print(text, flush=True)


def run(*arguments):
    say("$ " + " ".join(["devicediscover", *(f"'{one}'" if " " in one else one
                                             for one in arguments)]))
    ended = subprocess.run([PROGRAM, *arguments], check=False)
    say("")
    if ended.returncode != 0:
        sys.exit(ended.returncode)


def set_up(running):
    arguments = ["setup", "--network", NETWORK, "--pass-phrase-file", "-"]
    say("$ devicediscover " + " ".join(arguments))
    with subprocess.Popen([PROGRAM, *arguments], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                          text=True) as process:
        with contextlib.suppress(BrokenPipeError):  # it may have ended without asking for it
            process.stdin.write(PASS_PHRASE + "\n")
            process.stdin.flush()
        with contextlib.suppress(BrokenPipeError):
            process.stdin.close()
        for line in process.stdout:
            say(line.rstrip("\n"))
            if line.startswith(LAST_STEP):  # both are on the office's network now
                for side, host in BOTH:
                    move(side, host, THERE, OFFICE)
                running.append(announced())
    return process.returncode


def main():
    lab("cold")
    with tempfile.TemporaryDirectory() as folder:
        os.environ.pop("DEVICEDISCOVER_VENDORS", None)
        os.environ.update(XDG_CONFIG_HOME=folder, XDG_STATE_HOME=folder)
        printer = new_printer(folder, f"{NETWORK}={PASS_PHRASE}")
        running = [printer]
        try:
            printer.await_line("ready")
            wifi = HostWifi()
            running.append(wifi)
            wifi.have_network(OWN_NETWORK, 90)
            wifi.have_network(NETWORK, 60, PASS_PHRASE)
            wifi.have_network("Neighbours", 40, "somebody else's")
            run("wifi", "list")
            run("wifi", "join", OWN_NETWORK, "--open")
            return set_up(running)
        finally:
            for one in reversed(running):
                one.end()


if __name__ == "__main__":
    try:
        sys.exit(main())
    except KeyboardInterrupt:
        sys.exit(INTERRUPTED)

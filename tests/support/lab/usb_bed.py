# SPDX-License-Identifier: Apache-2.0
"""Simulated printers on USB. The environment names USB_BED, the program that has them, and
WITH_SIMULATED_USB, the launcher for programs that are to see them."""

import os
import subprocess

LAUNCHER = os.environ["WITH_SIMULATED_USB"].split(" ")


class UsbBed:
    def __init__(self):
        self.process = subprocess.Popen([*LAUNCHER, os.environ["USB_BED"]], stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE, text=True)
        self.folder = self.process.stdout.readline().strip()

    def _do(self, *words):
        self.process.stdin.write(" ".join(words) + "\n")
        self.process.stdin.flush()
        assert self.process.stdout.readline() == "done\n", f"the test bed failed: {words}"

    def plug(self, place, serial, *more):
        """`more`: vendor's, product's, and interface's class, in hexadecimal digits; "silent"."""
        self._do("plug", place, serial, *more)

    def unplug(self, place):
        self._do("unplug", place)

    def hide(self):
        """From now on the system shows no USB at all."""
        self._do("hide")

    @staticmethod
    def seen_by(command):
        """That command, with the devices in its sight."""
        return [*LAUNCHER, *command]

    def environment(self):
        return {"UMOCKDEV_DIR": self.folder}

    def end(self):
        self.process.stdin.close()
        self.process.stdout.close()
        self.process.wait()

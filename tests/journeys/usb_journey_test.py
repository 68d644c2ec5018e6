# SPDX-License-Identifier: Apache-2.0
"""A printer that is plugged in, as a person goes about it: the application with the list and the
modules beside it, the system's own device libraries over simulated devices, and a printer that
speaks the standard behind a bridge on this host.

Runs inside scripts/lab-network, on the browsing side. The environment names what journeys.py
and usb_bed.py need.
"""

import json
import os
import signal
import subprocess
import time
import unittest

from journeys import JourneyTest
from lab import PATIENCE, Lines
from office import Bridge
from set_ups import NAME, PASS_PHRASE, SERIAL
from usb_bed import UsbBed

MODEL = "Acme Radio Laser"
WAIT = 1.0  # from a printer's arrival until it is asked who it is
DISK = ("1209", "0002", "8")
PRINTER_CLASS = ("1209", "0001", "7")
OTHER_MODEL = ("1209", "00aB")


def described(serial, place):
    return {"serialNumber": serial, "makeAndModel": MODEL, "place": place, "vendor": "driverless"}


class UsbJourney(JourneyTest):
    def setUp(self):
        super().setUp()
        self.usb = UsbBed()
        self.running.append(self.usb)

    @staticmethod
    def command(*arguments):
        return UsbBed.seen_by(JourneyTest.command(*arguments))

    def environment(self, **more):
        return super().environment(**self.usb.environment(), **more)

    def watch(self, **options):
        watch = Lines(self.command("usb", "watch", "--json"), self.environment(), **options)
        self.running.append(watch)
        return watch

    def assert_arrival(self, line, serial, place):
        self.assertIsNotNone(line, "no printer was reported")
        arrival = json.loads(line)
        self.assertRegex(arrival.pop("time"), r"^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ$")
        self.assertEqual(arrival, described(serial, place))

    def plug_until_seen(self, watch, serial, place):
        """The watch may have just begun, and does not report what was there before."""
        deadline = time.monotonic() + PATIENCE
        while time.monotonic() < deadline:
            plugged = time.monotonic()
            self.usb.plug(place, serial)
            line = watch.next(4 * WAIT)
            if line:
                self.assertGreaterEqual(time.monotonic() - plugged, WAIT)
                return line
            self.usb.unplug(place)
            while watch.next(2 * WAIT):  # one that came late
                pass
        return None

    def on_usb(self):
        """The printer, which its bridge makes reachable."""
        printer = self.printer("--serial", SERIAL)
        self.running.append(Bridge())
        return printer

    def test_one_that_is_plugged_in_is_there_a_second_later(self):
        watch = self.watch()
        self.assert_arrival(self.plug_until_seen(watch, "A", "1-1"), "A", "usb:1-1")

        self.usb.plug("1-3", "DISK", *DISK)
        self.usb.unplug("1-1")
        self.assertIsNone(watch.next(2 * WAIT))

        plugged = time.monotonic()
        self.usb.plug("1-1", "A")
        self.assert_arrival(watch.next(), "A", "usb:1-1")
        self.assertGreaterEqual(time.monotonic() - plugged, WAIT)

        # What arrives is a model, and each printer of it is reported, once.
        self.usb.plug("1-2", "B")
        self.assert_arrival(watch.next(), "A", "usb:1-1")
        self.assert_arrival(watch.next(), "B", "usb:1-2")
        self.assertIsNone(watch.next(2 * WAIT))

        watch.process.send_signal(signal.SIGINT)
        self.assertEqual(watch.process.wait(PATIENCE), 0)

    def test_a_model_that_is_plugged_in_after_another_is_shown(self):
        errors = os.path.join(self.state, "errors")
        with open(errors, "w", encoding="utf-8") as file:
            watch = self.watch(stderr=file)
            self.assert_arrival(self.plug_until_seen(watch, "A", "1-1"), "A", "usb:1-1")
            self.usb.plug("2-4", "B", *OTHER_MODEL)
            self.assert_arrival(watch.next(), "B", "usb:2-4")
            watch.process.send_signal(signal.SIGINT)
            self.assertEqual(watch.process.wait(PATIENCE), 0)
        # The first may have come before the watch.
        with open(errors, encoding="utf-8") as file:
            self.assertRegex(file.read(), r"\A(devicediscover: 1 printer is plugged in already.*\n)?\Z")

    def test_one_that_goes_and_comes_in_its_first_second_is_shown(self):
        self.usb.plug("2-4", "B", *OTHER_MODEL)
        watch = self.watch(stderr=subprocess.PIPE)
        # It is told when the watch has started.
        self.assertIn(b"1 printer is plugged in already", watch.process.stderr.readline())
        began = time.monotonic()
        for _ in range(5):
            self.usb.plug("1-1", "A")
            time.sleep(0.05)
            self.usb.unplug("1-1")
            time.sleep(0.05)
        if time.monotonic() - began < WAIT:
            self.assertIsNone(watch.next(1.5 * WAIT))
        while watch.next(1.5 * WAIT):  # a slow computer: it was asked while it was there
            pass
        self.usb.plug("1-1", "A")
        self.assert_arrival(watch.next(), "A", "usb:1-1")
        watch.process.send_signal(signal.SIGINT)
        self.assertEqual(watch.process.wait(PATIENCE), 0)
        with watch.process.stderr as errors:
            self.assertEqual(errors.read(), b"")

    def test_one_that_cannot_be_asked_is_told_once(self):
        self.usb.plug("1-1", "A", *PRINTER_CLASS, "silent")
        listed = self.devicediscover("usb", "ports")
        self.assertEqual(listed.status, 1, str(listed))
        self.assertEqual(listed.errors.count("the printer at usb:1-1 cannot be asked"), 1,
                         listed.errors)

    def test_a_system_without_usb_is_not_taken_for_one_without_printers(self):
        self.usb.hide()
        said = ("it is not known what is plugged in: the devices cannot be listed: there is no "
                "/sys/bus/usb, as in a container, or where the kernel has no USB.")
        for command in ("ports", "watch"):
            ended = self.devicediscover("usb", command, "--json")
            self.assertEqual(ended.status, 3, str(ended))
            self.assertEqual(ended.objects(), [{"problem": said}])
            self.assertIn(said, ended.errors)

    def test_it_ends_while_a_printer_is_being_asked(self):
        watch = self.watch()
        self.assert_arrival(self.plug_until_seen(watch, "A", "1-1"), "A", "usb:1-1")
        self.usb.unplug("1-1")
        self.usb.plug("1-2", "B", *PRINTER_CLASS, "silent")
        deadline = time.monotonic() + PATIENCE
        while self.log().count("STEP4(") < 2 and time.monotonic() < deadline:
            time.sleep(0.02)
        watch.process.send_signal(signal.SIGINT)
        self.assertEqual(watch.process.wait(PATIENCE), 0)
        self.assertEqual((self.log().count("STEP4("), self.log().count("STEP6")), (2, 1))

    def test_all_that_are_plugged_in_are_listed(self):
        self.usb.plug("1-1", "A")
        self.usb.plug("2-4", "B", *OTHER_MODEL)
        self.usb.plug("1-3", "DISK", *DISK)
        listed = self.devicediscover("usb", "ports", "--json")
        self.assertEqual((listed.status, listed.errors), (0, ""), str(listed))
        self.assertEqual(sorted(listed.objects(), key=lambda one: one["serialNumber"]),
                         [described("A", "usb:1-1"), described("B", "usb:2-4")])

    def test_over_its_cable_it_gets_onto_the_network_and_is_found_there(self):
        bridged = self.on_usb()
        self.usb.plug("1-1", SERIAL)
        networks = self.devicediscover("usb", "networks", SERIAL, "--json")
        self.assertEqual(networks.status, 0, str(networks))
        self.assertIn(NAME, [one["network"] for one in networks.objects()])

        ended = self.devicediscover(
            "setup", "--usb", "--network", NAME, "--pass-phrase-file", "-", secret=PASS_PHRASE,
            on_line=lambda line, _: line.startswith("[6/6]") and self.announce())
        self.assertEqual((ended.status, ended.errors), (0, ""), str(ended))
        self.assertEqual(bridged.given(), [(NAME, PASS_PHRASE)])
        self.assertIn("This computer stays on the network it is on", ended.output)
        self.assertIn(f"{MODEL}, serial number {SERIAL}, is on {NAME} at ",
                      ended.output.splitlines()[-1])
        self.assert_masked_log()

    def test_a_wrong_pass_phrase_is_told(self):
        bridged = self.on_usb()
        self.usb.plug("1-1", SERIAL)
        ended = self.devicediscover("usb", "configure", "--network", NAME, "--pass-phrase-file",
                                    "-", secret="wrong-horse battery")
        self.assertEqual((ended.status, ended.output), (1, ""), str(ended))
        self.assertIn(f"driverless: {MODEL} on USB was refused with that pass phrase by the "
                      f"network {NAME}\n", ended.errors)
        self.assertEqual(bridged.given(), [(NAME, "wrong-horse battery")])
        self.assert_masked_log()


if __name__ == "__main__":
    unittest.main(verbosity=2)

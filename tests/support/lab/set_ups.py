# SPDX-License-Identifier: Apache-2.0
"""Set-ups on the network that scripts/lab-network made: a probe that sets up, this host's Wi-Fi as a
simulated NetworkManager tells of it, and a test case with printers of its own.

The environment names SET_UP_PROBE, SET_UP_MODULE, WIFI_PRINTER, and what scans.py needs.
"""

import json
import os
import subprocess
import sys
import time
import unittest

from lab import LAB, PATIENCE, Lines, network_manager_property
from scans import SLACK, TESTS, Probe

PRINTER = os.environ["WIFI_PRINTER"]
STATE = os.environ["LAB_NETWORK_STATE"]
FAKE_WIFI_PRINTER = os.path.join(TESTS, "network", "fake_wifi_printer.py")

OK = 0
NOT_PRINTERS_NETWORK, NO_WIFI_ANSWER = 7, 8
REFUSED, NOT_VISIBLE, CANNOT_JOIN, TIMED_OUT, NOT_ALLOWED, NOT_REACHED, NOT_VALID = range(10, 17)
NOT_ON_NETWORK = 17
NOT_CONFIRMED = 26
STILL_REPORTING = 1

OWN_NETWORK = "DIRECT-a1-Acme Laser"
PASS_PHRASE = "correct-horse battery"
NAME, SERIAL = "Café Ω", "RADIO1"

NM = "/org/freedesktop/NetworkManager"
ADAPTER = NM + "/Devices/wifi0"
WPA = 0x100


class SetUpProbe(Probe):
    """A running set_up_probe."""

    COMMAND = [os.environ["SET_UP_PROBE"]]
    MODULE_ARGUMENTS = ["--module", os.environ["SET_UP_MODULE"]]
    EXIT = json.dumps({"do": "exit"})

    def command(self, what, **values):
        self.tell(json.dumps({"do": what, **values}))

    def asked(self, what, **values):
        """The event that answers a command."""
        self.command(what, **values)
        return self.await_event(what, 2 * PATIENCE)

    def result(self, what, **values):
        return self.asked(what, **values)["result"]

    def configure(self, name, pass_phrase):
        self.command("configure", name=name.encode().hex(), passPhrase=pass_phrase.encode().hex())

    def configured(self, name, pass_phrase):
        self.configure(name, pass_phrase)
        event = self.await_event("configure", 2 * PATIENCE)
        assert event["untouched"], "the caller's record stays as it is"
        return event

    def end_of_scan(self):
        """The result of a scan that was stopped; its end may come before the stop's."""
        ended = [event for event in self.seen if event["event"] == "ended"]
        return (ended[0] if ended else self.await_event("ended", SLACK))["result"]


class HostWifi:
    """A simulated NetworkManager on the browsing side's bus, with one adapter."""

    def __init__(self, adapter="lab0"):
        self.process = subprocess.Popen(
            ["/usr/bin/python3", "-m", "dbusmock", "--system", "--template", "networkmanager"],
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        deadline = time.monotonic() + PATIENCE
        while not self._answers():
            assert time.monotonic() < deadline, "the simulated NetworkManager does not answer"
            time.sleep(0.02)
        self.points = 0
        self.paths = {}
        self._tell("AddWiFiDevice", "string:wifi0", "string:" + adapter, "int32:100")

    @staticmethod
    def _answers():
        return subprocess.run(
            ["dbus-send", "--system", "--print-reply", "--dest=org.freedesktop.NetworkManager", NM,
             "org.freedesktop.NetworkManager.GetDevices"], check=False, capture_output=True,
            timeout=PATIENCE).returncode == 0

    @staticmethod
    def _tell(method, *arguments):
        subprocess.run(
            ["dbus-send", "--system", "--print-reply", "--dest=org.freedesktop.NetworkManager", NM,
             "org.freedesktop.DBus.Mock." + method, *arguments], check=True, capture_output=True,
            timeout=PATIENCE)

    def have_network(self, name, signal, security=WPA):
        self.points += 1
        point = f"ap{self.points}"
        self.paths[name] = f"{NM}/AccessPoint/{point}"
        self._tell("AddAccessPoint", "string:" + ADAPTER, "string:" + point, "string:" + name,
                   f"string:00:11:22:33:44:{self.points:02X}", "uint32:2", "uint32:2437",
                   "uint32:54000", f"byte:{signal}", f"uint32:{security}")

    def set_signal(self, name, signal):
        self._tell("SetProperty", "string:" + self.paths[name],
                   "string:org.freedesktop.NetworkManager.AccessPoint", "string:Strength",
                   f"variant:byte:{signal}")

    def join(self, name):
        point = os.path.basename(self.paths[name])
        profile = f"{NM}/Settings/{point}"
        self._tell("AddWiFiConnection", "string:" + ADAPTER, "string:" + point, "string:" + name,
                   "string:")
        self._tell("AddActiveConnection", "array:string:" + ADAPTER, "string:" + profile,
                   "string:" + self.paths[name], "string:" + point, "uint32:2")

    def rejoin(self, name):
        point = os.path.basename(self.paths[name])
        self._tell("SetDeviceActive", "string:" + ADAPTER,
                   f"string:{NM}/ActiveConnection/{point}")

    def leave(self):
        self._tell("SetDeviceDisconnected", "string:" + ADAPTER)

    def forget(self, name):
        """The network is gone, and the host is in it no longer."""
        self.leave()
        self._tell("RemoveAccessPoint", "string:" + ADAPTER, "string:" + self.paths[name])

    def joined(self):
        """The network of the profile that the adapter uses."""
        manager = "org.freedesktop.NetworkManager"
        active = network_manager_property(ADAPTER, manager + ".Device", "ActiveConnection")
        profile = network_manager_property(active, manager + ".Connection.Active", "Connection")
        point = os.path.basename(profile)
        return next((name for name, path in self.paths.items() if path.endswith("/" + point)),
                    profile)

    def switch_off(self):
        self.leave()
        self._tell("SetProperty", "string:" + NM, "string:org.freedesktop.NetworkManager",
                   "string:WirelessEnabled", "variant:boolean:false")

    def end(self):
        self.process.kill()
        self.process.wait()


class SetUpTest(unittest.TestCase):
    def setUp(self):
        self.running = []
        self.wifi = None
        self.addCleanup(self.end_all)

    def end_all(self):
        for one in reversed(self.running):
            one.end()

    def have_wifi(self, joined=OWN_NETWORK):
        self.wifi = HostWifi()
        self.running.append(self.wifi)
        if joined:
            self.wifi.have_network(joined, 90)
            self.wifi.join(joined)

    def printer(self, *arguments):
        folder = os.path.join(STATE, "wifi-printer")
        os.makedirs(folder, exist_ok=True)
        printer = Lines([LAB, "run-beside-printers", "unshare", "-u", PRINTER, folder, "10.99.0.1",
                         "--network", f"{NAME}={PASS_PHRASE}", "--network", "Open=", *arguments])
        self.running.append(printer)
        printer.await_line("ready")
        return printer

    def fake(self, *arguments):
        printer = Lines([LAB, "run-beside-printers", sys.executable, FAKE_WIFI_PRINTER, *arguments])
        self.running.append(printer)
        printer.await_line("ready")
        return printer

    def probe(self, environment=None, **options):
        # What is said to be silent has been so for long.
        probe = SetUpProbe(environment={"DRIVERLESS_FIRST_SECONDS": "2", **(environment or {})},
                           **options)
        self.addCleanup(self.end_probe, probe)
        probe.await_event("ready")
        return probe

    def end_probe(self, probe):
        self.assertEqual(probe.end(), 0, probe.diagnostics())


def announce(test, name="Radio", port=631):
    announcement = subprocess.Popen(
        [LAB, "run-beside-printers", "setpriv", "--pdeathsig", "KILL", "avahi-publish", "-s",
         name, "_ipp._tcp", str(port), "rp=ipp/print"], stdout=subprocess.PIPE,
        stderr=subprocess.STDOUT, text=True)
    test.addCleanup(announcement.stdout.close)
    test.addCleanup(announcement.wait)
    test.addCleanup(announcement.kill)
    for line in announcement.stdout:
        if "Established" in line:
            return
    test.fail("it could not be announced")

# SPDX-License-Identifier: Apache-2.0
"""What the built modules need of others, and what they give.

usage: module_test.py DRIVERLESS_SCAN DRIVERLESS
"""

import re
import subprocess
import sys
import unittest

SCAN, SET_UP = sys.argv[1:3]

# What a module stands on; the sanitizers' libraries where it is built with them.
OF_THE_SYSTEM = re.compile(r"lib(avahi-client|avahi-common|dbus-1|gnutls|usb-1\.0|stdc\+\+|gcc_s|m|c|"
                           r"pthread|dl|asan|ubsan|tsan)\.so\.\d+|ld-linux.*\.so\.\d+")
# Names of the broker and of libraries of the application that no module uses.
OF_OTHERS = re.compile(r"PrinterDeviceDiscoverSdk|KzLogger|VendorDllMgr|LogHelper|PrinterUtil")
SCAN_ENTRY_POINTS = {
    "StartDeviceScan", "StopDeviceScan", "GetDeviceConnectState", "BeforeConnectEventNotify",
    "ConnectSuccessNotifyEvent", "ConnectFailNotifyEvent"}
SET_UP_ENTRY_POINTS = {
    "StartAPWifiScan", "StopAPWifiScan", "PrinterAPNetConfigEvent", "IsLocalAreaNetworkOK",
    "GetDeviceInfoByNet", "IsConnectCurrentWifiAP",
    "GetDeviceInfoByUsb", "USBWifiScan", "PrinterUSBNetConfigEvent"}


def output(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True, timeout=60).stdout


def needed(module):
    """The libraries that a module needs beside those of the system."""
    libraries = re.findall(r"\(NEEDED\).*\[(.*)\]", output("readelf", "-dW", module))
    assert libraries, f"{module} names no library that it needs"
    return {library for library in libraries if not OF_THE_SYSTEM.fullmatch(library)}


def names(module, which):
    """The module's dynamic symbols, without their versions."""
    lines = output("nm", "-D", which, module).splitlines()
    return {line.split()[-1].partition("@")[0] for line in lines}


class Modules(unittest.TestCase):
    def test_the_scan_needs_no_library_of_the_application(self):
        self.assertEqual(needed(SCAN), set())

    def test_setting_up_needs_the_hosts_wifi_and_nothing_of_the_broker(self):
        self.assertEqual(needed(SET_UP), {"libPrinterDiscoverAPI.so"})

    def test_each_gives_its_entry_points_and_nothing_else(self):
        self.assertEqual(names(SCAN, "--defined-only"), SCAN_ENTRY_POINTS)
        self.assertEqual(names(SET_UP, "--defined-only"), SET_UP_ENTRY_POINTS)

    def test_neither_uses_anything_of_the_broker(self):
        for module in (SCAN, SET_UP):
            left = names(module, "--undefined-only")
            self.assertEqual({name for name in left if OF_OTHERS.search(name)}, set())

    def test_their_code_stays_while_their_threads_run(self):
        for module in (SCAN, SET_UP):
            self.assertRegex(output("readelf", "-dW", module), r"\(FLAGS_1\).*\bNODELETE\b")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)

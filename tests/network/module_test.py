"""What the built modules need of others, and what they give.

usage: module_test.py DRIVERLESS_SCAN DRIVERLESS
"""

import re
import subprocess
import sys
import unittest

SCAN, SET_UP = sys.argv[1:3]

OF_THE_PROJECT = {"DeviceDiscover", "LogHelper", "PrinterAdapter", "PrinterDiscoverAPI",
                  "PrinterUtil"}
SCAN_ENTRY_POINTS = {
    "StartDeviceScan", "StopDeviceScan", "GetDeviceConnectState", "BeforeConnectEventNotify",
    "ConnectSuccessNotifyEvent", "ConnectFailNotifyEvent"}
SET_UP_ENTRY_POINTS = {
    "StartAPWifiScan", "StopAPWifiScan", "PrinterAPNetConfigEvent", "IsLocalAreaNetworkOK",
    "GetDeviceInfoByNet", "IsConnectCurrentWifiAP"}


def output(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True, timeout=60).stdout


def needed(module):
    """The project's own libraries among those that a module needs."""
    libraries = re.findall(r"\(NEEDED\).*\[lib(\w+)\.so", output("readelf", "-dW", module))
    return OF_THE_PROJECT & set(libraries)


def exported(module):
    return {line.split()[-1] for line in output("nm", "-D", "--defined-only", module).splitlines()}


class Modules(unittest.TestCase):
    def test_the_scan_needs_no_library_of_the_application(self):
        self.assertEqual(needed(SCAN), set())

    def test_setting_up_needs_the_hosts_wifi_and_nothing_of_the_broker(self):
        self.assertEqual(needed(SET_UP), {"PrinterDiscoverAPI"})

    def test_each_gives_its_entry_points_and_nothing_else(self):
        self.assertEqual(exported(SCAN), SCAN_ENTRY_POINTS)
        self.assertEqual(exported(SET_UP), SET_UP_ENTRY_POINTS)

    def test_their_code_stays_while_their_threads_run(self):
        for module in (SCAN, SET_UP):
            self.assertRegex(output("readelf", "-dW", module), r"\(FLAGS_1\).*\bNODELETE\b")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)

# SPDX-License-Identifier: Apache-2.0
"""`devicediscover vendors`."""

import json
import os
import shutil
import subprocess
import unittest

import app_test
from app_test import (COULD_NOT_RUN, FOUND, MODULES, NONE_FOUND, ON_WINDOWS, AppTest, json_lines,
                      system_path)

SCAN = ["StartDeviceScan", "StopDeviceScan", "GetDeviceConnectState", "BeforeConnectEventNotify",
        "ConnectSuccessNotifyEvent", "ConnectFailNotifyEvent"]
CONFIGURATION = ["StartAPWifiScan", "StopAPWifiScan", "PrinterAPNetConfigEvent",
                 "IsLocalAreaNetworkOK", "GetDeviceInfoByNet", "IsConnectCurrentWifiAP",
                 "GetDeviceInfoByUsb", "USBWifiScan", "PrinterUSBNetConfigEvent"]
SUFFIX = ".dll" if ON_WINDOWS else ".so"


def exports_of(module):
    """What another tool finds in the module."""
    file = os.path.join(MODULES, module + SUFFIX)
    tool = ["x86_64-w64-mingw32-objdump", "-p"] if ON_WINDOWS else ["nm", "-D", "--defined-only"]
    return subprocess.run([*tool, file], check=True, capture_output=True, text=True).stdout.split()


class Vendors(AppTest):
    def entry_points(self, module):
        self.list_file = self.vendor_list([("scripted", module)])
        vendor, = json_lines(self.run_app("vendors", "--json").output)
        return [(name, state) for part in vendor["modules"]
                for name, state in part["entryPoints"].items()]

    def test_each_entry_point_of_each_module_is_shown(self):
        result = self.run_app("vendors")
        self.assert_status(result, FOUND)
        self.assert_mentions(result.output, system_path(self.list_file), "scripted_all" + SUFFIX)
        exports = exports_of("scripted_all")
        for name in SCAN + CONFIGURATION:
            state = "bound" if name in exports else "missing"
            self.assertRegex(result.output, rf"(?m)^ +{name} +{state}$")
        self.assertRegex(result.output, r"(?m)^ +StartDeviceScan +bound$")
        self.assertEqual(result.errors, "")

    @unittest.skipIf(ON_WINDOWS or os.geteuid() != 0, "only root can become another user")
    def test_the_environment_names_no_list_for_a_program_with_more_rights_than_its_user(self):
        self.environment["DEVICEDISCOVER_VENDORS"] = self.list_file
        named = self.run_app("vendors", "--json", listed=False)
        self.assertEqual(json_lines(named.output)[0]["vendorList"], self.list_file)
        command = ["setpriv", "--ruid", "65534", *self.command("vendors", "--json", listed=False)]
        result = subprocess.run(command, env=self.environment, capture_output=True, text=True,
                                timeout=app_test.PATIENCE)
        self.assert_status(result, FOUND)
        self.assertEqual(
            {vendor["vendorList"] for vendor in json_lines(result.stdout)},
            {os.path.join(os.path.dirname(app_test.PROGRAM), "DeviceDiscover", "vendors.json")})
        self.assertIn("the environment variable DEVICEDISCOVER_VENDORS is ignored: this program has "
                      "more rights than the user who started it", result.stderr)

    def test_json_is_one_object_a_vendor(self):
        self.list_file = self.vendor_list([("a", "scripted_all"), ("b", "scripted_all_b")])
        vendors = json_lines(self.run_app("vendors", "--json").output)
        self.assertEqual([vendor["productId"] for vendor in vendors], ["a", "b"])
        for vendor in vendors:
            self.assertEqual(vendor["vendorList"], system_path(self.list_file))
            self.assertEqual(vendor["moduleFolder"], system_path(MODULES))
        scan, configuration = vendors[1]["modules"]
        self.assertEqual((scan["name"], scan["loaded"], scan["problem"]),
                         ("scripted_all_b", True, None))
        self.assertEqual(list(scan["entryPoints"]), SCAN)
        self.assertEqual(list(configuration["entryPoints"]), CONFIGURATION)

    def test_a_missing_entry_point_is_the_only_one_missing(self):
        for missing in SCAN:
            with self.subTest(missing):
                states = dict(self.entry_points("scripted_without_" + missing))
                self.assertEqual([name for name in SCAN if states[name] == "missing"], [missing])

    def test_a_symbol_of_a_dependency_is_missing(self):
        states = dict(self.entry_points("scripted_dependent"))
        self.assertEqual((states["StartDeviceScan"], states["StopDeviceScan"]),
                         ("missing", "bound"))

    def test_a_module_without_entry_points_misses_all(self):
        states = self.entry_points("scripted_none")
        self.assertEqual({state for _, state in states}, {"missing"})

    def test_the_two_modules_of_a_vendor_are_told_apart(self):
        self.list_file = self.vendor_list([{"productId": "x", "scanModuleName": "scripted_none",
                                            "vendorName": "scripted_all"}])
        vendor, = json_lines(self.run_app("vendors", "--json").output)
        scan, configuration = vendor["modules"]
        self.assertEqual(set(scan["entryPoints"].values()), {"missing"})
        self.assertEqual(configuration["name"], "scripted_all")
        exports = exports_of("scripted_all")
        self.assertEqual(configuration["entryPoints"],
                         {name: "bound" if name in exports else "missing"
                          for name in CONFIGURATION})

    def test_a_vendor_may_have_one_module_only(self):
        self.list_file = self.vendor_list([{"productId": "x", "scanModuleName": "scripted_all"}])
        result = self.run_app("vendors")
        self.assert_status(result, FOUND)
        self.assert_mentions(result.output, "the vendor list names none")

    def test_a_module_that_cannot_be_loaded_says_why_and_the_others_are_shown(self):
        os.mkdir(self.path("modules"))
        self.write("modules/text" + SUFFIX, "this is no library\n")
        shutil.copy(os.path.join(MODULES, "scripted_all" + SUFFIX), self.path("modules"))
        self.list_file = self.write("vendors.json", json.dumps({"vendors": [
            {"productId": "broken", "scanModuleName": "text", "vendorName": "absent"},
            {"productId": "good", "scanModuleName": "scripted_all",
             "vendorName": "scripted_all"}]}))
        result = self.run_app("vendors", "--json")
        self.assert_status(result, FOUND)
        broken, sound = json_lines(result.output)
        for part in broken["modules"]:
            self.assertFalse(part["loaded"])
            self.assertEqual(part["entryPoints"], {})
            self.assertTrue(part["problem"])
        self.assertNotEqual(broken["modules"][0]["problem"], broken["modules"][1]["problem"])
        self.assertTrue(sound["modules"][0]["loaded"])
        plain = self.run_app("vendors")
        self.assert_mentions(plain.output, "not loaded: ", "StartDeviceScan")

    def test_a_vendor_s_wrong_text_is_named_and_costs_nothing_else(self):
        self.list_file = self.vendor_list([dict(productId="x", scanModuleName="scripted_all",
                                                results={"many": "text"})])
        result = self.run_app("vendors")
        self.assert_status(result, FOUND)
        self.assert_mentions(result.errors, 'vendors[0]: "results": "many" ', "left out")

    def test_no_module_at_all_is_status_3_with_the_reasons(self):
        self.list_file = self.vendor_list([("x", "no_such_module")])
        for arguments, reason in (([], "not loaded: "), (["--json"], '"loaded":false')):
            result = self.run_app("vendors", *arguments)
            self.assert_status(result, COULD_NOT_RUN)
            self.assert_mentions(result.output, "no_such_module", reason)
            self.assert_mentions(result.errors, "no vendor's module can be loaded",
                                 system_path(MODULES))

    def test_a_module_that_serves_nothing_is_status_1_and_names_near_misses(self):
        self.list_file = self.vendor_list([
            ("good", "scripted_all"),
            {"productId": "wrong", "scanModuleName": "scripted_misnamed"}])
        plain = self.run_app("vendors")
        self.assert_status(plain, NONE_FOUND)
        self.assert_mentions(plain.errors, "vendor wrong: module ", "scripted_misnamed" + SUFFIX,
                             "exports none of the entry points for scan",
                             "StartDeviceScan: the module exports _Z15StartDeviceScanPv",
                             "StopDeviceScan: the module exports _ZN4Acme14StopDeviceScanEv",
                             'extern "C"',
                             "GetDeviceConnectState: the module exports getDeviceConnectState")
        self.assertNotIn("vendor good", plain.errors)
        self.assert_mentions(plain.output, "hint: StartDeviceScan: the module exports ")
        json = self.run_app("vendors", "--json")
        self.assert_status(json, NONE_FOUND)
        good, wrong = json_lines(json.output)
        self.assertEqual([part["hints"] for part in good["modules"]], [[], []])
        self.assertEqual([hint.split(":")[0] for hint in wrong["modules"][0]["hints"]],
                         ["StartDeviceScan", "StopDeviceScan", "GetDeviceConnectState"])

    def test_a_module_without_anything_like_an_entry_point_is_told_too(self):
        self.list_file = self.vendor_list([("x", "scripted_none")])
        result = self.run_app("vendors")
        self.assert_status(result, NONE_FOUND)
        self.assert_mentions(result.errors, "vendor x: module ", "exports none of the entry points")
        self.assertNotIn("hint:", result.output)

    def test_a_module_that_serves_one_of_its_two_uses_serves(self):
        self.list_file = self.vendor_list([("x", "scripted_dependent")])
        self.assert_status(self.run_app("vendors"), FOUND)

    def test_a_module_name_with_a_path_is_refused(self):
        self.list_file = self.vendor_list([("x", "../scripted_all")])
        result = self.run_app("vendors")
        self.assert_status(result, COULD_NOT_RUN)
        self.assert_mentions(result.output + result.errors, "../scripted_all")

    def test_a_missing_or_malformed_list_is_named(self):
        broken = self.write("broken.json", "{")
        for file in (self.path("nowhere.json"), broken):
            with self.subTest(file):
                self.list_file = file
                result = self.run_app("vendors", "--json")
                self.assert_status(result, COULD_NOT_RUN)
                problem, = json_lines(result.output)
                self.assertEqual(list(problem), ["problem"])
                for text in (problem["problem"], result.errors):
                    self.assert_mentions(text, system_path(file), "--vendors")

    def test_the_environment_names_a_list(self):
        self.environment["DEVICEDISCOVER_VENDORS"] = system_path(self.list_file)
        result = self.run_app("vendors", listed=False)
        self.assert_status(result, FOUND)
        self.assert_mentions(result.output, system_path(self.list_file))


if __name__ == "__main__":
    app_test.main()

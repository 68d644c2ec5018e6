# SPDX-License-Identifier: Apache-2.0
"""What the benchmarks' report makes of complete, bad and missing measurements."""

import json
import os
import shutil
import subprocess
import tempfile
import unittest

REPORT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "bench", "report.py")
VENDORS = (1, 10, 100, 1000)

ALL_MET, SOME_MISSED, UNUSABLE = 0, 1, 3


class Report(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="report-")
        self.addCleanup(shutil.rmtree, self.folder)
        self.times = {
            "facade": {"Facade": 100, "FacadeByHand": 200, "FacadeFloor": 90},
            "log": {"Logged/process_time/real_time/threads:1": 140,
                    "Logged/process_time/real_time/threads:8": 200,
                    "PlainSpdlog/process_time/real_time": 100, "Discarded": 100, "Filtered": 105,
                    "SwitchedOff": 105, "FastDisk/iterations:1000/real_time": 100,
                    "SlowDisk/iterations:1000/real_time": 110},
            "relay": {"RelayedDevice/real_time/threads:1": 100,
                      "RelayedDevice/real_time/threads:2": 50,
                      "RelayedDeviceFloor/real_time/threads:1": 90},
            "binding": {f"{what}/{vendors}/real_time": 100
                        for what in ("Binding", "BindingByHand") for vendors in VENDORS},
            "access_point": {f"{what}{beside}": time
                             for what in ("LocalNetwork", "RelayedNetwork")
                             for beside, time in (("", 100), ("ByHand", 200), ("Floor", 90))},
            "ping": {"SilentAddress/real_time": 301.5, "Loopback/real_time": 0.05},
            **{f"choice_{vendors}": {"Choice": 100, "ChoiceByHand": 100}
               for vendors in (1, 10, 100)},
            **{f"usb_{ids}": {"Enumeration": 70, "EnumerationByHand": 100,
                              "UsbWifiScan": 60, "UsbWifiScanByHand": 100,
                              **{f"UsbPrinters/{printers}": 100 for printers in (10, 100, 1000)}}
               for ids in (1, 100, 10000)},
            "arrival": {"Arrival/iterations:1/real_time": 1001.0}}
        self.race = {tool: {"first": 1.0, "all": 1.0, "memory": 1024}
                     for tool in ("devicediscover", "avahi-browse", "ippfind", "cupsEnumDests")}
        self.race["ippfind"].update(first=10.0, all=10.0)
        self.attack = {scan: {"all": 1.0, "memory": 20 * 1024}
                       for scan in ("none", "40 that are silent", "180 of 300 hang",
                                    "900 without SRV", "1,100 without SRV",
                                    "200 new ones a second", "30 endless answers")}
        self.attack["thousand"] = {"devicediscover": 1.0, "avahi-browse": 2.1, "memory": 20 * 1024}

    def report(self):
        for program, times in self.times.items():
            self.write(program, {"benchmarks": [
                dict(run_name=name, aggregate_name=aggregate, cpu_time=time, real_time=time)
                for name, median in times.items()
                for aggregate, time in (("mean", 10 * median), ("median", median))]})
        for name, results in (("race", self.race), ("attack", self.attack)):
            if results is not None:
                self.write(name, results)
        return subprocess.run([REPORT, self.folder], capture_output=True, text=True, timeout=60)

    def write(self, name, content):
        with open(os.path.join(self.folder, name + ".json"), "w", encoding="utf-8") as file:
            json.dump(content, file)

    def expect_unusable(self, result, *words):
        self.assertEqual(result.returncode, UNUSABLE, result.stdout + result.stderr)
        self.assertEqual(result.stdout, "")
        self.assertEqual(len(result.stderr.splitlines()), 1, result.stderr)
        for word in words:
            self.assertIn(word, result.stderr)

    def test_targets_that_are_met_are_ok(self):
        result = self.report()
        self.assertEqual(result.returncode, ALL_MET, result.stderr)
        verdicts = [line.split()[-1] for line in result.stdout.split("\n\n")[1].splitlines()]
        self.assertEqual(verdicts, ["ok"] * 50)

    def test_a_missed_target_is_over(self):
        self.times["facade"]["Facade"] = 141
        result = self.report()
        self.assertEqual(result.returncode, SOME_MISSED)
        self.assertRegex(result.stdout, r"facade / by hand +0\.70 +at most 0\.70  over\n")
        self.assertRegex(result.stdout, r"facade / floor +1\.57 +at most 1\.60  ok\n")

    def test_a_ping_that_gives_up_early_or_late_is_over(self):
        for milliseconds, row in ((299, "at least 300.00"), (331, "at most 330.00")):
            self.times["ping"]["SilentAddress/real_time"] = milliseconds
            result = self.report()
            self.assertEqual(result.returncode, SOME_MISSED, result.stderr)
            self.assertRegex(result.stdout, rf"ping of a silent address, ms +{milliseconds}\.00 +{row}  over\n")

    def test_growth_is_that_of_one_printers_share(self):
        for usb in ("usb_1", "usb_100", "usb_10000"):
            self.times[usb].update({"UsbPrinters/10": 100, "UsbPrinters/1000": 12300})
        result = self.report()
        self.assertRegex(result.stdout, r"growth of each from 10 to 1000 +1\.23\n")

    def test_an_arrival_that_is_reported_early_or_late_is_over(self):
        for milliseconds, row in ((999, "at least 1000.00"), (1021, "at most 1020.00")):
            self.times["arrival"]["Arrival/iterations:1/real_time"] = milliseconds
            result = self.report()
            self.assertEqual(result.returncode, SOME_MISSED, result.stderr)
            self.assertRegex(result.stdout,
                             rf"USB: plugged in to reported, ms +{milliseconds}\.00 +{row}  over\n")

    def test_many_usb_identifiers_that_cost_more_are_over(self):
        self.times["usb_10000"]["Enumeration"] = 92
        result = self.report()
        self.assertEqual(result.returncode, SOME_MISSED, result.stderr)
        self.assertRegex(result.stdout, r"port of 10,000 identifiers / of one +1\.31 .* over\n")

    def test_a_missing_median_is_named(self):
        del self.times["binding"]["BindingByHand/100/real_time"]
        self.expect_unusable(self.report(), "the median of BindingByHand/100/real_time is missing")

    def test_a_median_that_is_no_time_is_named(self):
        self.times["facade"]["FacadeFloor"] = 0
        self.expect_unusable(self.report(), "the median of FacadeFloor: cpu_time is 0")

    def test_a_missing_file_is_named(self):
        del self.times["relay"]
        self.expect_unusable(self.report(), "relay.json")

    def test_a_tool_that_is_missing_from_the_scan_is_named(self):
        del self.race["ippfind"]
        self.expect_unusable(self.report(), "race.json", "'ippfind' is missing")

    def test_a_moment_that_was_not_measured_is_named(self):
        self.race["avahi-browse"]["all"] = None
        self.expect_unusable(self.report(), "race.json", "'all' of avahi-browse is None")

    def test_a_scan_that_an_attack_delays_is_over(self):
        self.attack["900 without SRV"]["all"] = 2.6
        result = self.report()
        self.assertEqual(result.returncode, SOME_MISSED, result.stderr)
        self.assertRegex(result.stdout, r"900 without SRV: s later than without +1\.60 .* over\n")

    def test_a_scan_that_takes_much_memory_is_over(self):
        self.attack["30 endless answers"]["memory"] = 65 * 1024
        result = self.report()
        self.assertEqual(result.returncode, SOME_MISSED, result.stderr)
        self.assertRegex(result.stdout, r"30 endless answers: MiB +65\.00 .* over\n")

    def test_an_attack_that_is_missing_is_named(self):
        del self.attack["900 without SRV"]
        self.expect_unusable(self.report(), "attack.json", "'900 without SRV' is missing")

    def test_attacks_that_were_left_out_are_named(self):
        self.attack = None
        result = self.report()
        self.assertEqual(result.returncode, ALL_MET, result.stderr)
        self.assertEqual(result.stdout.count("  left out\n"), 14)

    def test_targets_that_were_left_out_are_named(self):
        self.race = None
        result = self.report()
        self.assertEqual(result.returncode, ALL_MET, result.stderr)
        rows = [line for line in result.stdout.splitlines() if line.endswith("  left out")]
        self.assertEqual([row.split("  ")[0] for row in rows],
                         [f"scan to {what} / {rival}" for rival in ("avahi-browse", "ippfind")
                          for what in ("the first printer", "all 20 printers")])
        self.assertEqual(result.stdout.count("  ok\n"), 46)


if __name__ == "__main__":
    unittest.main()

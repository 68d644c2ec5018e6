# SPDX-License-Identifier: Apache-2.0
"""`devicediscover state SERIAL`."""

import time

import app_test
from app_test import COULD_NOT_RUN, FOUND, NONE_FOUND, AppTest, device, json_lines


class State(AppTest):
    def test_a_printer_that_is_ready(self):
        self.script("result GetDeviceConnectState 1", "until-stopped", device("SN0"),
                    device("SN1", model="Fake 7", address="192.0.2.7", port=9100))
        start = time.monotonic()
        result = self.run_app("state", "SN1", "--seconds", "50")
        self.assert_status(result, FOUND)
        self.assertLess(time.monotonic() - start, 40, "it does not wait longer than needed")
        self.assertEqual(result.output, "SN1: ready (state 1), Fake 7 at 192.0.2.7 port 9100, "
                                        "vendor scripted\n")
        self.assertEqual(self.calls_of("StopDeviceScan"), ["scripted_all"])

    def test_a_printer_that_is_not_ready(self):
        for state in (0, 5, -4):
            with self.subTest(state):
                self.script(f"result GetDeviceConnectState {state}", device("SN1"))
                result = self.run_app("state", "SN1")
                self.assert_status(result, FOUND)
                self.assert_mentions(result.output, f"SN1: not ready (state {state})")

    def test_why_a_printer_is_not_ready_is_its_vendor_s_word(self):
        self.list_file = self.vendor_list([dict(
            productId="scripted", scanModuleName="scripted_all",
            results={"GetDeviceConnectState": {"1": "all is well", "2": "it is out of paper"}})])
        for state, said in ((1, "ready (state 1), "), (2, "not ready (state 2: it is out of paper)"),
                            (3, "not ready (state 3)")):
            with self.subTest(state):
                self.script(f"result GetDeviceConnectState {state}", device("SN1"))
                self.assert_mentions(self.run_app("state", "SN1").output, "SN1: " + said)

    def test_the_vendor_is_asked_about_the_very_record_that_it_reported(self):
        self.script("result GetDeviceConnectState 1", device("SN1", resource="ipp/9", service=2))
        self.run_app("state", "SN1")
        line, = [line for line in self.read(self.record_file).splitlines()
                 if "GetDeviceConnectState" in line]
        record = bytes.fromhex(line.split(maxsplit=2)[2].replace(" ", ""))
        self.assertEqual(len(record), 228)
        self.assertEqual(record[0:8], b"\x77\x02\x02\x00SN1\x00")
        self.assertEqual(record[196:202], b"ipp/9\x00")

    def test_json(self):
        for state in (1, 0):
            self.script(f"result GetDeviceConnectState {state}", device("SN1"))
            result = self.run_app("state", "SN1", "--json")
            printer, = json_lines(result.output)
            self.assertEqual((printer["serialNumber"], printer["state"], printer["ready"]),
                             ("SN1", state, state == 1))

    def test_of_several_with_the_serial_number_none_is_picked(self):
        self.script("result GetDeviceConnectState 1", "interval 100",
                    device("SN1", address="192.0.2.7"), device("SN2", address="192.0.2.8"),
                    device("SN1", model="Fake 9", address="192.0.2.9", port=9100), "until-stopped")
        for arguments in ([], ["--json"]):
            result = self.run_app("state", "SN1", *arguments)
            self.assert_status(result, NONE_FOUND)
            self.assertEqual(result.output, "")
            self.assert_mentions(
                result.errors, "2 printers have the serial number 'SN1'",
                "Fake 1000 at 192.0.2.7 port 631, vendor scripted",
                "Fake 9 at 192.0.2.9 port 9100, vendor scripted", "--address 192.0.2.7")
        self.assertEqual(self.calls_of("GetDeviceConnectState"), [])

    def test_of_very_many_with_the_serial_number_the_first_are_named(self):
        self.script(*(device("SN1", address=f"192.0.2.{number}") for number in range(100)))
        result = self.run_app("state", "SN1")
        self.assert_status(result, NONE_FOUND)
        self.assert_mentions(result.errors, "100 printers have the serial number 'SN1'",
                             "at 192.0.2.19 port 631, vendor scripted\n  and 80 more\n")

    def test_the_address_tells_which_is_meant(self):
        self.script("result GetDeviceConnectState 1", "interval 100",
                    device("SN1", address="192.0.2.7"), device("SN2", address="192.0.2.9"),
                    device("SN1", model="Fake 9", address="192.0.2.9", port=9100), "until-stopped")
        result = self.run_app("state", "SN1", "--address", "192.0.2.9")
        self.assert_status(result, FOUND)
        self.assertEqual(result.output, "SN1: ready (state 1), Fake 9 at 192.0.2.9 port 9100, "
                                        "vendor scripted\n")
        result = self.run_app("state", "SN1", "--address", "192.0.2.8", "--seconds", "1")
        self.assert_status(result, NONE_FOUND)
        self.assert_mentions(result.errors, "'SN1' at 192.0.2.8", "3 others")

    def test_an_unknown_printer_is_status_1_after_the_time(self):
        self.script(device("SN1"), device("SN2"))
        start = time.monotonic()
        result = self.run_app("state", "SN3", "--seconds", "1")
        self.assert_status(result, NONE_FOUND)
        self.assertGreaterEqual(time.monotonic() - start, 1)
        self.assertEqual(result.output, "")
        self.assert_mentions(result.errors, "2 with another", "'SN3'", "devicediscover scan")
        self.assertEqual(self.calls_of("GetDeviceConnectState"), [])

    def test_a_serial_number_copied_from_the_table_is_found(self):
        self.script("result GetDeviceConnectState 1", device(r"SN\x1b1"))
        result = self.run_app("state", "SN\ufffd1")
        self.assert_status(result, FOUND)

    def test_a_vendor_that_cannot_tell(self):
        self.list_file = self.vendor_list([("scripted", "scripted_without_GetDeviceConnectState")])
        self.script(device("SN1"))
        result = self.run_app("state", "SN1")
        self.assert_status(result, COULD_NOT_RUN)
        self.assert_mentions(result.errors, "vendor scripted", "GetDeviceConnectState")

    def test_a_printer_of_no_listed_vendor(self):
        self.script(device("SN1", vendor="stranger"))
        result = self.run_app("state", "SN1")
        self.assert_status(result, COULD_NOT_RUN)
        self.assert_mentions(result.errors, "'stranger'", "productId")

    def test_a_vendor_may_answer_with_minus_one_itself(self):
        self.script("result GetDeviceConnectState -1", device("SN1"))
        result = self.run_app("state", "SN1")
        self.assert_status(result, FOUND)
        self.assert_mentions(result.output, "not ready (state -1)")

    def test_without_vendors_it_could_not_run(self):
        self.list_file = self.path("nowhere.json")
        result = self.run_app("state", "SN1")
        self.assert_status(result, COULD_NOT_RUN)


if __name__ == "__main__":
    app_test.main()

# SPDX-License-Identifier: Apache-2.0
"""`devicediscover usb`."""

import datetime
import json
import os
import re
import signal
import struct
import time
import unittest

import app_test
from app_test import COULD_NOT_RUN, FOUND, NONE_FOUND, ON_WINDOWS, USAGE, json_lines, system_path
from access_point_test import documented_results
from host_test import PASS_PHRASE, Terminal, reported
from usb_host_test import (OTHER_USB_ID, USB_ID, UsbTest, appear, change, installed, port, usb_device,
                           vendor)

OFFICE = ["usb", "configure", "SN1", "--network", "Office"]
REQUESTS = [signal.SIGINT] if ON_WINDOWS else [signal.SIGINT, signal.SIGTERM, signal.SIGHUP]


def device_record(serial, model="Fake 1000", place="usb:1-4"):
    return struct.pack("<HH64s32s64s32s32s", 0, 5, serial.encode(), b"scripted", model.encode(),
                       place.encode(), b"")


class UsbList(UsbTest):
    def test_each_printer_says_whether_it_is_on_the_network(self):
        self.host(installed("SN1", "Fake 1"), installed("SN2", "Fake 2"),
                  installed("SN3", "Fake 3", 2), installed("SN2", "Fake 2", 2),
                  installed("SN4", "Fake 4", 3))
        result = self.run_app("usb", "list")
        self.assert_status(result, FOUND)
        self.assertEqual(result.output, "SN1\tFake 1\tno\nSN2\tFake 2\tyes\n")
        self.assertEqual(result.errors, "")
        self.assertEqual(json_lines(self.run_app("usb", "list", "--json").output),
                         [{"serialNumber": "SN1", "model": "Fake 1", "onNetwork": False},
                          {"serialNumber": "SN2", "model": "Fake 2", "onNetwork": True}])

    def test_without_a_serial_number_nobody_can_tell(self):
        self.host(installed("", "Fake 1"), installed("s" * 64, "m" * 32), installed("", "x", 2))
        result = self.run_app("usb", "list")
        self.assertEqual(result.output, "-\tFake 1\t-\n-\t-\t-\n")
        first, _ = json_lines(self.run_app("usb", "list", "--json").output)
        self.assertEqual(first, {"serialNumber": "", "model": "Fake 1", "onNetwork": None})

    def test_a_terminal_shows_a_table(self):
        self.host(installed("SN1", "Fake 1"))
        terminal = Terminal(self, "usb", "list")
        terminal.expect(r"SERIAL NUMBER +MODEL +ON THE NETWORK\n")
        terminal.expect(r"SN1 +Fake 1 +no *\n")
        self.assertEqual(terminal.finish(), FOUND)

    def test_texts_of_printers_cannot_steer_the_terminal(self):
        self.host(installed(r"SN\u001b[2J", r"\u202eFake"))
        self.assertEqual(self.run_app("usb", "list").output, "SN\ufffd[2J\t\ufffdFake\tno\n")

    def test_without_printers_it_says_where_to_look(self):
        self.host(installed("SN3", "Fake 3", 2))
        result = self.run_app("usb", "list")
        self.assert_status(result, NONE_FOUND)
        self.assertEqual(result.output, "")
        self.assert_mentions(result.errors, "no USB printer is installed", "usb ports", "log")

    def test_a_spooler_that_does_not_answer_is_not_taken_for_one_without_printers(self):
        self.host('list-problem "no print spooler can be reached at /run/spooler"')
        said = ("it is not known which printers are installed on this computer: no print spooler can "
                "be reached at /run/spooler.")
        result = self.run_app("usb", "list")
        self.assert_status(result, COULD_NOT_RUN)
        self.assert_mentions(result.errors, said, "usb ports")
        result = self.run_app("usb", "list", "--json")
        self.assert_status(result, COULD_NOT_RUN)
        problem, = json_lines(result.output)
        self.assertTrue(problem["problem"].startswith(said), problem)

    def test_help_says_that_no_means_not_known(self):
        text = " ".join(self.run_app("usb", "list", "--help", listed=False).output.split())
        self.assert_mentions(text, "no no installed network printer is known to have that serial "
                                   "number", "spooler of Windows never does")

    def test_it_needs_no_vendor(self):
        self.list_file = self.vendor_list([])
        self.host(installed("SN1"))
        self.assert_status(self.run_app("usb", "list"), FOUND)

    def test_ctrl_c_ends_the_wait_for_a_slow_spooler(self):
        self.host(installed("SN1"), "delay GetPrinterList 60000")
        terminal = Terminal(self, "usb", "list")
        terminal.expect(r"Looking for the printers of this computer, \d s")
        terminal.type("\x03")
        self.assertEqual(terminal.finish(), NONE_FOUND)
        terminal.expect("interrupted")


class UsbPorts(UsbTest):
    def test_each_printer_is_a_line(self):
        self.script(usb_device("SN1", "Fake 1"), usb_device("SN2", "Fake 2", place=""))
        self.host(port(devices=2))
        result = self.run_app("usb", "ports")
        self.assert_status(result, FOUND)
        self.assertEqual(result.output, "SN1\tFake 1\tusb:1-4\tscripted\nSN2\tFake 2\t-\tscripted\n")
        self.assertEqual(result.errors, "")
        self.assertEqual(json_lines(self.run_app("usb", "ports", "--json").output)[0],
                         {"serialNumber": "SN1", "makeAndModel": "Fake 1", "place": "usb:1-4",
                          "vendor": "scripted"})
        question, *_ = self.arguments_of("GetDeviceInfoByUsb")
        self.assertEqual(question[:4], b"\xcd\xab\x34\x12")

    def test_each_port_goes_to_the_vendor_that_lists_it(self):
        self.list_file = self.vendor_list([vendor(), vendor("scripted_all_b", "b", OTHER_USB_ID)])
        self.script("[scripted_all]", usb_device("SN1"), "[scripted_all_b]",
                    usb_device("SN2", vendor="b"))
        self.host(port(), port(OTHER_USB_ID))
        self.assertEqual(self.run_app("usb", "ports").output,
                         "SN1\tFake 1000\tusb:1-4\tscripted\nSN2\tFake 1000\tusb:1-4\tb\n")
        self.assertEqual(sorted(self.calls_of("GetDeviceInfoByUsb")),
                         ["scripted_all", "scripted_all_b"])

    def test_models_are_asked_side_by_side(self):
        models = [f"VID_1234&PID_{number:04X}" for number in range(20)]
        self.list_file = self.vendor_list([vendor(usb_ids=" ".join(models))])
        self.script(usb_device("SN1"), "delay GetDeviceInfoByUsb 1000")
        self.host(*[port(model) for model in models])
        start = time.monotonic()
        result = self.run_app("usb", "ports")
        self.assertLess(time.monotonic() - start, 10, "one after the other they take 20 s")
        self.assert_status(result, FOUND)
        self.assertEqual(len(result.output.splitlines()), len(models))

    def test_how_often_the_system_is_looked_at_does_not_depend_on_the_number_of_models(self):
        looks = []
        for count in (1, 20):
            self.list_file = self.vendor_list([vendor(usb_ids="*")])
            self.script(usb_device("SN1"))
            self.host(*[port(f"VID_1234&PID_{number:04X}") for number in range(count)])
            before = len(self.host_calls("GetCurrentPrinterPorts"))
            self.assert_status(self.run_app("usb", "ports"), FOUND)
            looks.append(len(self.host_calls("GetCurrentPrinterPorts")) - before)
        self.assertEqual(looks[0], looks[1])

    def test_a_vendor_that_answers_about_no_model_is_named_once(self):
        models = [f"VID_1234&PID_{number:04X}" for number in range(3)]
        self.list_file = self.vendor_list([vendor(usb_ids=" ".join(models))])
        self.script("misbehave GetDeviceInfoByUsb hang")
        self.host(*[port(model) for model in models])
        result = self.run_app("usb", "ports", "--vendor-seconds", "1")
        self.assert_status(result, COULD_NOT_RUN)
        self.assert_mentions(result.errors, "no answer from vendor scripted (GetDeviceInfoByUsb) "
                                            "within 1 s;")

    def test_an_asterisk_stands_for_every_printer_that_nobody_names(self):
        self.list_file = self.vendor_list([vendor(product_id="any", usb_ids="*"),
                                           vendor("scripted_all_b", "b", OTHER_USB_ID)])
        self.script("[scripted_all]", usb_device("SN1", vendor="any"), "[scripted_all_b]",
                    usb_device("SN2", vendor="b"))
        self.host(port(), port(OTHER_USB_ID))
        result = self.run_app("usb", "ports")
        self.assertEqual(result.output,
                         "SN1\tFake 1000\tusb:1-4\tany\nSN2\tFake 1000\tusb:1-4\tb\n")
        self.assertEqual(result.errors, "")
        self.assertEqual(sorted(self.calls_of("GetDeviceInfoByUsb")),
                         ["scripted_all", "scripted_all_b"], "the vendor that names it comes first")

    def test_a_port_that_no_vendor_lists_is_named(self):
        self.script(usb_device("SN1"))
        self.host(port(), port("VID_9999&PID_0001"))
        result = self.run_app("usb", "ports")
        self.assert_status(result, FOUND)
        self.assertEqual(result.output, "SN1\tFake 1000\tusb:1-4\tscripted\n")
        self.assertEqual(result.errors,
                         "devicediscover: warning: VID_9999&PID_0001: no vendor has it or * in its "
                         f"usbIdList, in {system_path(self.list_file)}\n")
        self.assertEqual(len(self.calls_of("GetDeviceInfoByUsb")), 1, "nothing is missing")

    def test_an_identifier_that_is_listed_in_other_letters_serves(self):
        self.list_file = self.vendor_list([vendor(usb_ids="VID_1234&PID_abcd")])
        self.script(usb_device("SN1"))
        self.host(port())
        self.assertEqual(self.run_app("usb", "ports").output,
                         "SN1\tFake 1000\tusb:1-4\tscripted\n")
        self.assertIn('vendors[0]: "usbIdList": VID_1234&PID_abcd is read as VID_1234&PID_ABCD',
                      self.run_app("vendors").errors)

    def test_each_failure_that_its_vendor_documents_has_a_meaning(self):
        self.list_file = self.vendor_list([vendor(product_id="driverless")])
        self.host(port(devices=2))
        for entry_point, least, command in (
                ("GetDeviceInfoByUsb", {20, 21, 22}, ["ports"]),
                ("USBWifiScan", {8}, ["networks", "SN1"])):
            results = documented_results(entry_point)
            self.assertLessEqual(least, set(results))
            for number in results:
                with self.subTest(entry_point, result=number):
                    self.script(usb_device("SN1", vendor="driverless"),
                                f"result {entry_point} {number}")
                    result = self.run_app("usb", *command)
                    self.assert_status(result, NONE_FOUND)
                    self.assertRegex(result.errors, f"the vendor's result {number} "
                                                    r"\(of vendor driverless: [^.;]{8,}[.;] [^)]{9}",
                                     "what it is, and what to do")

    def test_a_printer_that_its_vendor_does_not_report_is_missed(self):
        self.list_file = self.vendor_list([vendor(), vendor("scripted_all_b", "b", OTHER_USB_ID)])
        self.script("[scripted_all]", usb_device("SN1"),
                    "[scripted_all_b]", "result GetDeviceInfoByUsb 77")
        self.host(port(), port(OTHER_USB_ID))
        result = self.run_app("usb", "ports")
        self.assert_status(result, FOUND)
        self.assertEqual(result.output, "SN1\tFake 1000\tusb:1-4\tscripted\n")
        self.assert_mentions(result.errors, f"warning: {OTHER_USB_ID}: vendor b does not report it:"
                                            " the vendor's result 77\n")
        self.assertNotIn(USB_ID + ":", result.errors)

    def test_fewer_printers_than_are_plugged_in_are_told(self):
        self.script(usb_device("SN1"))
        self.host(port(devices=3))
        result = self.run_app("usb", "ports")
        self.assert_status(result, FOUND)
        self.assert_mentions(result.errors, f"{USB_ID}: 3 plugged in, vendor scripted reports 1")

    def test_one_vendor_s_surplus_does_not_hide_what_another_lacks(self):
        self.list_file = self.vendor_list([vendor(), vendor("scripted_all_b", "b", OTHER_USB_ID)])
        self.script("[scripted_all]", usb_device("SN1"), usb_device("SN2"))
        self.host(port(), port(OTHER_USB_ID))
        result = self.run_app("usb", "ports")
        self.assert_status(result, FOUND)
        self.assertEqual(result.errors, f"devicediscover: warning: {OTHER_USB_ID}: 1 plugged in, "
                                        "vendor b reports 0\n")
        self.assertEqual(sorted(self.calls_of("GetDeviceInfoByUsb")),
                         ["scripted_all", "scripted_all_b"], "each once")

    def test_what_cannot_be_looked_at_is_not_taken_for_none(self):
        self.host('usb-problem "the devices cannot be listed: Too many open files"')
        said = "it is not known what is plugged in: the devices cannot be listed: Too many open files."
        for command in ("ports", "watch", "networks"):
            with self.subTest(command):
                result = self.run_app("usb", command, "--json")
                self.assert_status(result, COULD_NOT_RUN)
                self.assert_mentions(result.errors, said)
                self.assertEqual(json_lines(result.output), [{"problem": said}])

    def test_help_says_what_stands_where_there_is_no_serial_number(self):
        text = " ".join(self.run_app("usb", "ports", "--help", listed=False).output.split())
        self.assert_mentions(text, "without a serial number may have its place instead", "also in JSON")

    def test_none_at_all(self):
        for script, host, saying in (
                ((), (), "no printer is plugged in\n"),
                ((), (port(),), f"{USB_ID}: 1 plugged in, vendor scripted reports 0"),
                (("result GetDeviceInfoByUsb 5",), (port(),), "the vendor's result 5"),
                ((usb_device("SN1"), "count GetDeviceInfoByUsb 65"), (port(),), "reports 0"),
                ((usb_device("SN1"),), (port("VID_9999&PID_0001"),), "VID_9999&PID_0001: no ")):
            with self.subTest(saying):
                self.script(*script)
                self.host(*host)
                result = self.run_app("usb", "ports")
                self.assert_status(result, NONE_FOUND)
                self.assertEqual(result.output, "")
                self.assert_mentions(result.errors, saying, "Plug it in", "usb watch", "log")

    def test_a_vendor_without_identifiers_costs_only_itself(self):
        for usb_ids in ("", "  ", "-"):
            with self.subTest(usb_ids):
                self.list_file = self.vendor_list([vendor("scripted_all_b", "b", usb_ids), vendor()])
                self.script("[scripted_all]", usb_device("SN1"))
                self.host(port())
                result = self.run_app("usb", "ports")
                self.assertEqual(result.output, "SN1\tFake 1000\tusb:1-4\tscripted\n")
                errors = self.run_app("vendors").errors
                if usb_ids == "-":
                    self.assertEqual(errors, "")
                else:
                    self.assertIn('vendors[0]: "usbIdList" is missing or empty: this vendor serves '
                                  "no printer on USB", errors)

    def test_a_list_of_vendors_without_identifiers_reaches_no_printer(self):
        self.list_file = self.vendor_list([vendor(usb_ids="-"), vendor("scripted_all_b", "b", "")])
        self.host(port())
        result = self.run_app("usb", "ports")
        self.assert_status(result, COULD_NOT_RUN)
        self.assert_mentions(result.errors, "without USB identifiers:\n  vendor scripted\n"
                             "  vendor b\n", "usbIdList", system_path(self.list_file),
                             "Plugged in now: " + USB_ID)
        self.assertEqual(self.records(), [])

    def test_without_a_vendor_that_could_it_could_not_run(self):
        for vendors in ([], [vendor("scripted_none")], [vendor("no_such_module")],
                        [vendor("scripted_without_GetDeviceInfoByUsb")]):
            with self.subTest(vendors):
                self.list_file = self.vendor_list(vendors)
                self.host(port())
                for command in ("ports", "networks"):
                    result = self.run_app("usb", command)
                    self.assert_status(result, COULD_NOT_RUN)
                    self.assert_mentions(result.errors, "no vendor can do this", "--vendors",
                                         *("vendor " + one["productId"] for one in vendors))

    def test_an_identifier_that_is_too_short_is_told(self):
        self.list_file = self.vendor_list([vendor(usb_ids="VID_1234")])
        self.host(port("VID_1234"))
        result = self.run_app("usb", "ports")
        self.assert_status(result, COULD_NOT_RUN)
        self.assert_mentions(result.errors, "too short", "VID_vvvv&PID_pppp",
                             system_path(self.list_file))

    def test_ctrl_c_ends_the_wait_for_a_slow_vendor(self):
        self.script(usb_device("SN1"), "delay GetDeviceInfoByUsb 60000")
        self.host(port())
        terminal = Terminal(self, "usb", "ports")
        terminal.expect(r"Asking the printers on USB who they are, \d s")
        terminal.type("\x03")
        self.assertEqual(terminal.finish(), NONE_FOUND)
        terminal.expect("interrupted")


class UsbWatch(UsbTest):
    def watch_until(self, count, *arguments):
        """Watches until that many arrivals are shown; the lines, and what came on standard error."""
        process = self.start_app("usb", "watch", *arguments)
        lines = [process.stdout.readline().decode().replace("\r\n", "\n") for _ in range(count)]
        process.send_signal(signal.SIGINT)
        output, errors = process.communicate(timeout=app_test.PATIENCE)
        self.assertEqual((process.returncode, output), (FOUND, b""), errors)
        return lines, errors.decode().replace("\r\n", "\n")

    def test_each_arrival_is_a_line_also_the_same_printer_s_again(self):
        self.script(usb_device("SN1", "Fake 1"))
        self.host(change(), change(after=300), change(state=0))
        lines, errors = self.watch_until(2)
        for line in lines:
            self.assertRegex(line, r"^\d\d:\d\d:\d\d\tSN1\tFake 1\tusb:1-4\tscripted\n$")
        self.assertEqual(errors, "")
        self.assertEqual(self.host_calls("St"), ["StartMonitor", "StopMonitor"])

    def test_json_comes_as_it_happens_and_tells_the_time(self):
        self.script(usb_device("SN1", "Fake 1"))
        self.host(change(after=0), change(after=1500))
        before = datetime.datetime.now(datetime.timezone.utc).replace(microsecond=0)
        process = self.start_app("usb", "watch", "--json")
        first, = json_lines(process.stdout.readline().decode())
        start = time.monotonic()
        second, = json_lines(process.stdout.readline().decode())
        self.assertGreater(time.monotonic() - start, 0.7)
        self.assertEqual(list(first), ["time", "serialNumber", "makeAndModel", "place", "vendor"])
        self.assertEqual((first["serialNumber"], first["vendor"]), ("SN1", "scripted"))
        self.assertGreaterEqual(datetime.datetime.fromisoformat(
            first["time"].replace("Z", "+00:00")), before)
        self.assertGreater(second["time"], first["time"])

    def test_what_was_there_before_is_counted_and_not_shown(self):
        self.script(usb_device("SN1"))
        for ports, saying in (([port()], "1 printer is plugged in already, and not shown; "
                                         "`devicediscover usb ports` shows it.\n"),
                              ([port(), port("VID_9999&PID_0001", 2)],
                               "3 printers are plugged in already, and not shown; "
                               "`devicediscover usb ports` shows them.\n")):
            with self.subTest(saying):
                self.host(*ports)
                result = self.run_app("usb", "watch", "--seconds", "1.5")
                self.assert_status(result, NONE_FOUND)
                self.assertEqual(result.output, "")
                self.assert_mentions(result.errors, saying, "no printer was plugged in",
                                     "usb ports", "log")
                self.assertEqual(self.records(), [], "no vendor is asked about those")

    def test_what_was_there_before_is_told_at_once(self):
        self.host(port())
        process = self.start_app("usb", "watch", "--json", "--seconds", "5")
        self.assertEqual(process.stderr.readline().split(b" plugged")[0],
                         b"devicediscover: 1 printer is")
        self.assertIsNone(process.poll())

    def watch_for_any(self, *host, vendor_id="any"):
        self.list_file = self.vendor_list([vendor(product_id=vendor_id, usb_ids="*")])
        self.script(usb_device("SN1", vendor=vendor_id))
        self.host(*host)
        return self.run_app("usb", "watch", "--json", "--seconds", "5")

    def test_one_that_went_and_came_in_its_first_second_is_shown(self):
        there_and_gone = [appear(after=50), change(after=0), appear(devices=0, after=150),
                          change(state=0, after=0)]
        result = self.watch_for_any(*4 * there_and_gone, appear(after=400), change(after=0))
        self.assert_status(result, FOUND)
        self.assertEqual(json_lines(result.output)[-1]["serialNumber"], "SN1")
        self.assertEqual(result.errors, "")

    def test_a_model_that_comes_after_another_is_shown(self):
        result = self.watch_for_any(appear(after=10), change(after=0),
                                    appear(OTHER_USB_ID, after=1500), change(OTHER_USB_ID, after=0))
        self.assert_status(result, FOUND)
        self.assertEqual(len(json_lines(result.output)), 2)
        self.assertEqual([question[:4] for question in self.arguments_of("GetDeviceInfoByUsb")],
                         [b"\xcd\xab\x34\x12", b"\xce\xab\x34\x12"])
        self.assertEqual(result.errors, "")

    def test_one_that_comes_between_the_count_and_the_start_is_shown(self):
        self.script(usb_device("SN1"))
        self.host(appear())
        [line], errors = self.watch_until(1, "--json")
        self.assertEqual(json.loads(line)["serialNumber"], "SN1")
        self.assertEqual(errors, "")

    def test_one_that_comes_meanwhile_and_is_told_is_shown_once(self):
        self.script(usb_device("SN1"))
        self.host(appear(), change(after=0))
        result = self.run_app("usb", "watch", "--json", "--seconds", "3")
        self.assert_status(result, FOUND)
        self.assertEqual(len(json_lines(result.output)), 1)

    def test_what_is_wrong_with_the_watch_is_told(self):
        self.host('usb-monitor-problem "the device service is silent"')
        result = self.run_app("usb", "watch", "--seconds", "1")
        self.assert_status(result, NONE_FOUND)
        self.assertEqual(result.errors.count("warning: the device service is silent\n"), 1)

    def test_a_printer_that_its_vendor_does_not_report_is_named_and_asked_about_once(self):
        self.script("result GetDeviceInfoByUsb 77")
        self.host(appear(after=10), change(after=0))
        result = self.run_app("usb", "watch", "--seconds", "4")
        self.assert_status(result, NONE_FOUND)
        self.assert_mentions(result.errors, f"warning: {USB_ID}: vendor scripted does not report it: "
                                            "the vendor's result 77\n")
        self.assertEqual(len(self.calls_of("GetDeviceInfoByUsb")), 1)

    def test_a_vendor_that_does_not_answer_is_named_at_the_end(self):
        self.script(usb_device("SN1"), "delay GetDeviceInfoByUsb 60000")
        self.host(appear(after=10), change(after=0))
        result = self.run_app("usb", "watch", "--seconds", "4")
        self.assert_status(result, COULD_NOT_RUN)
        self.assert_mentions(result.errors, "it is not known which printers were plugged in\n"
                             f"  {USB_ID}: its vendor scripted has not answered yet\n")

    def test_a_vendor_that_never_answers_costs_vendor_seconds_and_is_no_no(self):
        self.script("misbehave GetDeviceInfoByUsb hang")
        self.host(change(after=0), change(after=0))
        result = self.run_app("usb", "watch", "--seconds", "5", "--vendor-seconds", "0.5", "--json")
        self.assert_status(result, COULD_NOT_RUN)
        said = f"{USB_ID}: no answer from vendor scripted (GetDeviceInfoByUsb) within 0.5 s"
        self.assertEqual(result.errors.count(f"warning: {said}\n"), 1)
        problem, = json_lines(result.output)
        self.assert_mentions(problem["problem"], said, "--vendor-seconds")

    @unittest.skipIf(ON_WINDOWS, "nobody learns there that a thread has ended itself")
    def test_a_vendor_that_gives_no_answer_is_no_no(self):
        for how, saying in (("end-thread", "its vendor ended the thread on which it was called"),
                            ("throw", "its vendor threw an exception: the vendor's own mistake")):
            with self.subTest(how):
                self.script(f"misbehave GetDeviceInfoByUsb {how}")
                self.host(change(after=0))
                result = self.run_app("usb", "watch", "--seconds", "4")
                self.assert_status(result, COULD_NOT_RUN)
                self.assert_mentions(result.errors, f"\n  {USB_ID}: {saying}\n")

    def test_another_vendor_s_printer_is_shown_while_one_never_answers(self):
        self.list_file = self.vendor_list([vendor(), vendor("scripted_all_b", "b", OTHER_USB_ID)])
        self.script("[scripted_all]", "misbehave GetDeviceInfoByUsb hang",
                    "[scripted_all_b]", usb_device("SN1", vendor="b"))
        self.host(*(40 * [change(after=0)]), change(OTHER_USB_ID, after=0))
        [line], _ = self.watch_until(1, "--vendor-seconds", "0.5", "--json")
        self.assertEqual(json.loads(line)["serialNumber"], "SN1")

    def test_of_many_that_nobody_answers_about_the_first_are_named(self):
        models = [f"VID_1234&PID_{number:04X}" for number in range(25)]
        self.list_file = self.vendor_list([vendor(usb_ids=" ".join(models))])
        self.script("misbehave GetDeviceInfoByUsb hang")
        self.host(*[change(model, after=0) for model in models])
        result = self.run_app("usb", "watch", "--seconds", "5", "--vendor-seconds", "0.5")
        self.assert_status(result, COULD_NOT_RUN)
        self.assertEqual(result.errors.count("warning: VID_1234"), 20)
        self.assert_mentions(result.errors, "warning: and 5 more without an answer in time\n")

    def test_an_absurd_count_of_arrivals_does_not_keep_the_program(self):
        self.script(usb_device("SN1"))
        self.host(appear(devices=2**31 - 1))
        result = self.run_app("usb", "watch", "--seconds", "2")
        self.assert_status(result, FOUND)
        self.assert_mentions(result.errors, "they are not asked about some of the printers")

    @unittest.skipIf(ON_WINDOWS, "its threads are counted by the Linux kernel")
    def test_arrivals_that_nobody_answers_about_are_bounded(self):
        self.script("misbehave GetDeviceInfoByUsb hang")
        self.host(*(1500 * [change(after=0)]))
        process = self.start_app("usb", "watch", "--seconds", "8", "--vendor-seconds", "0.5")
        most = 0
        while process.poll() is None:
            try:
                most = max(most, len(os.listdir(f"/proc/{process.pid}/task")))
            except FileNotFoundError:
                break
            time.sleep(0.05)
        _, errors = process.communicate(timeout=app_test.PATIENCE)
        self.assertEqual(process.returncode, COULD_NOT_RUN, errors)
        self.assertGreater(most, 30)
        self.assertLess(most, 100)
        self.assert_mentions(errors.decode(), "warning: the vendors answer too slowly",
                             f"{1500 - 64} arrivals were not asked about")

    def test_each_request_to_end_stops_it_properly(self):
        for request in REQUESTS:
            with self.subTest(request):
                self.setUp()
                self.script(usb_device("SN1"))
                self.host(change())
                process = self.start_app("usb", "watch")
                process.stdout.readline()
                process.send_signal(request)
                _, errors = process.communicate(timeout=app_test.PATIENCE)
                self.assertEqual((process.returncode, errors), (FOUND, b""))
                self.assertEqual(self.host_calls("St"), ["StartMonitor", "StopMonitor"])

    def test_it_goes_on_until_then(self):
        self.script(usb_device("SN1"))
        self.host(change(after=4000))
        process = self.start_app("usb", "watch")
        self.wait_until(lambda: self.host_calls("StartMonitor"), "the watch starts")
        time.sleep(7)
        self.assertIsNone(process.poll())
        process.send_signal(signal.SIGINT)
        output, _ = process.communicate(timeout=app_test.PATIENCE)
        self.assertEqual(process.returncode, FOUND)
        self.assertEqual(output.count(b"SN1"), 1)

    def test_a_printer_that_is_being_asked_does_not_hold_up_the_end(self):
        self.script(usb_device("SN1"), "delay GetDeviceInfoByUsb 60000")
        self.host(change(after=0))
        process = self.start_app("usb", "watch")
        self.wait_until(lambda: self.calls_of("GetDeviceInfoByUsb"), "the vendor is asked")
        start = time.monotonic()
        process.send_signal(signal.SIGINT)
        self.assertEqual(process.wait(app_test.PATIENCE), NONE_FOUND)
        self.assertLess(time.monotonic() - start, 10)

    def test_one_ctrl_c_ends_the_wait_for_a_monitor_that_does_not_stop(self):
        self.script(usb_device("SN1"))
        self.host(change(after=0), "delay StopMonitor 60000")
        terminal = Terminal(self, "usb", "watch")
        terminal.expect("1 arrival so far, until Ctrl-C")
        start = time.monotonic()
        terminal.type("\x03")
        self.assertEqual(terminal.finish(), FOUND)
        self.assertLess(time.monotonic() - start, 20)
        self.assert_mentions(terminal.text, "warning: the device manager has not stopped its reports in time")

    def test_a_reader_that_leaves_ends_it_quietly(self):
        self.script(usb_device("SN1"))
        self.host(*(change(after=50) for _ in range(200)))
        process = self.start_app("usb", "watch", "--json")
        process.stdout.readline()
        process.stdout.close()
        self.assertEqual(process.wait(app_test.PATIENCE), FOUND)
        self.assertEqual(process.stderr.read(), b"")

    def test_a_storm_of_arrivals_is_shown_whole(self):
        self.script(usb_device("SN1"))
        self.host(*(change(after=0) for _ in range(200)))
        lines, _ = self.watch_until(200, "--json")
        self.assertEqual(len(json_lines("".join(lines))), 200)

    def test_a_terminal_shows_a_table_that_grows(self):
        self.script(usb_device("SN1", "Fake 1"))
        self.host(change(after=500))
        terminal = Terminal(self, "usb", "watch", "--seconds", "4")
        terminal.expect(r"Looking for arrivals, \d s left \(Ctrl-C stops\)")
        terminal.expect(r"TIME +SERIAL NUMBER +MAKE AND MODEL +PLACE +VENDOR")
        terminal.expect(r"\d\d:\d\d:\d\d +SN1 +Fake 1 +usb:1-4 +scripted")
        self.assertEqual(terminal.finish(), FOUND)
        terminal.expect("1 arrival found")

    def test_vendors_that_cannot_take_part_are_named(self):
        self.list_file = self.vendor_list([vendor(), vendor("scripted_none", "b", OTHER_USB_ID)])
        self.script(usb_device("SN1"))
        self.host(change(after=0))
        _, errors = self.watch_until(1)
        self.assert_mentions(errors, "warning: vendor b", "GetDeviceInfoByUsb")

    def test_without_a_vendor_that_could_it_could_not_run(self):
        for vendors, saying in (([vendor("scripted_none")], "no vendor can do this"),
                                ([vendor(usb_ids="")], "without USB identifiers")):
            with self.subTest(saying):
                self.list_file = self.vendor_list(vendors)
                result = self.run_app("usb", "watch", "--seconds", "1")
                self.assert_status(result, COULD_NOT_RUN)
                self.assert_mentions(result.errors, saying)
        self.assertEqual(self.host_calls("StartMonitor"), [])


class UsbNetworks(UsbTest):
    def setUp(self):
        super().setUp()
        self.script(usb_device("SN1"), usb_device("SN2"), reported("Office", 82),
                    reported(r"Caf\xc3\xa9", -57.5), reported("", 3), reported("Office", 7))
        self.host(port(devices=2))

    def test_each_network_that_is_reported_is_a_line(self):
        result = self.run_app("usb", "networks", "SN1")
        self.assert_status(result, FOUND)
        self.assertEqual(result.output, "Office\t82\nCaf\u00e9\t-57.5\n-\t3\nOffice\t7\n")
        self.assertEqual(result.errors, "")
        self.assertEqual(json_lines(self.run_app("usb", "networks", "SN1", "--json").output)[0],
                         {"network": "Office", "signal": 82.0})

    def test_the_vendor_receives_the_printer_s_record_and_the_number(self):
        for arguments, number in (([], 0), (["--option", "-7"], -7)):
            with self.subTest(number):
                self.setUp()
                self.assert_status(self.run_app("usb", "networks", "SN2", *arguments), FOUND)
                question, = self.arguments_of("USBWifiScan")
                self.assertEqual(question, device_record("SN2") + struct.pack("<ii", number, 0))

    def test_the_only_printer_need_not_be_named(self):
        result = self.run_app("usb", "networks")
        self.assert_status(result, USAGE)
        self.assert_mentions(result.errors, "more than one printer on USB: SN1, SN2")
        self.script(usb_device(""), reported("Office"))
        self.host(port())
        self.assert_status(self.run_app("usb", "networks"), FOUND)

    def test_a_printer_that_is_not_there(self):
        result = self.run_app("usb", "networks", "SN7")
        self.assert_status(result, NONE_FOUND)
        self.assert_mentions(result.errors, "serial number or at the place 'SN7'",
                             "there is SN1, SN2", "usb watch")
        self.assertEqual(self.calls_of("USBWifiScan"), [])
        self.host()
        for command in (["networks", "SN1"], ["networks"], [*OFFICE[1:], "--open"]):
            result = self.run_app("usb", *command)
            self.assert_status(result, NONE_FOUND)
            self.assert_mentions(result.errors, "no printer is plugged in")

    def test_the_serial_number_may_be_copied_from_the_table(self):
        self.script(usb_device(r"SN\x1b1"), reported("Office"))
        shown = self.run_app("usb", "ports").output.split("\t")[0]
        self.assert_status(self.run_app("usb", "networks", shown), FOUND)

    def test_which_of_several_printers_of_one_serial_number_has_to_be_said(self):
        self.script(usb_device("SN1"), usb_device("SN1", place="usb:1-5"),
                    usb_device("SN2", place="usb:1-6"))
        self.host(port(devices=3))
        for command in (["networks"], [*OFFICE[1:2], "--network", "Office", "--open"]):
            with self.subTest(command):
                for name, saying in (("SN1", "called 'SN1': usb:1-4, usb:1-5"),
                                     (None, "more than one printer on USB: usb:1-4, usb:1-5, SN2")):
                    result = self.run_app("usb", *command, *([name] if name else []))
                    self.assert_status(result, USAGE)
                    self.assert_mentions(result.errors, saying, "Name one of them", "usb ports")
        self.assertEqual(self.calls_of("USBWifiScan") + self.calls_of("PrinterUSBNetConfigEvent"), [])

    def test_a_printer_may_be_named_by_its_place(self):
        self.script(usb_device("SN1"), usb_device("SN1", place="usb:1-5"), reported("Office"))
        self.assert_status(self.run_app("usb", "networks", "usb:1-5"), FOUND)
        question, = self.arguments_of("USBWifiScan")
        self.assertEqual(question[:228], device_record("SN1", place="usb:1-5"))
        result = self.run_app("usb", "networks", "usb:1-6")
        self.assert_status(result, NONE_FOUND)
        self.assert_mentions(result.errors, "'usb:1-6'", "there is usb:1-4, usb:1-5")

    def test_nothing_may_tell_printers_apart(self):
        for place in ("", "usb:1-4"):
            with self.subTest(place):
                self.script(usb_device("SN1", place=place), usb_device("SN1", place=place))
                result = self.run_app("usb", "networks", "SN1")
                self.assert_status(result, USAGE)
                self.assert_mentions(result.errors, "called 'SN1': SN1, SN1", "Unplug the others")
        self.assertEqual(self.calls_of("USBWifiScan"), [])

    def test_no_network(self):
        for lines, saying in ((("result USBWifiScan 5", reported("Office")),
                               "no networks: the vendor's result 5\n"),
                              (("result USBWifiScan -1",), "vendor scripted has failed"),
                              ((), "reports no network.\nYou can still name one"),
                              ((reported("Office"), "count USBWifiScan 129"),
                               "reports no network")):
            with self.subTest(saying):
                self.script(usb_device("SN1"), *lines)
                result = self.run_app("usb", "networks", "SN1")
                self.assert_status(result, NONE_FOUND)
                self.assertEqual(result.output, "")
                self.assert_mentions(result.errors, saying, "log")

    def test_whose_networks_they_are_is_said_where_it_is_known(self):
        self.list_file = self.vendor_list([vendor(product_id="driverless")])
        self.script(usb_device("SN1", vendor="driverless"))
        self.assert_mentions(self.run_app("usb", "networks").errors, "reports no network",
                             "this computer's own Wi-Fi", "wifi list")

    def test_a_vendor_that_cannot_do_it(self):
        for entry_point, command in (("USBWifiScan", ["networks", "SN1"]),
                                     ("PrinterUSBNetConfigEvent", [*OFFICE[1:], "--open"])):
            with self.subTest(entry_point):
                self.list_file = self.vendor_list([vendor("scripted_without_" + entry_point)])
                result = self.run_app("usb", *command)
                self.assert_status(result, COULD_NOT_RUN)
                self.assert_mentions(result.errors, "vendor scripted cannot do this", entry_point,
                                     "devicediscover vendors")

    def test_a_vendor_s_name_that_is_not_listed(self):
        self.script(usb_device("SN1", vendor="stranger"))
        result = self.run_app("usb", "networks", "SN1")
        self.assert_status(result, NONE_FOUND)
        self.assert_mentions(result.errors, "vendor stranger", "no such productId")

    def test_ctrl_c_ends_the_wait_for_a_slow_printer(self):
        self.script(usb_device("SN1"), "delay USBWifiScan 60000")
        terminal = Terminal(self, "usb", "networks", "SN1")
        terminal.expect(r"Asking the printer for the networks it sees, \d s")
        terminal.type("\x03")
        self.assertEqual(terminal.finish(), NONE_FOUND)
        terminal.expect("interrupted")


class UsbConfigure(UsbTest):
    def setUp(self):
        super().setUp()
        self.script(usb_device("SN0"), usb_device("SN1"))
        self.host(port(devices=2))

    def received(self):
        return self.arguments_of("PrinterUSBNetConfigEvent")

    def test_the_vendor_receives_the_very_bytes(self):
        name, pass_phrase = "Caf\u00e9 \U0001f5a8 " + "n" * 116, "p\u00e4ss " + "w" * 25
        self.assertEqual([len(name.encode()), len(pass_phrase.encode())], [127, 31])
        result = self.run_app("usb", "configure", "SN1", "--network", name, "--pass-phrase-file",
                              self.pass_phrase_file(pass_phrase))
        self.assert_status(result, FOUND)
        self.assertEqual(result.output, f"the printer was put on {name}\n")
        self.assertEqual(result.errors, "")
        self.assertEqual(self.received(), [device_record("SN1") + struct.pack(
            "<f128s32s", 0, name.encode(), pass_phrase.encode())])
        self.assertIn("SetDeviceAPNetConfigByUsb", self.log())
        self.assertNotIn(pass_phrase, self.log())

    def test_a_failure_that_nobody_reads_is_no_success(self):
        self.script(usb_device("SN1"), "result PrinterUSBNetConfigEvent 7")
        self.assert_no_without_reader(*OFFICE, "--open", "--json",
                                      saying="the printer was not put on Office")

    def test_from_the_prompt(self):
        terminal = Terminal(self, *OFFICE)
        terminal.expect("Pass phrase of Office")
        terminal.type(PASS_PHRASE + "\r")
        terminal.expect("the printer was put on Office")
        self.assertEqual(terminal.finish(), FOUND)
        self.assertEqual(self.received(), [device_record("SN1") + struct.pack(
            "<f128s32s", 0, b"Office", PASS_PHRASE.encode())])
        self.assertNotIn(PASS_PHRASE, terminal.text)
        self.assertNotIn(PASS_PHRASE, self.log())

    def test_ctrl_c_at_the_prompt_gives_the_printer_nothing(self):
        terminal = Terminal(self, *OFFICE)
        terminal.expect("Pass phrase of Office")
        terminal.type("\x03")
        self.assertEqual(terminal.finish(), NONE_FOUND)
        if not ON_WINDOWS:
            self.assertTrue(terminal.shows_typing())
        self.assertEqual(self.received(), [])

    def test_of_two_printers_with_one_serial_number_the_one_at_the_place_receives_it(self):
        self.script(usb_device("SN1"), usb_device("SN1", place="usb:1-5"))
        result = self.run_app(*OFFICE, "--pass-phrase-file", self.pass_phrase_file())
        self.assert_status(result, USAGE)
        self.assertEqual(self.received(), [])
        self.assert_not_shown(result)
        self.assert_status(self.run_app("usb", "configure", "usb:1-5", "--network", "Office",
                                        "--pass-phrase-file", self.pass_phrase_file()), FOUND)
        self.assertEqual(self.received(), [device_record("SN1", place="usb:1-5") + struct.pack(
            "<f128s32s", 0, b"Office", PASS_PHRASE.encode())])

    def test_an_open_network(self):
        result = self.run_app(*OFFICE, "--open", "--json")
        self.assert_status(result, FOUND)
        self.assertEqual(json_lines(result.output), [{"serialNumber": "SN1", "network": "Office",
                                                      "configured": True, "result": 0}])

    def test_a_pass_phrase_that_a_printer_cannot_be_given_is_not_cut(self):
        result = self.run_app(*OFFICE, "--pass-phrase-file", self.pass_phrase_file("w" * 32))
        self.assert_status(result, USAGE)
        self.assert_mentions(result.errors, "32 bytes", "31")
        self.assertEqual(self.received(), [])

    def test_a_failure_is_told_and_where_to_read_why(self):
        self.script(usb_device("SN1"), "result PrinterUSBNetConfigEvent 12")
        result = self.run_app(*OFFICE, "--json", "--pass-phrase-file", self.pass_phrase_file())
        self.assert_status(result, NONE_FOUND)
        self.assertEqual(json_lines(result.output), [{"serialNumber": "SN1", "network": "Office",
                                                      "configured": False, "result": -1}])
        self.assert_mentions(result.errors, "not put on Office: vendor scripted has failed", "log")
        self.assertIn("call Func Fail12", self.log())
        self.assert_not_shown(result)
        self.assertNotIn(PASS_PHRASE, self.log())

    def test_what_a_known_vendor_needs_is_told(self):
        self.list_file = self.vendor_list([vendor(product_id="driverless")])
        self.script(usb_device("SN1", vendor="driverless"), "result PrinterUSBNetConfigEvent 15")
        result = self.run_app(*OFFICE, "--open")
        self.assert_status(result, NONE_FOUND)
        self.assert_mentions(result.errors, "vendor driverless has failed", "pass phrase right",
                             "call Func Fail", "ipp-usb")

    def test_every_vendor_can_explain_its_failures(self):
        own = {"USBWifiScan": {"0": "Ask the cat."},
               "PrinterUSBNetConfigEvent": {"15": "no paper", "7": "no ink"}}
        self.list_file = self.vendor_list([dict(vendor(), results=own)])
        self.script(usb_device("SN1"), "result PrinterUSBNetConfigEvent 15")
        self.assert_mentions(self.run_app(*OFFICE, "--open").errors,
                             "the vendor's own result. Of scripted:\n  7: no ink\n  15: no paper\n")
        self.assertIn("\nAsk the cat.\n", self.run_app("usb", "networks").errors)

    def test_each_failure_that_a_known_vendor_documents_has_a_meaning(self):
        self.list_file = self.vendor_list([vendor(product_id="driverless")])
        self.script(usb_device("SN1", vendor="driverless"), "result PrinterUSBNetConfigEvent 15")
        errors = self.run_app(*OFFICE, "--open").errors
        results = documented_results("PrinterUSBNetConfigEvent")
        self.assertLessEqual({10, 13, 14, 15, 24, 25}, set(results))
        self.assertEqual([int(number) for number in re.findall(r"^  (\d+): .{20}", errors,
                                                               re.MULTILINE)], sorted(results))
        self.script(usb_device("SN1"), "result PrinterUSBNetConfigEvent 15")
        self.list_file = self.vendor_list([vendor()])
        self.assertNotIn("ipp-usb", self.run_app(*OFFICE, "--open").errors)

    def test_the_printer_is_looked_for_before_the_pass_phrase_is_asked_for(self):
        terminal = Terminal(self, "usb", "configure", "SN7", "--network", "Office")
        self.assertEqual(terminal.finish(), NONE_FOUND)
        self.assertNotIn("Pass phrase", terminal.text)

    def test_a_long_wait_is_shown_and_ctrl_c_ends_it(self):
        self.script(usb_device("SN1"), "delay PrinterUSBNetConfigEvent 60000")
        terminal = Terminal(self, *OFFICE, "--open")
        terminal.expect(r"Waiting for the printer to join Office, 1 s \(Ctrl-C stops\)")
        terminal.type("\x03")
        self.assertEqual(terminal.finish(), NONE_FOUND)
        terminal.expect("interrupted")


class UsbArguments(UsbTest):
    def test_wrong_arguments(self):
        for arguments, saying in (([], "list, ports, watch, networks or configure"),
                                  (["lsit"], "'lsit'"),
                                  (["list", "SN1"], "'SN1'"),
                                  (["--json", "list"], "'--json' stands before the command"),
                                  (["watch", "--seconds", "0"], "0.1 to 86400"),
                                  (["networks", ""], "serial number is empty"),
                                  (["networks", "--option", "x"], "'x' is not a whole number"),
                                  (["configure", "SN1", "--open"], "--network"),
                                  (["configure", "--network", "", "--open"], "empty"),
                                  (["configure", "--network", "n" * 128, "--open"], "128 bytes"),
                                  (["configure", "SN1", "--network", "x"], "standard input")):
            with self.subTest(arguments):
                result = self.run_app("usb", *arguments)
                self.assert_status(result, USAGE)
                self.assertEqual(result.output, "")
                self.assert_mentions(result.errors, saying, "--help")
        self.assertEqual(self.records(), [])

    def test_what_may_be_a_pass_phrase_is_not_repeated(self):
        result = self.run_app(*OFFICE, PASS_PHRASE)
        self.assert_status(result, USAGE)
        self.assert_mentions(result.errors, "--pass-phrase-file")
        self.assert_not_shown(result)

    def test_help_says_how_each_command_ends(self):
        for command in (["usb"], *(["usb", name] for name in ("list", "ports", "watch", "networks",
                                                              "configure"))):
            with self.subTest(command):
                result = self.run_app(*command, "--help", listed=False)
                self.assert_status(result, FOUND)
                self.assert_mentions(result.output, "Examples:", "Exit status",
                                     "devicediscover " + " ".join(command))
                self.assertLessEqual(max(map(len, result.output.splitlines())), 92)
                about = result.output[result.output.index("Examples:"):].splitlines()
                self.assertEqual([line for line in about if len(line) > 80], [])


if __name__ == "__main__":
    app_test.main()

# SPDX-License-Identifier: Apache-2.0
"""`devicediscover scan` when its output is no terminal."""

import os
import resource
import stat
import subprocess
import time
import unittest

import app_test
from app_test import (COULD_NOT_RUN, FOUND, NONE_FOUND, ON_WINDOWS, USAGE, AppTest, device,
                      json_lines)


class Scan(AppTest):
    def test_a_printer_is_one_line_with_its_columns_between_tabs(self):
        self.script(device("SN1", model="Fake 1000", address="192.0.2.7", port=9100))
        result = self.run_app("scan", "--seconds", "1")
        self.assert_status(result, FOUND)
        self.assertEqual(result.output, "SN1\tFake 1000\t192.0.2.7\t9100\tscripted\n")
        self.assertEqual(result.errors, "")

    def test_what_is_not_known_is_a_dash(self):
        self.script(device("", model="", address="", port=0))
        result = self.run_app("scan", "--seconds", "1")
        self.assertEqual(result.output, "-\t-\t-\t-\tscripted\n")

    def test_no_printer_is_status_1_and_says_what_to_do(self):
        result = self.run_app("scan", "--seconds", "0.2", "--log-file",
                              app_test.system_path(self.log_file))
        self.assert_status(result, NONE_FOUND)
        self.assertEqual(result.output, "")
        self.assert_mentions(result.errors, "no printer found",
                             app_test.system_path(self.log_file), "devicediscover vendors",
                             "--log-level", "--seconds")

    def test_the_scan_takes_its_time_and_stops_every_vendor_once(self):
        self.list_file = self.vendor_list([("a", "scripted_all"), ("b", "scripted_all_b")])
        self.script("until-stopped")
        start = time.monotonic()
        self.run_app("scan", "--seconds", "1.5")
        self.assertGreaterEqual(time.monotonic() - start, 1.5)
        self.assertEqual(self.calls_of("StartDeviceScan").count("scripted_all"), 1)
        self.assertEqual(self.calls_of("StopDeviceScan"), ["scripted_all", "scripted_all_b"])

    def test_a_scan_without_a_time_takes_five_seconds(self):
        self.script("until-stopped")
        begun = time.monotonic()
        process = self.start_app("scan")
        self.wait_until(lambda: self.calls_of("StartDeviceScan"), "the vendor's scan starts")
        started = time.monotonic()
        self.wait_until(lambda: self.calls_of("StopDeviceScan"), "the vendor's scan stops")
        stopped = time.monotonic()
        self.assertEqual(process.wait(app_test.PATIENCE), NONE_FOUND)
        self.assertGreaterEqual(stopped - begun, 5)
        self.assertLess(stopped - started, 7)

    def test_the_same_printer_twice_is_one_line(self):
        self.script("repeat 5", "threads 4", device("SN1"), device("SN2"))
        result = self.run_app("scan", "--seconds", "1")
        self.assertEqual(sorted(line.split("\t")[0] for line in result.output.splitlines()),
                         ["SN1", "SN2"])

    def test_the_same_serial_number_of_two_vendors_is_two_printers(self):
        self.script(device("SN1", vendor="a"), device("SN1", vendor="b"))
        result = self.run_app("scan", "--seconds", "1")
        self.assertEqual(len(result.output.splitlines()), 2)

    def test_printers_with_one_serial_number_or_none_differ_by_their_place(self):
        for serial in ("", "SN1"):
            self.script(*(device(serial, address=address, port=port) for address, port in (
                ("192.0.2.1", 631), ("192.0.2.2", 631), ("192.0.2.1", 8631), ("192.0.2.1", 631))))
            result = self.run_app("scan", "--seconds", "1")
            self.assertEqual(len(result.output.splitlines()), 3)

    def test_a_printer_that_changes_its_address_is_shown_at_both(self):
        self.script("interval 200", device("SN1", address="192.0.2.1"),
                    device("SN1", address="192.0.2.2"), device("SN1", address="192.0.2.1"))
        result = self.run_app("scan", "--seconds", "1")
        self.assertEqual([line.split("\t")[2] for line in result.output.splitlines()],
                         ["192.0.2.1", "192.0.2.2"])
        self.assert_mentions(self.run_app("scan", "--help", listed=False).output,
                             "changes its address during the scan is shown at both")

    def test_news_about_a_printer_is_another_line(self):
        self.script("interval 200", device("SN1", model="Fake 1"), device("SN1", model="Fake 1"),
                    device("SN1", model="Fake 2"))
        result = self.run_app("scan", "--json", "--seconds", "1.5")
        self.assertEqual([printer["makeAndModel"] for printer in json_lines(result.output)],
                         ["Fake 1", "Fake 2"])

    def test_many_threads_report_many_printers(self):
        self.script("threads 8", *(device(f"SN{number}") for number in range(200)))
        result = self.run_app("scan", "--json", "--seconds", "2")
        self.assert_status(result, FOUND)
        serials = [printer["serialNumber"] for printer in json_lines(result.output)]
        self.assertEqual(sorted(serials), sorted(f"SN{number}" for number in range(200)))

    def test_control_characters_of_a_device_do_not_reach_the_output(self):
        self.script(device(r"SN\x1b[2J", model=r"A\x07\x0a\x09B\xc2\x9bC\xe2\x80\xaeD"))
        result = self.run_app("scan", "--seconds", "1")
        self.assertEqual(result.output,
                         "SN\ufffd[2J\tA\ufffd\ufffd\ufffdB\ufffdC\ufffdD\t192.0.2.1\t631\tscripted\n")


class ScanJson(AppTest):
    def test_a_printer_is_one_object(self):
        self.list_file = self.vendor_list([("driverless", "scripted_all")])
        self.script(device("SN1", model=r"Dr\xc3\xbccker 7", address="192.0.2.7", port=9100,
                           service=3, resource="q", vendor="driverless"))
        result = self.run_app("scan", "--json", "--seconds", "1")
        self.assert_status(result, FOUND)
        self.assertEqual(json_lines(result.output), [
            {"serialNumber": "SN1", "makeAndModel": "Dr\u00fccker 7", "address": "192.0.2.7",
             "port": 9100, "vendor": "driverless", "resource": "q", "service": "pdl-datastream"}])

    def test_the_kind_of_service_has_a_name_where_it_is_known_only(self):
        self.list_file = self.vendor_list([("driverless", "scripted_all")])
        self.script(*(device(f"{vendor}{service}", vendor=vendor, service=service)
                      for vendor in ("driverless", "other") for service in range(6)))
        result = self.run_app("scan", "--json", "--seconds", "1")
        services = {printer["serialNumber"]: printer["service"]
                    for printer in json_lines(result.output)}
        self.assertEqual([services[f"driverless{number}"] for number in range(6)],
                         [0, "ipp", "ipps", "pdl-datastream", "printer", "usb"])
        self.assertEqual([services[f"other{number}"] for number in range(6)], list(range(6)))

    def test_ill_formed_and_steering_text_is_ascii_json(self):
        self.script(device(r"\xff\xfe", model=r"a\x1b]0;b\x07\xc2\x9b\x7f\xc3", service=77))
        result = self.run_app("scan", "--json", "--seconds", "1")
        printer, = json_lines(result.output)
        self.assertEqual(printer["serialNumber"], "\ufffd\ufffd")
        self.assertEqual(printer["makeAndModel"], "a\x1b]0;b\x07\x9b\x7f\ufffd")
        self.assertEqual(printer["service"], 77)
        self.assertTrue(all(32 <= byte < 127 for byte in result.output.strip().encode()))

    def test_fields_without_terminator_end_with_the_field(self):
        self.script(device("S" * 64, vendor="v" * 32, model="M" * 64, address="9" * 32,
                           resource="r" * 32))
        result = self.run_app("scan", "--json", "--seconds", "1")
        printer, = json_lines(result.output)
        self.assertEqual([len(printer[key]) for key in
                          ("serialNumber", "vendor", "makeAndModel", "address", "resource")],
                         [64, 32, 64, 32, 32])

    def test_printers_come_as_they_are_found(self):
        self.script("interval 600", *(device(f"SN{number}") for number in range(3)),
                    "until-stopped")
        process = self.start_app("scan", "--json", "--seconds", "4")
        times = []
        for _ in range(3):
            self.assertTrue(process.stdout.readline())
            times.append(time.monotonic())
        self.assertIsNone(process.poll(), "the scan still runs")
        self.assertGreater(times[1] - times[0], 0.3)
        self.assertGreater(times[2] - times[1], 0.3)
        self.assertEqual(process.wait(app_test.PATIENCE), FOUND)
        self.assertGreater(time.monotonic() - times[2], 1)


class ScanThatCannotRun(AppTest):
    def test_a_missing_list_is_named(self):
        self.list_file = self.path("nowhere.json")
        result = self.run_app("scan")
        self.assert_status(result, COULD_NOT_RUN)
        self.assert_mentions(result.errors, app_test.system_path(self.list_file), "--vendors")

    def test_no_list_at_all_is_explained(self):
        self.use_copy_without_list()
        for command in ("scan", "vendors"):
            result = self.run_app(command, listed=False)
            self.assert_status(result, COULD_NOT_RUN)
            self.assertEqual(result.output, "")
            self.assert_mentions(result.errors, "--vendors", app_test.system_path(
                os.path.join(os.path.dirname(self.program), "DeviceDiscover")))

    def test_a_malformed_list_is_named(self):
        self.list_file = self.write("broken.json", '{"vendors": [\n{"productId": }]}')
        result = self.run_app("scan")
        self.assert_status(result, COULD_NOT_RUN)
        self.assert_mentions(result.errors, app_test.system_path(self.list_file))

    def test_an_empty_list_has_no_vendor(self):
        self.list_file = self.vendor_list([])
        result = self.run_app("scan")
        self.assert_status(result, COULD_NOT_RUN)
        self.assert_mentions(result.errors, "no vendor")

    def test_modules_that_cannot_scan_are_named(self):
        self.list_file = self.vendor_list([("one", "scripted_none"), ("two", "no_such_module")])
        result = self.run_app("scan")
        self.assert_status(result, COULD_NOT_RUN)
        self.assert_mentions(result.errors, "vendor one", "StartDeviceScan", "vendor two",
                             "no_such_module", "devicediscover vendors")

    def test_one_broken_vendor_is_a_warning_and_the_others_serve(self):
        self.list_file = self.vendor_list([("broken", "no_such_module"),
                                           ("scripted", "scripted_all")])
        self.script(device("SN1"))
        result = self.run_app("scan", "--seconds", "1")
        self.assert_status(result, FOUND)
        self.assertEqual(result.output.split("\t")[0], "SN1")
        self.assert_mentions(result.errors, "warning: vendor broken: ", "no_such_module")

    @unittest.skipIf(ON_WINDOWS, "a device of Linux")
    def test_a_full_disk_is_told(self):
        self.script(device("SN1"), "until-stopped")
        with open("/dev/full", "wb") as full:
            process = self.start_app("scan", "--watch", stdout=full)
            errors = process.communicate(timeout=app_test.PATIENCE)[1].decode()
        self.assertEqual(process.returncode, COULD_NOT_RUN)
        self.assert_mentions(errors, "cannot write to standard output", "No space left")
        self.assertEqual(self.calls_of("StopDeviceScan"), ["scripted_all"])


class ScanThatFails(AppTest):
    """What vendors return, told as it is: nobody looked is not nothing found."""

    def use_two(self):
        self.list_file = self.vendor_list([("broken", "scripted_all"), ("sound", "scripted_all_b")])

    def assert_nobody_looks(self, result, *words):
        self.assert_status(result, COULD_NOT_RUN)
        self.assert_mentions(result.errors, "there may be printers that were not found", *words)
        self.assertNotIn("no printer found", result.errors)

    def test_where_nobody_could_look_none_found_is_not_said(self):
        self.script("result StartDeviceScan 7")
        begun = time.monotonic()
        self.assert_nobody_looks(self.run_app("scan", "--seconds", "300"),
                                 "vendor scripted", "the vendor's result 7")
        self.assertLess(time.monotonic() - begun, app_test.PATIENCE, "it ends when nobody looks")
        self.assertEqual(self.calls_of("StopDeviceScan"), ["scripted_all"])

    def test_the_cause_is_in_json_too(self):
        self.script("result StartDeviceScan 7")
        result = self.run_app("scan", "--json")
        self.assert_nobody_looks(result)
        problem, = json_lines(result.output)
        self.assertEqual(list(problem), ["problem"])
        self.assert_mentions(problem["problem"], "vendor scripted", "the vendor's result 7")

    def test_results_of_the_standard_module_are_told_in_words(self):
        self.list_file = self.vendor_list([("driverless", "scripted_all")])
        for number, words in ((2, "D-Bus cannot be reached"), (3, "Avahi does not run"),
                              (4, "no interface has an IPv4 address"), (5, "Avahi does not answer"),
                              (6, "D-Bus ended")):
            self.script(f"result StartDeviceScan {number}")
            self.assert_nobody_looks(self.run_app("scan"), words)

    def test_a_scan_that_was_stopped_before_it_could_look_is_no_none_found(self):
        self.list_file = self.vendor_list([("driverless", "scripted_all")])
        self.script("until-stopped", "result StartDeviceScan 5")
        self.assert_nobody_looks(self.run_app("scan", "--seconds", "0.5"), "Avahi does not answer")

    def test_the_one_that_failed_is_named_and_what_others_found_counts(self):
        self.use_two()
        self.script("[scripted_all]", "result StartDeviceScan 7", "[scripted_all_b]",
                    device("SN1", vendor="sound"), "until-stopped")
        result = self.run_app("scan", "--seconds", "1")
        self.assert_status(result, FOUND)
        self.assertEqual(result.output.split("\t")[0], "SN1")
        self.assertRegex(result.errors, r"\Adevicediscover: warning: vendor broken does not look for "
                                        r"printers: the vendor's result 7\n\Z")

    def test_where_one_could_look_none_found_is_status_1(self):
        self.use_two()
        self.script("[scripted_all]", "result StartDeviceScan 7")
        result = self.run_app("scan", "--seconds", "1")
        self.assert_status(result, NONE_FOUND)
        self.assert_mentions(result.errors, "vendor broken does not look", "no printer found")

    def test_what_was_found_before_everybody_failed_counts(self):
        self.script(device("SN1"), "result StartDeviceScan 6")
        result = self.run_app("scan", "--seconds", "300")
        self.assert_status(result, FOUND)
        self.assertEqual(result.output.split("\t")[0], "SN1")
        self.assert_mentions(result.errors, "vendor scripted does not look", "result 6")

    def test_a_watch_that_nobody_looks_for_ends_with_status_3(self):
        self.script("delay StartDeviceScan 500", device("SN1"), "result StartDeviceScan 6")
        result = self.run_app("scan", "--watch", "--json")
        self.assert_nobody_looks(result, "vendor scripted", "the vendor's result 6")
        printer, problem = json_lines(result.output)
        self.assertEqual(printer["serialNumber"], "SN1")
        self.assertEqual(list(problem), ["problem"])

    def test_a_watch_goes_on_without_the_one_that_ended_and_says_so(self):
        self.use_two()
        self.script("[scripted_all]", "delay StartDeviceScan 500", "result StartDeviceScan 6",
                    "[scripted_all_b]", "until-stopped", device("SN1", vendor="sound"))
        process = self.start_app("scan", "--watch")
        self.assert_mentions(process.stderr.readline().decode(), "warning: vendor broken does not")
        time.sleep(0.5)
        self.assertIsNone(process.poll(), "the other looks on")

    def test_a_result_after_the_stop_is_no_failure(self):
        self.script("until-stopped", "result StartDeviceScan 9")
        result = self.run_app("scan", "--seconds", "1")
        self.assert_status(result, NONE_FOUND)
        self.assertNotIn("result 9", result.errors)

    def test_a_state_that_nobody_looked_for_is_status_3(self):
        self.script("result StartDeviceScan 7")
        self.assert_nobody_looks(self.run_app("state", "SN1", "--seconds", "300"), "result 7")

    def test_a_model_that_is_no_product_of_the_list_is_named_once(self):
        self.script(device("SN1", vendor="acme"), device("SN2", vendor="acme"),
                    device("SN3", vendor="ACME"), device("SN4"))
        result = self.run_app("scan", "--seconds", "1")
        self.assert_status(result, FOUND)
        self.assertEqual(result.errors.count("modelID 'acme'"), 1)
        self.assertEqual(result.errors.count("modelID 'ACME'"), 1)
        self.assertNotIn("'scripted'", result.errors)


class Floods(AppTest):
    """Of many lines about one thing the first ones are told, and how many more there are."""

    def test_of_models_that_are_no_product_of_the_list(self):
        self.script(*(device(f"SN{number}", vendor=f"acme{number}") for number in range(1000)))
        result = self.run_app("scan", "--seconds", "6")
        self.assert_status(result, FOUND)
        self.assertEqual(len(result.output.splitlines()), 1000)
        self.assertEqual(result.errors.count("with the modelID"), 20)
        self.assert_mentions(result.errors, "warning: and 980 more modelIDs that are not in the vendor list")

    def test_of_a_broken_vendor_list(self):
        self.list_file = self.vendor_list([("scripted", "scripted_all"), *(1000 * [("", "x")])])
        self.script(device("SN1"))
        for command in (["scan", "--seconds", "0.5"], ["vendors"]):
            with self.subTest(command):
                result = self.run_app(*command)
                self.assert_status(result, FOUND)
                self.assertEqual(len(result.errors.splitlines()), 21)
                self.assert_mentions(result.errors, "vendors[20]", "warning: and 980 more\n")
        self.assertLess(self.read(self.path("DeviceDiscover/DeviceDiscover.log")).count("vendors["), 200)

    def test_of_vendors_whose_scan_fails(self):
        self.list_file = self.vendor_list([("sound", "scripted_all_b"),
                                           *((f"v{number}", "no_such_module") for number in range(100))])
        self.script(device("SN1", vendor="sound"))
        result = self.run_app("scan", "--seconds", "0.5")
        self.assert_status(result, FOUND)
        self.assertEqual(len(result.errors.splitlines()), 21)


class WithoutALog(AppTest):
    def test_one_that_cannot_be_written_is_not_where_the_reason_is(self):
        for value in ("XDG_STATE_HOME", "LOCALAPPDATA"):
            self.environment[value] = app_test.system_path(self.write("no-folder", ""))
        result = self.run_app("scan", "--seconds", "0.5")
        self.assert_status(result, NONE_FOUND)
        self.assert_mentions(result.errors, "There is no log")
        self.assertNotIn("is in the log", result.errors)


class Prints(AppTest):
    def test_of_a_vendor_do_not_reach_what_the_program_writes(self):
        self.script(r'print "noise\n"', device("SN1"))
        result = self.run_app("scan", "--json", "--seconds", "1")
        self.assert_status(result, FOUND)
        self.assertEqual([printer["serialNumber"] for printer in json_lines(result.output)],
                         ["SN1"])
        self.assert_mentions(result.errors, "noise")
        self.assertEqual(len(self.run_app("scan", "--seconds", "1").output.splitlines()), 1)


class ClosedStreams(AppTest):
    """Streams that are closed when the program starts."""

    def run_closed(self, closed, *arguments):
        command = ["sh", "-c", f'exec "$@" {closed}', "sh", *self.command(*arguments)]
        return subprocess.run(command, env=self.environment, timeout=app_test.PATIENCE,
                              stdin=subprocess.PIPE, capture_output=True)

    def test_output_that_nobody_can_see_is_no_success(self):
        self.script(device("SN1"))
        for arguments in (["scan", "--seconds", "1"], ["vendors"], ["--version"]):
            command = self.run_closed(">&-", *arguments) if arguments != ["--version"] else (
                self.run_closed_unlisted(">&-", "--version"))
            self.assertEqual(command.returncode, COULD_NOT_RUN, command.stderr)
            self.assertIn(b"cannot write to standard output", command.stderr)

    def run_closed_unlisted(self, closed, *arguments):
        command = ["sh", "-c", f'exec "$@" {closed}', "sh",
                   *self.command(*arguments, listed=False)]
        return subprocess.run(command, env=self.environment, timeout=app_test.PATIENCE,
                              stdin=subprocess.PIPE, capture_output=True)

    def test_a_pass_phrase_from_a_closed_input_is_an_error_at_once(self):
        result = self.run_closed("<&-", "wifi", "join", "Office", "--pass-phrase-file", "-")
        self.assertEqual(result.returncode, USAGE, result.stderr)
        self.assertIn(b"standard input contains no pass phrase", result.stderr)

    def test_without_standard_error_the_command_works(self):
        self.script(r'print "noise\n"', device("SN1"))
        result = self.run_closed("2>&-", "scan", "--json", "--seconds", "1")
        self.assertEqual(result.returncode, FOUND)
        self.assertEqual(len(json_lines(result.stdout.decode())), 1)


class ScanLog(AppTest):
    def test_log_lines_go_to_standard_error_on_request_only(self):
        self.script("result StartDeviceScan 7")
        quiet = self.run_app("scan", "--seconds", "1")
        self.assertNotIn("call Func fail", quiet.errors)
        loud = self.run_app("scan", "--seconds", "1", "--log-level", "error")
        self.assert_mentions(loud.errors, "call Func fail, err:7")
        self.assertNotIn("Start Device Scan", loud.errors)
        self.assertEqual(loud.output, "")

    def test_the_log_file_gets_the_lines(self):
        log = app_test.system_path(self.log_file)
        self.run_app("scan", "--seconds", "0.2", "--log-file", log)
        self.assert_mentions(self.read(self.log_file), "Start Device Scan", "Stop Device Scan")

    def assert_logs_to(self, log):
        result = self.run_app("scan", "--seconds", "0.2")
        self.assert_status(result, NONE_FOUND)
        self.assert_mentions(result.errors, f"({log})")
        self.assert_mentions(self.read(log), "Start Device Scan", "Stop Device Scan")

    @unittest.skipUnless(ON_WINDOWS, "folders of Windows")
    def test_without_a_name_it_is_in_the_user_s_local_folder(self):
        # The emulator has a user of its own, whatever the environment says.
        result = self.run_app("scan", "--seconds", "0.2")
        self.assertRegex(result.errors,
                         r"\([A-Z]:\\.*\\AppData\\Local\\DeviceDiscover\\DeviceDiscover\.log\)")

    @unittest.skipIf(ON_WINDOWS, "folders of Linux")
    def test_without_a_name_it_is_in_the_user_s_state_folder(self):
        for other in ("XDG_STATE_HOME", "XDG_CONFIG_HOME"):
            os.mkdir(self.path(other))
            self.environment[other] = self.path(other)
        self.assert_logs_to(self.path("XDG_STATE_HOME/DeviceDiscover/DeviceDiscover.log"))

    @unittest.skipIf(ON_WINDOWS, "folders of Linux")
    def test_the_state_folder_is_in_the_home_folder_unless_it_is_named(self):
        self.environment["HOME"] = self.folder
        for state in (None, ""):
            with self.subTest(state):
                self.environment.pop("XDG_STATE_HOME", None)
                if state is not None:
                    self.environment["XDG_STATE_HOME"] = state
                self.assert_logs_to(
                    self.path(".local/state/DeviceDiscover/DeviceDiscover.log"))

    def test_off_keeps_no_log(self):
        log = app_test.system_path(self.log_file)
        result = self.run_app("scan", "--seconds", "0.2", "--log-level", "off", "--log-file", log)
        self.assertFalse(os.path.exists(self.log_file))
        self.assertNotIn("Start Device Scan", result.errors)

    def test_a_log_file_that_cannot_be_written_is_told(self):
        log = app_test.system_path(self.path("no/such/folder/log"))
        result = self.run_app("scan", "--log-file", log)
        self.assert_status(result, COULD_NOT_RUN)
        self.assert_mentions(result.errors, log, "--log-file")

    @unittest.skipIf(ON_WINDOWS, "modes of Linux")
    def test_the_log_file_is_for_the_user_alone(self):
        self.run_app("scan", "--seconds", "0.2", "--log-file", self.log_file, umask=0o022)
        self.assertEqual(stat.S_IMODE(os.stat(self.log_file).st_mode), 0o600)

    @unittest.skipIf(ON_WINDOWS, "pipes and devices of Linux")
    def test_what_is_no_file_cannot_be_the_log(self):
        os.mkfifo(self.path("pipe"))
        for name in (self.path("pipe"), self.folder, "/dev/null"):
            with self.subTest(name):
                result = self.run_app("scan", "--seconds", "0.2", "--log-file", name)
                self.assert_status(result, COULD_NOT_RUN)
                self.assert_mentions(result.errors, name, "not a regular file")
                self.assertEqual(self.records(), [])


class ScanWithoutThreads(AppTest):
    @unittest.skipIf(ON_WINDOWS or "DEVICEDISCOVER_SANITIZED" in os.environ,
                     "stacks that are too large for the address space, where no sanitizer has its own")
    def test_a_program_that_gets_no_thread_says_so_also_in_json(self):
        stack = 2**46
        result = self.run_app("scan", "--json", preexec_fn=lambda: resource.setrlimit(
            resource.RLIMIT_STACK, (stack, resource.RLIM_INFINITY)))
        self.assert_status(result, COULD_NOT_RUN)
        problem, = json_lines(result.output)
        self.assertIn(f"devicediscover: {problem['problem']}\n", result.errors)
        self.assert_mentions(problem["problem"], "the program cannot go on: ")


class ScanWithoutReader(AppTest):
    @unittest.skipIf(ON_WINDOWS, "there a reader that leaves is seen with the next line only")
    def test_a_reader_that_leaves_ends_the_scan_quietly(self):
        self.script(device("SN1"), "until-stopped")
        process = self.start_app("scan", "--watch")
        self.assertTrue(process.stdout.readline().startswith(b"SN1"))
        process.stdout.close()
        self.assertEqual(process.wait(app_test.PATIENCE), FOUND)
        self.assertEqual(process.stderr.read(), b"")
        self.assertEqual(self.calls_of("StopDeviceScan"), ["scripted_all"])

    @unittest.skipIf(ON_WINDOWS, "there a reader that leaves is seen with the next line only")
    def test_a_reader_that_leaves_before_the_first_printer_is_no_failure_either(self):
        self.script("until-stopped")
        process = self.start_app("scan", "--watch")
        self.wait_until(lambda: self.calls_of("StartDeviceScan"), "the vendor's scan starts")
        process.stdout.close()
        self.assertEqual(process.wait(app_test.PATIENCE), FOUND)
        self.assertEqual(process.stderr.read(), b"")
        self.assertEqual(self.calls_of("StopDeviceScan"), ["scripted_all"])

    def test_head_takes_one_line(self):
        self.script("interval 1", "until-stopped", *(device(f"SN{n}") for n in range(500)))
        process = self.start_app("scan", "--watch", "--json")
        head = subprocess.run(["head", "-1"], stdin=process.stdout, capture_output=True,
                              timeout=app_test.PATIENCE)
        process.stdout.close()
        self.assertEqual(len(head.stdout.splitlines()), 1)
        self.assertEqual(process.wait(app_test.PATIENCE), FOUND)
        self.assertEqual(process.stderr.read(), b"")


if __name__ == "__main__":
    app_test.main()

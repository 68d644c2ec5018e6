# SPDX-License-Identifier: Apache-2.0
"""Ending a scan before its time: by Ctrl-C, on Linux by other signals too.

The emulator of Windows makes Ctrl-C of SIGINT."""

import os
import pty
import signal
import time
import unittest

import app_test
from app_test import FOUND, NONE_FOUND, ON_WINDOWS, AppTest, device, json_lines, system_path

REQUESTS = [signal.SIGINT] if ON_WINDOWS else [signal.SIGINT, signal.SIGTERM, signal.SIGHUP]
# As the system reports it; the emulator passes the lowest byte on.
ENDED_BY_CTRL_C = 0xC000013A & 0xFF if ON_WINDOWS else -signal.SIGINT

on_linux = unittest.skipIf(ON_WINDOWS, "there is no such thing on Windows")


class Interrupt(AppTest):
    def start_scan(self, *arguments):
        process = self.start_app("scan", *arguments)
        self.wait_until(lambda: self.calls_of("StartDeviceScan"), "the vendor's scan starts")
        return process

    def end_with(self, process, request):
        process.send_signal(request)
        output, errors = process.communicate(timeout=app_test.PATIENCE)
        return output.decode(), self.without_the_word(errors.decode())

    def without_the_word(self, errors):
        """A program that takes a moment to end says so, also when it is the machine that is slow."""
        return "".join(line for line in errors.splitlines(keepends=True)
                       if not line.startswith("devicediscover: stopping"))

    def test_each_request_to_end_stops_the_scan_properly(self):
        for request in REQUESTS:
            with self.subTest(request):
                self.setUp()
                self.script(device("SN1"), "until-stopped")
                process = self.start_scan("--watch")
                process.stdout.readline()
                _, errors = self.end_with(process, request)
                self.assertEqual(process.returncode, FOUND)
                self.assertEqual(errors, "")
                self.assertEqual(self.calls_of("StopDeviceScan"), ["scripted_all"])

    def test_a_scan_with_an_end_stops_early_too(self):
        self.script("until-stopped")
        process = self.start_scan("--seconds", "3600")
        self.end_with(process, signal.SIGINT)
        self.assertEqual(process.returncode, NONE_FOUND)
        self.assertEqual(self.calls_of("StopDeviceScan"), ["scripted_all"])

    def stop_with_stalled_reader(self, output, reader):
        """Ctrl-C while nobody reads the other end, which is full."""
        self.script("until-stopped", *(device(f"SN{n}", model="M" * 63) for n in range(1000)))
        process = self.start_app("scan", "--watch", "--json", stdout=output)
        os.close(output)
        self.addCleanup(os.close, reader)
        self.wait_until(lambda: self.calls_of("StartDeviceScan"), "the vendor's scan starts")
        time.sleep(1)
        process.send_signal(signal.SIGINT)
        self.wait_until(lambda: self.calls_of("StopDeviceScan"), "the vendor's scan stops")
        self.assertEqual(process.wait(app_test.PATIENCE), FOUND)
        self.assertEqual(self.without_the_word(process.stderr.read().decode()), "")

    def test_one_request_stops_the_scan_while_a_pipe_s_reader_stalls(self):
        reader, output = os.pipe()
        self.stop_with_stalled_reader(output, reader)

    @on_linux
    def test_one_request_stops_the_scan_while_a_terminal_stalls(self):
        reader, output = pty.openpty()
        self.stop_with_stalled_reader(output, reader)

    @on_linux
    def test_the_output_of_others_stays_one_that_waits(self):
        reader, output = os.pipe()
        self.addCleanup(os.close, reader)
        self.addCleanup(os.close, output)
        self.script(device("SN1"))
        process = self.start_app("scan", "--seconds", "0.5", stdout=output)
        self.assertEqual(process.wait(app_test.PATIENCE), FOUND)
        self.assertTrue(os.get_blocking(output))

    def test_a_slow_reader_gets_everything(self):
        serials = [f"SN{n}" for n in range(1000)]
        self.script(*(device(serial, model="M" * 63) for serial in [*serials, "last"]),
                    "until-stopped")
        process = self.start_scan("--watch", "--json", "--log-file", system_path(self.log_file))
        self.wait_until(lambda: os.path.exists(self.log_file) and
                        self.read(self.log_file).count(" callback(") > len(serials),
                        "all but the last are with the application")
        process.send_signal(signal.SIGINT)
        time.sleep(0.3)
        lines = json_lines(process.stdout.read().decode())
        self.assertEqual(process.wait(app_test.PATIENCE), FOUND)
        self.assertEqual([line["serialNumber"] for line in lines][:1000], serials)

    def test_watch_goes_on_until_interrupted(self):
        self.script(device("SN1"), "until-stopped")
        process = self.start_scan("--watch", "--json")
        time.sleep(7)  # longer than a scan without --watch
        self.assertIsNone(process.poll())
        self.end_with(process, signal.SIGINT)
        self.assertEqual(process.returncode, FOUND)

    def test_one_ctrl_c_ends_it_though_a_vendor_does_not_stop(self):
        self.script(device("SN1"), "until-stopped", "delay StopDeviceScan 60000",
                    "result GetDeviceConnectState 1")
        for arguments, status in ((["scan", "--watch"], FOUND),
                                  (["state", "SN2", "--seconds", "3600"], NONE_FOUND)):
            with self.subTest(arguments):
                calls = len(self.calls_of("StartDeviceScan"))
                process = self.start_app(*arguments)
                self.wait_until(lambda: len(self.calls_of("StartDeviceScan")) > calls,
                                "the vendor's scan starts")
                if status == FOUND:
                    process.stdout.readline()  # the vendor starts before it reports
                start = time.monotonic()
                _, errors = self.end_with(process, signal.SIGINT)
                self.assertLess(time.monotonic() - start, 20)
                self.assertEqual(process.returncode, status, errors)
                self.assert_mentions(
                    errors,
                    "warning: vendor scripted (StopDeviceScan) did not return in time")

    def test_a_vendor_that_stops_a_little_late_is_waited_for(self):
        self.script("until-stopped", "delay StopDeviceScan 1000")
        process = self.start_scan("--watch")
        start = time.monotonic()
        _, errors = self.end_with(process, signal.SIGINT)
        self.assertGreater(time.monotonic() - start, 1)
        self.assertNotIn("warning", errors)

    def test_a_second_ctrl_c_ends_at_once(self):
        # Before nobody waits for the vendor any more, which ends the program too.
        self.script("until-stopped", "delay StopDeviceScan 30000")
        process = self.start_scan("--watch")
        process.send_signal(signal.SIGINT)
        self.wait_until(lambda: self.calls_of("StopDeviceScan"), "the vendor's stop is called")
        start = time.monotonic()
        _, errors = self.end_with(process, signal.SIGINT)
        self.assertEqual(process.returncode, ENDED_BY_CTRL_C)
        self.assertLess(time.monotonic() - start, 10)
        self.assertEqual(errors, "")

    @on_linux
    def test_a_program_started_to_ignore_ctrl_c_goes_on_ignoring_it(self):
        self.script(device("SN1"), "until-stopped")
        process = self.start_app(
            "scan", "--watch", preexec_fn=lambda: signal.signal(signal.SIGINT, signal.SIG_IGN))
        process.stdout.readline()
        process.send_signal(signal.SIGINT)
        time.sleep(1)
        self.assertIsNone(process.poll())
        self.end_with(process, signal.SIGTERM)
        self.assertEqual(process.returncode, FOUND)

    def test_a_search_for_one_printer_can_be_interrupted(self):
        self.script("until-stopped")
        process = self.start_app("state", "SN1", "--seconds", "3600")
        self.wait_until(lambda: self.calls_of("StartDeviceScan"), "the vendor's scan starts")
        _, errors = self.end_with(process, signal.SIGINT)
        self.assertEqual(process.returncode, NONE_FOUND)
        self.assert_mentions(errors, "interrupted")
        self.assertEqual(self.calls_of("StopDeviceScan"), ["scripted_all"])

    def test_reports_after_the_stop_do_no_harm(self):
        self.script(device("SN1"), "until-stopped", "after-stop 100", "threads 4")
        process = self.start_scan("--watch")
        process.stdout.readline()
        output, errors = self.end_with(process, signal.SIGINT)
        self.assertEqual((process.returncode, output, errors), (FOUND, "", ""))


if __name__ == "__main__":
    app_test.main()

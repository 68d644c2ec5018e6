# SPDX-License-Identifier: Apache-2.0
"""Vendors that hang, crash, throw or end the program: named, and left behind."""

import os
import signal
import time
import unittest

import app_test
from app_test import (COULD_NOT_RUN, FOUND, MODULES, NONE_FOUND, ON_WINDOWS, AppTest, device, json_lines,
                      system_path)
from setup_test import PRINTER, SetupTest
from usb_host_test import UsbTest, port, usb_device

# A sanitizer would end a program that crashes itself, with a status of its own.
for options in ("ASAN_OPTIONS", "TSAN_OPTIONS"):
    if options in os.environ:
        os.environ[options] += ":handle_segv=0"

on_linux = unittest.skipIf(ON_WINDOWS, "there is no such thing on Windows")

# As the emulator passes them on: the lowest byte.
CRASHED = 5 if ON_WINDOWS else -signal.SIGSEGV
ABORTED = 3 if ON_WINDOWS else -signal.SIGABRT

STATE = ["state", "SN1", "--seconds", "20"]
# An entry point, and a command that calls it. USB needs printers that are plugged in.
COMMANDS = {
    "StartDeviceScan": ["scan", "--seconds", "20"],
    "StopDeviceScan": ["scan", "--seconds", "0.5"],
    "GetDeviceConnectState": STATE,
    "StartAPWifiScan": ["ap", "scan", "--seconds", "20"],
    "StopAPWifiScan": ["ap", "scan", "--seconds", "0.5"],
    "IsConnectCurrentWifiAP": ["ap", "info"],
    "GetDeviceInfoByNet": ["ap", "info"],
    "PrinterAPNetConfigEvent": ["ap", "configure", "--network", "Office", "--open"],
    "IsLocalAreaNetworkOK": ["ap", "check", "SN1", "--vendor", "scripted"],
}
ON_A_THREAD_OF_ITS_OWN = ("StartDeviceScan", "StartAPWifiScan")


class Misbehaviour(AppTest):
    def misbehave(self, entry_point, how, *lines):
        self.script(device("SN1"), 'network 50 "Office" ""', *lines,
                    f"misbehave {entry_point} {how}")

    def run_into(self, entry_point, how, *lines):
        """Runs a command into the misbehaviour; the log goes to a file of its own."""
        self.misbehave(entry_point, how, *lines)
        log = self.path(f"log-{entry_point}-{how}")
        result = self.run_app(*COMMANDS[entry_point], "--log-file", system_path(log))
        result.log = self.read(log)
        return result

    def assert_told(self, result, how, entry_point):
        name = f"vendor scripted ({entry_point})"
        self.assert_mentions(result.errors, f"devicediscover: the program {how}", name)
        self.assert_mentions(result.log, how, name)

    def test_a_crash_is_named_wherever_it_is(self):
        for entry_point in COMMANDS:
            with self.subTest(entry_point):
                result = self.run_into(entry_point, "crash")
                self.assert_status(result, CRASHED)
                self.assert_told(result, "crashed", entry_point)

    def test_an_abort_is_named(self):
        for entry_point in ("StartDeviceScan", "GetDeviceConnectState"):
            with self.subTest(entry_point):
                result = self.run_into(entry_point, "abort")
                self.assert_status(result, ABORTED)
                self.assert_told(result, "was aborted", entry_point)

    def test_a_stack_that_is_used_up_is_named(self):
        for entry_point in ("StartDeviceScan", "GetDeviceConnectState"):
            with self.subTest(entry_point):
                result = self.run_into(entry_point, "overflow")
                self.assert_told(result, "crashed", entry_point)
                if ON_WINDOWS:
                    self.assert_mentions(result.errors, "(stack overflow)")
                self.assertNotIn(result.returncode, (FOUND, NONE_FOUND))

    def test_an_exit_is_named_and_is_no_success(self):
        for entry_point in COMMANDS:
            with self.subTest(entry_point):
                result = self.run_into(entry_point, "exit")
                self.assert_status(result, COULD_NOT_RUN)
                self.assert_told(result, "was ended by a call of exit()", entry_point)

    def test_an_end_that_is_none_of_its_own_is_an_object_for_json(self):
        for how, status in (("exit", COULD_NOT_RUN), ("crash", CRASHED)):
            with self.subTest(how):
                self.misbehave("GetDeviceConnectState", how)
                result = self.run_app(*STATE, "--json")
                self.assert_status(result, status)
                problem, = json_lines(result.output)
                self.assertIn(f"devicediscover: {problem['problem']}\n", result.errors)
                self.assert_mentions(problem["problem"], "vendor scripted (GetDeviceConnectState)")

    def test_an_end_after_what_was_found_is_a_line_of_its_own_for_json(self):
        self.script(device("SN1"), "until-stopped", "misbehave StopDeviceScan exit")
        result = self.run_app("scan", "--seconds", "1", "--json")
        found, problem = json_lines(result.output)
        self.assertEqual(found["serialNumber"], "SN1")
        self.assert_mentions(problem["problem"], "StopDeviceScan")

    def test_without_json_an_end_is_told_on_standard_error_only(self):
        result = self.run_into("GetDeviceConnectState", "exit")
        self.assertEqual(result.output, "")

    def test_a_quick_exit_is_named_and_is_no_success(self):
        for entry_point in ("StartDeviceScan", "GetDeviceConnectState"):
            with self.subTest(entry_point):
                result = self.run_into(entry_point, "quick-exit")
                self.assert_status(result, COULD_NOT_RUN)
                self.assert_told(result, "was ended by a call of exit()", entry_point)

    def test_an_exception_of_a_scan_is_named(self):
        for entry_point in ON_A_THREAD_OF_ITS_OWN:
            with self.subTest(entry_point):
                result = self.run_into(entry_point, "throw")
                self.assert_status(result, ABORTED)
                self.assert_told(result, "was aborted", entry_point)

    def test_an_exception_of_a_call_is_named_and_ends_the_command_only(self):
        for entry_point in set(COMMANDS) - {*ON_A_THREAD_OF_ITS_OWN, "StopDeviceScan",
                                            "StopAPWifiScan"}:
            for how, what in (("throw", ": the vendor's own mistake"), ("throw-other", "")):
                with self.subTest(entry_point, how=how):
                    result = self.run_into(entry_point, how)
                    self.assert_status(result, COULD_NOT_RUN)
                    self.assert_mentions(
                        result.errors,
                        f"vendor scripted ({entry_point}) threw an exception{what}\n")

    @on_linux
    def test_a_call_that_ends_its_thread_ends_the_command_only(self):
        for entry_point in ("GetDeviceConnectState", "GetDeviceInfoByNet", "IsLocalAreaNetworkOK"):
            with self.subTest(entry_point):
                result = self.run_into(entry_point, "end-thread")
                self.assert_status(result, COULD_NOT_RUN)
                self.assert_mentions(result.errors,
                                     f"devicediscover: vendor scripted ({entry_point}) ended the "
                                     "thread on which it was called\n")

    @on_linux
    def test_a_scan_that_ends_its_thread_is_named(self):
        result = self.run_into("StartDeviceScan", "end-thread")
        self.assert_status(result, COULD_NOT_RUN)
        self.assert_mentions(result.errors, "vendor scripted does not look for printers: its scan "
                                            "threw an exception or ended its thread")

    def test_an_exception_of_a_stop_costs_only_the_stop(self):
        for entry_point in ("StopDeviceScan", "StopAPWifiScan"):
            with self.subTest(entry_point):
                result = self.run_into(entry_point, "throw-other")
                self.assert_mentions(
                    result.errors, f"vendor scripted ({entry_point}) threw an exception")
                self.assertNotEqual(result.output, "")

    def test_the_vendor_on_whose_thread_it_happened_comes_first(self):
        self.list_file = self.vendor_list([("one", "scripted_all"), ("two", "scripted_all_b"),
                                           ("zero", "scripted_all_c")])
        self.script("until-stopped", "[scripted_all_b]", "delay StartDeviceScan 300",
                    "misbehave StartDeviceScan crash")
        result = self.run_app("scan", "--seconds", "20")
        self.assert_status(result, CRASHED)
        self.assert_mentions(result.errors, " in vendor two (StartDeviceScan); also under way: ",
                             "vendor one (StartDeviceScan)", "vendor zero (StartDeviceScan)")


class MisbehaviourOverUsb(UsbTest):
    COMMANDS = {
        "GetDeviceInfoByUsb": ["usb", "ports"],
        "USBWifiScan": ["usb", "networks", "SN1"],
        "PrinterUSBNetConfigEvent": ["usb", "configure", "SN1", "--network", "Office", "--open"],
    }

    def run_into(self, entry_point, how):
        self.script(usb_device("SN1"), f"misbehave {entry_point} {how}")
        self.host(port())
        return self.run_app(*self.COMMANDS[entry_point], "--vendor-seconds", "1")

    def test_a_crash_is_named(self):
        for entry_point in self.COMMANDS:
            with self.subTest(entry_point):
                result = self.run_into(entry_point, "crash")
                self.assert_status(result, CRASHED)
                self.assert_mentions(result.errors, "devicediscover: the program crashed",
                                     f"vendor scripted ({entry_point})")

    def test_a_vendor_that_does_not_answer_is_named_and_left_behind(self):
        for entry_point in self.COMMANDS:
            with self.subTest(entry_point):
                result = self.run_into(entry_point, "hang")
                self.assert_status(result, COULD_NOT_RUN)
                self.assert_mentions(result.errors,
                                     f"no answer from vendor scripted ({entry_point}) within 1 s")


class MisbehaviourInSetup(SetupTest):
    def run_into(self, entry_point, how):
        self.script(PRINTER, f"misbehave {entry_point} {how}")
        return self.setup("--vendor-seconds", "1")

    def test_a_crash_is_named(self):
        for entry_point in ("GetDeviceInfoByNet", "PrinterAPNetConfigEvent", "StartDeviceScan",
                            "IsLocalAreaNetworkOK"):
            with self.subTest(entry_point):
                result = self.run_into(entry_point, "crash")
                self.assert_status(result, CRASHED)
                self.assert_mentions(result.errors, f"vendor scripted ({entry_point})")
                self.assert_not_shown(result)

    def test_a_vendor_that_does_not_answer_is_named_and_left_behind(self):
        for entry_point in ("GetDeviceInfoByNet", "PrinterAPNetConfigEvent",
                            "IsLocalAreaNetworkOK"):
            with self.subTest(entry_point):
                result = self.run_into(entry_point, "hang")
                self.assert_status(result, COULD_NOT_RUN)
                self.assert_mentions(result.errors,
                                     f"no answer from vendor scripted ({entry_point}) within 1 s")


class Hanging(AppTest):
    def run_hanging(self, commands, limit=1):
        """Runs commands side by side, each with its script; what each told, in the same order."""
        started = []
        for number, (arguments, lines) in enumerate(commands):
            script = self.write(f"script-{number}", "\n".join(
                [device("SN1"), 'network 50 "Office" ""', *lines]) + "\n")
            self.environment["SCRIPTED_VENDOR_SCRIPT"] = system_path(script)
            started.append(self.start_app(*arguments, "--vendor-seconds", str(limit)))
        results = []
        for process in started:
            output, errors = process.communicate(timeout=app_test.PATIENCE)
            results.append((process.returncode, output.decode(), errors.decode()))
        return results

    def test_a_module_that_hangs_while_it_is_loaded_is_named(self):
        self.list_file = self.vendor_list([("one", "scripted_hangs_at_load")])
        commands = [["scan"], ["state", "SN1"], ["vendors"], ["ap", "info"]]
        for status, _, errors in self.run_hanging([(command, []) for command in commands]):
            self.assertEqual(status, COULD_NOT_RUN, errors)
            self.assert_mentions(errors, "no answer from module ", "scripted_hangs_at_load",
                                 ", which is being loaded, within 1 s")

    @on_linux
    def test_a_module_that_ends_the_program_while_it_is_loaded_is_named(self):
        for module, status, how in (
                ("scripted_crashes_at_load", CRASHED, "the program crashed (SIGSEGV)"),
                ("scripted_exits_at_load", COULD_NOT_RUN, "the program was ended by a call of exit()")):
            for command in ("scan", "vendors"):
                with self.subTest(module, command=command):
                    self.list_file = self.vendor_list([("one", module)])
                    log = self.path(f"log-{module}-{command}")
                    result = self.run_app(command, "--log-file", log)
                    self.assert_status(result, status)
                    told = f"{how}; being loaded: {os.path.realpath(MODULES)}/{module}.so\n"
                    self.assertEqual(result.errors, f"devicediscover: {told}")
                    self.assertIn(told, self.read(log))

    @on_linux
    def test_a_module_that_hangs_when_the_program_ends_does_not_keep_it(self):
        self.list_file = self.vendor_list([("one", "scripted_hangs_at_end")])
        result = self.run_app("vendors", "--json")
        self.assert_status(result, NONE_FOUND)
        self.assert_mentions(result.errors, "a module keeps the program from ending")
        self.assertEqual([one for one in json_lines(result.output) if "problem" in one], [],
                         "what was asked has its answer")

    def test_a_vendor_that_does_not_answer_is_named_and_left_behind(self):
        questions = [name for name in COMMANDS if not name.startswith(("Start", "Stop"))]
        results = self.run_hanging([(COMMANDS[name], [f"misbehave {name} hang"])
                                    for name in questions])
        for name, (status, _, errors) in zip(questions, results):
            with self.subTest(name):
                self.assertEqual(status, COULD_NOT_RUN, errors)
                self.assert_mentions(
                    errors, f"no answer from vendor scripted ({name}) within 1 s", "--vendor-seconds")

    def test_a_stop_that_hangs_costs_3_seconds_and_not_what_was_found(self):
        commands = ["scan --seconds 0.5", "state SN1", "ap scan --seconds 0.5"]
        stops = ["StopDeviceScan", "StopDeviceScan", "StopAPWifiScan"]
        results = self.run_hanging([(command.split(), [f"misbehave {stop} hang"])
                                    for command, stop in zip(commands, stops)])
        for command, stop, (status, output, errors) in zip(commands, stops, results):
            with self.subTest(command):
                self.assertEqual(status, FOUND, errors)
                self.assertNotEqual(output, "")
                self.assert_mentions(
                    errors, f"warning: vendor scripted ({stop}) did not return in time")

    def test_another_vendor_s_hanging_stop_costs_no_answer(self):
        self.list_file = self.vendor_list([("aaa", "scripted_all_b"), ("scripted", "scripted_all")])
        script = ["[scripted_all_b]", "misbehave StopDeviceScan hang"]
        [(status, output, errors)] = self.run_hanging([(["state", "SN1", "--json"], script)])
        self.assertEqual(status, FOUND, errors)
        self.assertEqual(json_lines(output)[0]["state"], 1)
        self.assert_mentions(errors, "vendor aaa (StopDeviceScan) did not return in time")

    def test_a_scan_that_never_returns_does_not_keep_the_program(self):
        [(status, output, errors)] = self.run_hanging(
            [(["scan", "--seconds", "0.5"], ["misbehave StartDeviceScan hang"])])
        self.assertEqual((status, output), (NONE_FOUND, ""), errors)

    def test_the_first_request_to_end_is_answered_also_while_a_vendor_hangs(self):
        self.script(device("SN1"), "misbehave GetDeviceConnectState hang")
        for request in [signal.SIGINT] if ON_WINDOWS else [signal.SIGINT, signal.SIGTERM]:
            with self.subTest(request):
                calls = len(self.calls_of("GetDeviceConnectState"))
                process = self.start_app("state", "SN1")
                self.wait_until(lambda: len(self.calls_of("GetDeviceConnectState")) > calls,
                                "the vendor is asked")
                process.send_signal(request)
                start = time.monotonic()
                _, errors = process.communicate(timeout=app_test.PATIENCE)
                self.assertLess(time.monotonic() - start, 15)
                self.assertEqual(process.returncode, NONE_FOUND)
                self.assert_mentions(errors.decode(), "interrupted")

    def test_a_stop_that_hangs_is_named_as_soon_as_the_program_is_to_end(self):
        self.script(device("SN1"), "until-stopped", "misbehave StopDeviceScan hang")
        process = self.start_app("scan", "--watch")
        self.wait_until(lambda: self.calls_of("StartDeviceScan"), "the vendor's scan starts")
        process.send_signal(signal.SIGINT)
        # Before the program has left the vendor behind.
        self.assertRegex(process.stderr.readline().decode(),
                         r"stopping, waiting for vendor scripted \(StopDeviceScan\); another Ctrl-C")
        self.assertEqual(process.wait(app_test.PATIENCE), FOUND)


if __name__ == "__main__":
    app_test.main()

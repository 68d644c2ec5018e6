# SPDX-License-Identifier: Apache-2.0
"""`devicediscover setup --usb`: a printer's whole way onto the network, over its cable."""

import os
import struct
import subprocess
import time
import unittest

import app_test
from app_test import COULD_NOT_RUN, FOUND, NONE_FOUND, ON_WINDOWS, USAGE, device, json_lines
from host_test import PASS_PHRASE, Terminal, network, reported
from usb_host_test import UsbTest, port, usb_device, vendor

STEPS = ["printer", "network", "passPhrase", "configure", "rejoin", "find"]
ON_USB = ["[scripted_all]", usb_device("SN0"), usb_device("SN1", "Fake 7")]
ON_NETWORK = ["[scripted_all_b]", device("SN0", address="192.0.2.9"),
              device("SN1", model="Fake 7", address="192.0.2.7")]


class UsbSetupTest(UsbTest):
    def setUp(self):
        super().setUp()
        # The printer is not the same record on USB and on the network.
        self.list_file = self.vendor_list([vendor(scan_module="scripted_all_b")])
        self.usb_and_network([], [])
        self.host(port(devices=2), 'joined "Elsewhere" "00:11:22:33:44:55" "wlan0"')

    def usb_and_network(self, on_usb, on_network):
        """What the vendor's modules do besides: that for USB, that for scans."""
        self.script(*ON_USB, *on_usb, *ON_NETWORK, *on_network)

    def setup(self, *arguments):
        return self.run_app("setup", "--usb", "SN1", "--network", "Office", "--pass-phrase-file",
                            self.pass_phrase_file(), *arguments)

    def received(self):
        return self.arguments_of("PrinterUSBNetConfigEvent")

    def assert_given_to_the_printer(self, name, pass_phrase=PASS_PHRASE):
        record, = self.received()
        self.assertEqual(record[4:8], b"SN1\0")
        self.assertEqual(record[228:], struct.pack("<f128s32s", 0, name.encode(),
                                                   pass_phrase.encode()))

    def assert_failed(self, step, result, *saying, status=NONE_FOUND):
        self.assert_status(result, status)
        number = STEPS.index(step) + 1
        self.assertEqual(result.errors.count(f"step {number} of 6, "), 1, result.errors)
        self.assert_mentions(result.errors, *saying)
        self.assertIn(f"[{number}/6]", result.output)
        self.assertNotIn(f"[{number + 1}/6]", result.output)
        self.assert_not_shown(result)
        self.assertNotIn(PASS_PHRASE, self.log())


class UsbSetup(UsbSetupTest):
    def test_the_whole_way(self):
        result = self.setup()
        self.assert_status(result, FOUND)
        self.assertEqual(result.output,
                         "[1/6] Which printer\n"
                         "      Fake 7, serial number SN1, vendor scripted\n"
                         "[2/6] Which network\n"
                         "      Office\n"
                         "[3/6] Its pass phrase\n"
                         "      Given\n"
                         "[4/6] Putting the printer on the network\n"
                         "      The printer was put on Office\n"
                         "[5/6] Joining this computer to the network\n"
                         "      This computer stays on the network it is on\n"
                         "[6/6] Finding the printer there\n"
                         "      Fake 7, serial number SN1, is on Office at 192.0.2.7 port 631\n")
        self.assertEqual(result.errors, "")
        self.assert_given_to_the_printer("Office")
        self.assertEqual(self.host_calls("ConnectAP"), [])
        calls = [name for _, name in self.records() if name != "callback"]
        self.assertEqual(calls, ["GetDeviceInfoByUsb", "PrinterUSBNetConfigEvent",
                                 "StartDeviceScan", "IsLocalAreaNetworkOK", "StopDeviceScan"])
        self.assertNotIn(PASS_PHRASE, self.log())

    def test_json_tells_each_step_as_it_begins_and_ends(self):
        result = self.setup("--json")
        self.assert_status(result, FOUND)
        events = json_lines(result.output)
        self.assertEqual(
            [(event["step"], event["state"]) for event in events],
            [(step, state) for step in STEPS
             for state in ("started", "skipped" if step == "rejoin" else "done")])
        self.assertEqual(events[1]["printer"]["serialNumber"], "SN1")
        self.assertEqual(events[7]["result"], 0)
        self.assertEqual(events[11]["printer"]["address"], "192.0.2.7")
        self.assert_not_shown(result)

    def test_the_only_printer_need_not_be_named(self):
        self.script("[scripted_all]", usb_device("SN1"), *ON_NETWORK)
        self.host(port())
        for arguments in (["--usb", "--network", "Office", "--open"],
                          ["--network", "Office", "--open", "--usb"]):
            with self.subTest(arguments):
                self.assert_status(self.run_app("setup", *arguments), FOUND)
        result = self.run_app("setup", "--usb=SN0", "--network", "Office", "--open")
        self.assert_failed("printer", result, "'SN0'")

    def test_one_that_was_found_while_the_vendor_took_its_time_is_named(self):
        self.usb_and_network(["result IsLocalAreaNetworkOK 17",
                              "delay IsLocalAreaNetworkOK 2500"], ["interval 600"])
        result = self.setup("--timeout", "1.5")
        self.assert_failed("find", result, "a printer with that serial number was found at 192.0.2.7")

    def test_a_printer_that_this_computer_itself_announces_is_not_on_the_network_yet(self):
        self.script(*ON_USB, "result IsLocalAreaNetworkOK 17", "[scripted_all_b]",
                    device("SN1", model="Fake 7", address="127.0.0.1", port=60000))
        result = self.setup("--timeout", "1.5")
        self.assert_failed("find", result, "was not found there within 1.5 s")

    def test_a_printer_with_another_serial_number_on_the_network_is_known_to_its_vendor(self):
        for serial, on_network in (("usb:1-4", "UUID-1"), ("SN1", "UUID-1"), ("SN1", None)):
            with self.subTest(serial, on_network=on_network):
                self.setUp()
                self.script("[scripted_all]", usb_device(serial, "Fake 7"), "[scripted_all_b]",
                            *([device(on_network, model="Fake 7")] if on_network else []))
                arguments = ["setup", "--usb", "--network", "Office", "--open", "--timeout", "2"]
                result = self.run_app(*arguments)
                self.assert_status(result, FOUND)
                self.assertEqual(result.output.splitlines()[-1],
                                 f"      Fake 7, serial number {serial}, is on Office, its vendor "
                                 "says; `devicediscover scan` shows where, maybe under another "
                                 "serial number")
                self.assertEqual(result.errors, "")
                question, = self.arguments_of("IsLocalAreaNetworkOK")
                self.assertEqual(question[4:4 + len(serial) + 1], serial.encode() + b"\0")
                event = json_lines(self.run_app(*arguments, "--json").output)[-1]
                self.assertEqual(event, {"step": "find", "state": "done", "network": "Office"})

    def test_the_vendor_is_asked_again_until_it_knows_the_printer(self):
        self.script(*ON_USB, "result IsLocalAreaNetworkOK 17", "[scripted_all_b]", device("UUID-1"))
        result = self.setup("--timeout", "3")
        self.assert_failed("find", result, "was not found there within 3 s: the vendor's result 17")
        self.assertGreaterEqual(len(self.calls_of("IsLocalAreaNetworkOK")), 2)

    def test_a_vendor_that_cannot_tell_is_not_taken_at_its_word(self):
        self.list_file = self.vendor_list([vendor("scripted_without_IsLocalAreaNetworkOK",
                                                  scan_module="scripted_all_b")])
        self.script("[scripted_without_IsLocalAreaNetworkOK]", usb_device("SN1", "Fake 7"),
                    "[scripted_all_b]", device("UUID-1"))
        self.host(port())
        self.assert_failed("find", self.setup("--timeout", "1.5"), "was not found there")

    def test_on_a_terminal_the_network_is_picked_of_those_that_the_printer_sees(self):
        self.usb_and_network([reported("Office", 80), reported("Guests", 40),
                              reported("Elsewhere", 9), reported("Office", 7)], [])
        terminal = Terminal(self, "setup", "--usb", "SN1")
        terminal.expect(r"\[1/6\] Which printer\n +Fake 7, serial number SN1")
        terminal.expect(r"1 +Office *\n *2 +Guests *\n *3 +Elsewhere *\n")
        terminal.expect("Number or name, or Enter to look again:")
        terminal.type("\r")
        terminal.expect("Number or name, or Enter to look again:")
        terminal.type("2\r")
        terminal.expect("Pass phrase of Guests")
        terminal.type(PASS_PHRASE + "\r")
        terminal.expect(r"is on Guests at 192\.0\.2\.7 port 631")
        self.assertEqual(terminal.finish(), FOUND)
        self.assert_given_to_the_printer("Guests")
        self.assertEqual(len(self.calls_of("USBWifiScan")), 2)
        self.assertNotIn(PASS_PHRASE, terminal.text)
        self.assertNotIn(PASS_PHRASE, self.log())

    def test_where_the_printer_sees_none_it_is_the_computer_s_own_list(self):
        for on_usb in ([], [reported("Shop"), "result USBWifiScan 5"]):
            with self.subTest(on_usb):
                self.usb_and_network(on_usb, [])
                self.host(port(devices=2), network("Office"), network("Big Corp", 50, 4, 1))
                terminal = Terminal(self, "setup", "--usb", "SN1", "--open")
                terminal.expect(r"1 +Office *\n")
                self.assertNotIn("Big Corp", terminal.text)
                self.assertNotIn("Shop", terminal.text)
                terminal.type("1\r")
                terminal.expect("is on Office at")
                self.assertEqual(terminal.finish(), FOUND)

    def test_a_printer_that_comes_late_is_waited_for(self):
        self.usb_and_network([], ["interval 1600"])
        result = self.setup("--timeout", "30")
        self.assert_status(result, FOUND)
        self.assert_mentions(result.output, "is on Office at 192.0.2.7 port 631")


class UsbSetupThatFails(UsbSetupTest):
    def test_no_printer_is_plugged_in(self):
        self.host()
        self.assert_failed("printer", self.setup(), "no printer is plugged in", "usb watch",
                           "nothing was changed")
        self.assertEqual(self.records(), [])

    def test_another_printer_is_plugged_in(self):
        result = self.run_app("setup", "--usb", "SN7", "--network", "Office", "--open")
        self.assert_failed("printer", result, "'SN7'", "SN0, SN1", "nothing was changed")

    def test_which_of_several_printers_has_to_be_said(self):
        result = self.run_app("setup", "--usb", "--network", "Office", "--open")
        self.assert_failed("printer", result, "more than one printer", "SN0, SN1", status=USAGE)

    def test_which_of_two_printers_with_one_serial_number_has_to_be_said(self):
        self.script("[scripted_all]", usb_device("SN1", "Fake 7"),
                    usb_device("SN1", "Fake 7", place="usb:1-5"), *ON_NETWORK)
        self.assert_failed("printer", self.setup(), "called 'SN1': usb:1-4, usb:1-5", status=USAGE)
        self.assertEqual(self.received(), [])
        self.assert_status(self.run_app("setup", "--usb", "usb:1-5", "--network", "Office", "--open"),
                           FOUND)
        record, = self.received()
        self.assertIn(b"usb:1-5\0", record)

    def test_a_printer_without_serial_number(self):
        self.script("[scripted_all]", usb_device(""))
        self.host(port())
        result = self.run_app("setup", "--usb", "--network", "Office", "--open")
        self.assert_failed("printer", result, "no serial number", "usb configure")
        self.assertEqual(self.received(), [])

    def test_no_vendor_that_could(self):
        for vendors, saying in (([vendor("scripted_none")], "no vendor can do this"),
                                ([vendor(usb_ids="")], "without USB identifiers")):
            with self.subTest(saying):
                self.list_file = self.vendor_list(vendors)
                self.assert_failed("printer", self.setup(), saying, status=COULD_NOT_RUN)

    def test_a_printer_that_does_not_join(self):
        self.usb_and_network(["result PrinterUSBNetConfigEvent 12"], [])
        self.assert_failed("configure", self.setup(), "not put on Office: vendor scripted has "
                           "failed", "still plugged in", "start the", "log")
        self.assertEqual(json_lines(self.setup("--json").output)[-1]["result"], -1)
        self.assertEqual(self.calls_of("StartDeviceScan"), [])

    def test_a_vendor_that_cannot_configure(self):
        self.list_file = self.vendor_list([vendor("scripted_without_PrinterUSBNetConfigEvent")])
        self.script(usb_device("SN1"))
        self.assert_failed("configure", self.setup(), "PrinterUSBNetConfigEvent",
                           status=COULD_NOT_RUN)

    def test_a_printer_that_is_not_found(self):
        self.script(*ON_USB, "result IsLocalAreaNetworkOK 17", "[scripted_all_b]", device("SN0"),
                    device("SN1", vendor="other"))
        start = time.monotonic()
        self.assert_failed("find", self.setup("--timeout", "1.5"), "was not found there",
                           "wifi current", "scan --watch")
        self.assertGreater(time.monotonic() - start, 1.5)

    def test_ctrl_c_while_the_printer_joins(self):
        self.usb_and_network(["delay PrinterUSBNetConfigEvent 60000"], [])
        terminal = Terminal(self, "setup", "--usb", "SN1", "--network", "Office", "--open")
        terminal.expect("Waiting for the printer to join Office")
        terminal.type("\x03")
        self.assertEqual(terminal.finish(), NONE_FOUND)
        terminal.expect("interrupted. It is not known whether the printer was put on")

    def test_ctrl_c_while_the_printer_is_looked_for_on_usb(self):
        self.usb_and_network(["delay GetDeviceInfoByUsb 60000"], [])
        terminal = Terminal(self, "setup", "--usb", "SN1", "--network", "Office", "--open")
        terminal.expect("Asking the printers on USB who they are")
        terminal.type("\x03")
        self.assertEqual(terminal.finish(), NONE_FOUND)
        terminal.expect("interrupted. Nothing was changed")

    def test_wrong_arguments(self):
        for arguments, saying in ((["--usb", "--seconds", "3", "--network", "x", "--open"],
                                   "--seconds"),
                                  (["--usb", "SN1", "SN2"], "too many"),
                                  (["--usb", "--open"], "--network NAME")):
            with self.subTest(arguments):
                result = self.run_app("setup", *arguments)
                self.assert_status(result, USAGE)
                self.assertEqual(result.output, "")
                self.assert_mentions(result.errors, saying, "devicediscover setup --help")
        self.assertEqual(self.records(), [])

    def test_help_tells_of_it(self):
        self.assert_mentions(self.run_app("setup", "--help", listed=False).output,
                             "--usb [SERIAL]", "devicediscover setup --usb")


@unittest.skipIf(ON_WINDOWS or "DEVICEDISCOVER_SANITIZED" in os.environ,
                 "the memory of a process as Linux shows it; sanitizers keep copies")
class Memory(UsbSetupTest):
    @staticmethod
    def memory_of(process):
        """What may be written to, piece by piece."""
        with open(f"/proc/{process}/maps", encoding="utf-8") as maps, \
                open(f"/proc/{process}/mem", "rb", buffering=0) as memory:
            for line in maps:
                begin, end = (int(text, 16) for text in line.split()[0].split("-"))
                if "w" in line.split()[1]:
                    try:
                        yield os.pread(memory.fileno(), end - begin, begin)
                    except OSError:
                        pass  # it has gone meanwhile

    def holds(self, process, text):
        pieces = (text.encode(), text.encode("utf-32-le"))
        return any(piece in memory for memory in self.memory_of(process) for piece in pieces)

    def test_a_pass_phrase_is_gone_once_the_printer_has_it(self):
        self.script("forgetful", "[scripted_all]", usb_device("SN1"),
                    "delay PrinterUSBNetConfigEvent 10000", "[scripted_all_b]",
                    "until-stopped")
        # A run-time linker that looks functions up at their first call leaves registers on stacks.
        self.environment["LD_BIND_NOW"] = "1"
        process = subprocess.Popen(
            self.command("setup", "--usb", "SN1", "--network", "Office",
                         "--pass-phrase-file", "-"),
            env=self.environment, stdin=subprocess.PIPE, stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        process.stdin.write(PASS_PHRASE.encode() + b"\n")
        process.stdin.close()
        self.wait_until(lambda: self.calls_of("PrinterUSBNetConfigEvent"), "the printer is told")
        self.assertTrue(self.holds(process.pid, PASS_PHRASE[4:]), "what is there is seen")
        self.wait_until(lambda: self.calls_of("StartDeviceScan"), "it looks for the printer")
        # The allocator overwrites the beginning of what it takes back.
        end = time.monotonic() + 5
        while self.holds(process.pid, PASS_PHRASE[4:]) and time.monotonic() < end:
            time.sleep(0.1)
        self.assertFalse(self.holds(process.pid, PASS_PHRASE[4:]))
        self.assertIsNone(process.poll())


if __name__ == "__main__":
    app_test.main()

# SPDX-License-Identifier: Apache-2.0
"""`devicediscover setup`: a printer's whole way onto the network."""

import signal
import struct
import time
import unittest

import app_test
from app_test import COULD_NOT_RUN, FOUND, NONE_FOUND, ON_WINDOWS, USAGE, device, json_lines
from host_test import PASS_PHRASE, HostTest, Terminal, network, reported

STEPS = ["printer", "network", "passPhrase", "configure", "rejoin", "find"]
PRINTER = device("SN1", model="Fake 7", address="192.0.2.7")


class SetupTest(HostTest):
    def setUp(self):
        super().setUp()
        self.script(PRINTER)
        self.host('joined "DIRECT-printer" "00:11:22:33:44:55" "wlan0"', "join 1")

    def setup(self, *arguments):
        return self.run_app("setup", "--network", "Office", "--pass-phrase-file",
                            self.pass_phrase_file(), *arguments)

    def received(self):
        return self.arguments_of("PrinterAPNetConfigEvent")

    def assert_given_to_the_printer(self, name, pass_phrase=PASS_PHRASE):
        self.assertEqual(self.received(), [struct.pack("<f128s32s", 0, name.encode(),
                                                       pass_phrase.encode())])

    def assert_failed(self, step, *arguments, saying, status=NONE_FOUND):
        """The step fails, in words and in JSON, and no later one begins."""
        result = self.setup(*arguments)
        self.assert_status(result, status)
        number = STEPS.index(step) + 1
        self.assertEqual(result.errors.count(f"step {number} of 6, "), 1, result.errors)
        self.assert_mentions(result.errors, *saying)
        self.assertIn(f"[{number}/6]", result.output)
        self.assertNotIn(f"[{number + 1}/6]", result.output)
        self.assert_not_shown(result)
        self.assertNotIn(PASS_PHRASE, self.log())

        result = self.setup("--json", *arguments)
        self.assert_status(result, status)
        event = json_lines(result.output)[-1]
        self.assertEqual((event["step"], event["state"]), (step, "failed"))
        self.assert_mentions(event["problem"], saying[0])
        self.assert_not_shown(result)
        return event


class Setup(SetupTest):
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
                         "      This computer is on Office\n"
                         "[6/6] Finding the printer there\n"
                         "      Fake 7, serial number SN1, is on Office at 192.0.2.7 port 631\n")
        self.assertEqual(result.errors, "")
        self.assert_given_to_the_printer("Office")
        self.assertEqual(self.host_calls("ConnectAP"), [f'ConnectAP "Office" "{PASS_PHRASE}"'])
        calls = [name for _, name in self.records() if name not in
                 ("callback", "IsConnectCurrentWifiAP")]
        self.assertEqual(calls, ["GetDeviceInfoByNet", "PrinterAPNetConfigEvent",
                                 "StartDeviceScan", "IsLocalAreaNetworkOK", "StopDeviceScan"])
        self.assertNotIn(PASS_PHRASE, self.log())

    def test_json_tells_each_step_as_it_begins_and_ends(self):
        result = self.setup("--json")
        self.assert_status(result, FOUND)
        events = json_lines(result.output)
        self.assertEqual([(event["step"], event["state"]) for event in events],
                         [(step, state) for step in STEPS for state in ("started", "done")])
        self.assertEqual(events[1]["printer"]["serialNumber"], "SN1")
        self.assertEqual(events[3]["network"], "Office")
        self.assertEqual(events[7]["result"], 0)
        self.assertEqual(events[11]["printer"]["address"], "192.0.2.7")
        self.assert_not_shown(result)

    def test_the_steps_come_as_they_are_made(self):
        self.script(PRINTER, "delay PrinterAPNetConfigEvent 1500")
        process = self.start_app("setup", "--network", "Office", "--open", "--json")
        for _ in range(7):
            line = process.stdout.readline()
        self.assertIn(b'"configure","state":"started"', line)
        start = time.monotonic()
        self.assertIn(b'"configure","state":"done"', process.stdout.readline())
        self.assertGreater(time.monotonic() - start, 1)

    def test_a_computer_that_is_on_the_network_already_does_not_join_it(self):
        self.host('joined "Office" "00:11:22:33:44:55" "wlan0"')
        self.assert_status(self.setup(), FOUND)
        self.assertEqual(self.host_calls("ConnectAP"), [])

    def test_joining_can_be_left_out(self):
        result = self.setup("--no-rejoin", "--json")
        self.assert_status(result, FOUND)
        self.assertEqual(json_lines(result.output)[-3],
                         {"step": "rejoin", "state": "skipped"})
        self.assertEqual(self.host_calls("ConnectAP"), [])

    def test_joining_is_tried_again(self):
        self.host('joined "DIRECT-printer" "" ""', "join 0", "join 1")
        self.assert_status(self.setup(), FOUND)
        self.assertEqual(len(self.host_calls("ConnectAP")), 2)

    def test_an_open_network(self):
        result = self.run_app("setup", "--network", "Guests", "--open")
        self.assert_status(result, FOUND)
        self.assert_mentions(result.output, "None: the network is open")
        self.assert_given_to_the_printer("Guests", "")
        self.assertEqual(self.host_calls("ConnectAP"), ['ConnectAP "Guests" ""'])

    def test_a_printer_that_comes_late_is_waited_for(self):
        self.script(PRINTER, device("SN0"), "interval 10", "delay StartDeviceScan 2500")
        self.assert_status(self.setup("--timeout", "30"), FOUND)

    def test_the_vendor_is_asked_again_until_it_finds_the_printer_too(self):
        self.script(PRINTER, "result IsLocalAreaNetworkOK 1")
        self.assert_status(self.setup("--timeout", "3.5"), NONE_FOUND)
        self.assertGreaterEqual(len(self.calls_of("IsLocalAreaNetworkOK")), 3)

    def test_a_vendor_that_cannot_tell_need_not(self):
        self.list_file = self.vendor_list([("scripted", "scripted_without_IsLocalAreaNetworkOK")])
        self.assert_status(self.setup(), FOUND)

    def test_a_reader_that_leaves_does_not_leave_the_printer_half_way(self):
        self.script(PRINTER, "delay PrinterAPNetConfigEvent 1000")
        process = self.start_app("setup", "--network", "Office", "--open")
        process.stdout.readline()
        process.stdout.close()
        errors = process.stderr.read()
        if not ON_WINDOWS:  # there the system has more than one word for it
            self.assertEqual(errors, b"")
        self.assertEqual(process.wait(app_test.PATIENCE), FOUND)
        self.assertEqual(self.calls_of("StopDeviceScan"), ["scripted_all"])


    @unittest.skipIf(ON_WINDOWS, "a device of Linux")
    def test_a_full_disk_does_not_leave_the_printer_half_way(self):
        with open("/dev/full", "wb") as full:
            process = self.start_app("setup", "--network", "Office", "--open", stdout=full)
            errors = process.communicate(timeout=app_test.PATIENCE)[1].decode()
        self.assertEqual(process.returncode, FOUND)
        self.assertEqual(errors.count("warning: cannot write to standard output"), 1)
        self.assert_given_to_the_printer("Office", "")


class SetupWithATwin(SetupTest):
    """Another printer with the serial number stands in the office already."""

    TWIN = device("SN1", model="Fake 7", address="192.0.2.99")

    def setUp(self):
        super().setUp()
        self.list_file = self.vendor_list([
            dict(productId="scripted", vendorName="scripted_all", scanModuleName="scripted_all_b")])

    def script_scan(self, *lines):
        self.script("[scripted_all]", PRINTER, "[scripted_all_b]", *lines)

    def test_the_vendor_is_asked_about_the_printer_that_was_set_up(self):
        self.script_scan(self.TWIN)
        self.setup()
        record, = self.arguments_of("IsLocalAreaNetworkOK")
        self.assertIn(b"192.0.2.7\0", record)

    def test_the_twin_alone_is_not_the_printer(self):
        self.script("result IsLocalAreaNetworkOK 17", "[scripted_all]", PRINTER,
                    "[scripted_all_b]", self.TWIN)
        event = self.assert_failed("find", "--timeout", "1.5", saying=(
            "a printer with that serial number was found at 192.0.2.99 port 631, but",
            "the vendor's result 17"))
        self.assertNotIn("printer", event)

    def test_the_places_of_both_are_named(self):
        # The printer itself comes when the vendor has answered already.
        self.script_scan(self.TWIN, PRINTER, "interval 600", "until-stopped")
        result = self.setup()
        self.assert_status(result, FOUND)
        self.assertEqual(result.output.splitlines()[-1],
                         "      Fake 7, serial number SN1, is on Office; that serial number was "
                         "found at 192.0.2.7 port 631 and 192.0.2.99 port 631")
        event = json_lines(self.setup("--json").output)[-1]
        self.assertNotIn("printer", event)
        self.assertEqual([printer["address"] for printer in event["printers"]],
                         ["192.0.2.7", "192.0.2.99"])


class SetupThatFails(SetupTest):
    def test_no_printer_s_network(self):
        self.script("result IsConnectCurrentWifiAP 1")
        event = self.assert_failed("printer", saying=("DIRECT-printer", "wifi join",
                                                      "nothing was changed"))
        self.assertEqual(event["result"], -1)
        self.assertEqual(self.received(), [])

    def test_a_printer_that_does_not_tell_who_it_is(self):
        self.script("result GetDeviceInfoByNet 8")
        event = self.assert_failed("printer", saying=("the vendor's result 8",))
        self.assertEqual(event["result"], 8)

    def test_a_printer_without_serial_number(self):
        self.script(device(""))
        self.assert_failed("printer", saying=("serial number", "ap configure"))
        self.assertEqual(self.received(), [])

    def test_no_vendor_that_could(self):
        self.list_file = self.vendor_list([("one", "scripted_none")])
        self.assert_failed("printer", saying=("no vendor can do this", "vendor one"),
                           status=COULD_NOT_RUN)

    def test_a_pass_phrase_that_cannot_be_given(self):
        self.write("pass-phrase", "")
        for text, saying in (("w" * 32, "32 bytes"), ("", "contains no pass phrase"),
                             ("a\nb", "more than one line")):
            with self.subTest(saying):
                result = self.run_app("setup", "--network", "Office", "--pass-phrase-file",
                                      self.pass_phrase_file(text))
                self.assert_status(result, USAGE)
                self.assert_mentions(result.errors, "step 3 of 6", saying)
        self.assertEqual(self.received(), [])

    def test_a_pass_phrase_file_that_cannot_be_read(self):
        result = self.run_app("setup", "--network", "Office", "--pass-phrase-file",
                              app_test.system_path(self.path("nowhere")))
        self.assert_status(result, COULD_NOT_RUN)
        self.assert_mentions(result.errors, "step 3 of 6", "the file that --pass-phrase-file names")

    def test_a_printer_that_does_not_join(self):
        self.script(PRINTER, "result PrinterAPNetConfigEvent 12")
        event = self.assert_failed("configure", saying=("not put on Office", "result 12",
                                                        "start the set-up again", "log"))
        self.assertEqual(event["result"], 12)
        self.assertEqual(self.host_calls("ConnectAP"), [])

    def test_a_printer_that_is_gone_by_then(self):
        self.list_file = self.vendor_list(
            [("scripted", "scripted_without_PrinterAPNetConfigEvent"), ("z", "scripted_all_b")])
        event = self.assert_failed("configure", saying=("not put on Office", "vendor scripted",
                                                        "PrinterAPNetConfigEvent"))
        self.assertEqual(event["result"], -1)

    def test_a_computer_that_cannot_join(self):
        self.host('joined "DIRECT-printer" "" ""', "join 0", "join 0", "join 0", "join 1")
        self.assert_failed("rejoin", saying=("could not join Office",
                                             "ap check SN1 --vendor scripted", "scan"))
        self.assertEqual(len(self.host_calls("ConnectAP")), 6, "three times each")

    def test_a_printer_that_is_not_found(self):
        self.list_file = self.vendor_list([
            dict(productId="scripted", vendorName="scripted_all",
                 scanModuleName="scripted_all_b")])
        self.script("[scripted_all]", PRINTER, "result IsLocalAreaNetworkOK 17", "[scripted_all_b]",
                    device("SN2"), device("SN1", vendor="other"))
        start = time.monotonic()
        self.assert_failed("find", "--timeout", "1.5",
                           saying=("was not found there within 1.5 s", "scan --watch"))
        self.assertGreater(time.monotonic() - start, 3)
        self.assertEqual(len(self.calls_of("StopDeviceScan")), 2)

    def use_two_modules(self):
        self.list_file = self.vendor_list([
            dict(productId="scripted", vendorName="scripted_all",
                 scanModuleName="scripted_all_b")])

    def test_it_ends_when_nobody_looks_any_more(self):
        self.use_two_modules()
        self.script("[scripted_all]", PRINTER, "result IsLocalAreaNetworkOK 9",
                    "[scripted_all_b]", "result StartDeviceScan 6")
        start = time.monotonic()
        self.assert_failed("find", "--timeout", "300", status=COULD_NOT_RUN, saying=(
            "every vendor's scan has failed", "was put on Office", "vendor scripted does not "
            "look for printers: the vendor's result 6"))
        self.assertLess(time.monotonic() - start, 2 * app_test.PATIENCE)

    def test_what_its_vendor_finds_counts_when_nobody_looks_any_more(self):
        self.use_two_modules()
        self.script("[scripted_all]", PRINTER, "[scripted_all_b]", "result StartDeviceScan 6")
        result = self.setup()
        self.assert_status(result, FOUND)
        self.assert_mentions(result.output, "SN1, is on Office, its vendor says")

    def test_a_printer_that_only_its_vendor_finds(self):
        self.list_file = self.vendor_list([
            dict(productId="scripted", vendorName="scripted_all",
                 scanModuleName="scripted_all_b")])
        self.script("[scripted_all]", PRINTER, "[scripted_all_b]", device("SN2"))
        result = self.setup("--timeout", "1.5")
        self.assert_status(result, FOUND)
        self.assert_mentions(result.output, "SN1, is on Office, its vendor says")

    def test_a_printer_that_its_vendor_does_not_find(self):
        self.script(PRINTER, "result IsLocalAreaNetworkOK 9")
        event = self.assert_failed("find", "--timeout", "1",
                                   saying=("was found at 192.0.2.7", "the vendor's result 9"))
        self.assertEqual(event["result"], 9)

    def test_a_printer_that_moves_is_where_it_was_reported_last(self):
        there, elsewhere = device("SN1", address="192.0.2.7"), device("SN1", address="192.0.2.99")
        self.script(there, elsewhere, "interval 300", "result IsLocalAreaNetworkOK 9")
        self.assert_failed("find", "--timeout", "2", saying=(
            "was found at 192.0.2.99 port 631 and 192.0.2.7 port 631,",))
        self.script(there, elsewhere, there, "interval 300", "result IsLocalAreaNetworkOK 9")
        self.assert_failed("find", "--timeout", "2", saying=(
            "was found at 192.0.2.7 port 631 and 192.0.2.99 port 631,",))

    def test_no_vendor_that_could_look_for_it(self):
        self.list_file = self.vendor_list([
            dict(productId="scripted", vendorName="scripted_all", scanModuleName="scripted_none")])
        self.assert_failed("find", saying=("no vendor can look for printers",),
                           status=COULD_NOT_RUN)


class SetupArguments(SetupTest):
    def test_without_a_terminal_network_and_pass_phrase_must_be_given(self):
        result = self.run_app("setup", "--open")
        self.assert_status(result, USAGE)
        self.assert_mentions(result.errors, "--network NAME", "ap scan")
        result = self.run_app("setup", "--network", "Office")
        self.assert_status(result, USAGE)
        self.assert_mentions(result.errors, "--pass-phrase-file", "--open")
        self.assertEqual(self.records(), [])

    def test_a_question_that_nobody_would_see_is_not_asked(self):
        for arguments, saying in ((["--open"], "the network"),
                                  (["--network", "Office"], "the pass phrase")):
            with self.subTest(saying):
                with open(self.path("errors"), "wb") as errors:
                    terminal = Terminal(self, "setup", "--json", *arguments, stderr=errors)
                    self.assertEqual(terminal.finish(), USAGE)
                self.assert_mentions(self.read(self.path("errors")),
                                     f"cannot ask for {saying}: standard error, which shows the "
                                     "question, is not a terminal")
        result = self.run_app("setup")
        self.assert_mentions(result.errors, "standard input is not a terminal")
        self.assertEqual(self.records(), [])

    def test_wrong_arguments(self):
        for arguments, saying in ((["--timeout", "0"], "--timeout"),
                                  (["--seconds", "soon"], "--seconds"),
                                  (["--network", ""], "empty"),
                                  (["--network", "n" * 128], "128 bytes"),
                                  (["--pass-phrase-file", "f", "--open"], "--open"),
                                  (["--watch"], "too many"), (["Office"], "too many")):
            with self.subTest(arguments):
                result = self.run_app("setup", *arguments)
                self.assert_status(result, USAGE)
                self.assertEqual(result.output, "")
                self.assert_mentions(result.errors, saying, "devicediscover setup --help")
        self.assertEqual(self.records(), [])

    def test_help_has_the_exit_statuses(self):
        result = self.run_app("setup", "--help", listed=False)
        self.assert_status(result, FOUND)
        self.assert_mentions(result.output, "--network NAME", "--pass-phrase-file FILE", "--open",
                             "--no-rejoin", "--timeout N", "(default 60)", "Examples:",
                             "Exit status:\n  0  the printer was found", "1  a step failed",
                             "2  wrong arguments", "3  could not")


class SetupOnTerminal(SetupTest):
    def start(self, *arguments, **options):
        return Terminal(self, "setup", "--seconds", "1", *arguments, **options)

    @staticmethod
    def pick_guests(terminal):
        terminal.expect(r"1 +Office *\n *2 +Guests *\n")
        terminal.expect("Number or name, or Enter to look again:")
        terminal.type("2\r")
        terminal.expect("Pass phrase of Guests")
        terminal.type(PASS_PHRASE + "\r")

    def test_network_and_pass_phrase_are_asked_for(self):
        self.script(PRINTER, reported("Office", 80), reported("DIRECT-printer", 99),
                    reported("", 60), reported("Guests", 40), reported("Office", 30))
        terminal = self.start()
        terminal.expect(r"\[1/6\] Which printer\n +Fake 7, serial number SN1")
        self.pick_guests(terminal)
        terminal.expect(r"is on Guests at 192\.0\.2\.7 port 631")
        self.assertEqual(terminal.finish(), FOUND)
        self.assert_given_to_the_printer("Guests")
        self.assertNotIn(PASS_PHRASE, terminal.raw.decode())
        self.assertNotIn(PASS_PHRASE, self.log())
        self.assertEqual(self.calls_of("StopAPWifiScan"), ["scripted_all"])

    def test_log_lines_on_the_terminal_leave_the_questions_there(self):
        self.script(PRINTER, reported("Office", 80), reported("Guests", 40))
        terminal = self.start("--log-level", "warning")
        self.pick_guests(terminal)
        terminal.expect(r"is on Guests at")
        self.assertEqual(terminal.finish(), FOUND)
        self.assertNotIn("Looking for networks", terminal.text)
        self.assertNotIn(PASS_PHRASE, terminal.text)

    def test_questions_stay_out_of_results_for_programs(self):
        self.script(PRINTER, reported("Office", 80), reported("Guests", 40))
        with open(self.path("output"), "wb") as output:
            terminal = self.start("--json", stdout=output)
            terminal.expect(r"1 +Office *\n *2 +Guests *\n")
            terminal.expect("Number or name, or Enter to look again:")
            terminal.type("1\r")
            terminal.expect("Pass phrase of Office")
            terminal.type(PASS_PHRASE + "\r")
            self.assertEqual(terminal.finish(), FOUND)
        events = json_lines(self.read(self.path("output")))
        self.assertEqual([(event["step"], event["state"]) for event in events],
                         [(step, state) for step in STEPS for state in ("started", "done")])
        self.assert_given_to_the_printer("Office")

    def test_a_network_can_be_named_also_one_that_is_not_listed(self):
        self.script(PRINTER, reported("Office"))
        terminal = self.start("--open")
        terminal.expect("Number or name")
        terminal.type("Hidden\r")
        terminal.expect("is on Hidden at")
        self.assertEqual(terminal.finish(), FOUND)
        self.assert_given_to_the_printer("Hidden", "")

    def test_a_number_that_is_not_listed_is_asked_for_again(self):
        self.script(PRINTER, reported("Office"), reported("42"))
        terminal = self.start("--open")
        for answer in ("0", "3", "x" * 128):
            terminal.expect("Number or name")
            terminal.type(answer + "\r")
            terminal.expect("there is no number|has 128 bytes")
        terminal.expect("Number or name")
        terminal.type("42\r")
        terminal.expect("is on 42 at")
        self.assertEqual(terminal.finish(), FOUND)

    def test_enter_looks_again(self):
        self.script(PRINTER, reported("Office"))
        terminal = self.start("--open")
        terminal.expect("Number or name")
        terminal.type("\r")
        terminal.expect("Number or name")
        terminal.type("1\r")
        terminal.expect("is on Office at")
        self.assertEqual(terminal.finish(), FOUND)
        self.assertEqual(len(self.calls_of("StartAPWifiScan")), 2)

    def test_where_the_printer_reports_none_it_is_the_computer_s_own_list(self):
        self.host('joined "DIRECT-printer" "" ""', "join 1", network("DIRECT-printer"),
                  network("Office"), network("Big Corp", 50, 4, 1), network(""))
        terminal = self.start("--open")
        terminal.expect(r"1 +Office *\n")
        self.assertNotIn("Big Corp", terminal.text)
        terminal.type("1\r")
        terminal.expect("is on Office at")
        self.assertEqual(terminal.finish(), FOUND)

    def test_where_the_vendor_cannot_look_it_is_the_computer_s_own_list_too(self):
        self.list_file = self.vendor_list([("scripted", "scripted_without_StartAPWifiScan")])
        self.host('joined "DIRECT-printer" "" ""', "join 1", network("Office"))
        terminal = self.start("--open")
        terminal.expect(r"1 +Office *\n")
        terminal.type("1\r")
        terminal.expect("is on Office at")
        self.assertEqual(terminal.finish(), FOUND)
        self.assert_given_to_the_printer("Office", "")

    def test_without_any_network_one_can_be_named(self):
        terminal = self.start("--open")
        terminal.expect("No network was found. Type a name, or Enter to look again:")
        terminal.type("Office\r")
        terminal.expect("is on Office at")
        self.assertEqual(terminal.finish(), FOUND)

    def test_a_long_wait_is_shown(self):
        self.script(PRINTER, "delay PrinterAPNetConfigEvent 2500")
        terminal = self.start("--network", "Office", "--open")
        terminal.expect(r"Waiting for the printer to join Office, 1 s \(Ctrl-C stops\)")
        terminal.expect("is on Office at")
        self.assertEqual(terminal.finish(), FOUND)

    def interrupt(self, terminal, *saying):
        terminal.type("\x03")
        self.assertEqual(terminal.finish(), NONE_FOUND)
        terminal.expect("interrupted")
        self.assert_mentions(terminal.text, *saying)

    def test_ctrl_c_while_networks_are_looked_for(self):
        terminal = Terminal(self, "setup", "--seconds", "60")
        terminal.expect("Looking for networks")
        self.interrupt(terminal, "step 2 of 6", "Nothing was changed")
        self.assertEqual(self.calls_of("StopAPWifiScan"), ["scripted_all"])

    def test_ctrl_c_at_the_choice(self):
        self.script(PRINTER, reported("Office"))
        terminal = self.start()
        terminal.expect("Number or name")
        self.interrupt(terminal, "step 2 of 6", "Nothing was changed")

    def test_ctrl_c_at_the_pass_phrase_brings_the_echo_back(self):
        terminal = self.start("--network", "Office")
        terminal.expect("Pass phrase of Office")
        self.interrupt(terminal, "step 3 of 6", "Nothing was changed")
        if not ON_WINDOWS:
            self.assertTrue(terminal.shows_typing())
        self.assertEqual(self.received(), [])

    def test_ctrl_c_while_the_printer_joins(self):
        self.script(PRINTER, "delay PrinterAPNetConfigEvent 60000")
        terminal = self.start("--network", "Office", "--open")
        terminal.expect("Waiting for the printer to join Office")
        start = time.monotonic()
        self.interrupt(terminal, "step 4 of 6", "not known whether the printer was put on")
        self.assertLess(time.monotonic() - start, 10)

    def test_ctrl_c_while_the_computer_joins(self):
        self.host('joined "DIRECT-printer" "" ""', "join 1", "delay ConnectAP 60000")
        terminal = self.start("--network", "Office", "--open")
        terminal.expect("Joining Office")
        self.interrupt(terminal, "step 5 of 6", "was put on the network")

    def test_ctrl_c_while_the_printer_is_looked_for(self):
        self.script(PRINTER, "delay StartDeviceScan 60000")
        terminal = self.start("--network", "Office", "--open")
        terminal.expect("Looking for the printer")
        self.interrupt(terminal, "step 6 of 6", "was put on the network")
        self.assertEqual(self.calls_of("StopDeviceScan"), ["scripted_all"])

    @unittest.skipIf(ON_WINDOWS, "signals of Linux")
    def test_a_request_to_end_without_a_terminal(self):
        for request in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            with self.subTest(request):
                self.setUp()
                self.script(PRINTER, "delay PrinterAPNetConfigEvent 60000")
                process = self.start_app("setup", "--network", "Office", "--open", "--json")
                self.wait_until(lambda: self.calls_of("PrinterAPNetConfigEvent"),
                                "the printer is told")
                process.send_signal(request)
                output, errors = process.communicate(timeout=app_test.PATIENCE)
                self.assertEqual(process.returncode, NONE_FOUND)
                event = json_lines(output.decode())[-1]
                self.assertEqual((event["step"], event["state"]), ("configure", "interrupted"))
                self.assertIn(b"not known whether the printer was put on", errors)


if __name__ == "__main__":
    app_test.main()

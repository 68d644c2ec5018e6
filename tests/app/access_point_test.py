# SPDX-License-Identifier: Apache-2.0
"""`devicediscover ap`."""

import os
import re
import struct
import time

import app_test
from app_test import COULD_NOT_RUN, FOUND, NONE_FOUND, USAGE, device, json_lines
from host_test import PASS_PHRASE, HostTest, Terminal, reported

# Results of vendor driverless that say nothing about the printer.
COULD_NOT_LOOK = (2, 3, 4, 5, 6, 8, 19)
OFFICE = ["ap", "configure", "--network", "Office"]
DRIVERLESS = os.path.join(os.path.dirname(os.path.abspath(__file__)),
                          "../../modules/driverless/README.md")


def documented_results(entry_point):
    """The failures that the module for standard printers documents for an entry point."""
    with open(DRIVERLESS, encoding="utf-8") as file:
        table, = [part for part in file.read().split("\n\n")
                  if re.match(rf"\| result \|.*`{entry_point}`", part)]
    cells = re.findall(r"^\| (\d[\d, to]*) \|", table, re.MULTILINE)
    rows = re.findall(r"(\d+)(?: to (\d+))?", ", ".join(cells))
    return [number for first, last in rows
            for number in range(int(first), int(last or first) + 1) if number != 0]


class AccessPointScan(HostTest):
    def test_each_network_is_a_line(self):
        self.script(reported("Office", 82), reported(r"Caf\xc3\xa9", -57.5), reported("", 3))
        result = self.run_app("ap", "scan", "--seconds", "1")
        self.assert_status(result, FOUND)
        self.assertEqual(result.output, "Office\t82\nCaf\u00e9\t-57.5\n-\t3\n")
        self.assertEqual(self.calls_of("StopAPWifiScan"), ["scripted_all"])

    def test_json_comes_as_it_is_found(self):
        self.script("interval 600", "until-stopped", reported("Office", 1), reported("Guests", 2))
        process = self.start_app("ap", "scan", "--json", "--watch")
        self.assertEqual(process.stdout.readline().strip(), b'{"network":"Office","signal":1.0}')
        start = time.monotonic()
        self.assertEqual(process.stdout.readline().strip(), b'{"network":"Guests","signal":2.0}')
        self.assertGreater(time.monotonic() - start, 0.3)

    def test_a_signal_that_is_no_number_is_json_all_the_same(self):
        self.script(reported("Office", "nan"), reported("Office", "nan"), reported("Guests", "inf"))
        result = self.run_app("ap", "scan", "--json", "--seconds", "1")
        self.assertEqual(result.errors, "")
        self.assertEqual(json_lines(result.output), [{"network": "Office", "signal": None},
                                                     {"network": "Guests", "signal": None}])
        lines = self.run_app("ap", "scan", "--seconds", "1").output.splitlines()
        self.assertEqual(lines, ["Office\tnan", "Guests\tinf"])

    def test_the_same_network_again_is_news_when_its_signal_changes(self):
        self.script("interval 150", reported("Office", 1), reported("Office", 1),
                    reported("Office", 2))
        result = self.run_app("ap", "scan", "--seconds", "1.5")
        self.assertEqual(result.output, "Office\t1\nOffice\t2\n")

    def test_names_without_terminator_end_with_the_field(self):
        self.script(reported("n" * 128))
        network, = json_lines(self.run_app("ap", "scan", "--json", "--seconds", "1").output)
        self.assertEqual(network["network"], "n" * 127)

    def test_none_is_status_1(self):
        result = self.run_app("ap", "scan", "--seconds", "0.3")
        self.assert_status(result, NONE_FOUND)
        self.assertEqual(result.output, "")
        self.assert_mentions(result.errors, "no network was reported", "log")
        self.assertEqual(self.calls_of("StopAPWifiScan"), ["scripted_all"])

    def assert_nobody_looks(self, result, *words):
        self.assert_status(result, COULD_NOT_RUN)
        self.assert_mentions(result.errors, "there may be networks that were not found", *words)
        self.assertNotIn("no network was reported", result.errors)

    def test_where_nobody_could_look_none_found_is_not_said(self):
        self.list_file = self.vendor_list([("driverless", "scripted_all")])
        self.script("result StartAPWifiScan 8")
        begun = time.monotonic()
        result = self.run_app("ap", "scan", "--seconds", "300", "--json")
        self.assertLess(time.monotonic() - begun, app_test.PATIENCE, "it ends when nobody looks")
        self.assert_nobody_looks(result, "vendor driverless does not look for networks",
                                 "the vendor's result 8", "Wi-Fi service does not answer")
        problem, = json_lines(result.output)
        self.assertEqual(list(problem), ["problem"])

    def test_what_was_found_before_it_failed_counts_but_ends_a_watch_with_status_3(self):
        self.script(reported("Office"), "result StartAPWifiScan 7")
        result = self.run_app("ap", "scan", "--seconds", "300")
        self.assert_status(result, FOUND)
        self.assertEqual(result.output, "Office\t50\n")
        self.assert_mentions(result.errors, "warning: vendor scripted does not look for networks: "
                                            "the vendor's result 7")
        result = self.run_app("ap", "scan", "--watch")
        self.assertEqual(result.output, "Office\t50\n")
        self.assert_nobody_looks(result, "vendor scripted", "the vendor's result 7")

    def test_a_result_after_the_stop_is_no_failure(self):
        self.script("until-stopped", "result StartAPWifiScan 9")
        result = self.run_app("ap", "scan", "--seconds", "1")
        self.assert_status(result, NONE_FOUND)
        self.assertNotIn("result 9", result.errors)

    def test_a_scan_that_is_stopped_before_it_says_that_it_could_not_look_has_not_looked(self):
        self.list_file = self.vendor_list([("driverless", "scripted_all")])
        self.script("until-stopped", "result StartAPWifiScan 8")
        self.assert_nobody_looks(self.run_app("ap", "scan", "--seconds", "0.5"),
                                 "vendor driverless does not look", "the vendor's result 8")

    def test_a_terminal_gets_a_table_that_grows(self):
        self.script("interval 1000", "until-stopped", reported("Office"), reported("Guests", 7))
        terminal = Terminal(self, "ap", "scan", "--seconds", "3")
        terminal.expect(r"1 network so far, \d s left")
        terminal.expect(r"Office +50")
        terminal.expect(r"2 networks found\.")
        self.assertEqual(terminal.finish(), FOUND)

    def test_ctrl_c_stops_the_vendor_s_scan(self):
        self.script("until-stopped", reported("Office"))
        terminal = Terminal(self, "ap", "scan", "--watch")
        terminal.expect("1 network so far, until Ctrl-C")
        terminal.type("\x03")
        self.assertEqual(terminal.finish(), FOUND)
        self.assertEqual(self.calls_of("StopAPWifiScan"), ["scripted_all"])

    def ctrl_c_ends_it(self, terminal, status):
        start = time.monotonic()
        terminal.type("\x03")
        self.assertEqual(terminal.finish(), status)
        self.assertLess(time.monotonic() - start, 20)

    def test_one_ctrl_c_ends_the_wait_for_a_vendor_that_does_not_start(self):
        self.script("delay IsConnectCurrentWifiAP 60000")
        terminal = Terminal(self, "ap", "scan")
        terminal.expect(r"Asking the printer's vendor for a scan, \d s")
        self.ctrl_c_ends_it(terminal, NONE_FOUND)
        terminal.expect("interrupted")

    def test_a_vendor_that_does_not_stop_is_left_behind(self):
        self.script("until-stopped", "delay StopAPWifiScan 60000", reported("Office"))
        terminal = Terminal(self, "ap", "scan", "--seconds", "1")
        self.wait_until(lambda: self.calls_of("StopAPWifiScan"), "the vendor's stop is called")
        start = time.monotonic()
        self.assertEqual(terminal.finish(), FOUND)
        self.assertLess(time.monotonic() - start, 20)
        terminal.expect(r"1 network found\.\n"
                        r"devicediscover: warning: vendor scripted \(StopAPWifiScan\) did not "
                        "return in time")

    def test_the_ctrl_c_that_ends_the_scan_ends_that_wait_too(self):
        self.script("until-stopped", "delay StopAPWifiScan 60000", reported("Office"))
        terminal = Terminal(self, "ap", "scan", "--watch")
        terminal.expect("1 network so far")
        self.ctrl_c_ends_it(terminal, FOUND)
        self.assertEqual(self.calls_of("StopAPWifiScan"), ["scripted_all"])

    def test_a_vendor_that_stops_a_little_late_is_waited_for(self):
        self.script("until-stopped", "delay StopAPWifiScan 1000", reported("Office"))
        terminal = Terminal(self, "ap", "scan", "--watch")
        terminal.expect("1 network so far")
        self.ctrl_c_ends_it(terminal, FOUND)
        self.assertNotIn("warning", terminal.text)

    def test_a_reader_that_leaves_ends_it_quietly(self):
        self.script("interval 20", "repeat 0", "until-stopped",
                    *(reported(f"n{number}", number) for number in range(50)))
        process = self.start_app("ap", "scan", "--watch", "--json")
        process.stdout.readline()
        process.stdout.close()
        self.assertEqual(process.wait(app_test.PATIENCE), FOUND)
        self.assertEqual(process.stderr.read(), b"")


class AccessPointInfo(HostTest):
    def test_the_printer(self):
        self.script(device("SN1", model="Fake 7", address="192.0.2.7", port=9100))
        result = self.run_app("ap", "info")
        self.assert_status(result, FOUND)
        self.assertEqual(result.output, "SN1\tFake 7\t192.0.2.7\t9100\tscripted\n")
        printer, = json_lines(self.run_app("ap", "info", "--json").output)
        self.assertEqual((printer["serialNumber"], printer["port"]), ("SN1", 9100))

    def test_the_vendor_whose_access_point_it_is_answers(self):
        self.list_file = self.vendor_list([("a", "scripted_all"), ("b", "scripted_all_b")])
        self.script("[scripted_all]", "result IsConnectCurrentWifiAP 1", "[scripted_all_b]",
                    device("SN2"))
        result = self.run_app("ap", "info")
        self.assertEqual(result.output.split("\t")[0], "SN2")
        self.assertEqual(self.calls_of("GetDeviceInfoByNet"), ["scripted_all_b"])

    def test_elsewhere_than_on_a_printer_s_network_it_says_how_to_get_there(self):
        self.script("result IsConnectCurrentWifiAP 1")
        self.host('joined "Office" "00:11:22:33:44:55" "wlan0"')
        for command in (["info"], ["scan"], ["check"],
                        ["configure", "--network", "x", "--open"]):
            with self.subTest(command):
                result = self.run_app("ap", *command)
                self.assert_status(result, NONE_FOUND)
                self.assert_mentions(result.errors, "Office", "wifi list", "wifi join")
        self.host()
        result = self.run_app("ap", "info")
        self.assert_mentions(result.errors, "joined to no Wi-Fi network")

    def test_the_vendor_s_own_result_is_told(self):
        self.script("result GetDeviceInfoByNet 77")
        result = self.run_app("ap", "info")
        self.assert_status(result, NONE_FOUND)
        self.assert_mentions(result.errors, "the vendor's result 77")

    def test_without_a_vendor_that_could_it_could_not_run(self):
        for vendors in ([], [("one", "scripted_none"), ("two", "no_such_module")],
                        [("one", "scripted_without_GetDeviceInfoByNet")]):
            with self.subTest(vendors):
                self.list_file = self.vendor_list(vendors)
                result = self.run_app("ap", "info")
                self.assert_status(result, COULD_NOT_RUN)
                self.assert_mentions(result.errors, "no vendor can do this", "--vendors",
                                     *(f"vendor {name}" for name, _ in vendors))

    def test_ctrl_c_ends_the_wait_for_a_slow_vendor(self):
        self.script("delay GetDeviceInfoByNet 60000")
        terminal = Terminal(self, "ap", "info")
        terminal.expect(r"Asking the printer who it is, \d s")
        terminal.type("\x03")
        self.assertEqual(terminal.finish(), NONE_FOUND)
        terminal.expect("interrupted")


class AccessPointConfigure(HostTest):
    def received(self):
        record, = self.arguments_of("PrinterAPNetConfigEvent")
        return record

    def test_the_vendor_receives_the_very_bytes(self):
        name, pass_phrase = "Caf\u00e9 \U0001f5a8 " + "n" * 116, "p\u00e4ss " + "w" * 25
        self.assertEqual([len(name.encode()), len(pass_phrase.encode())], [127, 31])
        result = self.run_app("ap", "configure", "--network", name, "--pass-phrase-file",
                              self.pass_phrase_file(pass_phrase))
        self.assert_status(result, FOUND)
        self.assertEqual(result.output, f"the printer was put on {name}\n")
        self.assertEqual(result.errors, "")
        self.assertEqual(self.received(), struct.pack("<f128s32s", 0, name.encode(),
                                                      pass_phrase.encode()))
        self.assertNotIn(pass_phrase, self.log())

    def test_from_the_prompt(self):
        terminal = Terminal(self, *OFFICE)
        terminal.expect("Pass phrase of Office")
        terminal.type(PASS_PHRASE + "\r")
        terminal.expect("the printer was put on Office")
        self.assertEqual(terminal.finish(), FOUND)
        self.assertEqual(self.received(),
                         struct.pack("<f128s32s", 0, b"Office", PASS_PHRASE.encode()))
        self.assertNotIn(PASS_PHRASE, terminal.text)
        self.assertNotIn(PASS_PHRASE, self.log())

    def test_an_open_network(self):
        result = self.run_app(*OFFICE, "--open", "--json")
        self.assert_status(result, FOUND)
        self.assertEqual(json_lines(result.output),
                         [{"network": "Office", "configured": True, "result": 0}])
        self.assertEqual(self.received(), struct.pack("<f128s32s", 0, b"Office", b""))

    def test_a_pass_phrase_that_a_printer_cannot_be_given_is_not_cut(self):
        result = self.run_app(*OFFICE, "--pass-phrase-file", self.pass_phrase_file("w" * 32))
        self.assert_status(result, USAGE)
        self.assert_mentions(result.errors, "32 bytes", "31")
        self.assertEqual(self.records(), [])

    def test_a_failure_is_told_with_the_vendor_s_result(self):
        self.script("result PrinterAPNetConfigEvent 12")
        result = self.run_app(*OFFICE, "--json", "--pass-phrase-file", self.pass_phrase_file())
        self.assert_status(result, NONE_FOUND)
        self.assertEqual(json_lines(result.output),
                         [{"network": "Office", "configured": False, "result": 12}])
        self.assert_mentions(result.errors, "not put on Office: the vendor's result 12\n", "log")
        self.assert_not_shown(result)

    def test_a_failure_that_nobody_reads_is_no_success(self):
        self.script("result PrinterAPNetConfigEvent 7")
        self.assert_no_without_reader("ap", "configure", "--network", "Office", "--open", "--json",
                                      saying="the printer was not put on Office")

    def test_a_result_has_a_meaning_where_its_vendor_is_listed(self):
        self.list_file = self.vendor_list([("driverless", "scripted_all")])
        for number, meaning in ((10, "refused"), (11, "does not see"), (12, "pass phrase"),
                                (13, "in time"), (14, "not allow"), (15, "reached"),
                                (16, "nothing was sent")):
            self.script(f"result PrinterAPNetConfigEvent {number}")
            result = self.run_app(*OFFICE, "--open")
            self.assertRegex(result.errors, rf"result {number} \(of vendor driverless: .*{meaning}")

    def assert_explained(self, number, *command):
        result = self.run_app(*command)
        could_not_look = command[1] == "check" and number in COULD_NOT_LOOK
        self.assert_status(result, COULD_NOT_RUN if could_not_look else NONE_FOUND)
        self.assertRegex(result.errors, rf"the vendor's result {number} \(of vendor driverless: "
                                        r"[^.;]{8,}[.;] [^)]{9}", "what it is, and what to do")
        return result.errors

    def test_every_result_that_its_vendor_documents_has_a_meaning(self):
        self.list_file = self.vendor_list([("driverless", "scripted_all")])
        for entry_point, least, command in (
                ("GetDeviceInfoByNet", {7, 8, 15}, ["ap", "info"]),
                ("PrinterAPNetConfigEvent", {10, 11, 12, 13, 14, 15, 16, 26}, [*OFFICE, "--open"]),
                ("IsLocalAreaNetworkOK", {2, 3, 4, 5, 6, 8, 17, 18}, ["ap", "check", "SN1"])):
            results = documented_results(entry_point)
            self.assertLessEqual(least, set(results))
            for number in results:
                with self.subTest(entry_point, result=number):
                    self.script(f"result {entry_point} {number}")
                    self.assert_explained(number, *command)

    def test_a_printer_that_may_have_joined_is_not_said_to_have(self):
        self.list_file = self.vendor_list([("driverless", "scripted_all")])
        self.script("result PrinterAPNetConfigEvent 26")
        result = self.run_app(*OFFICE, "--open", "--json")
        self.assert_status(result, NONE_FOUND)
        self.assertEqual(json_lines(result.output),
                         [{"network": "Office", "configured": False, "result": 26}])
        self.assert_mentions(result.errors, "it is not known whether the printer is on Office",
                             "could not be confirmed", "devicediscover scan")

    def test_a_result_says_how_to_go_on(self):
        self.list_file = self.vendor_list([("driverless", "scripted_all")])
        for number, advice in ((3, "systemctl start avahi-daemon"), (8, "Restart it"),
                               (7, "DEVICEDISCOVER_PRINTER_NETWORKS"), (11, "nearer"),
                               (13, "devicediscover scan"), (15, "wifi list"),
                               (17, "Wait a moment"), (18, "ap check SERIAL")):
            self.script(f"result IsLocalAreaNetworkOK {number}")
            self.assert_mentions(self.assert_explained(number, "ap", "check", "SN1"), advice)

    def test_another_vendor_s_result_has_none_of_those_meanings(self):
        self.list_file = self.vendor_list([("driverless", "scripted_all"),
                                           ("other", "scripted_all_b")])
        self.script("result IsLocalAreaNetworkOK 17")
        result = self.run_app("ap", "check", "SN1")
        self.assert_mentions(result.errors, "vendor driverless: the vendor's result 17 (of vendor")
        self.assertTrue(re.search(r"vendor other: the vendor's result 17$", result.errors,
                                  re.MULTILINE), result.errors)

    def explain_itself(self, results):
        self.list_file = self.vendor_list([dict(productId="scripted", vendorName="scripted_all",
                                                results=results)])

    def test_every_vendor_can_explain_itself(self):
        self.explain_itself({"5": "out of ink", "PrinterAPNetConfigEvent": {"5": "not now"}})
        self.script("result PrinterAPNetConfigEvent 5", "result IsLocalAreaNetworkOK 5")
        self.assert_mentions(self.run_app(*OFFICE, "--open").errors,
                             "the vendor's result 5 (of vendor scripted: not now)")
        self.assert_mentions(self.run_app("ap", "check", "SN1").errors,
                             "the vendor's result 5 (of vendor scripted: out of ink)")
        self.script("result IsLocalAreaNetworkOK 6")
        errors = self.run_app("ap", "check", "SN1").errors
        self.assertRegex(errors, "(?m)vendor scripted: the vendor's result 6$")

    def test_every_vendor_can_say_that_it_does_not_know(self):
        self.explain_itself({"5": {"meaning": "no idea", "outcome": "unknown"},
                             "6": {"meaning": "who knows", "outcome": "unconfirmed"}})
        self.script("result IsLocalAreaNetworkOK 5", "result PrinterAPNetConfigEvent 6")
        self.assert_status(self.run_app("ap", "check", "SN1"), COULD_NOT_RUN)
        self.assert_mentions(self.run_app(*OFFICE, "--open").errors,
                             "it is not known whether the printer is on Office", "who knows")

    def test_wrong_arguments(self):
        for arguments, saying in (([], "scan, configure, info or check"),
                                  (["configure", "--open"], "--network"),
                                  (["configure", "--network", "", "--open"], "empty"),
                                  (["configure", "--network", "x" * 128, "--open"], "128 bytes"),
                                  (["scan", "--seconds", "0"], "0.1 to 86400"),
                                  (["scan", "--seconds", "1", "--watch"], "--watch"),
                                  (["check", "--vendor", "x"], "SERIAL"),
                                  (["check", "s" * 64], "64 bytes"),
                                  (["check", "SN1", "--vendor", "v" * 32], "32 bytes")):
            with self.subTest(arguments):
                result = self.run_app("ap", *arguments)
                self.assert_status(result, USAGE)
                self.assertEqual(result.output, "")
                self.assert_mentions(result.errors, saying, "--help")
        self.assertEqual(self.records(), [])

    def test_help_says_how_each_command_ends(self):
        for command in (["ap"], ["ap", "scan"], ["ap", "configure"], ["ap", "info"],
                        ["ap", "check"]):
            with self.subTest(command):
                result = self.run_app(*command, "--help", listed=False)
                self.assert_status(result, FOUND)
                self.assert_mentions(result.output, "Examples:", "Exit status",
                                     "devicediscover " + " ".join(command))


class AccessPointCheck(HostTest):
    def test_help_says_that_a_uuid_will_do(self):
        self.assert_mentions(self.run_app("ap", "check", "--help", listed=False).output, "UUID")

    def test_a_uuid_is_handed_on_in_the_place_of_the_serial_number(self):
        uuid = "0d9a4d4f-54a8-4c6e-9d6b-3c5f0f0a7b11"
        self.assert_status(self.run_app("ap", "check", uuid), FOUND)
        record, = self.arguments_of("IsLocalAreaNetworkOK")
        self.assertEqual(record[4:].split(b"\0")[0], uuid.encode())

    def test_a_printer_on_the_local_network(self):
        result = self.run_app("ap", "check", "SN1", "--vendor", "scripted")
        self.assert_status(result, FOUND)
        self.assertEqual(result.output, "SN1 is on the local network (vendor scripted)\n")
        record, = self.arguments_of("IsLocalAreaNetworkOK")
        self.assertEqual(record, struct.pack("<HH64s32s128s", 0, 0, b"SN1", b"scripted", b""))

    def test_a_printer_that_is_not_there(self):
        self.script("result IsLocalAreaNetworkOK 5")
        result = self.run_app("ap", "check", "SN1", "--vendor", "scripted", "--json")
        self.assert_status(result, NONE_FOUND)
        printer, = json_lines(result.output)
        self.assertEqual((printer["serialNumber"], printer["onLocalNetwork"], printer["result"]),
                         ("SN1", False, 5))
        self.assert_mentions(result.errors, "vendor scripted: the vendor's result 5")

    def test_a_no_that_nobody_reads_is_no_yes(self):
        self.script("result IsLocalAreaNetworkOK 1")
        self.assert_no_without_reader("ap", "check", "SN1", "--vendor", "scripted", "--json",
                                      saying="the printer is not on the local network")

    def test_could_not_look_is_not_told_as_not_there(self):
        self.list_file = self.vendor_list([("driverless", "scripted_all")])
        for number in COULD_NOT_LOOK:
            with self.subTest(number):
                self.script(f"result IsLocalAreaNetworkOK {number}")
                result = self.run_app("ap", "check", "SN1", "--json")
                self.assert_status(result, COULD_NOT_RUN)
                printer, problem = json_lines(result.output)
                self.assertEqual((printer["onLocalNetwork"], printer["result"]), (None, number))
                self.assert_mentions(problem["problem"], "could not look for the printer",
                                     f"the vendor's result {number} ")
                self.assertNotIn("is not on the local network", result.errors)

    def test_each_vendor_is_asked_until_one_knows_it(self):
        self.list_file = self.vendor_list([("a", "scripted_all"), ("b", "scripted_all_b"),
                                           ("c", "scripted_all_c")])
        self.script("[scripted_all]", "result IsLocalAreaNetworkOK 1")
        result = self.run_app("ap", "check", "SN1")
        self.assert_status(result, FOUND)
        self.assertEqual(result.output, "SN1 is on the local network (vendor b)\n")
        self.assertEqual(self.calls_of("IsLocalAreaNetworkOK"), ["scripted_all", "scripted_all_b"])

    def test_without_a_serial_number_it_is_the_printer_whose_network_this_is(self):
        self.script(device("SN7", address="192.0.2.7", service=2))
        result = self.run_app("ap", "check")
        self.assert_status(result, FOUND)
        record, = self.arguments_of("IsLocalAreaNetworkOK")
        self.assertEqual(record[:8], b"\x77\x02\x02\x00SN7\x00")

    def test_a_vendor_that_is_not_listed(self):
        result = self.run_app("ap", "check", "SN1", "--vendor", "stranger")
        self.assert_status(result, NONE_FOUND)
        self.assert_mentions(result.errors, "stranger: not in the vendor list")

    def test_without_a_vendor_that_could_tell_it_could_not_run(self):
        for vendors in ([], [("one", "scripted_without_IsLocalAreaNetworkOK")]):
            with self.subTest(vendors):
                self.list_file = self.vendor_list(vendors)
                result = self.run_app("ap", "check", "SN1")
                self.assert_status(result, COULD_NOT_RUN)
                self.assert_mentions(result.errors, "no vendor can do this")


if __name__ == "__main__":
    app_test.main()

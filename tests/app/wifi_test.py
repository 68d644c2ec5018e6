# SPDX-License-Identifier: Apache-2.0
"""`devicediscover wifi` and `devicediscover ping`."""

import app_test
from app_test import COULD_NOT_RUN, FOUND, NONE_FOUND, USAGE, json_lines
from host_test import PASS_PHRASE, HostTest, Terminal, network

IN_RANGE = [network("Office", 82, 2), network("", 70, 2), network("Guests", 60, 0),
            network("Big Corp", 50, 4, 1), network(r"Caf\u00e9", 40, 3)]


class WifiList(HostTest):
    def test_each_network_in_range_is_a_line(self):
        self.host(*IN_RANGE)
        result = self.run_app("wifi", "list")
        self.assert_status(result, FOUND)
        self.assertEqual(result.output, "Office\t82\twpa-personal\tyes\n"
                                        "-\t70\twpa-personal\tno\n"
                                        "Guests\t60\topen\tyes\n"
                                        "Big Corp\t50\twpa-enterprise\tno\n"
                                        "Caf\u00e9\t40\twep wpa-personal\tyes\n")
        self.assertEqual(result.errors, "")
        self.assertEqual(self.host_calls(), ["ScanWifiAPBySsid"])

    def test_offer_leaves_out_what_no_printer_can_be_put_on(self):
        self.host(*IN_RANGE)
        result = self.run_app("wifi", "offer")
        self.assert_status(result, FOUND)
        self.assertEqual([line.split("\t")[0] for line in result.output.splitlines()],
                         ["Office", "Guests", "Caf\u00e9"])

    def test_json(self):
        self.host(*IN_RANGE)
        result = self.run_app("wifi", "list", "--json")
        networks = json_lines(result.output)
        self.assertEqual(networks[0], {"network": "Office", "signal": 82,
                                       "security": ["wpa-personal"], "offered": True})
        self.assertEqual(networks[1]["network"], "")
        self.assertEqual(networks[2]["security"], [])
        self.assertEqual(networks[4]["network"], "Caf\u00e9")
        self.assertEqual(networks[4]["security"], ["wep", "wpa-personal"])
        offered = json_lines(self.run_app("wifi", "offer", "--json").output)
        self.assertEqual(offered, [networks[0], networks[2], networks[4]])

    def test_none_is_status_1_and_says_where_to_read_why(self):
        for command in ("list", "offer"):
            with self.subTest(command):
                result = self.run_app("wifi", command)
                self.assert_status(result, NONE_FOUND)
                self.assertEqual(result.output, "")
                self.assert_mentions(result.errors, "no network", "DeviceDiscover.log")

    def test_could_not_look_is_not_told_as_none(self):
        self.host('wifi-problem 2 "NetworkManager is not running"')
        for command in (["list"], ["offer"], ["current"]):
            with self.subTest(command):
                result = self.run_app("wifi", *command, "--json")
                self.assert_status(result, COULD_NOT_RUN)
                problem, = json_lines(result.output)
                self.assert_mentions(problem["problem"], "NetworkManager is not running")
                self.assert_mentions(result.errors, "NetworkManager is not running")

    def test_a_terminal_gets_a_table(self):
        self.host(*IN_RANGE, "delay ScanWifiAPBySsid 700")
        terminal = Terminal(self, "wifi", "list")
        terminal.expect(r"Looking for networks, \d s \(Ctrl-C stops\)")
        terminal.expect(r"NETWORK +SIGNAL +SECURITY +OFFERED")
        terminal.expect(r"Office +82 +wpa-personal +yes")
        self.assertEqual(terminal.finish(), FOUND)

    def test_names_cannot_steer_the_terminal(self):
        self.host(network(r"a\u001b[2J\u0007"))
        result = self.run_app("wifi", "list")
        self.assertEqual(result.output.split("\t")[0], "a\ufffd[2J\ufffd")

    def test_ctrl_c_ends_a_scan_that_takes_long(self):
        self.host("delay ScanWifiAPBySsid 60000")
        terminal = Terminal(self, "wifi", "list")
        terminal.expect("Looking for networks")
        terminal.type("\x03")
        self.assertEqual(terminal.finish(), NONE_FOUND)
        terminal.expect("interrupted")


class WifiCurrent(HostTest):
    def test_where_the_host_is_joined(self):
        self.host(r'joined "Caf\u00e9" "00:11:22:33:44:55" "wlan0"')
        result = self.run_app("wifi", "current")
        self.assert_status(result, FOUND)
        self.assertEqual(result.output, "Caf\u00e9\t00:11:22:33:44:55\twlan0\n")
        joined, = json_lines(self.run_app("wifi", "current", "--json").output)
        self.assertEqual(joined, {"network": "Caf\u00e9", "hardwareAddress": "00:11:22:33:44:55",
                                  "interface": "wlan0"})

    def test_nowhere_is_status_1(self):
        result = self.run_app("wifi", "current")
        self.assert_status(result, NONE_FOUND)
        self.assertEqual(result.output, "")
        self.assert_mentions(result.errors, "joined to no Wi-Fi network", "wifi join")

    def test_a_computer_without_wifi_is_on_no_network(self):
        self.host('wifi-problem 1 "the host has no Wi-Fi adapter"')
        result = self.run_app("wifi", "current")
        self.assert_status(result, NONE_FOUND)
        self.assert_mentions(result.errors, "joined to no Wi-Fi network: the host has no Wi-Fi")


class WifiJoin(HostTest):
    def test_the_host_gets_name_and_pass_phrase_as_they_were_given(self):
        self.host("join 1")
        result = self.run_app("wifi", "join", "Caf\u00e9 \U0001f5a8", "--pass-phrase-file",
                              self.pass_phrase_file("p\u00e4ss \"\\ 1\n"))
        self.assert_status(result, FOUND)
        self.assertEqual(result.output, "joined Caf\u00e9 \U0001f5a8\n")
        self.assertEqual(result.errors, "")
        name = "\\ud83d\\udda8" if app_test.ON_WINDOWS else "\\u1f5a8"
        self.assertEqual(self.host_calls("ConnectAP"),
                         [f'ConnectAP "Caf\\u00e9 {name}" "p\\u00e4ss \\u0022\\u005c 1"'])
        self.assertNotIn("p\u00e4ss", self.log())

    def test_a_failure_that_nobody_reads_is_no_success(self):
        self.assert_no_without_reader("wifi", "join", "Office", "--open", "--json",
                                      saying="could not join Office")

    def test_an_open_network_is_joined_without_a_pass_phrase(self):
        self.host("join 1")
        result = self.run_app("wifi", "join", "Guests", "--open", "--json")
        self.assert_status(result, FOUND)
        self.assertEqual(json_lines(result.output), [{"network": "Guests", "joined": True}])
        self.assertEqual(self.host_calls("ConnectAP"), ['ConnectAP "Guests" ""'])

    def test_a_failure_is_status_1_and_says_what_to_try(self):
        self.host("join 0")
        result = self.run_app("wifi", "join", "Office", "--json", "--pass-phrase-file",
                              self.pass_phrase_file())
        self.assert_status(result, NONE_FOUND)
        self.assertEqual(json_lines(result.output), [{"network": "Office", "joined": False}])
        self.assert_mentions(result.errors, "could not join Office", "wifi list", "pass phrase")
        self.assert_not_shown(result)

    def test_a_failure_names_its_reason(self):
        self.host("join 0", 'wifi-problem 3 "the network gave the host no address"')
        result = self.run_app("wifi", "join", "Office", "--json", "--open")
        self.assert_status(result, NONE_FOUND)
        self.assertEqual(json_lines(result.output),
                         [{"network": "Office", "joined": False,
                           "problem": "the network gave the host no address"}])
        self.assert_mentions(result.errors, "could not join Office: the network gave the host no")

    def test_ctrl_c_ends_the_wait_and_undoes_the_attempt(self):
        self.host("join 1", "delay ConnectAP 60000")
        terminal = Terminal(self, "wifi", "join", "Office", "--open")
        terminal.expect(r"Joining Office, \d s")
        terminal.type("\x03")
        self.assertEqual(terminal.finish(), NONE_FOUND)
        terminal.expect("interrupted")
        self.assertEqual(self.host_calls("PrinterWifiBreakOff"), ["PrinterWifiBreakOff"])

    def test_an_attempt_that_takes_too_long_is_undone(self):
        self.host("join 1", "delay ConnectAP 60000")
        result = self.run_app("wifi", "join", "Office", "--open", "--vendor-seconds", "1")
        self.assert_status(result, COULD_NOT_RUN)
        self.assertEqual(self.host_calls("PrinterWifiBreakOff"), ["PrinterWifiBreakOff"])


class Ping(HostTest):
    def test_an_address_that_answers(self):
        self.host("ping 0", "ping 7")
        result = self.run_app("ping", "192.0.2.7")
        self.assert_status(result, FOUND)
        self.assertEqual(result.output, "192.0.2.7 answers\n")
        self.assertEqual(self.host_calls(), ["Ping 192.0.2.7"] * 2)

    def test_a_no_that_nobody_reads_is_no_yes(self):
        self.assert_no_without_reader("ping", "192.0.2.7", "--json",
                                      saying="192.0.2.7 does not answer")

    def test_an_address_that_does_not(self):
        result = self.run_app("ping", "192.0.2.7")
        self.assert_status(result, NONE_FOUND)
        self.assertEqual(result.output, "")
        self.assert_mentions(result.errors, "192.0.2.7 does not answer")
        self.assertEqual(self.host_calls(), ["Ping 192.0.2.7"] * 3)

    def test_json(self):
        for answer in (0, 1):
            self.host(f"ping {answer}")
            result = self.run_app("ping", "192.0.2.7", "--json")
            self.assert_status(result, FOUND if answer else NONE_FOUND)
            self.assertEqual(json_lines(result.output),
                             [{"address": "192.0.2.7", "answers": bool(answer)}])

    def test_what_could_not_be_asked_is_not_called_silent(self):
        self.host('ping-problem "ping is not allowed: no socket"')
        for arguments in ([], ["--json"]):
            result = self.run_app("ping", "192.0.2.7", *arguments)
            self.assert_status(result, COULD_NOT_RUN)
            self.assert_mentions(result.errors, "cannot ping 192.0.2.7",
                                 "ping is not allowed: no socket")
            self.assertNotIn("does not answer", result.errors)
        problem, = json_lines(result.output)
        self.assertEqual(list(problem), ["problem"])
        self.assert_mentions(problem["problem"], "ping is not allowed: no socket")

    def test_what_is_no_address_is_refused(self):
        for address in ("", "printer.local", "192.0.2", "192.0.2.256", "192.0.2.1.5", "::1",
                        "192.0.2.1 "):
            with self.subTest(address):
                result = self.run_app("ping", address)
                self.assert_status(result, USAGE)
                self.assertEqual(result.output, "")
                self.assert_mentions(result.errors, "ADDRESS", "devicediscover ping --help")
        self.assertEqual(self.host_calls(), [])


class Arguments(HostTest):
    def test_what_is_missing_or_wrong_is_told(self):
        for arguments, saying in ((["wifi"], "list, offer, current or join"),
                                  (["wifi", "scan"], "'scan'"),
                                  (["wifi", "join"], "NAME"),
                                  (["wifi", "join", ""], "empty"),
                                  (["wifi", "join", "x" * 128], "128 bytes"),
                                  (["wifi", "join", "x", "--open", "--pass-phrase-file", "f"],
                                   "--open"),
                                  (["wifi", "join", "x", "--pass-phrase-file", ""], "empty"),
                                  (["ping"], "ADDRESS")):
            with self.subTest(arguments):
                result = self.run_app(*arguments, listed=False)
                self.assert_status(result, USAGE)
                self.assertEqual(result.output, "")
                self.assert_mentions(result.errors, saying, "--help")
        self.assertEqual(self.host_calls(), [])

    def test_a_pass_phrase_among_the_arguments_is_refused_and_not_repeated(self):
        for arguments in (["wifi", "join", "Office", PASS_PHRASE],
                          ["wifi", "join", "Office", "--pass-phrase", PASS_PHRASE],
                          ["wifi", "join", "Office", "--pass-phrase=" + PASS_PHRASE],
                          ["ap", "configure", "--network", "Office", PASS_PHRASE],
                          ["setup", "--network", "Office", "--pwd=" + PASS_PHRASE]):
            with self.subTest(arguments):
                result = self.run_app(*arguments)
                self.assert_status(result, USAGE)
                self.assert_mentions(result.errors, "--pass-phrase-file")
                self.assert_not_shown(result)
        self.assertEqual(self.host_calls() + self.records(), [])

    def test_a_pass_phrase_given_to_another_option_is_refused_and_not_repeated(self):
        for value in (PASS_PHRASE, "12345678", "true=" + PASS_PHRASE):
            for option in ("--open", "--json"):
                for command in (["wifi", "join", "Office"],
                                ["ap", "configure", "--network", "Office"],
                                ["setup", "--network", "Office"]):
                    with self.subTest(command, option=option, value=value):
                        result = self.run_app(*command, f"{option}={value}")
                        self.assert_status(result, USAGE)
                        self.assert_mentions(result.errors, f"{option} takes no value", "--help")
                        self.assert_not_shown(result, value)
        for arguments in (["wifi"], ["wifi", "list"], ["ap"], ["ap", "info"], []):
            with self.subTest(arguments):
                result = self.run_app(*arguments, "--pass-phrase=" + PASS_PHRASE, listed=False)
                self.assert_status(result, USAGE)
                self.assert_not_shown(result)
        self.assert_mentions(self.run_app("ap", "info", "--open=" + PASS_PHRASE).errors,
                             "no argument or option '--open'")
        self.assertEqual(self.host_calls() + self.records(), [])

    def test_a_name_is_as_long_as_a_wi_fi_network_s_at_most(self):
        result = self.run_app("wifi", "join", "\u00e9" * 16 + "x", "--open")
        self.assert_status(result, USAGE)
        self.assert_mentions(result.errors, "NAME: the network's name has 33 bytes", "at most 32")
        self.assertEqual(self.host_calls(), [])
        self.host("join 1")
        self.assert_status(self.run_app("wifi", "join", "\u00e9" * 16, "--open"), FOUND)

    def test_help_says_how_each_command_ends(self):
        for command in (["wifi"], ["wifi", "list"], ["wifi", "offer"], ["wifi", "current"],
                        ["wifi", "join"], ["ping"]):
            with self.subTest(command):
                result = self.run_app(*command, "--help", listed=False)
                self.assert_status(result, FOUND)
                self.assert_mentions(result.output, "Examples:", "Exit status",
                                     "devicediscover " + " ".join(command))

    def test_a_log_that_cannot_be_written_is_told(self):
        result = self.run_app("ping", "192.0.2.7", "--log-file", self.path("no/such/log"))
        self.assert_status(result, COULD_NOT_RUN)


if __name__ == "__main__":
    app_test.main()

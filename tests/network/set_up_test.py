# SPDX-License-Identifier: Apache-2.0
"""Putting a printer on Wi-Fi through its own network: a printer that speaks the standard, this
host's Wi-Fi as a simulated NetworkManager tells of it, and the real module between them.

Runs inside scripts/lab-network, on the browsing side, which stands for the printer's own network
and, when the host's Wi-Fi says so, for the local network. The environment names what set_ups.py
needs.
"""

import os
import signal
import subprocess
import time
import unittest

from lab import PATIENCE, lab
from scans import IPP, IPPS, NO_AVAHI, NO_BUS, SLACK, text_below, text_of
from set_ups import (CANNOT_JOIN, NAME, NOT_ALLOWED, NOT_CONFIRMED, NOT_ON_NETWORK,
                     NOT_PRINTERS_NETWORK, NOT_REACHED, NOT_VALID, NOT_VISIBLE, NO_WIFI_ANSWER, OK,
                     OWN_NETWORK, PASS_PHRASE, REFUSED, SERIAL, STATE, TIMED_OUT, SetUpProbe,
                     SetUpTest, announce)


class RealPrinter(SetUpTest):
    """With a printer that implements the standard's Wi-Fi attributes."""

    def begin(self, *arguments, **options):
        self.have_wifi()
        return self.printer(*arguments), self.probe(**options)

    def test_a_printer_in_its_own_network_is_recognised_and_described(self):
        _, probe = self.begin()
        self.assertEqual(probe.result("connected"), OK)
        event = probe.asked("describe")
        self.assertEqual(event["result"], OK)
        self.assertEqual(
            {key: event[key] for key in
             ("serial", "modelId", "makeAndModel", "address", "resource", "port", "kind")},
            {"serial": SERIAL, "modelId": "driverless", "makeAndModel": "Acme Radio Laser",
             "address": "10.99.0.1", "resource": "/ipp/print", "port": 631, "kind": 1})
        self.assertNotIn("ff", [event["bytes"][i:i + 2] for i in range(0, 2 * 228, 2)],
                         "every byte is written")

    def test_with_a_printer_that_speaks_tls_it_is_the_same(self):
        printer, probe = self.begin("--tls")
        self.assertEqual(probe.result("connected"), OK)
        self.assertEqual(probe.asked("describe")["serial"], SERIAL)
        self.assertEqual(probe.configured(NAME, "wrong-horse battery")["result"], CANNOT_JOIN)
        self.assertEqual(probe.configured(NAME, PASS_PHRASE)["result"], OK)
        self.assertEqual(printer.given(), [(NAME, "wrong-horse battery"), (NAME, PASS_PHRASE)])

    def test_the_right_pass_phrase_is_given_as_it_is_and_the_printer_joins(self):
        printer, probe = self.begin()
        event = probe.configured(NAME, PASS_PHRASE)
        self.assertEqual(event["result"], OK)
        self.assertEqual(printer.given(), [(NAME, PASS_PHRASE)])
        self.assertEqual(printer.all()[-1], "state 8")
        self.assertLess(event["took"], 3 * SLACK)

    def test_through_the_broker_it_is_the_same(self):
        state = os.path.join(STATE, "broker")
        printer, probe = self.begin(through_broker=True, environment={"XDG_STATE_HOME": state})
        event = probe.asked("describe")
        self.assertEqual((event["result"], event["serial"]), (OK, SERIAL))
        self.assertEqual(probe.configured(NAME, PASS_PHRASE)["result"], OK)
        self.assertEqual(printer.given(), [(NAME, PASS_PHRASE)])
        self.assertEqual(probe.configured(NAME, "wrong-horse battery")["result"], CANNOT_JOIN)
        self.assertIn(f"call Func fail, err:{CANNOT_JOIN}", text_below(state))

    def test_a_wrong_pass_phrase_is_told_from_an_unknown_network(self):
        printer, probe = self.begin()
        self.assertEqual(probe.configured(NAME, "wrong-horse battery")["result"], CANNOT_JOIN)
        self.assertEqual(probe.configured("Nowhere", PASS_PHRASE)["result"], NOT_VISIBLE)
        self.assertEqual(probe.configured(NAME, "wrong-horse again")["result"], CANNOT_JOIN)
        self.assertEqual(probe.configured(NAME, PASS_PHRASE)["result"], OK)
        self.assertEqual(printer.given(), [(NAME, "wrong-horse battery"), ("Nowhere", PASS_PHRASE),
                                           (NAME, "wrong-horse again"), (NAME, PASS_PHRASE)])

    def test_an_open_network_is_given_without_a_pass_phrase(self):
        printer, probe = self.begin()
        self.assertEqual(probe.configured("Open", "")["result"], OK)
        self.assertEqual(printer.given(), [("Open", "")])

    def test_what_the_standard_forbids_is_not_sent(self):
        printer, probe = self.begin()
        for name, pass_phrase in ((NAME, "1234567"), ("", PASS_PHRASE), ("n" * 33, PASS_PHRASE)):
            event = probe.configured(name, pass_phrase)
            self.assertEqual(event["result"], NOT_VALID)
            self.assertLess(event["took"], 0.2 * SLACK)
        self.assertEqual(printer.given(), [])

    def test_the_longest_name_and_pass_phrase_arrive_whole(self):
        printer, probe = self.begin()
        self.assertEqual(probe.configured("n" * 32, "p" * 31)["result"], NOT_VISIBLE)
        self.assertEqual(printer.given(), [("n" * 32, "p" * 31)])

    def test_a_printer_that_refuses_is_told_from_one_that_cannot_join(self):
        printer, probe = self.begin("--refuses")
        self.assertEqual(probe.configured(NAME, PASS_PHRASE)["result"], REFUSED)
        self.assertEqual(printer.given(), [(NAME, PASS_PHRASE)])

    def test_a_printer_that_dies_while_it_joins_is_waited_for_in_vain(self):
        self.have_wifi()
        printer = self.printer("--joins-in", "60000")
        probe = self.probe(environment={"DRIVERLESS_JOIN_SECONDS": "4"})
        probe.configure(NAME, PASS_PHRASE)
        printer.await_line("state 7")
        time.sleep(1.5)  # so that its answer is through
        printer.end()
        self.running.remove(printer)
        event = probe.await_event("configure")
        self.assertEqual(event["result"], TIMED_OUT)
        self.assertLess(event["took"], 8 * SLACK)

    def test_a_printer_that_closes_its_network_for_good_is_not_known_to_have_joined(self):
        printer, probe = self.begin("--joins-in", "60000",
                                    environment={"DRIVERLESS_JOIN_SECONDS": "4"})
        self.wifi.have_network("HomeNet", 60)
        probe.configure(NAME, PASS_PHRASE)
        printer.await_line("state 7")
        self.wifi.forget(OWN_NETWORK)
        printer.end()
        self.running.remove(printer)
        event = probe.await_event("configure")
        self.assertEqual(event["result"], NOT_CONFIRMED)
        self.assertGreater(event["took"], 9)

    def test_a_printer_that_is_met_on_the_network_has_joined(self):
        lab("cold")
        printer, probe = self.begin("--joins-in", "60000")
        probe.configure(NAME, PASS_PHRASE)
        printer.await_line("state 7")
        self.wifi.forget(OWN_NETWORK)
        self.wifi.have_network("Home", 60)
        self.wifi.join("Home")
        printer.end()
        self.running.remove(printer)
        self.fake("--behaviour", "no-wifi", "--port", "9000", "--serial", SERIAL)
        announce(self, port=9000)
        event = probe.await_event("configure")
        self.assertEqual(event["result"], OK)
        self.assertLess(event["took"], 15 * SLACK)

    def test_the_host_goes_back_to_ask_and_then_to_where_it_was(self):
        printer, probe = self.begin("--joins-in", "5000")
        self.wifi.have_network("Home", 60)
        probe.configure(NAME, "wrong-horse battery")
        printer.await_line("state 7")
        self.wifi.leave()
        self.wifi.join("Home")
        lab("run", "ip", "link", "set", "lab0", "down")
        time.sleep(2)
        lab("run", "ip", "link", "set", "lab0", "up")
        self.assertEqual(probe.await_event("configure")["result"], CANNOT_JOIN)
        self.assertEqual(self.wifi.joined(), "Home")

    def assert_not_left(self, lose_wifi):
        """Nothing is known of a printer whose host has lost its own Wi-Fi."""
        printer, probe = self.begin("--joins-in", "60000",
                                    environment={"DRIVERLESS_JOIN_SECONDS": "4"})
        probe.configure(NAME, PASS_PHRASE)
        printer.await_line("state 7")
        time.sleep(1.5)  # so that its answer is through
        lose_wifi()
        printer.end()
        self.running.remove(printer)
        event = probe.await_event("configure")
        self.assertEqual(event["result"], TIMED_OUT)
        self.assertLess(event["took"], 8 * SLACK)

    def test_a_host_whose_wifi_service_ends_has_not_left(self):
        self.assert_not_left(lambda: self.wifi.end())

    def test_a_host_whose_wifi_is_switched_off_has_not_left(self):
        self.assert_not_left(lambda: self.wifi.switch_off())

    def test_a_printer_that_opens_its_network_again_says_how_it_went(self):
        printer, probe = self.begin("--joins-in", "5000")
        probe.configure(NAME, "wrong-horse battery")
        printer.await_line("state 7")
        self.wifi.leave()
        lab("run", "ip", "link", "set", "lab0", "down")
        time.sleep(3)
        lab("run", "ip", "link", "set", "lab0", "up")
        self.wifi.rejoin(OWN_NETWORK)
        self.assertEqual(probe.await_event("configure")["result"], CANNOT_JOIN)

    def test_a_printer_that_trusts_nobody_here_cannot_be_configured(self):
        printer, probe = self.begin("--beside-bridge")
        self.assertEqual(probe.result("connected"), NOT_REACHED)
        self.assertEqual(probe.configured(NAME, PASS_PHRASE)["result"], NOT_REACHED)
        self.assertEqual(printer.given(), [])

    def test_the_pass_phrase_is_in_no_log(self):
        log = os.path.join(STATE, "module-log")
        state = os.path.join(STATE, "secrets")
        _, probe = self.begin(through_broker=True, environment={
            "DRIVERLESS_LOG": log, "XDG_STATE_HOME": state})
        for pass_phrase in (PASS_PHRASE, "wrong-horse battery"):
            probe.configured(NAME, pass_phrase)
        self.assertEqual(probe.configured(NAME, "seven77")["result"], NOT_VALID)
        with open(log, encoding="utf-8") as file:
            said = file.read()
        self.assertIn(NAME, said)
        said += text_below(state) + probe.diagnostics()
        for pass_phrase in (PASS_PHRASE, "wrong-horse", "seven77"):
            self.assertNotIn(pass_phrase, said)


class OtherPrinters(SetUpTest):
    """With printers that are difficult."""

    def begin(self, behaviour, *arguments, environment=None):
        self.have_wifi()
        return (self.fake("--behaviour", behaviour, *arguments),
                self.probe(environment=environment))

    def assert_result(self, behaviour, result):
        printer, probe = self.begin(behaviour)
        self.assertEqual(probe.configured(NAME, PASS_PHRASE)["result"], result)
        self.assertEqual(printer.given(), [(NAME, PASS_PHRASE, "plain")])

    def test_a_printer_that_wants_a_password_does_not_allow_it(self):
        self.assert_result("wants-password", NOT_ALLOWED)

    def test_a_printer_that_forbids_it_does_not_allow_it(self):
        self.assert_result("forbids", NOT_ALLOWED)

    def test_a_printer_that_says_so_itself_does_not_allow_it(self):
        self.assert_result("not-authorized", NOT_ALLOWED)

    def test_a_printer_that_ignores_an_attribute_has_refused(self):
        self.assert_result("ignores", REFUSED)

    def test_a_printer_that_leaves_without_an_answer_has_taken_the_network(self):
        printer, probe = self.begin("leaves")
        probe.configure(NAME, PASS_PHRASE)
        printer.await_line(f"given {NAME.encode().hex()} {PASS_PHRASE.encode().hex()} plain")
        self.wifi.have_network("HomeNet", 60)
        self.wifi.forget(OWN_NETWORK)
        event = probe.await_event("configure", 2 * PATIENCE)
        self.assertEqual(event["result"], NOT_CONFIRMED)
        self.assertGreater(event["took"], 19)

    def test_a_printer_that_is_gone_before_it_is_given_the_network_has_not_taken_it(self):
        printer, probe = self.begin("vanishes")
        probe.configure(NAME, PASS_PHRASE)
        printer.await_line("vanishes")
        self.wifi.leave()
        event = probe.await_event("configure")
        self.assertEqual(event["result"], NOT_REACHED)
        self.assertLess(event["took"], 5 * SLACK)
        self.assertEqual(printer.given(), [])

    def test_a_printer_that_quotes_the_pass_phrase_brings_it_into_no_log(self):
        log = os.path.join(STATE, "talkative-log")
        self.have_wifi()
        self.fake("--behaviour", "talkative")
        for environment in ({}, {"DRIVERLESS_LOG": log}):
            probe = self.probe(environment=environment)
            self.assertEqual(probe.configured(NAME, PASS_PHRASE)["result"], REFUSED)
            self.assertEqual(probe.end(), 0)
            said = probe.diagnostics() if not environment else text_of(log)
            self.assertIn("not '***', not ***", said)
            self.assertNotIn(PASS_PHRASE, said)

    @staticmethod
    def certificate():
        path = os.path.join(STATE, "certificate.pem")
        subprocess.run(
            ["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-subj", "/CN=printer",
             "-keyout", path, "-out", path + ".public"], check=True,
            capture_output=True, timeout=PATIENCE)
        with open(path + ".public", encoding="ascii") as public:
            with open(path, "a", encoding="ascii") as both:
                both.write(public.read())
        return path

    def test_a_printer_that_speaks_tls_is_given_the_pass_phrase_over_it(self):
        printer, probe = self.begin("joins", "--certificate", self.certificate())
        self.assertEqual(probe.asked("describe")["kind"], IPP)
        self.assertEqual(probe.configured(NAME, PASS_PHRASE)["result"], OK)
        self.assertEqual(printer.given(), [(NAME, PASS_PHRASE, "tls")])

    def test_a_printer_that_speaks_tls_only_is_found_and_given_everything_over_it(self):
        certificate = self.certificate()
        self.have_wifi()
        for behaviour in ("closes", "waits"):
            with self.subTest(behaviour=behaviour):
                printer = self.fake("--certificate", certificate, "--without-tls", behaviour)
                probe = self.probe()
                connected = probe.asked("connected")
                self.assertEqual(connected["result"], OK)
                self.assertLess(connected["took"], 2.2 * SLACK)
                event = probe.asked("describe")
                self.assertEqual((event["result"], event["kind"], event["port"]), (OK, IPPS, 631))
                self.assertEqual(probe.configured(NAME, PASS_PHRASE)["result"], OK)
                self.assertEqual(printer.given(), [(NAME, PASS_PHRASE, "tls")])
                printer.end()
                self.running.remove(printer)

    def test_a_slow_printer_that_speaks_plain_ipp_is_asked_in_plain_whatever_tls_does(self):
        certificate = self.certificate()
        self.have_wifi()
        for over_tls in ("answers", "waits"):
            with self.subTest(over_tls=over_tls):
                printer = self.fake("--certificate", certificate, "--without-tls", "late",
                                    "--over-tls", over_tls)
                event = self.probe().asked("describe")
                printer.end()
                self.running.remove(printer)
                self.assertEqual((event["result"], event["kind"]), (OK, IPP))
                self.assertLess(event["took"], 1.5 * SLACK)

    def test_a_failure_of_an_earlier_attempt_is_not_taken_for_the_outcome(self):
        _, probe = self.begin("hesitates", "--state", "6", "--network", NAME)
        event = probe.configured(NAME, PASS_PHRASE)
        self.assertEqual(event["result"], OK)
        self.assertGreater(event["took"], 1.4)

    def test_a_printer_that_stays_on_another_network_has_not_joined(self):
        _, probe = self.begin("stays", "--state", "8", "--network", "Office",
                              environment={"DRIVERLESS_JOIN_SECONDS": "4"})
        event = probe.configured(NAME, PASS_PHRASE)
        self.assertEqual(event["result"], TIMED_OUT)
        self.assertGreater(event["took"], 3.9)

    def test_a_printer_without_wifi_is_not_one_to_set_up(self):
        _, probe = self.begin("no-wifi")
        self.assertEqual(probe.result("connected"), NOT_REACHED)
        event = probe.asked("describe")
        self.assertEqual(event["result"], NOT_REACHED)
        self.assertEqual(event["bytes"], "ff" * 228, "nothing is written")

    def test_a_gateway_that_says_nothing_is_asked_for_two_seconds(self):
        _, probe = self.begin("silent")
        event = probe.asked("connected")
        self.assertEqual(event["result"], NOT_REACHED)
        self.assertLess(event["took"], 2.2 * SLACK)

    def test_a_printer_that_answers_only_a_while_after_the_host_has_joined_is_waited_for(self):
        _, probe = self.begin("joins", "--wakes-after", "5",
                              environment={"DRIVERLESS_FIRST_SECONDS": "20"})
        event = probe.asked("connected")
        self.assertEqual(event["result"], OK)
        self.assertGreater(event["took"], 4.9)
        self.assertLess(event["took"], 8 * SLACK)
        self.assertLess(probe.asked("describe")["took"], 1 * SLACK)

    def test_a_gateway_that_refuses_is_not_waited_for_long(self):
        self.have_wifi()
        event = self.probe(environment={"DRIVERLESS_FIRST_SECONDS": "20"}).asked("connected")
        self.assertEqual(event["result"], NOT_REACHED)
        self.assertLess(event["took"], 2.5 * SLACK)

    def test_answers_without_bounds_end_no_process(self):
        self.have_wifi()
        for behaviour in ("nested", "endless", "floods", "trickles"):
            with self.subTest(behaviour):
                printer = self.fake("--behaviour", behaviour)
                probe = self.probe(environment={"DRIVERLESS_FIRST_SECONDS": "1"})
                self.assertEqual(probe.result("connected"), NOT_REACHED)
                self.assertEqual(probe.result("describe"), NOT_REACHED)
                printer.end()
                self.running.remove(printer)

    def test_in_another_network_nobody_is_asked(self):
        self.have_wifi("HomeNet")
        self.fake("--behaviour", "silent")
        probe = self.probe()
        event = probe.asked("connected")
        self.assertEqual(event["result"], NOT_PRINTERS_NETWORK)
        self.assertLess(event["took"], 0.2 * SLACK)
        self.assertEqual(probe.configured(NAME, PASS_PHRASE)["result"], NOT_REACHED)

    def test_further_networks_can_be_named(self):
        self.have_wifi("HomeNet")
        self.fake()
        probe = self.probe(environment={"DEVICEDISCOVER_PRINTER_NETWORKS": "Other;Home*"})
        self.assertEqual(probe.result("connected"), OK)

    def test_the_gateway_is_that_of_the_default_route(self):
        self.have_wifi()
        lab("run-beside-printers", "ip", "addr", "add", "10.99.0.9/24", "dev", "lab0")
        self.addCleanup(lab, "run-beside-printers", "ip", "addr", "del", "10.99.0.9/24", "dev",
                        "lab0")
        self.fake("--address", "10.99.0.9")
        probe = self.probe()
        self.assertEqual(probe.result("connected"), NOT_REACHED)
        lab("run", "ip", "route", "add", "default", "via", "10.99.0.9", "dev", "lab0")
        self.addCleanup(lab, "run", "ip", "route", "del", "default")
        event = probe.asked("describe")
        self.assertEqual((event["result"], event["address"]), (OK, "10.99.0.9"))

    def test_a_wifi_service_that_hangs_is_asked_for_two_seconds(self):
        self.have_wifi()
        self.fake()
        probe = self.probe()
        self.wifi.process.send_signal(signal.SIGSTOP)
        event = probe.asked("connected")
        self.assertEqual(event["result"], NO_WIFI_ANSWER)
        self.assertLess(event["took"], 2.2 * SLACK)
        self.wifi.process.send_signal(signal.SIGCONT)
        self.assertEqual(probe.result("connected"), OK)


class NetworksInRange(SetUpTest):
    def begin(self, joined=OWN_NETWORK, **options):
        self.have_wifi(joined)
        self.wifi.have_network("HomeNet", 80)
        self.wifi.have_network(NAME, 60, 0)
        self.wifi.have_network("DIRECT-b2-Camera", 70)
        return self.probe(**options)

    @staticmethod
    def networks(probe, seconds):
        deadline = time.monotonic() + seconds
        while probe.next(deadline - time.monotonic()) is not None:
            pass
        return [(event["name"], event["signal"]) for event in probe.seen
                if event["event"] == "network"]

    def test_each_is_reported_once_and_printers_own_are_not(self):
        probe = self.begin()
        probe.command("start")
        self.assertEqual(sorted(self.networks(probe, 5)), [(NAME, 60), ("HomeNet", 80)])
        for event in probe.seen:
            self.assertEqual(set(event.get("rest", "0")), {"0"}, "no byte is left over")
        self.assertEqual(probe.result("stop"), OK)
        self.assertEqual(probe.end_of_scan(), OK)

    def test_a_network_is_reported_again_when_its_signal_changed(self):
        probe = self.begin()
        probe.command("start")
        self.assertEqual(len(self.networks(probe, 2)), 2)
        self.wifi.set_signal("HomeNet", 75)
        self.wifi.set_signal(NAME, 30)
        self.wifi.have_network("Late", 20)
        self.assertEqual(sorted(self.networks(probe, 5)[2:]), [(NAME, 30), ("Late", 20)])
        self.assertEqual(probe.result("stop"), OK)

    def test_a_printers_own_is_not_reported_while_the_service_hangs_either(self):
        probe = self.begin("Acme Setup")
        probe.command("start")
        expected = sorted([(NAME, 60), ("HomeNet", 80)])
        self.assertEqual(sorted(self.networks(probe, 2)), expected)
        self.wifi.process.send_signal(signal.SIGSTOP)
        # The next look begins meanwhile, and is told too late what the host is joined to.
        self.networks(probe, 3.5)
        self.wifi.process.send_signal(signal.SIGCONT)
        self.wifi.set_signal("HomeNet", 60)
        self.assertEqual(sorted(self.networks(probe, 4)), sorted([*expected, ("HomeNet", 60)]))
        self.assertEqual(probe.result("stop"), OK)

    def test_nothing_is_reported_after_the_stop(self):
        probe = self.begin()
        probe.command("callback-sleeps", milliseconds=500)
        probe.command("start")
        probe.await_event("network")
        self.assertEqual(probe.result("stop"), OK)
        self.assertIn("callback-returns", [event["event"] for event in probe.seen],
                      "the stop waits for the report that is under way")
        self.assertEqual(len(self.networks(probe, 2)), 1)

    def test_a_second_start_takes_the_place_of_the_first(self):
        probe = self.begin()
        probe.command("start")
        self.assertEqual(len(self.networks(probe, 2)), 2)
        probe.command("start")
        self.assertEqual(probe.await_event("ended")["result"], OK)
        self.assertEqual(len(self.networks(probe, 2)), 4)
        self.assertEqual(probe.result("stop"), OK)

    def test_through_the_broker_it_is_the_same(self):
        self.fake()
        probe = self.begin(through_broker=True)
        probe.command("start")
        self.assertEqual(probe.await_event("started")["result"], OK)
        self.assertEqual(sorted(self.networks(probe, 3)), [(NAME, 60), ("HomeNet", 80)])
        self.assertEqual(probe.result("stop"), OK)

    def test_the_process_may_exit_in_the_middle_of_a_scan(self):
        self.fake()
        self.have_wifi()
        for turn in range(24):
            probe = SetUpProbe(through_broker=turn % 2 == 0)
            probe.await_event("ready")
            if turn % 2:
                self.assertEqual(probe.result("connected"), OK)
            probe.command("start")
            time.sleep(0.01 * (turn // 2))
            self.assertEqual(probe.end(), 0, f"turn {turn}: {probe.diagnostics()}")

    def test_the_service_may_end_in_the_middle_of_a_scan(self):
        probe = self.begin()
        probe.command("start")
        self.assertEqual(len(self.networks(probe, 2)), 2)
        self.wifi.end()
        self.assertEqual(len(self.networks(probe, 4)), 2)
        self.assertEqual(probe.result("stop"), OK)
        self.assertEqual(probe.end_of_scan(), OK)


class LocalNetwork(SetUpTest):
    def setUp(self):
        super().setUp()
        lab("cold")

    def announce(self, name="Radio", port=631):
        announce(self, name, port)

    def test_a_printer_that_joined_is_found_when_the_host_is_there_too(self):
        self.have_wifi()
        self.printer()
        probe = self.probe(through_broker=True)
        self.assertEqual(probe.configured(NAME, PASS_PHRASE)["result"], OK)
        self.announce()
        self.assertEqual(probe.result("present", serial=SERIAL), NOT_ON_NETWORK,
                         "it is only seen in its own network")
        self.wifi.leave()
        self.wifi.have_network(NAME, 60)
        self.wifi.join(NAME)
        event = probe.asked("present", serial=SERIAL)
        self.assertEqual(event["result"], OK)
        self.assertLess(event["took"], 3 * SLACK)

    def test_another_printer_is_not_it(self):
        self.have_wifi(None)
        self.printer()
        self.announce()
        probe = self.probe()
        event = probe.asked("present", serial="OTHER")
        self.assertEqual(event["result"], NOT_ON_NETWORK)
        self.assertLess(event["took"], 6 * SLACK)
        self.assertEqual(probe.result("present", serial=SERIAL), OK)

    def test_a_printer_is_known_by_its_uuid_too(self):
        self.have_wifi()
        self.printer()
        probe = self.probe()
        uuid = self.uuid()
        self.wifi.leave()
        self.announce()
        self.assertEqual(probe.result("present", serial=uuid), OK)

    @staticmethod
    def uuid():
        told = subprocess.run(
            ["ipptool", "-tv", "ipp://10.99.0.1/ipp/print", "get-printer-attributes.test"],
            capture_output=True, text=True, timeout=PATIENCE, check=False).stdout
        return told.split("printer-uuid (uri) = urn:uuid:")[1].split()[0]

    def test_an_announcement_without_a_printer_is_not_enough(self):
        self.have_wifi(None)
        self.announce()
        probe = self.probe()
        self.assertEqual(probe.result("present", serial="Radio@lab-p.local"), NOT_ON_NETWORK)

    def test_what_is_not_known_of_the_hosts_wifi_does_not_count_as_yes(self):
        self.have_wifi()
        self.printer()
        self.announce()
        probe = self.probe()
        self.wifi.process.send_signal(signal.SIGSTOP)
        event = probe.asked("present", serial=SERIAL)
        self.assertEqual(event["result"], NO_WIFI_ANSWER)
        self.assertLess(event["took"], 6 * SLACK)
        self.wifi.process.send_signal(signal.SIGCONT)
        self.assertEqual(probe.result("present", serial=SERIAL), NOT_ON_NETWORK)

    def test_it_says_when_it_cannot_look(self):
        probe = self.probe(environment={"DBUS_SYSTEM_BUS_ADDRESS": "unix:path=/nowhere/bus"})
        self.assertEqual(probe.result("present", serial=SERIAL), NO_BUS)
        lab("stop-avahi")
        self.addCleanup(lab, "start-avahi")
        probe = self.probe()
        event = probe.asked("present", serial=SERIAL)
        self.assertEqual(event["result"], NO_AVAHI)
        self.assertLess(event["took"], 3 * SLACK)


if __name__ == "__main__":
    unittest.main(verbosity=2)

# SPDX-License-Identifier: Apache-2.0
"""A new printer from its own network onto the office's, as a person goes about it: the application
with the list and the modules beside it, a printer that speaks the standard, and this host's Wi-Fi
as a simulated NetworkManager tells of it.

Runs inside scripts/lab-network, on the browsing side. The network there is first the printer's own;
when the application has joined the office's network it is that one, where both sides have other
addresses. The environment names what journeys.py needs.
"""

import contextlib
import os
import re
import signal
import subprocess
import time
import unittest

from journeys import TOO_SHORT, TWINS_PORT, WRONG, Ended, JourneyTest, Terminal
from lab import PATIENCE, lab
from office import BOTH, HOSTS_SIDE, OFFICE, PRINTERS_SIDE, THERE
from scans import SLACK
from set_ups import (CANNOT_JOIN, NAME, NOT_ON_NETWORK, NOT_VALID, NOT_VISIBLE, OWN_NETWORK,
                     PASS_PHRASE, SERIAL, TIMED_OUT)


class Journey(JourneyTest):
    """The whole of it, in one command."""

    def setUp(self):
        super().setUp()
        self.join_the_printers_network()

    def assert_not_joined(self):
        self.assertEqual(len(self.wifi.joinings()), 1, "only the printer's own network")

    def assert_goes_back(self, ended):
        self.assertIn("This computer goes back to the network it was on", ended.errors)
        self.wifi.await_joined(OWN_NETWORK)

    def test_an_interrupt_while_the_computer_joins_takes_it_back(self):
        self.wifi.have_network("Annex", 50, PASS_PHRASE, "hang")
        self.printer("--network", "Annex=" + PASS_PHRASE)

        def interrupt(process):
            self.await_joinings(2)
            process.send_signal(signal.SIGINT)
        ended = self.set_up(PASS_PHRASE, network="Annex", at={"rejoin": interrupt})
        self.assertEqual(ended.status, 1, str(ended))
        self.assert_goes_back(ended)

    def test_the_right_pass_phrase_ends_with_the_printers_place(self):
        printer = self.printer()
        ended = self.set_up(PASS_PHRASE, at={"find": lambda _: self.arrive()})
        self.assertEqual((ended.status, ended.errors), (0, ""), str(ended))
        self.assertEqual(ended.output.splitlines()[-1],
                         f"      Acme Radio Laser, serial number {SERIAL}, is on {NAME} at "
                         f"{OFFICE}1 port 631")
        self.assertEqual(printer.given(), [(NAME, PASS_PHRASE)])
        self.assertEqual(self.wifi.joinings(), ["", PASS_PHRASE])
        self.assert_masked_log()

    def test_json_says_the_same(self):
        printer = self.printer()
        ended = self.set_up(PASS_PHRASE, "--json", at={"find": lambda _: self.arrive()})
        self.assertEqual((ended.status, ended.errors), (0, ""), str(ended))
        last = self.assert_steps(ended)
        there = {"serialNumber": SERIAL, "makeAndModel": "Acme Radio Laser",
                 "address": OFFICE + "1", "port": 631, "vendor": "driverless",
                 "resource": "/ipp/print", "service": "ipp"}
        self.assertEqual(last, {"step": "find", "state": "done", "network": NAME,
                                "printer": there})
        self.assertEqual(ended.objects()[1]["printer"], {**there, "address": THERE + "1"})
        self.assertEqual(printer.given(), [(NAME, PASS_PHRASE)])

    def test_with_everything_shown_the_pass_phrase_is_not(self):
        printer = self.printer()
        log = os.path.join(self.state, "module-log")
        ended = self.set_up(PASS_PHRASE, "--log-level", "trace", DRIVERLESS_LOG=log,
                            at={"find": lambda _: self.arrive()})
        self.assertEqual(ended.status, 0, str(ended))
        self.assertRegex(ended.errors, r"\bpwd\*\*\*\(")
        with open(log, encoding="utf-8") as file:
            said = file.read()
        self.assertIn(NAME, said)
        self.assertNotIn(PASS_PHRASE, said)
        self.assertEqual(printer.given(), [(NAME, PASS_PHRASE)])

    def test_on_a_terminal_it_asks_and_the_pass_phrase_does_not_show(self):
        printer = self.printer()
        terminal = Terminal(["setup", "--seconds", "2"], self.environment())
        self.running.append(terminal)
        self.given.append(PASS_PHRASE)
        terminal.expect(r"\[2/6\]")
        terminal.expect("NETWORK")
        terminal.answer("Number or name", NAME)
        self.assertIn("HomeNet", terminal.text)
        self.assertNotIn(OWN_NETWORK, terminal.text)
        terminal.answer("Pass phrase of " + NAME, PASS_PHRASE)
        terminal.expect(r"\[6/6\]")
        self.arrive()
        terminal.expect(f"is on {NAME} at {re.escape(OFFICE)}1 port 631")
        self.assertEqual(terminal.status(), 0, terminal.text)
        self.assertEqual(printer.given(), [(NAME, PASS_PHRASE)])
        self.assert_secret(terminal.raw.decode())
        self.assert_masked_log()

    def test_a_pass_phrase_may_hold_any_characters(self):
        difficult = " p\u00e4ss(phrase) \"\\'%s "
        self.wifi.have_network("Annex", 50, difficult)
        printer = self.printer("--network", "Annex=" + difficult)
        ended = self.set_up(difficult, "--json", network="Annex",
                            at={"find": lambda _: self.arrive()})
        self.assertEqual(ended.status, 0, str(ended))
        self.assertEqual(printer.given(), [("Annex", difficult)])
        self.assert_masked_log()

    def test_an_interrupt_while_the_printer_joins_says_how_things_stand(self):
        printer = self.printer("--joins-in", "60000")
        interrupted = []

        def interrupt(process):
            printer.await_line("state 7")
            interrupted.append(time.monotonic())
            process.send_signal(signal.SIGINT)
        ended = self.set_up(PASS_PHRASE, at={"configure": interrupt})
        self.assertLess(time.monotonic() - interrupted[0], 2 * SLACK)
        self.assertEqual(ended.status, 1, str(ended))
        self.assertIn("interrupted. It is not known whether the printer was put on the network",
                      ended.errors)
        self.assert_not_joined()

    def test_a_wrong_pass_phrase_is_named_and_a_second_attempt_succeeds(self):
        printer = self.printer()
        ended = self.set_up(WRONG, "--json")
        self.assertEqual(ended.status, 1, str(ended))
        self.assertEqual(self.assert_steps(ended, "configure")["result"], CANNOT_JOIN)
        self.assertIn(f"step 4 of 6, Putting the printer on the network: the printer was not put "
                      f"on {NAME}: the vendor's result 12", ended.errors)
        self.assertIn("cannot join the network. Check the pass phrase", ended.errors)
        self.assertEqual(printer.given(), [(NAME, WRONG)])
        self.assert_not_joined()
        self.assert_masked_log()

        again = self.set_up(PASS_PHRASE, "--json", at={"find": lambda _: self.arrive()})
        self.assertEqual(again.status, 0, str(again))
        self.assertEqual(printer.given(), [(NAME, WRONG), (NAME, PASS_PHRASE)])

    def test_a_network_that_the_printer_does_not_see_is_named(self):
        printer = self.printer()
        ended = self.set_up(PASS_PHRASE, "--json", network="Nowhere")
        self.assertEqual(ended.status, 1, str(ended))
        self.assertEqual(self.assert_steps(ended, "configure")["result"], NOT_VISIBLE)
        self.assertIn("the printer was not put on Nowhere: the vendor's result 11", ended.errors)
        self.assertIn("does not see the network", ended.errors)
        self.assertEqual(printer.given(), [("Nowhere", PASS_PHRASE)])
        self.assert_not_joined()

    def test_too_short_a_pass_phrase_is_not_sent(self):
        printer = self.printer()
        ended = self.set_up(TOO_SHORT, "--json")
        self.assertEqual(ended.status, 1, str(ended))
        self.assertEqual(self.assert_steps(ended, "configure")["result"], NOT_VALID)
        self.assertIn("the vendor's result 16", ended.errors)
        self.assertIn("not valid; nothing was sent", ended.errors)
        self.assertEqual(printer.given(), [])
        self.assert_not_joined()
        self.assert_masked_log()

    def test_a_printer_that_goes_while_it_joins_is_waited_for_in_vain(self):
        printer = self.printer("--joins-in", "60000")

        def go(_):
            printer.await_line("state 7")
            time.sleep(0.5)  # so that its answer is through
            self.end(printer)
        ended = self.set_up(PASS_PHRASE, "--json", at={"configure": go},
                            DRIVERLESS_JOIN_SECONDS="4")
        self.assertEqual(ended.status, 1, str(ended))
        self.assertEqual(self.assert_steps(ended, "configure")["result"], TIMED_OUT)
        self.assertIn("the printer did not join the network in time", ended.errors)
        self.assert_not_joined()

    def test_a_printer_that_closes_its_own_network_for_the_offices_is_followed(self):
        printer = self.printer("--joins-in", "60000")

        def close(_):
            printer.await_line("state 7")
            self.move_to_office(PRINTERS_SIDE)
            self.wifi.forget(OWN_NETWORK)
        ended = self.set_up(PASS_PHRASE, "--json", at={
            "configure": close, "find": lambda _: self.arrive(HOSTS_SIDE)},
                            DRIVERLESS_JOIN_SECONDS="4")
        self.assertEqual(ended.status, 0, str(ended))
        self.assertEqual(self.assert_steps(ended)["printer"]["address"], OFFICE + "1")
        self.assertEqual(printer.given(), [(NAME, PASS_PHRASE)])
        self.assertEqual(self.wifi.joinings(), ["", PASS_PHRASE])

    def test_a_printer_that_goes_before_it_is_asked_who_it_is_is_none(self):
        self.end(self.printer())
        ended = self.set_up(PASS_PHRASE, "--json")
        self.assertEqual(ended.status, 1, str(ended))
        self.assert_steps(ended, "printer")
        self.assertIn("step 1 of 6, Which printer: ", ended.errors)
        self.assertIn(f"{OWN_NETWORK}, is not the access point of any supported vendor's printer, "
                      "or the printer does not answer", ended.errors)
        self.assertIn("nothing was changed", ended.errors)

    def test_a_printer_that_goes_before_the_office_is_not_found_there(self):
        printer = self.printer()

        def go(_):
            self.move_to_office(*BOTH)
            self.end(printer)
        ended = self.set_up(PASS_PHRASE, "--json", "--timeout", "2", at={"find": go})
        self.assertEqual(ended.status, 1, str(ended))
        self.assert_steps(ended, "find")
        self.assertIn("was put on " + NAME + ", but was not found there within 2 s", ended.errors)
        self.assert_goes_back(ended)

    def test_a_computer_that_cannot_join_says_that_the_printer_has(self):
        self.wifi.have_network("Annex", 50, "only for computers")
        printer = self.printer("--network", "Annex=only for printers")
        ended = self.set_up("only for printers", "--json", network="Annex")
        self.assertEqual(ended.status, 1, str(ended))
        self.assert_steps(ended, "rejoin")
        self.assertRegex(ended.errors, r"this computer could not join Annex \(.*pass phrase may be "
                                       r"wrong\); the printer was put on it")
        self.assert_goes_back(ended)
        self.assertIn(f"devicediscover ap check {SERIAL} --vendor driverless", ended.errors)
        self.assertEqual(printer.given(), [("Annex", "only for printers")])

    def test_in_the_office_already_there_is_no_printer_to_set_up(self):
        self.printer()
        office = self.devicediscover("wifi", "join", NAME, "--pass-phrase-file", "-",
                                     secret=PASS_PHRASE)
        self.assertEqual(office.status, 0, str(office))
        ended = self.set_up(PASS_PHRASE)
        self.assertEqual(ended.status, 1, str(ended))
        self.assertIn(f"this computer's Wi-Fi network, {NAME}, is not the access point",
                      ended.errors)


    def test_another_printer_with_its_serial_number_is_not_taken_for_it(self):
        self.printer()

        def only_twin(_):
            self.move_to_office(*BOTH)
            self.announce_twin()
        ended = self.set_up(PASS_PHRASE, "--json", "--timeout", "3", at={"find": only_twin})
        self.assertEqual(ended.status, 1, str(ended))
        self.assertEqual(self.assert_steps(ended, "find")["result"], NOT_ON_NETWORK)
        self.assertIn(f"a printer with that serial number was found at {OFFICE}1 port {TWINS_PORT}, but",
                      ended.errors)

    def test_beside_another_printer_with_its_serial_number_both_places_are_named(self):
        self.printer()

        def both(_):
            self.move_to_office(*BOTH)
            self.announce_twin()
            self.announce()
        ended = self.set_up(PASS_PHRASE, "--json", at={"find": both})
        self.assertEqual(ended.status, 0, str(ended))
        self.assertEqual(sorted(one["port"] for one in self.assert_steps(ended)["printers"]),
                         [631, TWINS_PORT])


class JourneySteps(JourneyTest):
    """The same, a command a step."""

    def json(self, *arguments, **options):
        ended = self.devicediscover(*arguments, "--json", **options)
        self.assertEqual((ended.status, ended.errors), (0, ""), str(ended))
        return ended.objects()

    def test_the_printer_goes_from_its_network_to_the_office(self):
        printer = self.printer()
        self.assertEqual(self.json("wifi", "join", OWN_NETWORK, "--open"),
                         [{"network": OWN_NETWORK, "joined": True}])
        described = {"serialNumber": SERIAL, "makeAndModel": "Acme Radio Laser",
                     "address": THERE + "1", "port": 631, "vendor": "driverless",
                     "resource": "/ipp/print", "service": "ipp"}
        self.assertEqual(self.json("ap", "info"), [described])
        self.assertEqual(
            sorted((one["network"], one["signal"])
                   for one in self.json("ap", "scan", "--seconds", str(int(2 * SLACK)))),
            [(NAME, 60), ("HomeNet", 80)])

        early = self.devicediscover("ap", "check", "--json")
        self.assertEqual(early.status, 1, str(early))
        self.assertIn("the printer is not on the local network", early.errors)

        self.assertEqual(
            self.json("ap", "configure", "--network", NAME, "--pass-phrase-file", "-",
                      secret=PASS_PHRASE),
            [{"network": NAME, "configured": True, "result": 0}])
        self.assertEqual(printer.given(), [(NAME, PASS_PHRASE)])
        self.json("wifi", "join", NAME, "--pass-phrase-file", "-", secret=PASS_PHRASE)
        self.arrive()
        check, = self.json("ap", "check", SERIAL)
        self.assertEqual((check["serialNumber"], check["onLocalNetwork"], check["result"]),
                         (SERIAL, True, 0))
        other = self.devicediscover("ap", "check", "OTHER", "--vendor", "driverless")
        self.assertEqual((other.status, other.output), (1, ""), str(other))
        self.assertIn("vendor driverless: the vendor's result 17", other.errors)
        self.assert_masked_log()

    @contextlib.contextmanager
    def started(self, *arguments, secret):
        """A run of the application while things happen; `ended` with what became of it."""
        self.given.append(secret)
        process = subprocess.Popen(
            self.command(*arguments), stdin=subprocess.PIPE, stdout=subprocess.PIPE,
            stderr=subprocess.PIPE, text=True, env=self.environment())
        try:
            process.stdin.write(secret + "\n")
            process.stdin.flush()
            process.ended = lambda: self.end_of(process)
            yield process
        finally:
            process.kill()
            process.communicate()

    def end_of(self, process):
        output, errors = process.communicate(timeout=2 * PATIENCE * SLACK)
        self.assert_secret(output, errors)
        return Ended(process.returncode, output, errors)

    def close_the_printers_link(self, closed=True):
        lab("run-beside-printers", "ip", "link", "set", "lab0", "down" if closed else "up")

    def begin_to_configure(self, secret, *arguments):
        """The printer is told the network, on a host that is in the printer's own."""
        printer = self.printer(*arguments)
        self.join_the_printers_network()
        self.addCleanup(self.close_the_printers_link, False)
        running = self.started("ap", "configure", "--network", NAME, "--pass-phrase-file", "-",
                               "--json", secret=secret)
        return printer, running

    def test_a_printer_with_one_radio_says_on_its_own_network_that_it_was_not_let_in(self):
        printer, running = self.begin_to_configure(WRONG, "--joins-in", "5000")
        with running as process:
            printer.await_line("state 7")
            self.close_the_printers_link()
            self.wifi.forget(OWN_NETWORK)
            time.sleep(3)
            self.wifi.have_network(OWN_NETWORK, 90)
            self.await_joinings(2)
            self.close_the_printers_link(False)
            ended = process.ended()
        self.assertEqual(ended.status, 1, str(ended))
        self.assertEqual(ended.objects(), [{"network": NAME, "configured": False,
                                            "result": CANNOT_JOIN}])
        self.assertIn(f"the printer was not put on {NAME}", ended.errors)
        self.assertIn("Check the pass phrase", ended.errors)
        self.assertEqual(self.wifi.joinings(), ["", ""])

    def test_an_interrupt_while_the_host_is_back_to_ask_takes_it_to_where_it_was(self):
        self.wifi.have_network("Cafe", 50)
        printer, running = self.begin_to_configure(WRONG, "--joins-in", "60000")
        with running as process:
            printer.await_line("state 7")
            self.close_the_printers_link()
            joined = self.devicediscover("wifi", "join", "Cafe", "--open")
            self.assertEqual(joined.status, 0, str(joined))
            self.await_joinings(3)
            self.wifi.await_joined(OWN_NETWORK)
            process.send_signal(signal.SIGINT)
            ended = process.ended()
        self.assertEqual(ended.status, 1, str(ended))
        self.assertIn("interrupted", ended.errors)
        self.wifi.await_joined("Cafe")

    def test_an_interrupt_undoes_what_wifi_join_has_begun(self):
        self.wifi.have_network("Slow", 50, PASS_PHRASE, "hang")
        self.join_the_printers_network()
        with self.started("wifi", "join", "Slow", "--pass-phrase-file", "-",
                          secret=PASS_PHRASE) as process:
            self.await_joinings(2)
            process.send_signal(signal.SIGINT)
            ended = process.ended()
        self.assertEqual(ended.status, 1, str(ended))
        self.assertIn("interrupted", ended.errors)
        self.wifi.await_joined(OWN_NETWORK)

    def test_the_hosts_networks_are_told(self):
        listed = {one["network"]: one["signal"] for one in self.json("wifi", "list")}
        self.assertEqual(listed, {OWN_NETWORK: 90, NAME: 60, "HomeNet": 80})
        self.assertEqual(self.devicediscover("wifi", "current").status, 1)
        self.json("wifi", "join", OWN_NETWORK, "--open")
        self.assertEqual(self.json("wifi", "current"), [
            {"network": OWN_NETWORK, "hardwareAddress": "00:11:22:33:44:01", "interface": "lab0"}])

    def test_the_networks_that_the_host_knows_do_not_wait_for_a_scan(self):
        self.printer()
        self.join_the_printers_network()
        self.wifi.let_scans("endless")
        self.assertEqual(sorted(one["network"] for one in self.json("ap", "scan")),
                         [NAME, "HomeNet"])

    def test_a_host_that_is_there_answers_a_ping(self):
        self.assertEqual(self.json("ping", THERE + "1"), [{"address": THERE + "1",
                                                           "answers": True}])
        silent = self.devicediscover("ping", THERE + "77", "--json")
        self.assertEqual((silent.status, silent.objects()),
                         (1, [{"address": THERE + "77", "answers": False}]))


if __name__ == "__main__":
    unittest.main(verbosity=2)

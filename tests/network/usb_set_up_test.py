# SPDX-License-Identifier: Apache-2.0
"""Putting a printer on Wi-Fi over USB: a printer that speaks the standard, reached on this host as
through a bridge for printers on USB, and the real module.

Runs inside scripts/lab-network, on the browsing side. The environment names what set_ups.py
needs.
"""

import os
import signal
import subprocess
import sys
import time
import unittest

from lab import PATIENCE, Lines, lab
from scans import SLACK, NetworkTest, text_below, text_of
from set_ups import (CANNOT_JOIN, FAKE_WIFI_PRINTER, NAME, NOT_ALLOWED, NOT_ON_NETWORK,
                     NOT_REACHED, NOT_VALID, NOT_VISIBLE, NO_WIFI_ANSWER, OK, OWN_NETWORK,
                     PASS_PHRASE, PRINTER, REFUSED, SERIAL, STATE, TIMED_OUT, SetUpTest)

NO_BRIDGE, SEVERAL_ALIKE = 24, 25
FAILED_IN_BROKER = -1
MODEL = "Acme Radio Laser"
PORT = 60000
UUID = "7e21a7d4-0000-4000-8000-0000000000ab"


class UsbTest(SetUpTest):
    def bridged(self, *arguments, port=PORT, serial=SERIAL):
        folder = os.path.join(STATE, f"usb-printer-{port}")
        os.makedirs(folder, exist_ok=True)
        return self.begun(["unshare", "-u", PRINTER, folder, "127.0.0.1", "--beside-bridge",
                           "--port", str(port), "--serial", serial, "--network",
                           f"{NAME}={PASS_PHRASE}", "--network", "Open=", *arguments])

    def fake_bridged(self, *arguments, port=PORT, user=(), **options):
        given = [f"--{option}={value}" for option, value in options.items()]
        return self.begun([*user, sys.executable, FAKE_WIFI_PRINTER, "--address", "127.0.0.1",
                           "--port", str(port), *given, *arguments])

    def begun(self, command):
        printer = Lines(command)
        self.running.append(printer)
        printer.await_line("ready")
        return printer

    def gone(self, printer):
        printer.end()
        self.running.remove(printer)

    @staticmethod
    def configure(probe, name, pass_phrase, serial=SERIAL, model=MODEL):
        probe.command("usb-configure", name=name.encode().hex(), serial=serial, model=model,
                      passPhrase=pass_phrase.encode().hex(), place="usb:1-1")

    def configured(self, probe, *arguments, **options):
        self.configure(probe, *arguments, **options)
        return probe.await_event("usb-configure", 2 * PATIENCE)

    def result(self, probe, *arguments, **options):
        return self.configured(probe, *arguments, **options)["result"]


class OverUsb(UsbTest):
    """With a printer that implements the standard's Wi-Fi attributes."""

    def begin(self, *arguments, **options):
        return self.bridged(*arguments), self.probe(**options)

    def test_the_right_pass_phrase_is_given_as_it_is_and_the_printer_joins(self):
        printer, probe = self.begin()
        event = self.configured(probe, NAME, PASS_PHRASE)
        self.assertEqual(event["result"], OK)
        self.assertEqual(printer.given(), [(NAME, PASS_PHRASE)])
        self.assertEqual(printer.all()[-1], "state 8")
        self.assertLess(event["took"], 3 * SLACK)

    def test_through_the_broker_it_is_the_same(self):
        state = os.path.join(STATE, "usb-broker")
        printer, probe = self.begin(through_broker=True, environment={"XDG_STATE_HOME": state})
        self.assertEqual(self.result(probe, NAME, PASS_PHRASE), OK)
        self.assertEqual(printer.given(), [(NAME, PASS_PHRASE)])
        self.assertEqual(self.result(probe, NAME, "wrong-horse battery"), FAILED_IN_BROKER)
        self.assertIn(f"call Func Fail{CANNOT_JOIN}(", text_below(state))

    def test_a_wrong_pass_phrase_is_told_from_an_unknown_network(self):
        printer, probe = self.begin()
        self.assertEqual(self.result(probe, NAME, "wrong-horse battery"), CANNOT_JOIN)
        self.assertEqual(self.result(probe, "Nowhere", PASS_PHRASE), NOT_VISIBLE)
        self.assertEqual(self.result(probe, NAME, PASS_PHRASE), OK)
        self.assertEqual(printer.given(), [(NAME, "wrong-horse battery"), ("Nowhere", PASS_PHRASE),
                                           (NAME, PASS_PHRASE)])

    def test_an_open_network_is_given_without_a_pass_phrase(self):
        printer, probe = self.begin()
        self.assertEqual(self.result(probe, "Open", ""), OK)
        self.assertEqual(printer.given(), [("Open", "")])

    def test_what_the_standard_forbids_is_not_sent(self):
        printer, probe = self.begin()
        for name, pass_phrase in ((NAME, "1234567"), ("", PASS_PHRASE), ("n" * 33, PASS_PHRASE)):
            event = self.configured(probe, name, pass_phrase)
            self.assertEqual(event["result"], NOT_VALID)
            self.assertLess(event["took"], 0.2 * SLACK)
        self.assertEqual(printer.given(), [])

    def test_a_printer_that_refuses_is_told_from_one_that_cannot_join(self):
        printer, probe = self.begin("--refuses")
        self.assertEqual(self.result(probe, NAME, PASS_PHRASE), REFUSED)
        self.assertEqual(printer.given(), [(NAME, PASS_PHRASE)])

    def test_of_several_printers_it_is_the_one_with_the_serial_number(self):
        printers = [self.bridged(port=port, serial=serial)
                    for port, serial in ((60000, "RADIO0"), (60001, SERIAL), (61234, "RADIO2"))]
        probe = self.probe()
        self.assertEqual(self.result(probe, NAME, PASS_PHRASE), OK)
        self.assertEqual([printer.given() for printer in printers], [[], [(NAME, PASS_PHRASE)], []])
        self.assertEqual(self.result(probe, NAME, PASS_PHRASE, serial="RADIO9"), NOT_REACHED)

    def test_one_without_a_serial_number_on_usb_is_told_by_its_model(self):
        printer, probe = self.begin()
        self.assertEqual(self.result(probe, NAME, PASS_PHRASE, serial="usb:1-1", model="Other"),
                         NOT_REACHED)
        self.assertEqual(self.result(probe, NAME, PASS_PHRASE, serial="usb:1-1"), OK)
        self.assertEqual(printer.given(), [(NAME, PASS_PHRASE)])
        other = self.bridged(port=60001, serial="RADIO2")
        self.assertEqual(self.result(probe, NAME, PASS_PHRASE, serial="usb:1-1"), SEVERAL_ALIKE)
        self.assertEqual((len(printer.given()), other.given()), (1, []))

    def test_without_a_bridge_nothing_is_sent_anywhere(self):
        probe = self.probe()
        event = self.configured(probe, NAME, PASS_PHRASE)
        self.assertEqual(event["result"], NO_BRIDGE)
        self.assertLess(event["took"], 0.2 * SLACK)

    def test_a_printer_that_was_unplugged_is_not_reached(self):
        printer, probe = self.begin()
        self.gone(printer)
        self.assertEqual(self.result(probe, NAME, PASS_PHRASE), NO_BRIDGE)
        self.bridged(port=60001, serial="RADIO2")
        self.assertEqual(self.result(probe, NAME, PASS_PHRASE), NOT_REACHED)

    def test_a_printer_that_is_unplugged_while_it_joins_is_waited_for_in_vain(self):
        printer = self.bridged("--joins-in", "60000")
        probe = self.probe(environment={"DRIVERLESS_JOIN_SECONDS": "4"})
        self.configure(probe, NAME, PASS_PHRASE)
        printer.await_line("state 7")
        time.sleep(0.5)  # so that its answer is through
        self.gone(printer)
        event = probe.await_event("usb-configure")
        self.assertEqual(event["result"], TIMED_OUT)
        self.assertLess(event["took"], 8 * SLACK)

    def test_a_printer_that_is_plugged_in_again_says_how_it_went(self):
        printer = self.bridged("--joins-in", "60000")
        probe = self.probe()
        self.configure(probe, NAME, PASS_PHRASE)
        printer.await_line("state 7")
        time.sleep(0.5)  # so that its answer is through
        self.gone(printer)
        self.fake_bridged("--state", "6", serial=SERIAL)
        event = probe.await_event("usb-configure")
        self.assertEqual(event["result"], CANNOT_JOIN)

    def test_another_printer_in_its_place_says_nothing_of_it(self):
        printer = self.bridged("--joins-in", "60000")
        probe = self.probe(environment={"DRIVERLESS_JOIN_SECONDS": "4"})
        self.configure(probe, NAME, PASS_PHRASE)
        printer.await_line("state 7")
        time.sleep(0.5)  # so that its answer is through
        self.gone(printer)
        self.fake_bridged("--state", "6", serial="OTHER")
        self.assertEqual(probe.await_event("usb-configure")["result"], TIMED_OUT)

    def test_other_ports_can_be_named(self):
        self.bridged(port=9700)
        self.assertEqual(self.result(self.probe(), NAME, PASS_PHRASE), NO_BRIDGE)
        probe = self.probe(environment={"DRIVERLESS_USB_BRIDGE_PORTS": "9000-9999"})
        self.assertEqual(self.result(probe, NAME, PASS_PHRASE), OK)

    def test_the_pass_phrase_is_in_no_log(self):
        log = os.path.join(STATE, "usb-log")
        _, probe = self.begin(environment={"DRIVERLESS_LOG": log})
        for pass_phrase in (PASS_PHRASE, "wrong-horse battery"):
            self.configured(probe, NAME, pass_phrase)
        self.assertEqual(self.result(probe, NAME, "seven77"), NOT_VALID)
        said = text_of(log)
        self.assertIn(NAME, said)
        for pass_phrase in (PASS_PHRASE, "wrong-horse", "seven77"):
            self.assertNotIn(pass_phrase, said + probe.diagnostics())


class OtherPrintersOverUsb(UsbTest):
    """With printers that are difficult."""

    def assert_result(self, behaviour, result):
        printer, probe = self.fake_bridged(behaviour=behaviour, serial=SERIAL), self.probe()
        self.assertEqual(self.result(probe, NAME, PASS_PHRASE), result)
        return printer

    def test_a_printer_that_wants_a_password_does_not_allow_it(self):
        self.assert_result("wants-password", NOT_ALLOWED)

    def test_a_printer_that_forbids_it_does_not_allow_it(self):
        self.assert_result("forbids", NOT_ALLOWED)

    def test_a_printer_without_wifi_refuses(self):
        printer = self.assert_result("no-wifi", REFUSED)
        self.assertEqual(printer.given(), [])

    def test_a_printer_that_is_gone_before_it_is_given_the_network_has_not_taken_it(self):
        printer = self.assert_result("vanishes", NOT_REACHED)
        self.assertEqual(printer.given(), [])

    def test_a_bridge_that_says_nothing_is_asked_for_two_seconds(self):
        for port in range(PORT, PORT + 5):
            self.fake_bridged(behaviour="silent", port=port)
        self.bridged(port=PORT + 5, serial="RADIO2")
        event = self.configured(self.probe(), NAME, PASS_PHRASE)
        self.assertEqual(event["result"], NOT_REACHED)
        self.assertLess(event["took"], 2.3 * SLACK)

    def test_a_bridge_whose_answer_has_no_bounds_costs_nothing_but_itself(self):
        for number, behaviour in enumerate(("nested", "endless", "floods", "continues")):
            self.fake_bridged(behaviour=behaviour, port=PORT + 1 + number)
        printer, probe = self.bridged(), self.probe()
        event = self.configured(probe, NAME, PASS_PHRASE)
        self.assertEqual(event["result"], OK)
        self.assertEqual(printer.given(), [(NAME, PASS_PHRASE)])
        self.assertLess(event["took"], 3 * SLACK)

    def test_what_speaks_tls_is_asked_in_plain_on_the_cable(self):
        certificate = os.path.join(STATE, "usb-certificate.pem")
        subprocess.run(
            ["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-subj", "/CN=printer",
             "-keyout", certificate, "-out", certificate + ".public"], check=True,
            capture_output=True, timeout=PATIENCE)
        with open(certificate, "a", encoding="ascii") as both:
            both.write(text_of(certificate + ".public"))
        printer = self.fake_bridged("--certificate", certificate, serial=SERIAL)
        self.assertEqual(self.result(self.probe(), NAME, PASS_PHRASE), OK)
        self.assertEqual(printer.given(), [(NAME, PASS_PHRASE, "plain")])

    def test_somebody_elses_program_is_no_bridge(self):
        if len(text_of("/proc/self/uid_map").split()) == 3 and \
                text_of("/proc/self/uid_map").split()[2] == "1":
            self.skipTest("there is only one user here")
        stranger = ["setpriv", "--reuid", "65534", "--clear-groups"]
        printer = self.fake_bridged(user=stranger, serial=SERIAL)
        probe = self.probe()
        self.assertEqual(self.result(probe, NAME, PASS_PHRASE), NO_BRIDGE)
        self.bridged(port=60001, serial="RADIO2")
        self.assertEqual(self.result(probe, NAME, PASS_PHRASE), NOT_REACHED)
        self.assertEqual(printer.given(), [])


class NetworksForUsb(UsbTest):
    def begin(self, joined=OWN_NETWORK, **options):
        self.have_wifi(joined)
        self.wifi.have_network(NAME, 60, 0)
        self.wifi.have_network("HomeNet", 80)
        self.wifi.have_network("DIRECT-b2-Camera", 70)
        return self.probe(**options)

    def networks(self, probe, option=0, result=OK):
        event = probe.asked("usb-networks", option=option)
        self.assertEqual(event["result"], result)
        for *_, rest in event["networks"]:
            self.assertEqual(set(rest), {"0"}, "no byte is left over")
        return [(name, signal) for name, signal, _ in event["networks"]]

    def test_are_the_hosts_and_the_strongest_first(self):
        probe = self.begin()
        self.assertEqual(self.networks(probe), [("HomeNet", 80), (NAME, 60)])
        self.assertEqual(self.networks(probe), [("HomeNet", 80), (NAME, 60)], "afresh")

    def test_through_the_broker_they_are_the_same(self):
        probe = self.begin(through_broker=True)
        self.assertEqual(self.networks(probe), [("HomeNet", 80), (NAME, 60)])
        self.assertEqual(self.networks(probe, 61), [("HomeNet", 80)])

    def test_the_number_is_the_weakest_signal_that_is_wanted(self):
        probe = self.begin()
        self.assertEqual(self.networks(probe, 60), [("HomeNet", 80), (NAME, 60)])
        self.assertEqual(self.networks(probe, 61), [("HomeNet", 80)])
        self.assertEqual(self.networks(probe, 101), [])
        self.assertEqual(len(self.networks(probe, -5)), 2)

    def test_are_a_hundred_and_twenty_eight_at_most(self):
        probe = self.begin()
        for number in range(130):
            self.wifi.have_network(f"Net {number}", 20 + (number > 2))
        found = self.networks(probe)
        self.assertEqual(len(found), 128)
        self.assertEqual(found[:2], [("HomeNet", 80), (NAME, 60)])
        self.assertEqual({signal for _, signal in found[2:]}, {21}, "the weakest are left out")

    def test_a_host_without_wifi_sees_none(self):
        self.assertEqual(self.networks(self.probe()), [])

    def test_a_wifi_service_that_hangs_is_not_waited_for(self):
        probe = self.begin()
        self.assertEqual(len(self.networks(probe)), 2)
        self.wifi.process.send_signal(signal.SIGSTOP)
        event = probe.asked("usb-networks", option=0)
        self.wifi.process.send_signal(signal.SIGCONT)
        self.assertEqual((event["result"], event["networks"]), (NO_WIFI_ANSWER, []))
        self.assertLess(event["took"], 13.5 * SLACK)


ANNOUNCE_ON_LOOPBACK = """
import socket, sys, time, dbus
bus = dbus.SystemBus()
def of(path, interface):
    return dbus.Interface(bus.get_object("org.freedesktop.Avahi", path),
                          "org.freedesktop.Avahi." + interface)
group = of(of("/", "Server").EntryGroupNew(), "EntryGroup")
group.AddService(socket.if_nametoindex("lo"), 0, dbus.UInt32(0), "USB Radio", "_ipp._tcp", "", "",
                 dbus.UInt16(int(sys.argv[1])), [dbus.ByteArray(b"rp=ipp/print")])
group.Commit()
while group.GetState() != 2:
    time.sleep(0.05)
print("ready", flush=True)
time.sleep(3600)
"""


class OnlyOnThisHost(UsbTest):
    """What a bridge announces on this host is not on the local network."""

    fakes = ()
    fake_printer, end_fake = NetworkTest.fake_printer, staticmethod(NetworkTest.end_fake)

    def setUp(self):
        super().setUp()
        self.fakes = []
        self.addCleanup(lambda: [self.end_fake(fake) for fake in self.fakes])
        path = os.path.join(STATE, "b", "avahi.conf")
        before = text_of(path)

        def configure(text):
            with open(path, "w", encoding="utf-8") as changed:
                changed.write(text)
            lab("cold")

        self.addCleanup(configure, before)
        configure(before.replace("allow-interfaces=lab0", "allow-interfaces=lab0,lo"))

    def test_a_printer_on_usb_is_not_on_the_network(self):
        self.bridged()
        self.begun(["/usr/bin/python3", "-c", ANNOUNCE_ON_LOOPBACK, str(PORT)])
        announced = subprocess.run(["avahi-browse", "-rpt", "_ipp._tcp"], capture_output=True,
                                   text=True, timeout=PATIENCE, check=True).stdout
        self.assertRegex(announced, r"=;lo;IPv4;USB.*;127\.0\.0\.1;60000;")
        self.assertEqual(self.probe().result("present", serial=SERIAL), NOT_ON_NETWORK)

    def test_a_printer_that_joined_is_known_by_its_uuid_where_it_says_no_serial_number(self):
        self.fake_bridged(model="Acme 9", uuid=UUID)
        probe = self.probe()
        self.fake_printer("Late", 9000, attributes=["printer-uuid=urn:uuid:" + UUID])
        self.assertEqual(probe.result("present", serial="USB9"), NOT_ON_NETWORK)
        self.assertEqual(self.result(probe, NAME, PASS_PHRASE, serial="USB9", model="Acme 9"), OK)
        self.assertEqual(probe.result("present", serial="USB9"), OK)

    def test_another_printer_in_the_same_place_is_known_by_its_own_uuid(self):
        probe = self.probe()
        for number, uuid in enumerate((UUID, UUID[:-1] + "c")):
            printer = self.fake_bridged(model="Acme 9", uuid=uuid)
            self.assertEqual(self.result(probe, NAME, PASS_PHRASE, serial="usb:1-1",
                                         model="Acme 9"), OK)
            self.gone(printer)
            self.fake_printer(f"Late {number}", 9000 + number,
                              attributes=["printer-uuid=urn:uuid:" + uuid])
            self.assertEqual(probe.result("present", serial="usb:1-1", place="usb:1-1"), OK)


if __name__ == "__main__":
    unittest.main(verbosity=2)

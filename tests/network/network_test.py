# SPDX-License-Identifier: Apache-2.0
"""The driverless module on a real network: real printers, Avahi and D-Bus in namespaces.

Runs inside scripts/lab-network, on the browsing side. The environment names what scans.py
needs.
"""

import contextlib
import json
import os
import queue
import re
import signal
import socket
import subprocess
import threading
import time
import unittest

from lab import PATIENCE, lab
from scans import (BUS_LOST, ENVIRONMENT, IPP, IPPS, LPD, NOT_READY, NO_ANSWER, NO_AVAHI,
                   NO_BROWSING, NO_BUS, NO_NETWORK, NO_PRINTER, OTHER_PRINTER, PDL_DATASTREAM,
                   PROGRAM, READY, SLACK, UNKNOWN, UUID, Announcer, NetworkTest, Probe,
                   as_ordinary_user, port_of, serial_of, slow_avahi, text_below, text_of,
                   with_threads_of_its_own)


class TwentyPrinters(NetworkTest):
    def test_all_are_found_each_once_and_ippfind_agrees(self):
        self.have_printers(20)
        probe = self.probe(through_broker=True)
        probe.start()
        probe.await_printers(20)
        found = probe.found(3)
        self.assertEqual(probe.ask("stop"), 0)

        self.assertEqual(len(found), 20, "each once")
        # ippfind ends when nothing came for a moment, on a busy machine before it has seen all.
        expected = set()
        for _ in range(10):
            opinion = subprocess.run(
                ["ippfind", "_ipp._tcp", "-T", "5", "--exec", "echo", "{service_port} {txt_ty}",
                 ";"], capture_output=True, text=True, timeout=60, check=True)
            expected |= set(opinion.stdout.splitlines())
            if len(expected) >= 20:
                break
        self.assertEqual(len(expected), 20, expected)
        self.assertEqual({f"{p['port']} {p['make_and_model']}" for p in found}, expected)
        self.assertEqual({(p["serial"], p["port"]) for p in found},
                         {(serial_of(number), port_of(number)) for number in range(1, 21)},
                         "each printer was asked over IPP, and answered")
        for printer in found:
            self.assertEqual(printer["model_id"], "driverless")
            self.assertEqual(printer["address"], "10.99.0.1")
            self.assertEqual(printer["resource"], "/ipp/print")
            self.assertEqual(printer["kind"], IPP)

    def test_a_second_start_reports_all_of_them_again_and_each_once(self):
        self.have_printers(5)
        probe = self.probe()
        probe.start()
        first = probe.await_printers(5)
        probe.start()
        self.assertEqual(probe.await_event("ended")["result"], 0)
        probe.await_printers(10)
        self.assertEqual(len(probe.found(2)), 10)
        self.assertEqual(len({p["serial"] for p in first}), 5)

    def test_starting_and_stopping_two_hundred_times_leaves_one_scan_that_works(self):
        self.have_printers(2)
        probe = self.probe(through_broker=True)
        for _ in range(200):
            probe.tell("start")
            probe.tell("stop")
        for _ in range(200):
            self.assertEqual(probe.await_event("stopped")["result"], 0)
        # A start comes back before its thread has reached the module, which may be after the stop.
        probe.found(2 * SLACK)
        self.assertEqual(probe.ask("stop"), 0)
        probe.seen.clear()
        probe.start()
        probe.await_printers(2)
        found = probe.found(1.5)
        self.assertEqual(sorted(p["serial"] for p in found), [serial_of(1), serial_of(2)])
        self.assertEqual(probe.ask("stop"), 0)

    def test_all_are_found_by_an_avahi_that_looks_up_few_at_once(self):
        self.have_printers(12)
        self.limit_avahi(7)
        probe = self.probe()
        probe.start()
        probe.await_printers(12)
        found = probe.found(1.5)
        self.assertEqual(sorted(p["serial"] for p in found),
                         [serial_of(number) for number in range(1, 13)])


class Diagnostics(NetworkTest):
    def scan_with_log(self, path, **options):
        probe = self.probe(environment={"DRIVERLESS_LOG": path}, **options)
        probe.start()
        return probe

    def log_path(self, name):
        path = os.path.join(os.environ["LAB_NETWORK_STATE"], name)
        if os.path.exists(path):
            os.remove(path)
        return path

    def assert_log(self, path, pattern):
        deadline = time.monotonic() + PATIENCE
        pattern = re.compile(pattern, re.MULTILINE)
        while time.monotonic() < deadline and not pattern.search(text_of(path)):
            time.sleep(0.05)
        self.assertRegex(text_of(path), pattern)

    def test_a_file_tells_what_was_found(self):
        self.have_printers(1)
        path = self.log_path("driverless.log")
        probe = self.scan_with_log(path)
        probe.await_printers(1)
        self.assert_log(path, rf"^driverless: found Acme Laser 1, serial number {serial_of(1)}, at "
                              r"10\.99\.0\.1:8631$")
        self.assertEqual(os.stat(path).st_mode & 0o777, 0o600)
        self.assertEqual(probe.diagnostics(), "")

    def test_a_file_that_cannot_be_opened_is_named_once(self):
        self.have_printers(3)
        probe = self.scan_with_log("/nowhere/driverless.log")
        probe.await_printers(3)
        self.assert_diagnostics(
            probe, "cannot write diagnostics to /nowhere/driverless.log: No such file")

    def test_a_fifo_that_nobody_reads_keeps_no_scan_waiting(self):
        self.have_printers(1)
        path = self.log_path("driverless.fifo")
        os.mkfifo(path)
        probe = self.scan_with_log(path)
        probe.await_printers(1)
        self.assert_diagnostics(probe, f"cannot write diagnostics to {path}")

    def test_a_reader_that_goes_does_not_end_the_process(self):
        # Without Avahi and libcups at work the process has SIGPIPE as it started.
        path = self.log_path("driverless.fifo")
        os.mkfifo(path)
        reader = os.open(path, os.O_RDONLY | os.O_NONBLOCK)
        probe = self.probe(environment={"DRIVERLESS_LOG": path})
        probe.tell("start-without-callback")
        self.assertNotEqual(probe.await_event("ended")["result"], 0)
        self.assertIn(b"without a callback", os.read(reader, 1000))
        os.close(reader)
        probe.tell("start-without-callback")
        self.assertNotEqual(probe.await_event("ended")["result"], 0)
        # A signal that was only held back would come now.
        probe.tell("start-without-callback")
        self.assertNotEqual(probe.await_event("ended")["result"], 0)

    def test_a_closed_standard_error_does_not_end_the_process(self):
        probe = self.probe()
        probe.tell("close-standard-error")
        probe.tell("start-without-callback")
        self.assertNotEqual(probe.await_event("ended")["result"], 0)


class ComingAndGoing(NetworkTest):
    def test_a_printer_that_is_started_later_is_found_then(self):
        self.have_printers(1)
        probe = self.probe(through_broker=True)
        probe.start()
        probe.await_printers(1)
        self.start_printer(2)
        self.assertEqual(probe.await_event("found")["make_and_model"], "Acme Laser 2")
        self.assertEqual(len(probe.found(1.5)), 2)

    def test_a_printer_that_is_stopped_is_no_longer_ready(self):
        self.have_printers(2)
        probe = self.probe(through_broker=True)
        probe.start()
        printers = {p["make_and_model"]: p["serial"] for p in probe.await_printers(2)}
        for serial in printers.values():
            self.assertEqual(probe.ask("state", serial), READY)
        self.stop_printer(1)
        self.assertEqual(probe.ask("state", printers["Acme Laser 1"]), NO_ANSWER)
        self.assertEqual(probe.ask("state", printers["Acme Laser 2"]), READY)

    def test_a_printer_that_comes_back_is_reported_again(self):
        self.have_printers(2)
        probe = self.probe()
        probe.start()
        probe.await_printers(2)
        self.stop_printer(1)
        self.await_forgotten("Acme Laser 1")
        self.assertEqual(len(probe.found(1)), 2)
        self.start_printer(1)
        back = probe.await_event("found")
        self.assertEqual(back["make_and_model"], "Acme Laser 1")
        self.assertEqual(len(probe.found(1.5)), 3)
        self.assertEqual(probe.ask("state", back["serial"]), READY)

    def test_avahi_may_end_and_come_back(self):
        self.have_printers(2)
        probe = self.probe()
        probe.start()
        probe.await_printers(2)
        lab("stop-avahi")
        self.assert_diagnostics(probe, "Avahi ended")
        lab("start-avahi")
        again = probe.await_printers(4)
        self.assertEqual(len({p["serial"] for p in again}), 2)
        self.assertEqual(probe.ask("stop"), 0)
        self.assertEqual(probe.await_event("ended")["result"], 0)


class WithoutServices(NetworkTest):
    def end_of_scan(self, probe):
        probe.start()
        ended = probe.await_event("ended")
        self.assertLess(ended["seconds"], 3 * SLACK)
        return ended["result"]

    def test_without_a_bus_the_scan_fails_at_once(self):
        probe = self.probe(environment={"DBUS_SYSTEM_BUS_ADDRESS": "unix:path=/nowhere/bus"})
        self.assertEqual(self.end_of_scan(probe), NO_BUS)
        self.assert_diagnostics(probe, "D-Bus")
        self.assertEqual(probe.ask("stop"), 0)

    def test_without_avahi_the_scan_fails_at_once(self):
        lab("stop-avahi")
        self.addCleanup(lab, "start-avahi")
        probe = self.probe()
        self.assertEqual(self.end_of_scan(probe), NO_AVAHI)
        self.assert_diagnostics(probe, "Avahi does not run: start avahi-daemon")

    def test_without_a_network_the_scan_fails_at_once(self):
        subprocess.run(["ip", "link", "set", "lab0", "down"], check=True)
        self.addCleanup(lab, "cold")
        self.addCleanup(subprocess.run, ["ip", "route", "add", "224.0.0.0/4", "dev", "lab0"])
        self.addCleanup(subprocess.run, ["ip", "link", "set", "lab0", "up"], check=True)
        probe = self.probe()
        self.assertEqual(self.end_of_scan(probe), NO_NETWORK)
        self.assert_diagnostics(probe, "no network")

    def test_the_broker_tells_its_log_what_the_module_returned(self):
        state = os.path.join(os.environ["LAB_NETWORK_STATE"], "broker")
        probe = self.probe(through_broker=True, environment={
            "DBUS_SYSTEM_BUS_ADDRESS": "unix:path=/nowhere/bus", "XDG_STATE_HOME": state})
        probe.start()
        self.assertEqual(probe.await_event("started")["result"], 0)
        self.assert_diagnostics(probe, "D-Bus")
        deadline = time.monotonic() + PATIENCE
        while time.monotonic() < deadline and not re.search(
                rf"call Func fail, err:{NO_BUS}\b", log := text_below(state)):
            time.sleep(0.05)
        self.assertRegex(log, rf"call Func fail, err:{NO_BUS}\b")

    def test_a_bus_that_ends_during_the_scan_ends_the_scan(self):
        self.addCleanup(lab, "start-avahi")
        self.have_printers(1)
        probe = self.probe()
        probe.start()
        probe.await_printers(1)
        lab("stop-bus")
        self.assertEqual(probe.await_event("ended")["result"], BUS_LOST)
        self.await_diagnostics(probe, "D-Bus ended")

    def frozen(self, which):
        """Stops a daemon in its tracks until the test ends."""
        with open(os.path.join(os.environ["LAB_NETWORK_STATE"], "b", which + ".pid"),
                  encoding="ascii") as file:
            process = int(file.read())
        os.kill(process, signal.SIGSTOP)
        self.addCleanup(os.kill, process, signal.SIGCONT)
        return process

    def test_an_avahi_that_hangs_does_not_make_the_scan_hang(self):
        self.frozen("avahi")
        probe = self.probe()
        probe.start()
        self.assertNotEqual(probe.await_event("ended", 10 * SLACK)["result"], 0)
        self.assert_diagnostics(probe, "does not answer")

    def test_a_bus_that_hangs_does_not_make_the_scan_hang(self):
        self.frozen("bus")
        probe = self.probe()
        probe.start()
        self.assertNotEqual(probe.await_event("ended", 10 * SLACK)["result"], 0)
        self.assert_diagnostics(probe, "does not answer")

    def test_a_short_scan_says_that_avahi_or_the_bus_hangs(self):
        for daemon in ("avahi", "bus"):
            lab("cold")
            self.frozen(daemon)
            begin = time.monotonic()
            scan = subprocess.run([PROGRAM, "scan", "--seconds", "1"], env=ENVIRONMENT, text=True,
                                  stdin=subprocess.DEVNULL, capture_output=True, timeout=60)
            self.assertLess(time.monotonic() - begin, 1 + 3 * SLACK)
            self.assertEqual(scan.returncode, 3, "nobody looked")
            self.assertIn("does not answer: no printer can be found", scan.stderr)
            self.doCleanups()

    def test_an_avahi_that_begins_to_hang_is_told_and_ends_the_scan(self):
        self.have_printers(1)
        probe = self.probe()
        probe.start()
        probe.await_printers(1)
        daemon = self.frozen("avahi")
        self.await_diagnostics(probe, "Avahi has stopped answering")
        os.kill(daemon, signal.SIGCONT)
        self.await_diagnostics(probe, "Avahi answers again")
        self.start_printer(2)
        probe.await_printers(2)
        os.kill(daemon, signal.SIGSTOP)
        self.assertEqual(probe.await_event("ended")["result"], NO_BROWSING)
        self.await_diagnostics(probe, "(?s)stopped.*again.*stopped.*the scan ends")

    def test_an_avahi_that_hangs_when_it_is_back_is_told(self):
        self.have_printers(1)
        probe = self.probe(environment=slow_avahi(reconnect=4000))
        probe.start()
        probe.await_printers(1)
        lab("cold")
        self.await_diagnostics(probe, "Avahi answers again")
        self.await_diagnostics(probe, "(?s)Avahi ended.*stopped answering.*again")

    def test_a_scan_without_threads_says_so(self):
        self.have_printers(1)
        # The first one is the entry point's, further ones are the scan's own.
        for further in (1, 2):
            probe = self.probe(counts_threads=True)
            process = probe.process.pid
            # The thread sanitizer has one of its own, which comes with the first one.
            threads = 1 + ("libtsan" in text_of(f"/proc/{process}/maps")) + further
            subprocess.run([*with_threads_of_its_own(), "prlimit", f"--pid={process}",
                            f"--nproc={threads}"], check=True)
            probe.start()
            self.assertEqual(probe.await_event("ended")["result"], NO_BROWSING, further)
            self.assert_diagnostics(probe, "no further thread can be started")
            # Its threads are counted, too.
            self.probes.remove(probe)
            self.assertEqual(probe.end(), 0)

    def test_a_scan_stops_at_once_while_avahi_hangs(self):
        probe = self.probe()
        probe.start()
        self.have_printers(1)
        probe.await_printers(1)
        self.frozen("avahi")
        self.assertEqual(probe.ask("stop"), 0)
        stopped = probe.seen[-1]["seconds"]
        ended = probe.await_event("ended", 3 * SLACK)
        self.assertEqual(ended["result"], 0)
        self.assertLess(ended["seconds"] - stopped, 1.5 * SLACK)

    def test_a_scan_that_is_stopped_while_avahi_hangs_did_not_find_everything(self):
        probe = self.probe()
        probe.start()
        self.have_printers(1)
        probe.await_printers(1)
        daemon = self.frozen("avahi")
        self.await_diagnostics(probe, "Avahi has stopped answering")
        self.assertEqual(probe.ask("stop"), 0)
        self.assertEqual(probe.await_event("ended")["result"], NO_BROWSING)
        os.kill(daemon, signal.SIGCONT)


class Stopping(NetworkTest):
    def assert_stops_at_once(self, probe):
        begin = time.monotonic()
        self.assertEqual(probe.ask("stop"), 0)
        self.assertLess(time.monotonic() - begin, 0.5 * SLACK)
        ended = [e for e in probe.seen if e["event"] == "ended"] or [
            probe.await_event("ended", 1 * SLACK)]
        self.assertEqual(ended[0]["result"], 0)
        self.assertLess(time.monotonic() - begin, 1 * SLACK)

    def test_a_scan_stops_at_once(self):
        self.have_printers(2)
        probe = self.probe()
        probe.start()
        probe.await_printers(2)
        self.assert_stops_at_once(probe)
        self.start_printer(3)
        self.assertEqual(len(probe.found(1)), 2, "nothing is reported after the stop")

    def test_a_scan_stops_at_once_while_printers_hang(self):
        for number in range(3):
            self.fake_printer(f"Silent {number}", 9000 + number, "silent",
                              txt=[f"UUID={UUID}{number}"])
        self.fake_printer("Silent TLS", 9010, "silent", "_ipps._tcp")
        self.fake_printer("Drips", 9011, "drips")
        probe = self.probe()
        probe.start()
        self.assertEqual(probe.found(1), [])
        self.assert_stops_at_once(probe)
        self.assertEqual(probe.found(3), [], "nothing is reported after the stop")

    def test_a_stop_waits_for_the_report_that_is_under_way(self):
        self.have_printers(1)
        probe = self.probe()
        probe.tell("callback-sleeps 700")
        probe.start()
        probe.await_event("found")
        self.assertEqual(probe.ask("stop"), 0)
        self.assertIn("callback-returns", [event["event"] for event in probe.seen])

    def test_a_stop_does_not_wait_for_ever_for_a_callback(self):
        self.have_printers(1)
        probe = self.probe()
        probe.tell("callback-sleeps 6000")
        probe.start()
        probe.await_event("found")
        begin = time.monotonic()
        self.assertNotEqual(probe.ask("stop"), 0)
        self.assertLess(time.monotonic() - begin, 4 * SLACK)

    def test_the_process_may_exit_in_the_middle_of_a_scan(self):
        self.have_printers(4)
        self.fake_printer("Silent", 9000, "silent")
        self.fake_printer("Silent TLS", 9010, "silent", "_ipps._tcp")
        for turn in range(40):
            probe = Probe(through_broker=turn % 2 == 0)
            probe.await_event("ready")
            probe.start()
            time.sleep(0.012 * (turn // 2))
            self.assertEqual(probe.end(), 0, f"turn {turn}: {probe.diagnostics()}")


class PrintersOfAllKinds(NetworkTest):
    def test_the_serial_number_attribute_is_preferred(self):
        self.fake_printer("Office", 9000, txt=[f"UUID={UUID}1", "rp=ipp/office"], attributes=[
            "printer-serial-number=SN-4711", "printer-make-and-model=Acme Office",
            "printer-device-id=MFG:Acme;MDL:Office;SN:other;", f"printer-uuid=urn:uuid:{UUID}1"])
        _, printer = self.found_one()
        self.assertEqual(printer["serial"], "SN-4711")
        self.assertEqual(printer["make_and_model"], "Acme Office")
        self.assertEqual(printer["resource"], "/ipp/office")
        self.assertEqual(printer["port"], 9000)

    def test_then_that_of_the_device_id(self):
        self.fake_printer("Office", 9000, txt=[f"UUID={UUID}1"], attributes=[
            "printer-device-id=MFG:Acme;MDL:Office;SN:AB12;"])
        _, printer = self.found_one()
        self.assertEqual(printer["serial"], "AB12")

    def test_a_printer_that_speaks_only_the_old_version_is_asked_with_it(self):
        self.fake_printer("Old", 9000, "old", attributes=["printer-serial-number=OLD1"])
        _, printer = self.found_one()
        self.assertEqual(printer["serial"], "OLD1")

    def test_a_printer_with_several_services_is_one(self):
        self.fake_printer("Office", 9000, txt=[f"UUID={UUID}1"],
                          attributes=["printer-serial-number=SN1"])
        self.fake_printer("Office", 9100, "closed", "_pdl-datastream._tcp", ["ty=Raw"])
        self.fake_printer("Office", 515, "closed", "_printer._tcp", [f"UUID={UUID}1"])
        probe, printer = self.found_one()
        self.assertEqual((printer["serial"], printer["kind"]), ("SN1", IPP))
        # In the end its other services are looked up, too.
        self.assertEqual(len(probe.found(2.5)), 1, "once")

    def test_printers_without_a_uuid_are_told_apart_by_name(self):
        for number in (1, 2):
            self.fake_printer(f"Raw {number}", 9100 + number, "closed", "_pdl-datastream._tcp",
                              ["ty=Acme Raw"])
        probe = self.probe()
        probe.start()
        probe.await_printers(2)
        self.assertEqual({p["serial"] for p in probe.found(1.5)},
                         {"Raw 1@lab-p.local", "Raw 2@lab-p.local"})

    def test_a_printer_without_ipp_is_reported_from_its_announcement(self):
        self.fake_printer("Raw", 9100, "answers", "_pdl-datastream._tcp",
                          ["usb_MFG=Acme", "usb_MDL=Raw 9", f"UUID={UUID}5"])
        probe, printer = self.found_one()
        self.assertEqual(printer["kind"], PDL_DATASTREAM)
        self.assertEqual(printer["serial"], UUID + "5")
        self.assertEqual(printer["make_and_model"], "Acme Raw 9")
        self.assertEqual(printer["resource"], "")
        self.assertEqual(probe.ask("state", printer["serial"]), READY)
        self.end_fake(self.fakes.pop())
        self.assertEqual(probe.ask("state", printer["serial"]), NO_ANSWER)

    def test_a_printer_with_only_lpd_is_reported_too(self):
        self.fake_printer("Lines", 515, "closed", "_printer._tcp", ["ty=Acme Lines", "rp=queue"])
        _, printer = self.found_one()
        self.assertEqual((printer["kind"], printer["port"]), (LPD, 515))

    def test_a_service_with_port_0_is_no_printer(self):
        self.fake_printer("Reserved", 0, "closed", "_printer._tcp", ["ty=Acme Nothing"])
        probe = self.probe()
        probe.start()
        self.assertEqual(probe.found(3), [])

    def test_a_printer_with_only_ipps_is_asked_over_tls(self):
        self.start_silent_printer(1)
        self.fake_printer("Only TLS", port_of(1), "closed", "_ipps._tcp", ["rp=ipp/print"])
        probe, printer = self.found_one()
        self.assertEqual((printer["kind"], printer["port"]), (IPPS, port_of(1)))
        self.assertEqual(printer["serial"], serial_of(1), "it answered")
        self.assertEqual(printer["make_and_model"], "Acme Laser 1")
        self.assertEqual(probe.ask("state", printer["serial"]), READY)
        self.stop_printer(1)
        self.assertEqual(probe.ask("state", printer["serial"]), NO_ANSWER)

    def test_a_printer_with_another_name_for_ipps_is_one_by_its_uuid(self):
        self.start_printer(1)
        lab("cold")
        self.fake_printer("Only TLS", port_of(1), "closed", "_ipps._tcp", ["rp=ipp/print"])
        probe = self.probe()
        probe.start()
        printers = {p["kind"]: p for p in probe.found(5 * SLACK)}
        self.assertEqual(printers[IPP]["make_and_model"], "Acme Laser 1")
        self.assertEqual(printers.keys(), {IPP})

    def assert_reported_from_announcement(self, behaviour, kind="_ipp._tcp", state=NO_ANSWER):
        self.fake_printer("Difficult", 9000, behaviour, kind, ["ty=From TXT", f"UUID={UUID}7"])
        probe, printer = self.found_one(3.5)
        self.assertEqual(printer["serial"], UUID + "7")
        self.assertEqual(printer["make_and_model"], "From TXT")
        probe.tell("state " + printer["serial"])
        event = probe.await_event("state")
        self.assertEqual(event["result"], state)
        self.assertLess(event["took"], 2.2 * SLACK)

    def test_a_printer_that_says_nothing_is_reported_from_its_announcement(self):
        self.assert_reported_from_announcement("silent")

    def test_a_printer_that_says_nothing_over_tls_too(self):
        self.assert_reported_from_announcement("silent", "_ipps._tcp")

    def test_a_printer_that_never_ends_its_answer_too(self):
        self.assert_reported_from_announcement("drips")

    def test_a_printer_that_redirects_for_ever_too(self):
        self.assert_reported_from_announcement("redirects", state=NO_PRINTER)

    def test_a_printer_that_wants_a_password_too(self):
        self.assert_reported_from_announcement("wants-password", state=NO_PRINTER)

    def test_a_printer_that_talks_nonsense_too(self):
        self.assert_reported_from_announcement("garbage")

    def test_a_printer_that_refuses_too(self):
        self.assert_reported_from_announcement("refuses", state=NO_PRINTER)

    def test_a_deeply_nested_answer_does_not_end_the_scan(self):
        self.fake_printer("Nested", 9000, "nested", txt=[f"UUID={UUID}7"])
        probe, printer = self.found_one()
        self.assertEqual(printer["serial"], UUID + "7")
        self.assertEqual(probe.ask("state", printer["serial"]), NO_PRINTER)

    def test_an_answer_without_bounds_costs_nothing_but_itself(self):
        states = {"nested": NO_PRINTER, "endless": NO_PRINTER, "floods": NO_ANSWER,
                  "continues": NO_ANSWER, "trickles": NO_ANSWER}
        for number, behaviour in enumerate(states):
            self.fake_printer(behaviour, 9000 + number, behaviour,
                              txt=["ty=" + behaviour, f"UUID={UUID}{number}"],
                              attributes=["printer-make-and-model=Answered"])
        self.fake_printer("Good", 9020, attributes=["printer-serial-number=S1"])
        probe = self.probe()
        probe.start()
        printers = {p["serial"]: p for p in probe.await_printers(6)}
        self.assertEqual(len(printers), 6)
        self.assertIn("S1", printers)
        for number, (behaviour, state) in enumerate(states.items()):
            self.assertEqual(printers[f"{UUID}{number}"]["make_and_model"], behaviour)
            probe.tell(f"state {UUID}{number}")
            event = probe.await_event("state")
            self.assertEqual(event["result"], state, behaviour)
            self.assertLess(event["took"], 2.2 * SLACK, behaviour)

    def test_endless_answers_take_no_memory(self):
        self.fake_printer("Endless", 9000, "endless", count=30)
        probe = self.probe()
        probe.start()
        probe.await_printers(30)
        most = re.search(r"VmHWM:\s*(\d+) kB", text_of(f"/proc/{probe.process.pid}/status"))
        # A sanitizer keeps what was freed.
        if SLACK == 1:
            self.assertLess(int(most[1]), 64 * 1024)

    def test_what_is_said_in_another_group_is_not_the_printers(self):
        self.fake_printer("Difficult", 9000, "other-group", txt=[f"UUID={UUID}7"], attributes=[
            "printer-serial-number=S1", "printer-is-accepting-jobs=false"])
        probe, printer = self.found_one()
        self.assertEqual(printer["serial"], UUID + "7")
        self.assertEqual(probe.ask("state", printer["serial"]), READY)

    def test_printers_that_hang_do_not_keep_the_others_waiting(self):
        for number in range(8):
            self.fake_printer(f"Silent {number}", 9000 + number, "silent")
        self.have_printers(5)
        probe = self.probe()
        probe.start()
        probe.await_printers(5)
        self.assertLess(probe.seen[-1]["seconds"], 1.5 * SLACK)
        probe.await_printers(13)


class HostileHosts(NetworkTest):
    def announcer(self):
        announcer = Announcer()
        self.addCleanup(announcer.end)
        return announcer

    def places(self, probe):
        return [(p["serial"], p["address"]) for p in probe.found(2.5 * SLACK)]

    def test_a_place_that_answers_is_not_hidden_by_one_that_refuses(self):
        announcer = self.announcer()
        announcer.announce(name="Ghost", host="ghost", address="10.99.0.80", port=9000,
                           txt=[f"UUID={UUID}8"])
        announcer.announce(name="Laser", host="laser", address="10.99.0.81", port=9000,
                           txt=[f"UUID={UUID}8"], serve="answers",
                           attributes=["printer-serial-number=S8",
                                       f"printer-uuid=urn:uuid:{UUID}8"])
        for _ in range(2):
            lab("cold")
            probe = self.probe()
            probe.start()
            self.assertEqual(self.places(probe), [("S8", "10.99.0.81")])

    def test_a_place_that_answers_is_reported_after_the_report_of_another(self):
        announcer = self.announcer()
        announcer.announce(name="Ghost", host="ghost", address="10.99.0.80", port=9000,
                           txt=[f"UUID={UUID}8"])
        probe = self.probe()
        probe.start()
        self.assertEqual(probe.await_event("found")["address"], "10.99.0.80")
        announcer.announce(name="Laser", host="laser", address="10.99.0.81", port=9000,
                           txt=[f"UUID={UUID}8"], serve="answers",
                           attributes=["printer-serial-number=S8"])
        later = probe.await_event("found")
        self.assertEqual((later["serial"], later["address"]), ("S8", "10.99.0.81"))

    def test_an_impostor_does_not_replace_the_printer(self):
        announcer = self.announcer()
        for name, number in (("Laser", 81), ("Impostor", 66)):
            announcer.announce(name=name, host=name, address=f"10.99.0.{number}", port=9000,
                               txt=[f"UUID={UUID}8"], serve="answers", attributes=[
                                   "printer-serial-number=S8", f"printer-uuid=urn:uuid:{UUID}8",
                                   "printer-make-and-model=Acme 8"])
        for _ in range(2):
            lab("cold")
            probe = self.probe()
            probe.start()
            self.assertEqual(set(self.places(probe)), {("S8", "10.99.0.81"), ("S8", "10.99.0.66")})
            self.assertEqual(probe.ask("stop"), 0)
        # One that is there before the impostor is reported before it.
        impostor = self.announcer()
        probe = self.probe()
        probe.start()
        probe.await_printers(2)
        for number in (82, 67):
            impostor.announce(name=f"Late {number}", host=f"late-{number}",
                              address=f"10.99.0.{number}", port=9000, txt=[f"UUID={UUID}9"],
                              serve="answers", attributes=["printer-serial-number=S9"])
        self.assertEqual(self.places(probe)[2:], [("S9", "10.99.0.82"), ("S9", "10.99.0.67")])

    def test_an_impostor_does_not_hide_a_printer_that_wants_a_password(self):
        announcer = self.announcer()
        for name, number, behaviour in (("Laser", 81, "wants-password"),
                                        ("Impostor", 66, "answers")):
            announcer.announce(name=name, host=name, address=f"10.99.0.{number}", port=9000,
                               txt=[f"UUID={UUID}8"], serve=behaviour,
                               attributes=["printer-serial-number=S8"])
        probe = self.probe()
        probe.start()
        self.assertEqual(self.places(probe),
                         [("S8", "10.99.0.66"), (UUID + "8", "10.99.0.81")])

    def test_a_name_that_another_host_announces_as_ipp_hides_no_printer(self):
        announcer = self.announcer()
        announcer.announce(name="Secure", host="stranger", address="10.99.0.66", port=9000,
                           serve="answers", attributes=["printer-serial-number=STRANGE"])
        announcer.announce(name="Raw", host="stranger", address="10.99.0.66", port=9001,
                           serve="answers", attributes=["printer-serial-number=STRANGER"])
        self.start_silent_printer(1)
        self.fake_printer("Secure", port_of(1), "closed", "_ipps._tcp", ["rp=ipp/print"])
        self.fake_printer("Raw", 9100, "closed", "_pdl-datastream._tcp", ["ty=Acme Raw"])
        probe = self.probe()
        probe.start()
        probe.await_printers(4)
        self.assertEqual({(p["serial"], p["kind"]) for p in probe.found(0.5)},
                         {("STRANGE", IPP), ("STRANGER", IPP), (serial_of(1), IPPS),
                          ("Raw@lab-p.local", PDL_DATASTREAM)})

    def test_an_impostor_does_not_hide_a_printer_that_keeps_silent(self):
        announcer = self.announcer()
        for name, number, behaviour in (("Laser", 81, "silent"), ("Late TLS", 82, "silent"),
                                        ("Babbler", 83, "garbage"), ("Impostor", 66, "answers")):
            announcer.announce(name=name, host=name.replace(" ", ""), address=f"10.99.0.{number}",
                               type="_ipps._tcp" if "TLS" in name else "_ipp._tcp", port=9000,
                               txt=[f"UUID={UUID}8"], serve=behaviour,
                               attributes=["printer-serial-number=S8"])
        announcer.announce(name="Ghost", host="ghost", address="10.99.0.84", port=9000,
                           txt=[f"UUID={UUID}8"])
        probe = self.probe()
        probe.start()
        probe.await_printers(4)
        places = self.places(probe)
        self.assertEqual(places[0], ("S8", "10.99.0.66"))
        self.assertEqual(set(places[1:]), {(UUID + "8", f"10.99.0.{n}") for n in (81, 82, 83)},
                         "where something is, and nothing else")

    def test_only_hosts_of_the_network_are_asked(self):
        announcer = self.announcer()
        elsewhere = ["127.0.0.1", "0.0.0.0", "224.0.0.1", "255.255.255.255", "10.99.0.255",
                     "192.0.2.1"]
        for number, address in enumerate(elsewhere):
            announcer.announce(name=f"Elsewhere {number}", host=f"elsewhere-{number}",
                               address=address, port=9000)
        announcer.announce(name="Here", host="here", address="10.99.0.83", port=9000,
                           serve="answers", attributes=["printer-serial-number=HERE"])
        asked = []
        with socket.create_server(("127.0.0.1", 9000)) as server:
            server.settimeout(2.5 * SLACK)
            path = os.path.join(os.environ["LAB_NETWORK_STATE"], "left-out.log")
            probe = self.probe(environment={"DRIVERLESS_LOG": path})
            probe.start()
            with contextlib.suppress(TimeoutError):
                asked.append(server.accept())
        self.assertEqual(asked, [], "this host was asked")
        self.assertEqual([p["serial"] for p in probe.found(0.5)], ["HERE"])
        for address in elsewhere:
            self.assertIn(f"at {address} is left out: ", text_of(path))

    @staticmethod
    def honest_serials(probe, count):
        """Those of so many honest printers that are found, or fewer."""
        serials = set()
        deadline = time.monotonic() + PATIENCE
        while len(serials) < count and time.monotonic() < deadline:
            event = probe.next(deadline - time.monotonic())
            if event and event["event"] == "found" and event["serial"].lower().startswith("honest"):
                serials.add(event["serial"])
        return serials

    def assert_attack_does_not_matter(self, later=False, descriptors=None, **attack):
        """Printers are found with their attributes although somebody announces a lot; also those
        that come `later` than all of that."""
        announcer = self.announcer()
        announcer.announce(**attack)
        honest = self.announcer()
        lab("cold")
        probe = self.probe(descriptors=descriptors)
        probe.start()
        if later:
            probe.found(1)
        honest.announce(name="Honest", host="honest", hosts=True, address="10.99.0.84", port=9000,
                        count=20, bare=True, serve="answers", repeat=1,
                        attributes=["printer-serial-number=HONEST{}"])
        wanted = {f"HONEST{number}" for number in range(1, 21)}
        # A busy machine's printers may take longer for an answer than the module waits. None is
        # hidden, and who is starved of questions is so in every scan.
        for turn in range(3):
            serials = self.honest_serials(probe, len(wanted))
            self.assertEqual(len(serials), len(wanted), serials)
            answered = serials & wanted
            # Nor does a sanitizer leave the players much of the machine.
            if turn == 0 and SLACK == 1:
                self.assertGreaterEqual(len(answered), 15, "in the first scan")
            if answered == wanted:
                break
            probe.start()
        self.assertEqual(answered, wanted)
        announcer.end()
        honest.end()

    def test_many_that_hang_take_no_attributes_from_the_others(self):
        # Also with few descriptors, of which the questions leave some.
        self.assert_attack_does_not_matter(name="Silent", host="silent", hosts=True, count=200,
                                           address="10.99.0.66", port=20000, serve="silent",
                                           later=True, descriptors=64)

    def test_many_that_hang_at_the_same_address_do_not_either(self):
        self.assert_attack_does_not_matter(name="Silent", host="silent", hosts=True, count=200,
                                           address="10.99.0.84", port=20000, serve="silent")

    def test_an_avahi_that_looks_up_few_is_told_once(self):
        self.have_printers(3)
        self.limit_avahi(4)
        self.announcer().announce(name="Nowhere", count=12, repeat=1)
        probe = self.probe()
        probe.start()
        found = probe.await_printers(3)
        self.assertEqual(sorted(p["serial"] for p in found), [serial_of(n) for n in range(1, 4)])
        self.assert_diagnostics(probe, "Avahi does not look up .*asked again: Too many objects")
        self.assertEqual(probe.ask("stop"), 0)

    def test_a_flood_of_names_that_cannot_be_looked_up_hides_nobody(self):
        self.assert_attack_does_not_matter(name="Nowhere", count=1100, later=True)

    def test_a_stream_of_names_that_cannot_be_looked_up_hides_nobody(self):
        self.assert_attack_does_not_matter(name="Nowhere", count=1, pace=200)

    def test_text_from_the_network_is_cut_and_cleaned(self):
        self.fake_printer("Grün", 9000, attributes=[
            "printer-make-and-model=" + "ü" * 50 + "\x1b[31m",
            "printer-serial-number=" + "S" * 63 + "é"])
        _, printer = self.found_one()
        self.assertEqual(printer["make_and_model"], "ü" * 31)
        self.assertEqual(printer["serial"], "S" * 63)


class State(NetworkTest):
    def known(self, *attributes):
        self.fake_printer("Office", 9000, attributes=["printer-serial-number=S1", *attributes])
        probe = self.probe(through_broker=True)
        probe.start()
        probe.await_event("found")
        return probe

    def test_a_printer_that_is_idle_is_ready(self):
        probe = self.known("printer-state=3", "printer-is-accepting-jobs=true")
        self.assertEqual(probe.ask("state", "S1"), READY)

    def test_a_printer_that_is_stopped_is_not(self):
        probe = self.known("printer-state=5", "printer-is-accepting-jobs=true")
        self.assertEqual(probe.ask("state", "S1"), NOT_READY)

    def test_a_printer_that_accepts_no_jobs_is_not(self):
        probe = self.known("printer-state=3", "printer-is-accepting-jobs=false")
        self.assertEqual(probe.ask("state", "S1"), NOT_READY)

    def test_another_printer_at_the_same_address_is_noticed(self):
        probe = self.known()
        self.end_fake(self.fakes.pop())
        self.fake_printer("Other", 9000, attributes=["printer-serial-number=S2"])
        self.assertEqual(probe.ask("state", "S1"), OTHER_PRINTER)

    def two_with_one_serial_number(self):
        for number in (1, 2):
            self.fake_printer(f"Office {number}", 9000 + number, attributes=[
                "printer-serial-number=S1", f"printer-uuid=urn:uuid:{UUID}{number}",
                f"printer-make-and-model=Acme {number}", f"printer-state={3 if number == 1 else 5}"])

    def test_printers_with_one_serial_number_are_told_apart_by_where_they_are(self):
        self.two_with_one_serial_number()
        probe = self.probe(through_broker=True)
        probe.start()
        probe.await_printers(2)
        self.assertEqual(sorted((p["serial"], p["make_and_model"], p["port"])
                                for p in probe.found(1.5)),
                         [("S1", "Acme 1", 9001), ("S1", "Acme 2", 9002)])
        states = {9001: READY, 9002: NOT_READY}
        for port in (9001, 9002, 9001):
            probe.tell(f"edit S1 port {port}")
            self.assertEqual(probe.ask("state", "S1"), states[port], port)
        probe.tell("edit S1 port 9003")
        self.assertEqual(probe.ask("state", "S1"), NO_ANSWER, "neither of them")
        # Another one takes the place of the first.
        probe.ask("stop")
        self.end_fake(self.fakes.pop(0))
        self.fake_printer("Office 3", 9001, attributes=[
            "printer-serial-number=S1", f"printer-uuid=urn:uuid:{UUID}3"])
        probe.tell("edit S1 port 9001")
        self.assertEqual(probe.ask("state", "S1"), OTHER_PRINTER)
        self.assertEqual(probe.ask("failed", "S1"), 0)
        probe.tell("edit S1 port 9002")
        self.assertEqual(probe.ask("state", "S1"), NOT_READY, "still known")

    def test_printers_with_one_serial_number_and_no_uuid_are_told_apart_too(self):
        for number, state in ((1, 3), (2, 5)):
            self.fake_printer(f"Office {number}", 9000 + number, attributes=[
                "printer-serial-number=S1", f"printer-state={state}"])
        probe = self.probe(through_broker=True)
        probe.start()
        probe.await_printers(2)
        for port, state in ((9001, READY), (9002, NOT_READY)):
            probe.tell(f"edit S1 port {port}")
            self.assertEqual(probe.ask("state", "S1"), state, port)

    def test_a_record_is_about_its_own_place(self):
        announcer = Announcer()
        self.addCleanup(announcer.end)
        states = {81: NOT_READY, 66: READY}
        for name, number in (("Laser", 81), ("Impostor", 66)):
            announcer.announce(name=name, host=name, address=f"10.99.0.{number}", port=9000,
                               txt=[f"UUID={UUID}8"], serve="answers", attributes=[
                                   "printer-serial-number=S8", f"printer-uuid=urn:uuid:{UUID}8",
                                   f"printer-state={5 if number == 81 else 3}"])
        probe = self.probe()
        probe.start()
        found = probe.await_printers(2)
        self.assertEqual({p["address"] for p in found}, {"10.99.0.81", "10.99.0.66"})
        for number, state in [*states.items()] * 2:
            probe.tell(f"edit S8 address 10.99.0.{number}")
            self.assertEqual(probe.ask("state", "S8"), state, number)
        latest = int(found[-1]["address"].rpartition(".")[2])
        # Where nothing answers, and nobody at all is, the other place is asked in time.
        for place in ("10.99.0.1", "10.99.0.79"):
            probe.tell(f"edit S8 address {place}")
            probe.tell("state S8")
            event = probe.await_event("state")
            self.assertEqual(event["result"], states[latest], place)
            self.assertLess(event["took"], 2.2 * SLACK, place)
        # A slow printer's own place counts, although the other one answers before it.
        self.assertEqual(probe.ask("stop"), 0)
        probe.await_event("ended")
        late = NOT_READY if states[latest] == READY else READY
        announcer.announce(name="Late", host="late", address="10.99.0.82", port=9000, serve="late",
                           attributes=["printer-serial-number=S8", f"printer-uuid=urn:uuid:{UUID}8",
                                       f"printer-state={5 if late == NOT_READY else 3}"])
        probe.tell("edit S8 address 10.99.0.82")
        self.assertEqual(probe.ask("state", "S8"), late)

    def test_the_record_alone_is_enough(self):
        probe = self.known()
        record = next(event for event in probe.seen if event["event"] == "found")
        stranger = self.probe(through_broker=True)
        for field in ("serial", "model_id", "address", "port", "kind", "resource"):
            stranger.tell(f"edit x {field} {record[field]}")
        self.assertEqual(stranger.ask("state", "x"), READY)
        self.assertEqual(stranger.ask("before", "x"), 0)
        self.assertEqual(stranger.ask("success", "x"), 0)
        self.assertEqual(stranger.ask("failed", "x"), 0)

    def test_an_address_that_nobody_has_is_answered_in_time(self):
        probe = self.probe()
        for kind in (IPP, IPPS, PDL_DATASTREAM, LPD):
            with self.subTest(kind=kind):
                for field, value in (("serial", "x"), ("address", f"10.99.0.{70 + kind}"),
                                     ("port", 631), ("kind", kind), ("resource", "/ipp/print")):
                    probe.tell(f"edit x {field} {value}")
                probe.tell("state x")
                event = probe.await_event("state")
                self.assertEqual(event["result"], NO_ANSWER)
                self.assertLess(event["took"], 2.2 * SLACK)

    def test_a_failed_connection_makes_the_module_forget_the_printer(self):
        probe = self.known()
        probe.tell("edit S1 port 0")
        self.assertEqual(probe.ask("state", "S1"), READY, "remembered from the scan")
        self.assertEqual(probe.ask("failed", "S1"), 0)
        self.assertEqual(probe.ask("state", "S1"), UNKNOWN)

    def test_before_a_connection_the_address_is_looked_up_anew(self):
        probe = self.known()
        self.assertEqual(probe.ask("before", "S1"), 0)
        self.end_fake(self.fakes.pop())
        deadline = time.monotonic() + PATIENCE
        while (result := probe.ask("before", "S1")) == 0 and time.monotonic() < deadline:
            time.sleep(0.1)  # Avahi's cache keeps what says good-bye for a second
        self.assertEqual(result, NO_ANSWER)
        self.fake_printer("Office", 9005, attributes=["printer-serial-number=S1"])
        self.assertEqual(probe.ask("before", "S1"), 0)
        self.assertEqual(probe.ask("state", "S1"), READY, "at its new port")


class Application(NetworkTest):
    """What a person types, with what they get: the vendor list and the module beside the library."""

    devicediscover_as = []

    def devicediscover(self, *arguments, **environment):
        return subprocess.run([*self.devicediscover_as, PROGRAM, *arguments],
                              env={**ENVIRONMENT, **environment}, timeout=60, check=False,
                              stdin=subprocess.DEVNULL, capture_output=True, text=True)

    @staticmethod
    def seconds(number):
        return ["--seconds", str(int(number * SLACK))]

    def test_scan_finds_twenty_printers_each_once(self):
        self.have_printers(20)
        scan = self.devicediscover("scan", "--json", *self.seconds(6))
        self.assertEqual((scan.returncode, scan.stderr), (0, ""))
        printers = [json.loads(line) for line in scan.stdout.splitlines()]
        self.assertEqual(sorted(printer["serialNumber"] for printer in printers),
                         [serial_of(number) for number in range(1, 21)])
        for printer in printers:
            number = int(printer["serialNumber"].removeprefix("LAB"))
            self.assertEqual(printer, {
                "serialNumber": serial_of(number), "makeAndModel": f"Acme Laser {number}",
                "address": "10.99.0.1", "port": port_of(number), "vendor": "driverless",
                "resource": "/ipp/print", "service": "ipp"})

    def test_scan_finds_none_where_there_are_none(self):
        scan = self.devicediscover("scan", "--json", *self.seconds(1))
        self.assertEqual((scan.returncode, scan.stdout), (1, ""))
        self.assertIn("no printer found", scan.stderr)

    def test_watch_shows_a_printer_that_appears_later(self):
        self.have_printers(1)
        watch = subprocess.Popen([PROGRAM, "scan", "--watch", "--json"], env=ENVIRONMENT, text=True,
                                 stdin=subprocess.DEVNULL, stdout=subprocess.PIPE)
        self.addCleanup(watch.stdout.close)
        self.addCleanup(watch.wait)
        self.addCleanup(watch.kill)
        lines = queue.Queue()
        threading.Thread(target=Probe._read, args=(watch.stdout, lines.put), daemon=True).start()
        self.assertEqual(json.loads(lines.get(timeout=PATIENCE))["serialNumber"], serial_of(1))
        time.sleep(1)
        self.assertTrue(lines.empty(), "once")
        self.start_printer(2)
        self.assertEqual(json.loads(lines.get(timeout=PATIENCE))["serialNumber"], serial_of(2))
        watch.send_signal(signal.SIGINT)
        self.assertEqual(watch.wait(PATIENCE), 0)
        self.assertIsNone(lines.get(timeout=PATIENCE), "nothing but the two")

    def test_state_says_ready_until_the_printer_is_stopped(self):
        self.have_printers(2)
        before = self.devicediscover("state", serial_of(1), "--json")
        self.assertEqual((before.returncode, before.stderr), (0, ""))
        told = json.loads(before.stdout)
        self.assertEqual((told["serialNumber"], told["ready"], told["state"]),
                         (serial_of(1), True, READY))
        self.stop_printer(1)
        after = self.devicediscover("state", serial_of(1), *self.seconds(2))
        self.assertEqual((after.returncode, after.stdout), (1, ""))
        self.assertIn(f"no printer with the serial number '{serial_of(1)}' was found", after.stderr)
        self.assertEqual(self.devicediscover("state", serial_of(2)).returncode, 0)

    def test_state_says_that_a_printer_accepts_no_jobs(self):
        self.fake_printer("Office", 9000, attributes=[
            "printer-serial-number=S1", "printer-state=5", "printer-is-accepting-jobs=true"])
        state = self.devicediscover("state", "S1")
        self.assertEqual((state.returncode, state.stderr), (0, ""))
        self.assertRegex(state.stdout, r"^S1: not ready \(state 2: it answers, but is stopped or accepts no jobs\)")

    def test_printers_with_one_serial_number_are_two(self):
        for number in (1, 2):
            self.fake_printer(f"Office {number}", 9000 + number, attributes=[
                "printer-serial-number=S1", f"printer-uuid=urn:uuid:{UUID}{number}"])
        state = self.devicediscover("state", "S2", *self.seconds(5))
        self.assertEqual(state.returncode, 1)
        self.assertIn("2 with another were", state.stderr)

    def could_not_look(self, *arguments, **environment):
        """Runs the command, which must not call what it could not see missing; the cause."""
        run = self.devicediscover(*arguments, "--json", **environment)
        self.assertNotIn("no printer", run.stderr)
        self.assertEqual(run.returncode, 3, run.stdout + run.stderr)
        problem, = [json.loads(line) for line in run.stdout.splitlines()]
        self.assertEqual(list(problem), ["problem"])
        self.assertIn(problem["problem"], run.stderr)
        return problem["problem"]

    def test_without_services_nobody_could_look(self):
        bus = {"DBUS_SYSTEM_BUS_ADDRESS": "unix:path=/nowhere/bus"}
        for command in (["scan"], ["state", serial_of(1)]):
            self.assertIn("D-Bus cannot be reached", self.could_not_look(*command, **bus))
        lab("stop-avahi")
        self.addCleanup(lab, "start-avahi")
        for command in (["scan"], ["scan", "--watch"], ["state", serial_of(1)]):
            self.assertIn("Avahi does not run", self.could_not_look(*command))

    def test_without_a_network_nobody_could_look(self):
        subprocess.run(["ip", "link", "set", "lab0", "down"], check=True)
        self.addCleanup(lab, "cold")
        self.addCleanup(subprocess.run, ["ip", "route", "add", "224.0.0.0/4", "dev", "lab0"])
        self.addCleanup(subprocess.run, ["ip", "link", "set", "lab0", "up"], check=True)
        self.assertIn("no interface has an IPv4 address", self.could_not_look("scan"))

    def test_a_watch_ends_with_the_bus(self):
        self.addCleanup(lab, "start-avahi")
        self.have_printers(1)
        watch = subprocess.Popen([PROGRAM, "scan", "--watch", "--json"], env=ENVIRONMENT, text=True,
                                 stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                 stderr=subprocess.PIPE)
        self.addCleanup(watch.wait)
        self.addCleanup(watch.kill)
        self.assertEqual(json.loads(watch.stdout.readline())["serialNumber"], serial_of(1))
        lab("stop-bus")
        output, errors = watch.communicate(timeout=PATIENCE)
        self.assertEqual(watch.returncode, 3, errors)
        self.assertIn("D-Bus ended", json.loads(output)["problem"])
        self.assertIn("there may be printers that were not found", errors)

    def test_a_user_who_may_not_ping_is_told_so(self):
        silent = self.devicediscover("ping", "10.99.0.77")
        self.assertEqual((silent.returncode, silent.stdout), (1, ""))
        self.assertIn("10.99.0.77 does not answer", silent.stderr)
        with open("/proc/sys/net/ipv4/ping_group_range", encoding="ascii") as file:
            self.assertEqual(file.read().split(), ["1", "0"], "nobody may by this")
        self.devicediscover_as = as_ordinary_user()
        problem = self.could_not_look("ping", "10.99.0.1", "--log-level", "off")
        self.assertIn("cannot ping 10.99.0.1: ping is not allowed", problem)

    def test_vendors_shows_the_module_bound(self):
        vendors = self.devicediscover("vendors", "--json")
        self.assertEqual((vendors.returncode, vendors.stderr), (0, ""))
        vendor = json.loads(vendors.stdout)
        beside_library = os.path.join(os.path.dirname(PROGRAM), "DeviceDiscover")
        self.assertEqual(vendor["productId"], "driverless")
        self.assertEqual(vendor["vendorList"], os.path.join(beside_library, "vendors.json"))
        scan = next(module for module in vendor["modules"] if module["use"] == "scan")
        self.assertEqual(scan["path"], os.path.join(beside_library, "modules", "driverless_scan.so"))
        self.assertEqual((scan["loaded"], scan["problem"]), (True, None))
        self.assertEqual(scan["entryPoints"], {name: "bound" for name in (
            "StartDeviceScan", "StopDeviceScan", "GetDeviceConnectState",
            "BeforeConnectEventNotify", "ConnectSuccessNotifyEvent", "ConnectFailNotifyEvent")})
        setup, = [module for module in vendor["modules"] if module is not scan]
        self.assertEqual(setup["path"], os.path.join(beside_library, "modules", "driverless.so"))
        bound = [name for name, state in setup["entryPoints"].items() if state == "bound"]
        self.assertLessEqual(
            {"StartAPWifiScan", "StopAPWifiScan", "PrinterAPNetConfigEvent", "GetDeviceInfoByNet",
             "IsLocalAreaNetworkOK", "IsConnectCurrentWifiAP"}, set(bound))
        text = self.devicediscover("vendors")
        self.assertEqual(text.returncode, 0)
        self.assertEqual(
            sorted(re.findall(r"^ +(\w+) +bound$", text.stdout, re.MULTILINE)),
            sorted([*scan["entryPoints"], *bound]))


if __name__ == "__main__":
    unittest.main(verbosity=2)

# SPDX-License-Identifier: Apache-2.0
"""Where pass phrases come from, and that nobody sees them."""

import os
import platform
import signal
import subprocess
import time
import unittest

import app_test
from app_test import COULD_NOT_RUN, FOUND, NONE_FOUND, ON_WINDOWS, USAGE
from host_test import PASS_PHRASE, HostTest, Terminal

PROMPT = r"Pass phrase of Office \(empty for an open network\):"


class PassPhrase(HostTest):
    def join(self, *arguments, **options):
        self.host("join 1")
        return self.run_app("wifi", "join", "Office", *arguments, **options)

    def run_with_input(self, data, *arguments):
        self.host("join 1")
        result = subprocess.run(
            self.command("wifi", "join", "Office", *arguments), env=self.environment, input=data,
            timeout=app_test.PATIENCE, capture_output=True)
        result.output, result.errors = result.stdout.decode(), result.stderr.decode()
        return result

    def assert_joined_with(self, pass_phrase):
        self.assertEqual(self.host_calls("ConnectAP"), [f'ConnectAP "Office" "{pass_phrase}"'])

    def test_from_a_file_whatever_its_line_s_end(self):
        for end in ("", "\n", "\r\n"):
            with self.subTest(end):
                self.setUp()
                result = self.join("--pass-phrase-file",
                                   self.pass_phrase_file(PASS_PHRASE + end))
                self.assert_status(result, FOUND)
                self.assert_joined_with(PASS_PHRASE)
                self.assert_not_shown(result)
                self.assertNotIn(PASS_PHRASE, self.log())

    def test_from_standard_input(self):
        for data in (b"", b"\n", b"\r\n", b"\nmore"):
            with self.subTest(data):
                self.setUp()
                result = self.run_with_input(PASS_PHRASE.encode() + data, "--pass-phrase-file", "-")
                self.assert_status(result, FOUND)
                self.assert_joined_with(PASS_PHRASE)
                self.assert_not_shown(result)

    @unittest.skipIf(ON_WINDOWS, "pipes of Linux")
    def test_from_a_pipe_with_a_name(self):
        os.mkfifo(self.path("pipe"))
        self.host("join 1")
        process = self.start_app("wifi", "join", "Office", "--pass-phrase-file", self.path("pipe"))
        with open(self.path("pipe"), "w", encoding="utf-8") as pipe:
            pipe.write(PASS_PHRASE + "\n")
        self.assertEqual(process.wait(app_test.PATIENCE), FOUND)
        self.assert_joined_with(PASS_PHRASE)

    def test_log_lines_on_the_terminal_do_not_show_it(self):
        self.script("result IsConnectCurrentWifiAP 0")
        file = self.pass_phrase_file()
        for command in (["wifi", "join", "Office"], ["ap", "configure", "--network", "Office"]):
            result = self.run_app(*command, "--pass-phrase-file", file, "--log-level", "trace")
            self.assert_not_shown(result)
        self.assert_mentions(result.errors, "pwd***")
        self.assertNotIn(PASS_PHRASE, self.log())

    def test_what_is_no_pass_phrase_is_told_without_showing_it(self):
        for text, saying in (("", "no pass phrase"), ("\n", "no pass phrase"),
                             ("one\ntwo", "more than one line"), ("nul\0", "not UTF-8 text"),
                             ("long" * 2000, "too long for a pass phrase")):
            with self.subTest(text[:10]):
                result = self.join("--pass-phrase-file", self.pass_phrase_file(text))
                self.assert_status(result, USAGE)
                self.assert_mentions(result.errors, saying)
                self.assertNotIn(text.strip() or "\0", result.errors)
        with open(self.path("pass-phrase"), "wb") as file:
            file.write(b"\xff\xfe12345678")
        result = self.join("--pass-phrase-file", app_test.system_path(self.path("pass-phrase")))
        self.assert_status(result, USAGE)
        self.assert_mentions(result.errors, "not UTF-8 text")
        self.assertEqual(self.host_calls(), [])

    def test_an_empty_standard_input_is_no_open_network(self):
        result = self.run_with_input(b"", "--pass-phrase-file", "-")
        self.assert_status(result, USAGE)
        self.assert_mentions(result.errors, "standard input contains no pass phrase", "--open")

    def test_a_file_that_cannot_be_read_is_told(self):
        result = self.join("--pass-phrase-file", app_test.system_path(self.folder))
        self.assert_status(result, COULD_NOT_RUN)
        self.assert_mentions(result.errors, app_test.system_path(self.folder), "pass phrase")
        self.assertEqual(self.host_calls(), [])

    def test_a_pass_phrase_in_the_place_of_its_file_is_not_repeated(self):
        for secret in (PASS_PHRASE, "no/such/" + PASS_PHRASE, PASS_PHRASE * 500):
            for arguments in (["--pass-phrase-file", secret], ["--pass-phrase-file=" + secret]):
                with self.subTest(arguments[0][:30]):
                    result = self.join(*arguments)
                    self.assert_status(result, COULD_NOT_RUN)
                    self.assert_mentions(result.errors, "--pass-phrase-file", "its one line")
                    self.assert_not_shown(result)
        self.assertEqual(self.host_calls(), [])
        self.assertNotIn(PASS_PHRASE, self.log())

    def test_without_a_terminal_a_source_is_needed(self):
        result = self.join()
        self.assert_status(result, USAGE)
        self.assert_mentions(result.errors, "is not a terminal", "--pass-phrase-file", "--open")
        self.assertEqual(self.host_calls(), [])


class Prompt(HostTest):
    def start(self, *arguments, **options):
        self.host("join 1")
        terminal = Terminal(self, "wifi", "join", "Office", *arguments, **options)
        terminal.expect(PROMPT)
        return terminal

    def assert_shows_typing_again(self, terminal):
        if not ON_WINDOWS:  # there the console is nobody else's
            self.assertTrue(terminal.shows_typing())

    @unittest.skipIf(ON_WINDOWS or platform.machine() != "x86_64", "it knows the calls of one system")
    def test_no_thread_that_waits_in_a_read_takes_a_request_to_end(self):
        terminal = self.start()
        self.wait_until(lambda: len(self.readers(terminal.process.pid)) == 2,
                        "one waits for the line, one for Ctrl-C")
        for blocked in self.readers(terminal.process.pid):
            for request in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
                self.assertTrue(blocked >> (request - 1) & 1, f"{request} in {blocked:x}")

    @staticmethod
    def readers(process):
        """The signals that they block, of the threads that are in a read."""
        found = []
        for task in os.scandir(f"/proc/{process}/task"):
            with open(task.path + "/syscall", encoding="ascii") as call:
                reads = call.read().split()[0] == "0"
            with open(task.path + "/status", encoding="ascii") as status:
                blocked = [line.split()[1] for line in status if line.startswith("SigBlk:")]
            found += [int(blocked[0], 16)] if reads else []
        return found

    def test_what_is_typed_at_the_prompt_does_not_show(self):
        terminal = self.start()
        if not ON_WINDOWS:
            self.assertFalse(terminal.shows_typing())
        terminal.type("p\u00e4ss phrase\r")
        self.assertEqual(terminal.finish(), FOUND)
        terminal.expect(r"joined Office")
        self.assertEqual(self.host_calls("ConnectAP"),
                         ['ConnectAP "Office" "p\\u00e4ss phrase"'])
        self.assertNotIn("ss phrase\r", terminal.raw.decode())
        self.assertNotIn("p\u00e4ss", terminal.raw.decode())
        self.assert_shows_typing_again(terminal)
        self.assertNotIn("p\u00e4ss", self.log())

    def test_typing_errors_can_be_mended(self):
        terminal = self.start()
        terminal.type("secrex\x7ft 1\r")
        self.assertEqual(terminal.finish(), FOUND)
        self.assertEqual(self.host_calls("ConnectAP"), ['ConnectAP "Office" "secret 1"'])

    def test_nothing_typed_is_an_open_network(self):
        terminal = self.start()
        terminal.type("\r")
        self.assertEqual(terminal.finish(), FOUND)
        self.assertEqual(self.host_calls("ConnectAP"), ['ConnectAP "Office" ""'])

    def test_standard_input_is_the_prompt_when_it_is_a_terminal(self):
        terminal = self.start("--pass-phrase-file", "-")
        if not ON_WINDOWS:
            self.assertFalse(terminal.shows_typing())
        terminal.type(PASS_PHRASE + "\r")
        self.assertEqual(terminal.finish(), FOUND)
        self.assertNotIn(PASS_PHRASE, terminal.text)

    def test_ctrl_c_brings_the_echo_back(self):
        terminal = self.start()
        terminal.type("half of it")
        terminal.type("\x03")
        self.assertEqual(terminal.finish(), NONE_FOUND)
        terminal.expect("interrupted")
        self.assertNotIn("half of it", terminal.text)
        self.assert_shows_typing_again(terminal)
        self.assertEqual(self.host_calls(), [])

    @unittest.skipIf(ON_WINDOWS, "signals of Linux")
    def test_a_request_to_end_brings_the_echo_back(self):
        for request in (signal.SIGTERM, signal.SIGHUP):
            with self.subTest(request):
                terminal = self.start()
                terminal.process.send_signal(request)
                self.assertEqual(terminal.finish(), NONE_FOUND)
                self.assertTrue(terminal.shows_typing())

    @unittest.skipIf(ON_WINDOWS, "keys of Linux")
    def test_keys_that_stop_or_kill_a_program_do_not_leave_the_echo_off(self):
        terminal = self.start()
        terminal.type("\x1a\x1c")
        time.sleep(0.3)
        self.assertIsNone(terminal.process.poll())
        terminal.type("\x03")
        self.assertEqual(terminal.finish(), NONE_FOUND)
        self.assertTrue(terminal.shows_typing())

    @unittest.skipIf(ON_WINDOWS, "a key of Linux")
    def test_the_end_of_the_input_is_no_pass_phrase(self):
        terminal = self.start()
        terminal.type("\x04")
        self.assertEqual(terminal.finish(), USAGE)
        terminal.expect("no pass phrase was given")
        self.assertTrue(terminal.shows_typing())
        self.assertEqual(self.host_calls(), [])

    def test_the_prompt_stays_out_of_results_for_programs(self):
        with open(self.path("output"), "wb") as output:
            terminal = self.start("--json", stdout=output)
            terminal.type(PASS_PHRASE + "\r")
            self.assertEqual(terminal.finish(), FOUND)
        self.assertEqual(self.read(self.path("output")).strip(),
                         '{"network":"Office","joined":true}')


if __name__ == "__main__":
    app_test.main()

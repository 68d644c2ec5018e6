# SPDX-License-Identifier: Apache-2.0
"""Arguments, help and version."""

import unittest

import app_test
from app_test import FOUND, ON_WINDOWS, USAGE, AppTest


class CommandLine(AppTest):
    def run_app(self, *arguments, **options):
        return super().run_app(*arguments, listed=False, **options)

    def assert_refused(self, *arguments, saying):
        result = self.run_app(*arguments)
        self.assert_status(result, USAGE)
        self.assertEqual(result.output, "")
        self.assert_mentions(result.errors, saying, "--help")
        self.assertEqual(self.records(), [], "no vendor was called")

    def test_help_has_examples_at_every_level(self):
        for command in ([], ["scan"], ["state"], ["vendors"]):
            with self.subTest(command):
                result = self.run_app(*command, "--help")
                self.assert_status(result, FOUND)
                self.assert_mentions(result.output, "Usage: devicediscover", "Examples:",
                                     "devicediscover " + " ".join(command),
                                     "Exit status:\n  0  ", "\n  2  wrong arguments\n",
                                     "\n  3  could not run")
                self.assertEqual(result.errors, "")

    def test_help_names_each_option(self):
        result = self.run_app("scan", "--help")
        self.assert_mentions(" ".join(result.output.split()), "--seconds N", "--watch", "--json",
                             "--vendors FILE", "--log-level LEVEL", "--log-file FILE",
                             "(default 5)", "trace, debug, info, warning, error or off")

    def test_version(self):
        result = self.run_app("--version")
        self.assert_status(result, FOUND)
        self.assertEqual(result.output, f"devicediscover {app_test.VERSION}\n")

    def test_a_command_is_needed(self):
        self.assert_refused(saying="scan, state, vendors, wifi, ping, ap, usb or setup")
        self.assert_refused("search", saying="no command or option 'search'")
        self.assert_refused("scan", "state", saying="state")

    def test_a_time_is_a_number_within_bounds(self):
        for time in ("0", "-1", "86401", "1e9", "abc", "nan", "inf", "", "5s"):
            with self.subTest(time):
                self.assert_refused("scan", f"--seconds={time}", saying="seconds")
        self.assert_refused("state", "SN1", "--seconds", "0", saying="0.1 to 86400")

    def test_a_time_and_no_end_exclude_each_other(self):
        self.assert_refused("scan", "--seconds", "5", "--watch", saying="--watch")

    def test_a_level_is_one_of_six(self):
        self.assert_refused("scan", "--log-level", "loud", saying="'loud'")

    def test_options_want_their_values_and_no_others(self):
        self.assert_refused("scan", "--vendors", saying="--vendors")
        self.assert_refused("scan", "--colour", saying="--colour")
        self.assert_refused("scan", "extra", saying="extra")
        self.assert_refused("state", saying="SERIAL")
        self.assert_refused("vendors", "--watch", saying="--watch")

    def test_what_an_option_was_given_is_not_repeated(self):
        for group in ([], ["ap"], ["ap", "info"]):
            for argument, shown in (("-pSECRET", "-p"), ("--pass-phrase=SECRET", "--pass-phrase"),
                                    ("--pass-phrase:SECRET", "--pass-phrase"),
                                    ("--pass-phrase 2SECRET", "--pass-phrase"), ("-2SECRET", "-")):
                with self.subTest(group=group, argument=argument):
                    result = self.run_app(*group, argument)
                    self.assert_status(result, USAGE)
                    self.assert_mentions(result.errors, f"option '{shown}'")
                    self.assertNotIn("SECRET", result.errors)

    def test_a_flag_takes_no_value(self):
        for command, flag in (("scan", "--watch"), ("scan", "--json"), ("setup", "--no-rejoin"),
                              ("", "--version")):
            for value in ("false", "1", "x"):
                with self.subTest(flag, value=value):
                    self.assert_refused(*command.split(), f"{flag}={value}",
                                        saying=f"{flag} takes no value")

    def test_an_empty_file_name_is_no_default(self):
        for option in ("--vendors", "--log-file"):
            with self.subTest(option):
                self.assert_refused("scan", option, "", saying=option + ": the file name is empty")
                self.assert_refused("vendors", option + "=", saying=option)

    @unittest.skipIf(ON_WINDOWS, "a device of Linux")
    def test_help_into_a_closed_pipe_is_quiet(self):
        process = self.start_app("--help")
        process.stdout.close()
        process.wait(app_test.PATIENCE)
        self.assertEqual(process.stderr.read(), b"")


if __name__ == "__main__":
    app_test.main()

# SPDX-License-Identifier: Apache-2.0
"""`devicediscover scan` on a terminal."""

import fcntl
import os
import pty
import re
import select
import signal
import struct
import subprocess
import termios
import time
import unicodedata
import unittest

import app_test
from app_test import FOUND, NONE_FOUND, ON_WINDOWS, AppTest, device


def width(character):
    """How many columns a terminal gives the character."""
    if unicodedata.combining(character) or unicodedata.category(character) == "Mn":
        return 0
    return 2 if unicodedata.east_asian_width(character) in "WF" else 1


class Screen:
    """A terminal's screen that knows just what a redrawn table needs; anything else is an error.

    On Windows it is the console that steers the terminal, by other means than the program's."""

    def __init__(self, columns, rows):
        self.columns, self.rows = columns, rows
        self.lines = [""]  # all that was ever scrolled, the screen at the end
        self.row = self.column = 0
        self.redraws = 0
        self.takes_tabs = False

    def feed(self, text):
        for token in re.findall(r"\x1b\[[?;\d]*[A-Za-z]|\r|\n|[^\x1b\r\n]|\x1b", text):
            self.take(token)

    def take(self, token):
        if token == "\r":
            self.column = 0
        elif token == "\n":
            self.down()
        elif token == "\t" and self.takes_tabs:
            self.take(" ")
        elif token.startswith("\x1b"):
            self.steer(token)
        else:
            assert token.isprintable(), f"{token!r} reached the terminal"
            # A mark stays with its letter, unseen here; the second half of a wide character is a zero.
            if cell := token + "\0" if width(token) == 2 else token * width(token):
                self.put(cell)

    def put(self, cell):
        if self.column + len(cell) > self.columns:
            self.column = 0
            self.down()
        line = self.lines[self.row].ljust(self.column)
        self.lines[self.row] = line[:self.column] + cell + line[self.column + len(cell):]
        self.column += len(cell)

    def steer(self, token):
        if token == "\x1b[K":
            self.lines[self.row] = self.lines[self.row][:self.column]
        elif token == "\x1b[J":
            self.lines[self.row] = self.lines[self.row][:self.column]
            del self.lines[self.row + 1:]
        elif ON_WINDOWS and self.steer_as_console(token):
            pass
        elif re.fullmatch(r"\x1b\[\d+A", token):
            top = max(0, len(self.lines) - self.rows)
            self.row = max(self.row - int(token[2:-1]), top)
            self.redraws += 1
        else:
            raise AssertionError(f"{token!r} reached the terminal")

    def steer_as_console(self, token):
        if position := re.fullmatch(r"\x1b\[(?:(\d+);(\d+))?H", token):
            row = max(0, len(self.lines) - self.rows) + int(position[1] or 1) - 1
            self.redraws += row < self.row
            while self.row < row:
                self.down()
            self.row, self.column = row, int(position[2] or 1) - 1
        elif right := re.fullmatch(r"\x1b\[(\d+)C", token):
            self.column += int(right[1])
        else:
            return re.fullmatch(r"\x1b\[\?25[lh]", token)
        return True

    def down(self):
        self.row += 1
        if self.row == len(self.lines):
            self.lines.append("")

    def text(self):
        return "\n".join(line.rstrip() for line in self.lines).rstrip("\n").replace("\0", "")


class Terminal(AppTest):
    def start_on_terminal(self, *arguments, columns=80, rows=24, term="xterm", errors_too=False):
        self.environment["TERM"] = term
        self.master, terminal = pty.openpty()
        self.addCleanup(os.close, self.master)
        self.resize(columns, rows)
        self.screen = Screen(columns, rows)
        self.raw = ""  # all that came
        self.errors = open(self.path("errors"), "w+b")
        self.addCleanup(self.errors.close)
        process = subprocess.Popen(
            self.command("scan", *arguments), env=self.environment, stdin=terminal,
            stdout=terminal, stderr=terminal if errors_too else self.errors, start_new_session=True,
            preexec_fn=lambda: fcntl.ioctl(0, termios.TIOCSCTTY, 0))
        os.close(terminal)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        return process

    def resize(self, columns, rows):
        fcntl.ioctl(self.master, termios.TIOCSWINSZ, struct.pack("HHHH", rows, columns, 0, 0))

    def show(self, seconds=0.05):
        """Brings what the program writes to the screen; False when it has ended."""
        end = time.monotonic() + seconds
        while (left := end - time.monotonic()) > 0:
            if select.select([self.master], [], [], left)[0]:
                try:
                    data = os.read(self.master, 65536)
                except OSError:
                    return False
                if not data:
                    return False
                self.raw += data.decode("utf-8")
                self.screen.feed(data.decode("utf-8"))
        return True

    def show_until(self, pattern):
        end = time.monotonic() + app_test.PATIENCE
        while not re.search(pattern, self.screen.text()):
            self.assertLess(time.monotonic(), end, self.screen.text())
            if not self.show():
                self.assertRegex(self.screen.text(), pattern)

    def finish(self, process):
        end = time.monotonic() + app_test.PATIENCE
        while self.show():
            self.assertLess(time.monotonic(), end)
        return process.wait(app_test.PATIENCE)

    def error_text(self):
        self.errors.seek(0)
        return self.errors.read().decode()

    def test_the_table_grows_as_printers_are_found_and_ends_complete(self):
        self.script("interval 1500", "until-stopped", device("SN1"),
                    device("SN2", model="Fake 2000 with a longer name", port=9100))
        process = self.start_on_terminal("--seconds", "4")
        self.show_until(r"SERIAL NUMBER.*\nSN1 .*\n1 printer so far, \d s left")
        self.assertNotIn("SN2", self.screen.text())
        self.show_until(r"SN1 .*\nSN2 .*\n2 printers so far, \d s left \(Ctrl-C stops\)")
        self.assertGreaterEqual(self.screen.redraws, 2)
        self.assertEqual(self.finish(process), FOUND)
        self.assertEqual(
            self.screen.text(),
            "SERIAL NUMBER  MAKE AND MODEL                ADDRESS    PORT  VENDOR\n"
            "SN1            Fake 1000                     192.0.2.1   631  scripted\n"
            "SN2            Fake 2000 with a longer name  192.0.2.1  9100  scripted\n"
            "2 printers found.")
        self.assertEqual(self.error_text(), "")

    def test_while_nothing_is_found_the_status_counts_down(self):
        process = self.start_on_terminal("--seconds", "2.5")
        self.show_until(r"^Looking for printers, 2 s left \(Ctrl-C stops\)$")
        self.show_until(r"^Looking for printers, 1 s left \(Ctrl-C stops\)$")
        self.assertEqual(self.finish(process), NONE_FOUND)
        self.assertEqual(self.screen.text(), "")
        self.assert_mentions(self.error_text(), "no printer found")

    def test_without_a_time_it_counts_from_five(self):
        process = self.start_on_terminal()
        self.assertEqual(self.finish(process), NONE_FOUND)
        self.assertEqual(re.findall(r"Looking for printers, (\d+) s left", self.raw)[:1], ["5"])

    def test_text_from_devices_cannot_steer_the_terminal(self):
        self.script(device(r"SN\x1b[2J\x1b[1;1H", model=r"\x1b]0;title\x07A\x9bB\xc2\x9bC",
                           address=r"\x0d\x0a\x08\x0c", vendor=r"v\xff"))
        process = self.start_on_terminal("--seconds", "1")
        self.assertEqual(self.finish(process), FOUND)
        self.assertRegex(self.screen.text(),
                         "SN\ufffd\\[2J\ufffd\\[1;1H +\ufffd\\]0;title\ufffdA\ufffdB\ufffdC +"
                         "\ufffd{4} +631  v\ufffd\n1 printer found.$")

    def test_news_about_a_printer_replaces_its_row(self):
        self.script("interval 1200", device("SN1", model="Fake 1000"),
                    device("SN1", model="Fake 2000"))
        process = self.start_on_terminal("--seconds", "3")
        self.show_until(r"SN1 +Fake 1000 ")
        self.show_until(r"SN1 +Fake 2000 ")
        self.assertEqual(self.finish(process), FOUND)
        self.assertNotIn("Fake 1000", self.screen.text())
        self.assertEqual(len(self.screen.text().splitlines()), 3)

    def test_a_table_longer_than_the_terminal_ends_complete(self):
        self.script("until-stopped", "interval 5", *(device(f"SN{n:03}") for n in range(100)))
        process = self.start_on_terminal("--seconds", "5", rows=12)
        self.show_until(r"SN099 .*\n\(and 91 found before these\)\n100 printers so far")
        self.assertEqual(self.finish(process), FOUND)
        lines = self.screen.text().splitlines()
        self.assertEqual(len(lines), 102)
        self.assertEqual([line.split()[0] for line in lines[1:-1]],
                         [f"SN{n:03}" for n in range(100)])

    def test_a_narrow_terminal_cuts_while_the_scan_runs_and_wraps_at_the_end(self):
        serial, model = "S" * 30 + "E", "Make and model that needs much room"
        self.script("until-stopped", device(serial, model=model))
        process = self.start_on_terminal("--seconds", "1.5", columns=70)
        self.show_until(r"SS.* 192\.0\.2\.1 .*\n1 printer so far")
        self.assertEqual(len(self.screen.text().splitlines()), 3)
        self.assertLess(max(map(len, self.screen.text().splitlines())), 70)
        self.assertEqual(self.finish(process), FOUND)
        cells = [line[:40] for line in self.screen.text().splitlines()[1:-1]]
        self.assertIn("E", "".join(cells))
        words = re.sub(r"\s+", "", self.screen.text())
        for word in ("192.0.2.1", "scripted"):
            self.assertIn(word, words)

    def test_on_sixty_columns_what_tells_printers_apart_stays_whole(self):
        self.script("until-stopped", device("SN-0123456789", address="192.168.100.200",
                                            model="Make and model that needs much room"))
        process = self.start_on_terminal("--seconds", "1.5", columns=60)
        whole = r"SN-0123456789  Make.*  192\.168\.100\.200   631  "
        self.show_until(whole + r".*\n1 printer so far")
        self.assertEqual(len(self.screen.text().splitlines()), 3)
        self.assertEqual(self.finish(process), FOUND)
        self.assertRegex(self.screen.text(), whole)

    @unittest.skipIf(ON_WINDOWS, "there the console draws, with widths of its own")
    def test_rows_in_any_script_fill_one_line_and_are_aligned(self):
        scripts = {"SN1": "Laser", "SN2": "\u0e01\u0e31\u0e19 " * 5, "SN3": "\u0628\u064b " * 9,
                   "SN4": "\u05d1\u05b0 " * 9, "SN5": "\U0001f680\u231a" * 9, "SN6": "\u5c01" * 18}
        self.script("until-stopped", *(device(serial, model="".join(
            f"\\x{byte:02x}" for byte in model.encode())) for serial, model in scripts.items()))
        process = self.start_on_terminal("--seconds", "1.5", columns=60)
        self.show_until("6 printers so far")
        lines = [line for line in self.screen.lines if line]
        self.assertEqual([line[:3] for line in lines], ["SER", *scripts, "6 p"], "no row is wrapped")
        self.assertEqual({line.find("192.0.2.1") for line in lines[1:-1]}, {lines[0].find("ADDRESS")})
        self.assertEqual(self.finish(process), FOUND)

    def test_a_vendor_that_ended_is_told_below_the_table_and_after_it(self):
        self.list_file = self.vendor_list([("broken", "scripted_all"), ("sound", "scripted_all_b")])
        self.script("[scripted_all]", "result StartDeviceScan 7",
                    "[scripted_all_b]", "until-stopped", device("SN1", vendor="sound"))
        process = self.start_on_terminal("--seconds", "2")
        self.show_until(r"SN1 .*\nvendor broken does not look .*\n1 printer so far")
        self.assertEqual(self.error_text(), "", "nothing tears the table")
        self.assertEqual(self.finish(process), FOUND)
        self.assertRegex(self.screen.text(), r"SN1 .*\n1 printer found\.$")
        self.assert_mentions(self.error_text(), "warning: vendor broken does not look", "result 7")

    def test_a_terminal_that_becomes_narrower_keeps_one_table(self):
        self.script("until-stopped", device("SN1"))
        process = self.start_on_terminal("--seconds", "2")
        self.show_until("1 printer so far")
        self.resize(60, 24)
        self.screen.columns = 60
        self.assertEqual(self.finish(process), FOUND)
        self.assertEqual(self.screen.text().count("SN1"), 1)

    def test_ctrl_c_on_the_keyboard_stops_the_scan_and_completes_the_table(self):
        self.script("until-stopped", device("SN1"))
        process = self.start_on_terminal("--watch")
        self.show_until("1 printer so far, until Ctrl-C")
        os.write(self.master, b"\x03")
        self.assertEqual(self.finish(process), FOUND)
        self.assertRegex(self.screen.text(), r"\nSN1 .*\n1 printer found\.$")
        self.assertEqual(self.calls_of("StopDeviceScan"), ["scripted_all"])

    def test_a_second_ctrl_c_ends_at_once(self):
        self.script("until-stopped", "delay StopDeviceScan 30000", device("SN1"))
        process = self.start_on_terminal("--watch")
        self.show_until("1 printer so far")
        os.write(self.master, b"\x03")
        self.wait_until(lambda: self.calls_of("StopDeviceScan"), "the vendor's stop is called")
        # Before nobody waits for the vendor any more, which ends the program too.
        os.write(self.master, b"\x03")
        # Of the status of Windows its last byte is left.
        self.assertEqual(self.finish(process), 0x3A if ON_WINDOWS else -signal.SIGINT)

    def test_json_and_a_simple_terminal_get_lines(self):
        self.script(device("SN1"))
        ways = [(["--json"], "xterm", '{"serialNumber":"SN1"')]
        if not ON_WINDOWS:
            ways += [([], "dumb", "SN1 Fake 1000 "), ([], "", "SN1 Fake 1000 ")]
        for arguments, term, line in ways:
            with self.subTest(term=term, arguments=arguments):
                process = self.start_on_terminal("--seconds", "0.5", *arguments, columns=300,
                                                 term=term)
                self.screen.takes_tabs = True
                self.assertEqual(self.finish(process), FOUND)
                self.assertTrue(self.screen.text().startswith(line), self.screen.text())
                self.assertEqual(len(self.screen.text().splitlines()), 1)

    def test_log_lines_reach_the_terminal_in_any_script(self):
        os.mkdir(self.path("\u00e9\u20ac\u0416"))
        self.write("vendors.json", '{"moduleFolder": "\u00e9\u20ac\u0416", "vendors":'
                   ' [{"productId": "P", "scanModuleName": "absent"}]}')
        process = self.start_on_terminal("--log-level", "error", columns=250, errors_too=True)
        self.show_until(r"\] error +module .*[/\\]\u00e9\u20ac\u0416[/\\]absent\.(so|dll): "
                        r"there is no such file\(VendorDllMgr::GetDeviceHandle\)")
        self.finish(process)


if __name__ == "__main__":
    app_test.main()

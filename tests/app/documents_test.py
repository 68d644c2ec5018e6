# SPDX-License-Identifier: Apache-2.0
"""The manual pages and completions say what the program's own --help says, and their readers take them."""

import glob
import os
import re
import shutil
import subprocess
import tempfile
import unittest

PROGRAM = os.environ["DEVICEDISCOVER_PROGRAM"]
DOCUMENTS = os.environ["DEVICEDISCOVER_DOCUMENTS"]
BASH = os.path.join(DOCUMENTS, "bash", "devicediscover")
ZSH = os.path.join(DOCUMENTS, "zsh", "_devicediscover")
FISH = os.path.join(DOCUMENTS, "fish", "devicediscover.fish")


def run(*command, **more):
    return subprocess.run(command, capture_output=True, text=True, timeout=60,
                          env={**os.environ, "LC_ALL": "C.UTF-8"}, check=False, **more)


def help_of(words):
    result = run(PROGRAM, *words, "--help")
    assert result.returncode == 0, result.stderr
    return result.stdout


def section(text, name):
    found = re.search(rf"^{name}:\n(.*?)(?=^\S|\Z)", text, re.M | re.S)
    return found.group(1) if found else ""


def all_commands():
    """{words: options} as the program itself tells them."""
    found, left = {}, [()]
    while left:
        words = left.pop()
        text = help_of(words)
        found[words] = set(re.findall(r"(?:^  |,)(--[a-z-]+)", text, re.M))
        left += [(*words, name) for name in re.findall(r"^  ([a-z]+) ", section(text, "(?:Commands|Subcommands)"), re.M)]
    return found


def page_of(words):
    return os.path.join(DOCUMENTS, "man1", "-".join(["devicediscover", *words]) + ".1")


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


def tool(name):
    if not shutil.which(name):
        raise AssertionError(f"{name} is missing: run scripts/bootstrap")
    return name


def ask_bash(*words):
    """What bash offers after these words."""
    script = ('source "$1" || exit; shift; COMP_WORDS=(devicediscover "$@"); COMP_CWORD=$#; _devicediscover 2>/dev/null; '
              'printf "%s\\n" "${COMPREPLY[@]}"')
    result = run(tool("bash"), "-uc", script, "bash", BASH, *words)
    assert result.returncode == 0, result.stderr
    return set(result.stdout.split())


def ask_fish(line):
    """What fish offers after this line."""
    with tempfile.TemporaryDirectory() as home:
        script = f'source {FISH}; complete -C "{line}"'
        result = subprocess.run([tool("fish"), "--no-config", "-c", script], capture_output=True, text=True,
                                timeout=60, check=False, env={**os.environ, "HOME": home, "LC_ALL": "C.UTF-8"})
    assert result.returncode == 0 and not result.stderr, result.stderr
    return {row.split("\t")[0] for row in result.stdout.splitlines()}


class Documents(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.commands = all_commands()

    def inner(self, words):
        return {other[-1] for other in self.commands if other[:-1] == words and other}

    def test_there_are_commands_and_options_to_look_for(self):
        self.assertGreater(len(self.commands), 15)
        self.assertIn("--seconds", self.commands[("usb", "watch")])

    def test_each_command_has_its_page_and_no_other_has_one(self):
        pages = {os.path.basename(path) for path in glob.glob(os.path.join(DOCUMENTS, "man1", "*"))}
        self.assertEqual(pages, {os.path.basename(page_of(words)) for words in self.commands})

    def test_each_page_has_the_commands_and_options(self):
        for words, options in self.commands.items():
            page = read(page_of(words)).replace("\\-", "-")
            for name in options | self.inner(words):
                self.assertRegex(page, rf"\n\.TP\n\\fB{name}\\fR", f"{words}")
            for heading in ["NAME", "SYNOPSIS", "DESCRIPTION", "OPTIONS", "EXAMPLES", "EXIT STATUS", "SEE ALSO"]:
                self.assertIn(f"\n.SH {heading}\n", page)

    def test_the_readers_of_pages_have_nothing_to_warn_of(self):
        pages = sorted(glob.glob(os.path.join(DOCUMENTS, "man1", "*")))
        result = run(tool("mandoc"), "-Tlint", "-Wwarning", *pages)
        self.assertEqual(result.stdout + result.stderr, "")
        result = run(tool("man"), "--warnings", "-E", "UTF-8", "-l", "-Tutf8", "-Z", *pages)
        self.assertEqual(result.stderr, "")

    def test_a_page_reads_as_the_help_does(self):
        result = run(tool("man"), "-l", "-Tutf8", "-P", "cat", page_of(("usb", "list")),
                     stdin=subprocess.DEVNULL)
        text = re.sub(r"\x1b\[[0-9;]*m|.\x08", "", result.stdout)
        self.assertIn("devicediscover usb list --json | jq 'select(.onNetwork == false)'", text)
        self.assertRegex(text, r"\n +devicediscover usb list \[OPTION\]\.\.\.\n")

    def test_bash_completes_commands_and_options(self):
        for words, options in self.commands.items():
            self.assertEqual(ask_bash(*words, ""), options | self.inner(words), f"{words}")

    def test_bash_completes_values(self):
        levels = {"trace", "debug", "info", "warning", "error", "off"}
        self.assertEqual(ask_bash("scan", "--log-level", ""), levels)
        self.assertEqual(ask_bash("scan", "--log-level", "="), levels)
        self.assertEqual(ask_bash("scan", "--log-level", "=", "tr"), {"trace"})
        self.assertEqual(ask_bash("scan", "--seconds", ""), set())
        self.assertEqual(ask_bash("usb", "wat"), {"watch"})
        self.assertIn("--json", ask_bash("state", "scan", "--"))
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "list.json")
            with open(path, "w", encoding="utf-8"):
                pass
            self.assertEqual(ask_bash("vendors", "--vendors", folder + "/l"), {path})

    def test_fish_completes_commands_and_options(self):
        for words, options in self.commands.items():
            line = " ".join(["devicediscover", *words])
            self.assertLessEqual(self.inner(words), ask_fish(line + " "), f"{words}")
            self.assertEqual(ask_fish(line + " --"), options, f"{words}")
        self.assertEqual(ask_fish("devicediscover scan --log-level t"), {"trace"})

    def test_zsh_has_each_command_and_option(self):
        result = run(tool("zsh"), "-n", ZSH)
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        text = read(ZSH)
        self.assertTrue(text.startswith("#compdef devicediscover\n"))
        for words, options in self.commands.items():
            name = "_".join(["_devicediscover", *words])
            body = re.search(rf"^{name}\(\) {{\n(.*?)^}}", text, re.M | re.S)
            self.assertTrue(body, name)
            for option in options:
                self.assertIn(f"'{option}[", body.group(1), name)
            for command in self.inner(words):
                self.assertIn(f"{command}) {name}_{command} ;;", body.group(1))


if __name__ == "__main__":
    unittest.main()

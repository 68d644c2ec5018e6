# SPDX-License-Identifier: Apache-2.0
"""What the tests of the application share: the program, vendor lists, scripted vendors."""

import json
import os
import re
import shutil
import subprocess
import tempfile
import time
import unittest

PROGRAM = os.environ["DEVICEDISCOVER_PROGRAM"]
MODULES = os.environ["DEVICEDISCOVER_TEST_MODULES"]
LAUNCHER = os.environ.get("DEVICEDISCOVER_LAUNCHER")
VERSION = os.environ["DEVICEDISCOVER_VERSION"]
ON_WINDOWS = LAUNCHER is not None
# A vendor list with texts, as a vendor brings it.
DRIVERLESS_LIST = os.path.join(os.path.dirname(os.path.abspath(__file__)),
                               "../../modules/driverless/vendors.json")
# Under an emulator or a sanitizer a program starts slowly.
PATIENCE = 60

FOUND, NONE_FOUND, USAGE, COULD_NOT_RUN = range(4)


def system_path(path):
    """The path as the program under test names it."""
    return "Z:" + path.replace("/", "\\") if ON_WINDOWS else path


def texts_of_driverless():
    """What the module for standard printers says about its results and services."""
    with open(DRIVERLESS_LIST, encoding="utf-8") as file:
        entry, = json.load(file)["vendors"]
    return {key: entry[key] for key in ("results", "services")}


def device(serial, vendor="scripted", model="Fake 1000", address="192.0.2.1", resource="ipp/print",
           port=631, service=1):
    return f'device "{serial}" "{vendor}" "{model}" "{address}" "{resource}" {port} {service}'


class AppTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        self.program = PROGRAM
        self.folder = tempfile.mkdtemp(prefix="devicediscover-")
        self.addCleanup(shutil.rmtree, self.folder)
        self.record_file = self.path("record")
        self.log_file = self.path("log")
        folder = system_path(self.folder)
        self.environment = dict(
            os.environ, SCRIPTED_VENDOR_RECORD=system_path(self.record_file),
            XDG_STATE_HOME=folder, XDG_CONFIG_HOME=folder, LOCALAPPDATA=folder, APPDATA=folder,
            LC_ALL="C.UTF-8")
        self.environment.pop("DEVICEDISCOVER_VENDORS", None)
        self.environment.pop("SCRIPTED_VENDOR_SCRIPT", None)
        self.list_file = self.vendor_list([("scripted", "scripted_all")])

    def path(self, name):
        return os.path.join(self.folder, name)

    def write(self, name, text):
        with open(self.path(name), "w", encoding="utf-8") as file:
            file.write(text)
        return self.path(name)

    def read(self, path):
        with open(path, encoding="utf-8", errors="replace") as file:
            return file.read()

    def vendor_list(self, vendors):
        """Writes a vendor list. A vendor is its entry, or a pair of product id and module; the vendor
        driverless brings its own texts."""
        entries = [vendor if isinstance(vendor, dict) else
                   dict(productId=vendor[0], vendorName=vendor[1], scanModuleName=vendor[1],
                        usbIdList="-")
                   for vendor in vendors]
        entries = [{**texts_of_driverless(), **entry} if entry.get("productId") == "driverless" else entry
                   for entry in entries]
        return self.write("vendors.json", json.dumps(
            {"moduleFolder": system_path(MODULES), "vendors": entries}))

    def use_copy_without_list(self):
        """The program is a copy of its own from now on, its libraries beside it, and no list."""
        folder = self.path("copy")
        os.mkdir(folder)
        for entry in os.scandir(os.path.dirname(PROGRAM)):
            if entry.is_file():
                shutil.copy(entry.path, folder)
        self.program = os.path.join(folder, os.path.basename(PROGRAM))
        # On Windows the program's own folder comes first anyway.
        self.environment["LD_LIBRARY_PATH"] = folder

    def script(self, *lines):
        """What the scripted vendors do."""
        script = self.write("script", "\n".join(lines) + "\n")
        self.environment["SCRIPTED_VENDOR_SCRIPT"] = system_path(script)

    def command(self, *arguments, listed=True):
        command = ([LAUNCHER] if LAUNCHER else []) + [self.program, *arguments]
        if listed:
            command += ["--vendors", system_path(self.list_file)]
        return command

    def run_app(self, *arguments, listed=True, **options):
        """Runs the program to its end; its streams as text."""
        result = subprocess.run(
            self.command(*arguments, listed=listed), env=self.environment, timeout=PATIENCE,
            stdin=subprocess.DEVNULL, capture_output=True, **options)
        result.output = result.stdout.decode("utf-8").replace("\r\n", "\n")
        result.errors = result.stderr.decode("utf-8").replace("\r\n", "\n")
        return result

    def start_app(self, *arguments, **options):
        """Starts the program, to be ended before the test is over."""
        options.setdefault("stdout", subprocess.PIPE)
        options.setdefault("stderr", subprocess.PIPE)
        process = subprocess.Popen(self.command(*arguments), env=self.environment,
                                   stdin=subprocess.DEVNULL, **options)

        def end():
            if process.poll() is None:
                process.kill()
            process.wait()
            for stream in (process.stdout, process.stderr):
                if stream:
                    stream.close()
        self.addCleanup(end)
        return process

    def records(self):
        """The calls that vendors received: pairs of module and entry point."""
        if not os.path.exists(self.record_file):
            return []
        return [tuple(line.split()[:2]) for line in self.read(self.record_file).splitlines()]

    def calls_of(self, entry_point):
        return [module for module, name in self.records() if name == entry_point]

    def wait_until(self, condition, what):
        end = time.monotonic() + PATIENCE
        while not condition():
            self.assertLess(time.monotonic(), end, f"never: {what}")
            time.sleep(0.02)

    def assert_status(self, result, status):
        self.assertEqual(result.returncode, status, result.stdout + result.stderr)

    def assert_mentions(self, text, *words):
        for word in words:
            self.assertRegex(text, re.escape(word))


def json_lines(text):
    return [json.loads(line) for line in text.splitlines()]


main = unittest.main

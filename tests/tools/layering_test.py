# SPDX-License-Identifier: Apache-2.0
"""What the check of the layers finds, and what it lets pass."""

import contextlib
import io
import os
import shutil
import subprocess
import sys
import tempfile
import unittest

FOLDER = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "layering")
CHECK = os.path.join(FOLDER, "check_layering.py")
sys.path.insert(0, FOLDER)
import check_layering  # noqa: E402


class Layering(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="layering-")
        self.addCleanup(shutil.rmtree, self.folder)
        self.write("include/VendorSdk/records.h", "#pragma once\n#include <cstdint>\n")
        self.write("host/PrinterUtil/vendor_list.h", "#pragma once\n")

    def write(self, name, text):
        path = os.path.join(self.folder, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)

    def check(self, name, text):
        """The complaints about a file of that name."""
        self.write(name, text)
        output = io.StringIO()
        with contextlib.redirect_stdout(output):
            status = check_layering.main([self.folder])
        os.remove(os.path.join(self.folder, name))
        *complaints, _ = output.getvalue().splitlines()
        self.assertEqual(status, 1 if complaints else 0, output.getvalue())
        return complaints

    def test_what_knows_nothing_passes(self):
        self.assertEqual(self.check("broker/scan/x.cpp", '#include "include/VendorSdk/records.h"\n'
                                    "#include <csignal>\n#include <semaphore>\n#include <string.h>\n"
                                    "#pragma once\n// __declspec, windows.h\n/* _MSC_VER\n */\n"), [])

    def test_a_header_of_another_layer_is_named(self):
        self.assertEqual(self.check("broker/scan/x.cpp",
                                    '#include "host/PrinterUtil/vendor_list.h"\n'),
                         ["broker/scan/x.cpp: broker/scan/ must not include host/PrinterUtil/vendor_list.h"])

    def test_the_application_knows_no_vendor(self):
        self.write("modules/acme/x.cpp", "int acme;\n")
        for text in ("// As acme does.\n", 'const char* name = "acme";\n'):
            self.assertEqual(self.check("app/x.cpp", text), ["app/x.cpp: knows a vendor: acme"])
        self.assertEqual(self.check("app/x.cpp", "int acmeish;\n"), [])
        self.assertEqual(self.check("host/PrinterUtil/x.cpp", "int acme;\n"), [])

    def test_the_bottom_room_stands_on_nothing_and_is_there_for_all_but_the_broker(self):
        self.write("base/environment.h", "#pragma once\n")
        self.write("platform/os.h", "#pragma once\n")
        self.assertEqual(self.check("base/x.cpp", '#include "base/environment.h"\n'), [])
        self.assertEqual(self.check("base/x.cpp", '#include "platform/os.h"\n'),
                         ["base/x.cpp: base/ must not include platform/os.h"])
        for layer in ("app", "host/common", "host/LogHelper", "host/PrinterDiscoverAPI",
                      "modules/driverless"):
            self.assertEqual(self.check(f"{layer}/x.cpp", '#include "base/environment.h"\n'), [])
        self.assertEqual(self.check("broker/scan/x.cpp", '#include "base/environment.h"\n'),
                         ["broker/scan/x.cpp: broker/scan/ must not include base/environment.h"])

    def test_the_adapter_may_include_the_interface_it_implements_and_no_other(self):
        for name in ("printer_sdk.h", "usb.h"):
            self.write(f"include/DeviceDiscover/{name}", "#pragma once\n")
        name = "host/PrinterAdapter/x.cpp"
        self.assertEqual(self.check(name, '#include "DeviceDiscover/printer_sdk.h"\n'), [])
        self.assertEqual(self.check(name, '#include "DeviceDiscover/usb.h"\n'),
                         [f"{name}: host/PrinterAdapter/ must not include "
                          "include/DeviceDiscover/usb.h"])

    def test_headers_of_one_system_are_named(self):
        for header in ("windows.h", "Windows.h", "winsock2.h", "shellapi.h", "unistd.h", "dlfcn.h",
                       "pthread.h", "sys/stat.h", "linux/if.h", "signal.h", "poll.h"):
            self.assertEqual(self.check("host/PrinterUtil/x.cpp", f"#  include <{header}>\n"),
                             [f"host/PrinterUtil/x.cpp: knows an operating system: {header}"])

    def test_words_of_one_system_are_named(self):
        for word in ("_WIN32", "__linux__", "__unix__", "__APPLE__", "__MINGW32__"):
            self.assertEqual(self.check("app/x.cpp", f"#if defined({word})\n#endif\n"),
                             [f"app/x.cpp: knows an operating system: {word}"])

    def test_a_system_s_own_files_may_know_it(self):
        for name in ("app/x_linux.cpp", "host/LogHelper/x_windows.cpp", "platform/os.h"):
            self.assertEqual(self.check(name, "#include <unistd.h>\n#include <windows.h>\n"
                                        "#ifdef _WIN32\n#endif\n"), [])

    def test_words_of_a_compiler_are_named_everywhere(self):
        for word in ("__attribute__", "__declspec", "_MSC_VER", "__GNUC__", "__clang__",
                     "__builtin_expect", "__PRETTY_FUNCTION__", "#pragma warning"):
            for name in ("broker/records/x.h", "app/x_linux.cpp", "host/LogHelper/x_windows.cpp"):
                self.assertEqual(self.check(name, f"{word} (x)\n"),
                                 [f"{name}: knows a compiler: {word}"])

    def test_the_product_s_folders_are_those_of_the_layers(self):
        result = subprocess.run([CHECK, "--folders", self.folder], capture_output=True, text=True, timeout=60)
        self.assertEqual((result.returncode, result.stdout), (0, "host\ninclude\n"))

    def test_a_folder_that_is_built_and_in_no_layer_is_named(self):
        self.assertEqual(self.check("CMakeLists.txt", "add_subdirectory(host)\nadd_subdirectory(shed)\n"
                                    "if(TESTS)\n    add_subdirectory(tests)\nendif()\n"),
                         ["CMakeLists.txt: builds shed/, which is in no layer"])

    def test_one_header_may_know_the_compilers(self):
        self.assertEqual(self.check("platform/compiler.h", "#ifdef _MSC_VER\n#endif\n"), [])


if __name__ == "__main__":
    unittest.main()

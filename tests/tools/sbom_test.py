# SPDX-License-Identifier: Apache-2.0
"""The bill of materials of what this build tree made. usage: sbom_test.py BUILD [unittest's arguments]"""

import glob
import json
import os
import re
import subprocess
import sys
import tempfile
import unittest

TOP = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.join(TOP, "cmake"))
import sbom  # noqa: E402

BUILD = os.path.abspath(sys.argv.pop(1))
LIBRARIES = sorted(path for path in glob.glob(os.path.join(BUILD, "bin", "lib*.so"))
                   if os.path.basename(path)[3:-3] in
                   ["DeviceDiscover", "LogHelper", "PrinterAdapter", "PrinterDiscoverAPI", "PrinterUtil"])


def bill_of(*binaries):
    with tempfile.NamedTemporaryFile() as file:
        subprocess.run([sys.executable, "-B", os.path.join(TOP, "cmake", "sbom.py"), "--name", "the-package",
                        "--version", "1.2.3", "--build", BUILD, "--output", file.name,
                        "--own", *LIBRARIES, "--binaries", *binaries],
                       check=True, env={**os.environ, "SOURCE_DATE_EPOCH": "86400"})
        return file.read().decode()


class Bill(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.text = bill_of(os.path.join(BUILD, "bin", "devicediscover"))
        cls.bill = json.loads(cls.text)

    def how(self, summary):
        """How the package has the software of that name."""
        found = {row["SPDXID"] for row in self.bill["packages"] if row.get("summary") == summary}
        return {row["relationshipType"] for row in self.bill["relationships"]
                if row["relatedSpdxElement"] in found}

    def test_what_was_compiled_in_and_what_is_linked_is_told_apart(self):
        self.assertEqual(self.how("CLI11"), {"STATIC_LINK"})
        self.assertEqual(self.how("fmt"), {"STATIC_LINK"})
        self.assertEqual(self.how("glibc"), {"DYNAMIC_LINK"})

    def test_what_other_binaries_have_is_not_in_it(self):
        for name in ["spdlog", "libcups", "GnuTLS"]:
            self.assertEqual(self.how(name), set(), name)

    def test_the_libraries_have_theirs(self):
        names = {row.get("summary") for row in json.loads(bill_of(*LIBRARIES))["packages"]}
        self.assertLessEqual({"spdlog", "libcups", "GnuTLS", "sdbus-c++", "libsystemd"}, names)
        self.assertNotIn("CLI11", names)

    def test_it_is_an_spdx_document(self):
        for key in ["spdxVersion", "dataLicense", "SPDXID", "name", "documentNamespace", "creationInfo"]:
            self.assertIn(key, self.bill)
        self.assertEqual(self.bill["spdxVersion"], "SPDX-2.3")
        self.assertEqual(self.bill["creationInfo"]["created"], "1970-01-02T00:00:00Z")
        known = {row["SPDXID"] for row in self.bill["packages"]}
        self.assertEqual(len(known), len(self.bill["packages"]))
        for row in self.bill["packages"]:
            self.assertRegex(row["SPDXID"], r"^SPDXRef-[A-Za-z0-9.-]+$")
            for key in ["name", "downloadLocation", "licenseConcluded", "versionInfo"]:
                self.assertTrue(row[key])
        for row in self.bill["relationships"]:
            self.assertIn(row["relatedSpdxElement"], known)

    def test_two_bills_of_one_build_are_the_same(self):
        self.assertEqual(bill_of(os.path.join(BUILD, "bin", "devicediscover")), self.text)

    def test_it_names_nothing_of_this_machine(self):
        self.assertNotIn(TOP, self.text)
        self.assertNotIn(BUILD, self.text)


class Listed(unittest.TestCase):
    PAGE = "| fmt | 9.1.0 | MIT |\n"

    def test_software_that_the_page_lists_has_its_licence(self):
        self.assertEqual(sbom.listed("fmtlib", "9.1.0+ds1-2", "STATIC_LINK", self.PAGE), ("fmt", "MIT"))

    def test_software_that_nobody_listed_is_refused(self):
        for source, version, how in [("openssl", "3.0.11", "DYNAMIC_LINK"), ("fmtlib", "10.0.0-1", "STATIC_LINK"),
                                     ("cli11", "2.1.2-1", "STATIC_LINK"), ("cups", "2.4.2", "STATIC_LINK")]:
            with self.assertRaises(sbom.NotListed, msg=source):
                sbom.listed(source, version, how, self.PAGE)

    def test_the_page_lists_each_software_that_the_tool_knows(self):
        with open(os.path.join(TOP, "docs", "third-party.md"), encoding="utf-8") as file:
            rows = [row for row in file.read().splitlines() if row.startswith("|")]
        for name, _, _ in sbom.SOFTWARE.values():
            self.assertTrue(any(re.search(re.escape(name), row) for row in rows), name)


if __name__ == "__main__":
    unittest.main()

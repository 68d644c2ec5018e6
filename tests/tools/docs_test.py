# SPDX-License-Identifier: Apache-2.0
"""What the check of the documents says of good ones and of bad ones."""

import os
import shutil
import subprocess
import sys
import tempfile
import unittest

CHECK = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "docs", "check_docs.py")

GOOD = {
    "README.md": "See [the guide](docs/application-guide.md), `app/main.cpp` and `devicediscover scan --json`.\n",
    "app/main.cpp": '// SPDX-License-Identifier: Apache-2.0\nAdd("scan");\nAdd("--json");\nSay("no printer at " +\n    "all: " + reason);\n',
    "docs/application-guide.md": "[scan](examples/scan.cpp)\n\n```cpp\nint main() {}\n```\n",
    "docs/examples/scan.cpp": "// SPDX-License-Identifier: Apache-2.0\n// A scan.\nint main() {}\n",
    "docs/troubleshooting.md": "| it says | it means |\n|---|---|\n| `no printer at …: …` | none |\n",
}


class Docs(unittest.TestCase):
    def setUp(self):
        self.top = tempfile.mkdtemp(prefix="docs-")
        self.addCleanup(shutil.rmtree, self.top)
        for path, text in GOOD.items():
            self.write(path, text)

    def write(self, path, text):
        path = os.path.join(self.top, path)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)

    def check(self):
        result = subprocess.run([sys.executable, "-B", CHECK, self.top], capture_output=True, text=True, timeout=50)
        return result.returncode, result.stdout

    def refuses(self, path, good, bad, complaint):
        self.write(path, GOOD[path].replace(good, bad))
        status, output = self.check()
        self.assertIn(complaint, output)
        self.assertEqual(status, 1)
        self.assertIn(", 1 complaints", output)

    def test_good_documents(self):
        self.assertEqual(self.check(), (0, "documents: 3 files, 0 complaints\n"))

    def test_a_link_to_nothing(self):
        self.refuses("README.md", "(docs/application-guide.md)", "(docs/guide.md)", "README.md: links to docs/guide.md")

    def test_a_path_to_nothing(self):
        self.refuses("README.md", "app/main.cpp", "app/program.cpp", "README.md: names app/program.cpp")

    def test_a_command_that_is_not_there(self):
        self.refuses("README.md", "devicediscover scan", "devicediscover look", "no command 'look'")

    def test_an_option_that_is_not_there(self):
        self.refuses("README.md", "--json", "--xml", "no option --xml")

    def test_a_message_that_nothing_says(self):
        self.refuses("docs/troubleshooting.md", "no printer at", "no printers at", "nothing says 'no printers at'")

    def test_a_program_that_differs_from_its_example(self):
        self.refuses("docs/examples/scan.cpp", "int main() {}", "int main() { return 0; }", "differs from docs/examples")

    def test_no_documents(self):
        shutil.rmtree(self.top)
        os.makedirs(self.top)
        self.assertEqual(self.check()[0], 1)

    def test_a_source_without_a_licence_is_named(self):
        self.refuses("app/main.cpp", "// SPDX-License-Identifier: Apache-2.0\n", "",
                     "app/main.cpp: does not begin with SPDX-License-Identifier: Apache-2.0")


if __name__ == "__main__":
    unittest.main()

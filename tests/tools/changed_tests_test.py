# SPDX-License-Identifier: Apache-2.0
"""Which tests a change needs, in a small tree of the test's own."""

import os
import shutil
import subprocess
import tempfile
import unittest

TOOL = os.path.join(os.path.dirname(os.path.realpath(__file__)), "..", "..", "scripts", "changed-tests")
NINJA = """rule make
  command = true
build bin/program: make main.o lib/libshared.so
build main.o: make main.cpp
build lib/libshared.so: make shared.cpp
"""
# The program has two tests; each script is one.
TESTS = """add_test(program_test.First.Test "{build}/bin/program" "--gtest_filter=First.Test")
add_test(program_test.Second.Test "{build}/bin/program" "--gtest_filter=Second.Test")
add_test(app.short "python3" "{top}/tests/short_test.py")
add_test(app.long "python3" "{top}/tests/long_test.py")
"""
ALL = r"^(app\.long$|app\.short$|program_test\.)"


class ChangedTests(unittest.TestCase):
    def setUp(self):
        self.top = os.path.realpath(tempfile.mkdtemp(prefix="changed-tests-"))
        self.addCleanup(shutil.rmtree, self.top)
        self.build = os.path.join(self.top, "build")
        self.write("tests/short_test.py", "import helper\n")
        self.write("tests/long_test.py", "FAKE = 'fake_printer.sh'\n")
        self.write("tests/helper.py", "")
        self.write("tests/fake_printer.sh", "")
        for name in ("bin/program", "lib/libshared.so", "main.o"):
            self.write("build/" + name, "")
        self.write("build/build.ninja", NINJA)
        self.write("build/CTestTestfile.cmake", TESTS.format(build=self.build, top=self.top))
        self.tool = os.path.join(self.top, "scripts", "changed-tests")
        os.mkdir(os.path.dirname(self.tool))
        shutil.copy(TOOL, self.tool)
        subprocess.run(["git", "init", "-q", self.top], check=True)

    def write(self, name, text):
        path = os.path.join(self.top, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)

    def run_tool(self, *arguments, said=""):
        return subprocess.run([self.tool, *arguments], input=said, capture_output=True, text=True,
                              timeout=60, check=False)

    def selected(self, *options):
        result = self.run_tool("select", *options, self.build)
        self.assertEqual(result.returncode, 0, result.stderr)
        return result.stdout.strip()

    def record(self, *failed):
        self.assertEqual(self.run_tool("record", self.build, said="\n".join(failed)).returncode, 0)

    def have_passed(self):
        self.selected()
        self.record()

    def test_what_never_passed_is_selected(self):
        self.assertEqual(self.selected(), ALL)

    def test_what_passed_is_not_unless_all_are_wanted(self):
        self.have_passed()
        self.assertEqual(self.selected(), "")
        self.assertEqual(self.selected("--all"), ALL)

    def test_a_failure_keeps_its_group_and_no_other(self):
        self.selected()
        self.record("program_test.Second.Test")
        self.assertEqual(self.selected(), r"^(program_test\.)")

    def test_a_failure_of_what_passed_before_is_remembered(self):
        self.have_passed()
        self.selected("--all")
        self.record("app.long")
        self.assertEqual(self.selected(), r"^(app\.long$)")

    def test_a_changed_library_selects_the_programs_that_use_it(self):
        self.have_passed()
        self.write("build/lib/libshared.so", "other")
        self.assertEqual(self.selected(), r"^(program_test\.)")

    def test_what_was_compiled_anew_to_the_same_selects_nothing(self):
        self.have_passed()
        self.write("build/bin/program", "")
        self.write("build/main.o", "other")
        self.assertEqual(self.selected(), "")

    def test_a_changed_module_selects_the_scripts_that_import_it(self):
        self.have_passed()
        self.write("tests/helper.py", "# other\n")
        self.assertEqual(self.selected(), r"^(app\.short$)")

    def test_a_changed_file_selects_the_scripts_that_name_it(self):
        self.have_passed()
        self.write("tests/fake_printer.sh", "# other\n")
        self.assertEqual(self.selected(), r"^(app\.long$)")

    def test_a_change_during_the_tests_is_not_taken_for_passed(self):
        self.selected()
        self.write("tests/helper.py", "# other\n")
        self.record()
        self.assertEqual(self.selected(), r"^(app\.short$)")

    def test_the_longest_that_do_not_fit_are_left_out_and_named(self):
        self.write("build/Testing/Temporary/CTestCostData.txt",
                   "app.short 1 20\napp.long 1 90.5\nprogram_test.First.Test 1 30\n"
                   "program_test.Second.Test 1 30\n---\n")
        result = self.run_tool("select", "--seconds", "80", self.build)
        self.assertEqual(result.stdout.strip(), r"^(app\.short$|program_test\.)")
        self.assertEqual(result.stderr, "left out: app.long (90 s)\n")
        self.record()
        self.assertEqual(self.selected("--seconds", "80"), r"^(app\.long$)", "one is always run")

    def test_wrong_arguments_are_refused(self):
        for words in ([], ["select"], ["select", "a", "b"], ["choose", self.build],
                      ["select", "--seconds", "some", self.build], ["select", "--no-such-option"]):
            self.assertEqual(self.run_tool(*words).returncode, 2, words)


if __name__ == "__main__":
    unittest.main()

# SPDX-License-Identifier: Apache-2.0
"""The module's entry of a vendor list explains each of its results, and nothing that is none."""

import json
import os
import re
import unittest

TOP = os.path.join(os.path.dirname(os.path.abspath(__file__)), "../../..")


def read(path):
    with open(os.path.join(TOP, path), encoding="utf-8") as file:
        return file.read()


ENTRY_POINTS = set(re.findall(r"using (\w+)Function =", read("include/VendorSdk/entry_points.h")))
RESULTS = json.loads(read("modules/driverless/vendors.json"))["vendors"][0]["results"]


def groups_of_results():
    """The entry points that each heading of results.h names, with the failures below it."""
    for part in read("modules/driverless/common/results.h").split("\n\n"):
        heading = part.splitlines()[0]
        numbers = {name: int(number)
                   for name, number in re.findall(r"^constexpr int (k\w+) = (\d+);", part, re.MULTILINE)}
        yield [name for name in re.findall(r"\w+", heading) if name in ENTRY_POINTS], numbers


def meaning(entry_point, number):
    """What a user is told about the result."""
    said = RESULTS.get(entry_point, {}).get(str(number), RESULTS.get(str(number)))
    return said["meaning"] if isinstance(said, dict) else said


class VendorTexts(unittest.TestCase):
    def test_each_result_has_a_text(self):
        named = 0
        for entry_points, numbers in groups_of_results():
            for name, number in numbers.items():
                for entry_point in entry_points or [None]:
                    with self.subTest(name, entry_point=entry_point):
                        if name != "kOk":
                            self.assertGreater(len(meaning(entry_point, number) or ""), 10)
                            named += 1
        self.assertGreater(named, 25)

    def test_a_number_with_several_meanings_has_a_text_for_each(self):
        said = {}
        for entry_points, numbers in groups_of_results():
            for name, number in numbers.items():
                said.setdefault(number, {})[name] = {meaning(one, number) for one in entry_points}
        for number, names in said.items():
            for name, texts in names.items():
                for other, others in names.items():
                    if name < other:
                        with self.subTest(number, names=(name, other)):
                            self.assertFalse(texts & others)

    def test_no_text_without_a_result(self):
        known = {number for _, numbers in groups_of_results() for number in numbers.values()}
        for key, value in RESULTS.items():
            with self.subTest(key):
                if key.isdigit():
                    self.assertIn(int(key), known - {0})
                else:
                    self.assertIn(key, ENTRY_POINTS)
                    self.assertLessEqual({int(number) for number in value}, known)


if __name__ == "__main__":
    unittest.main()

# SPDX-License-Identifier: Apache-2.0
"""What the filter makes of a header's comments for the reference, and that broken documents are told."""

import os
import shutil
import subprocess
import tempfile
import unittest

DOCS = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "docs")

HEADER = r"""// SPDX-License-Identifier: Apache-2.0

#pragma once

// The first words are about the file: <a> and VID_1&PID_2.
//
//     code & <more>

#include <cstdint>

// --- A headline ---

// About the function: a\b, #1, 100%, x@y.
// Second line.
int Function();

struct Record {
    int one;  // about it; see A<B>
    int two;
};

// Alone: about nothing.

#define MACRO 1  // kept
"""
REFERENCE = r"""// SPDX-License-Identifier: Apache-2.0

#pragma once

/// @file x.h
/// The first words are about the file: \<a\> and VID_1\&PID_2.
///
///     code & <more>

#include <cstdint>

// --- A headline ---

/// About the function: a\\b, \#1, 100\%, x\@y.
/// Second line.
int Function();

struct Record {
    int one;  ///< about it; see A\<B\>
    int two;
};

// Alone: about nothing.

#define MACRO 1  // kept
"""


class Filter(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="reference-")
        self.addCleanup(shutil.rmtree, self.folder)

    def filtered(self, text):
        with open(os.path.join(self.folder, "x.h"), "w", encoding="utf-8") as file:
            file.write(text)
        return subprocess.run([os.path.join(DOCS, "doxygen_filter.py"), "x.h"], cwd=self.folder,
                              capture_output=True, text=True, timeout=60, check=True).stdout

    def test_comments_belong_to_what_follows_and_mean_what_they_say(self):
        self.assertEqual(self.filtered(HEADER.replace("\\\\", "\\")), REFERENCE)

    def test_wrong_arguments(self):
        for arguments in ([], ["--help"], ["a", "b"]):
            result = subprocess.run([os.path.join(DOCS, "doxygen_filter.py"), *arguments],
                                    capture_output=True, text=True, timeout=60, check=False)
            self.assertEqual((result.returncode, result.stdout), (2, ""))
            self.assertIn("usage: doxygen_filter.py HEADER", result.stderr)


if __name__ == "__main__":
    unittest.main()

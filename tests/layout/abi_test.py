"""The binary interface of the library is the recorded one: applications that were built before go on working.

`abi_test.py --record` writes the record instead; docs/abi.md tells when that is right."""

import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

LIBRARY = os.environ["LIBRARY"]
RECORD = pathlib.Path(os.environ["RECORD"])
ADVICE = f"""
{RECORD.name} records another binary interface than the library has. docs/abi.md tells which changes raise the soname;
then, or when the change is a compatible one, `scripts/abi` records it anew."""


def differences(record, library):
    """Exit code and report of abidiff; a code of 0 says that there are none, 1 and 2 that it could not compare."""
    done = subprocess.run(["abidiff", "--exported-interfaces-only", str(record), str(library)], stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, encoding="utf-8", check=False, timeout=120)
    return done.returncode, done.stdout


class Abi(unittest.TestCase):
    def test_the_library_has_the_recorded_one(self):
        code, report = differences(RECORD, LIBRARY)
        self.assertEqual(code, 0, f"\n{report}{ADVICE}")

    def test_an_object_of_another_size_would_be_told(self):
        with tempfile.TemporaryDirectory() as folder:
            other = pathlib.Path(folder, "other.xml")
            name, size, rest = RECORD.read_text().partition("<class-decl name='KelArc' size-in-bits='")
            self.assertNotEqual(rest, "")
            other.write_text(name + size + "1" + rest)
            code, report = differences(other, LIBRARY)
        self.assertEqual(code & 4, 4, report)
        self.assertIn("type size changed", report)

    def test_a_lost_function_would_be_told_as_incompatible(self):
        with tempfile.TemporaryDirectory() as folder:
            other = pathlib.Path(folder, "other.xml")
            other.write_text(RECORD.read_text().replace("_ZN6kelarc6KelArc8stopGNSSEO", "_ZN6kelarc6KelArc8haltGNSSEO"))
            code, report = differences(other, LIBRARY)
        self.assertEqual(code & 8, 8, report)
        self.assertIn("_ZN6kelarc6KelArc8haltGNSSEO", report)


if sys.argv[1:] == ["--record"]:
    subprocess.run(["abidw", "--exported-interfaces-only", "--no-corpus-path", "--no-comp-dir-path", "--no-show-locs",
                    "--no-parameter-names", "--no-elf-needed", "--type-id-style", "hash", "--out-file", RECORD, LIBRARY],
                   check=True)
    # Where the tree stood when the library was built is nobody's business.
    tree = f"{pathlib.Path(__file__).resolve().parents[2]}/"
    RECORD.write_text(RECORD.read_text().replace(tree, ""))
else:
    unittest.main()

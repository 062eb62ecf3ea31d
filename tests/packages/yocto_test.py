"""The recipe for Yocto reads as one, and names what is installed: all of it, and nothing else."""

import fnmatch
import hashlib
import os
import pathlib
import re
import subprocess
import tempfile
import unittest

SOURCE = pathlib.Path(os.environ["SOURCE"])
BUILD = pathlib.Path(os.environ["BUILD"])
FOLDER = SOURCE / "packaging/yocto/kelarc"
RECIPE = FOLDER / "kelarc_0.1.0.bb"
# Where the installed tree of this build has what the recipe's folders stand for.
FOLDERS = {"bindir": "bin", "libdir": os.environ["LIBDIR"], "includedir": "include", "datadir": "share",
           "mandir": "share/man"}

NAME = r"[A-Za-z_][A-Za-z0-9_-]*(?::(?:\$\{PN\}(?:-[a-z]+)?|[a-z0-9-]+))*"
ASSIGNMENT = re.compile(rf'^({NAME}) (=|\?=|\?\?=|:=|\+=|=\+|\.=|=\.) "([^"]*)"$')
FUNCTION = re.compile(rf"^({NAME})\(\) \{{$")


def parsed():
    """Variables and shell functions of the recipe; a line that is neither, nor a comment, is an error with its number."""
    variables, functions, inherited = {}, {}, []
    lines = iter(enumerate(RECIPE.read_text().splitlines(), 1))
    for number, line in lines:
        while line.endswith("\\"):
            line = line[:-1] + next(lines)[1]
        if not line.strip() or line.startswith("#"):
            continue
        if line.startswith("inherit "):
            inherited += line.split()[1:]
        elif match := ASSIGNMENT.match(line):
            if match.group(1) in variables:
                raise AssertionError(f"line {number}: {match.group(1)} has a value already")
            variables[match.group(1)] = match.group(3)
        elif match := FUNCTION.match(line):
            body = []
            for _, inner in lines:
                if inner == "}":
                    break
                body.append(inner)
            else:
                raise AssertionError(f"line {number}: {match.group(1)} has no end")
            functions[match.group(1)] = "\n".join(body)
        else:
            raise AssertionError(f"line {number}: not understood: {line}")
    return variables, functions, inherited


def expanded(value):
    return re.sub(r"\$\{(\w+)\}", lambda match: FOLDERS[match.group(1)], value)


class Yocto(unittest.TestCase):
    def setUp(self):
        self.variables, self.functions, self.inherited = parsed()

    def test_it_says_what_every_recipe_has_to(self):
        for name in ("SUMMARY", "DESCRIPTION", "LICENSE", "LIC_FILES_CHKSUM", "SRC_URI", "DEPENDS"):
            self.assertIn(name, self.variables)
        self.assertEqual(self.inherited, ["externalsrc", "cmake", "pkgconfig", "ptest", "python3native"])

    def test_it_is_named_after_the_version(self):
        version = re.search(r"project\(KelArc VERSION (\S+)", (SOURCE / "CMakeLists.txt").read_text()).group(1)
        self.assertEqual(RECIPE.name, f"kelarc_{version}.bb")

    def test_it_knows_the_license_by_its_checksum(self):
        digest = hashlib.md5((SOURCE / "LICENSE").read_bytes()).hexdigest()
        self.assertEqual(self.variables["LIC_FILES_CHKSUM"], f"file://LICENSE;md5={digest}")

    def test_it_finds_the_tree_that_it_is_part_of(self):
        self.assertIn("'/../../..'", self.variables["EXTERNALSRC"])
        self.assertTrue((RECIPE.parent / "../../.." / "CMakeLists.txt").exists())

    def test_every_installed_file_belongs_to_one_package(self):
        owners = {name: [expanded(pattern) for pattern in value.split()]
                  for name, value in self.variables.items() if name.startswith("FILES:")}
        with tempfile.TemporaryDirectory() as folder:
            subprocess.run(["cmake", "--install", BUILD, "--prefix", folder], check=True, stdout=subprocess.DEVNULL)
            installed = {path.relative_to(folder).as_posix() for path in pathlib.Path(folder).rglob("*")
                         if not path.is_dir()}
        self.assertGreater(len(installed), 15)
        for file in installed:
            matching = [name for name, patterns in owners.items()
                        if any(fnmatch.fnmatchcase(file, pattern) for pattern in patterns)]
            self.assertEqual(len(matching), 1, f"{file} is named by {matching}")
        for name, patterns in owners.items():
            for pattern in patterns:
                self.assertTrue(fnmatch.filter(installed, pattern), f"{name} names {pattern}, which is not installed")

    def test_packages_of_their_own_are_declared(self):
        declared = self.variables["PACKAGE_BEFORE_PN"].split()
        named = [name.partition(":")[2] for name in self.variables if name.startswith("FILES:")]
        self.assertEqual(sorted(declared + ["${PN}", "${PN}-dev", "${PN}-doc"]), sorted(named))

    def test_its_shell_is_valid(self):
        for name, body in self.functions.items():
            checked = subprocess.run(["sh", "-n"], input=re.sub(r"\$\{\w+\}", "x", body), capture_output=True, text=True)
            self.assertEqual((checked.returncode, checked.stderr), (0, ""), name)
        for file in self.variables["SRC_URI"].split():
            path = FOLDER / "kelarc" / file.removeprefix("file://")
            checked = subprocess.run(["sh", "-n", path], capture_output=True, text=True)
            self.assertEqual((checked.returncode, checked.stderr), (0, ""), file)

    def test_the_tests_of_a_unit_are_the_suites_that_are_built(self):
        made = sorted(re.findall(r"\$\{B\}/tests/(\w+)", self.functions["do_install_ptest"]))
        self.assertEqual(made, ["contract_tests", "facade_tests", "unit_tests"])


class OnAUnit(unittest.TestCase):
    def test_every_suite_is_run_and_counted_and_a_failing_one_fails_the_whole(self):
        with tempfile.TemporaryDirectory() as folder:
            ptest = pathlib.Path(folder, "lib/kelarc/ptest")
            ptest.mkdir(parents=True)
            (ptest / "run-ptest").write_text((FOLDER / "kelarc/run-ptest").read_text())
            for suite, code in (("unit", 0), ("facade", 1), ("contract", 0)):
                program = ptest / f"{suite}_tests"
                program.write_text(f"#!/bin/sh\necho $LD_LIBRARY_PATH\nexit {code}\n")
                program.chmod(0o755)
            ran = subprocess.run(["sh", ptest / "run-ptest"], capture_output=True, text=True)
        simulator = f"{folder}/lib/kelarc-sim"
        self.assertEqual(ran.stdout.splitlines(), [simulator, "PASS: unit", simulator, "FAIL: facade", simulator,
                                                   "PASS: contract"])
        self.assertEqual(ran.returncode, 1)


unittest.main()

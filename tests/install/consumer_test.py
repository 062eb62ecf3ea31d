"""A project outside the tree builds on the installed library in both ways, wherever the installed tree was moved to."""

import os
import pathlib
import shlex
import shutil
import subprocess
import unittest

from tree import LIBDIR, TreeTest, install, ran

SOURCE = pathlib.Path(os.environ["SOURCE"])
SAID = "a sentence every second\n"


class Consumer(TreeTest):
    def setUp(self):
        super().setUp()
        install(self.folder / "first", "runtime", "development")
        self.prefix = self.folder / "moved"
        (self.folder / "first").rename(self.prefix)
        shutil.copytree(os.environ["CONSUMER"], self.folder / "consumer")
        self.program = self.folder / "build" / "consumer"

    def said(self):
        libraries = f"{self.prefix / LIBDIR}:{os.environ['SIMULATOR']}"
        emulator = os.environ["EMULATOR"].split()
        # Of the emulator the program's environment is asked for, so that it does not load our libraries itself.
        environment = ["-E", f"LD_LIBRARY_PATH={libraries}"] if emulator else []
        return ran([*emulator, *environment, self.program],
                   env=None if emulator else {"LD_LIBRARY_PATH": libraries})

    def configure(self, *options):
        toolchain = os.environ["TOOLCHAIN"]
        return subprocess.run(
            ["cmake", "-S", self.folder / "consumer", "-B", self.folder / "build", "-G", "Ninja",
             f"-DCMAKE_CXX_COMPILER={os.environ['COMPILER']}", *([f"-DCMAKE_TOOLCHAIN_FILE={toolchain}"] if toolchain else []),
             *options], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, encoding="utf-8", check=False, timeout=240)

    def compile(self):
        """With pkg-config; an application that is linked has the compiler's warnings about its own code only."""
        flags = ran(["pkg-config", "--cflags", "--libs", "kelarc"],
                    env={**os.environ, "PKG_CONFIG_LIBDIR": str(self.prefix / LIBDIR / "pkgconfig")})
        self.program.parent.mkdir()
        return ran([os.environ["COMPILER"], "-std=c++17", "-Wall", "-Wextra", "-Wpedantic", "-Wshadow", "-Werror",
                    self.folder / "consumer/main.cpp", *shlex.split(flags), "-o", self.program])

    def test_builds_with_the_cmake_package_and_runs(self):
        configured = self.configure(f"-DKelArc_DIR={self.prefix / LIBDIR}/cmake/KelArc")
        self.assertEqual(configured.returncode, 0, configured.stdout)
        ran(["cmake", "--build", self.folder / "build"])
        self.assertEqual(self.said(), SAID)

    def test_builds_with_pkg_config_and_runs(self):
        self.assertEqual(self.compile(), "")
        self.assertEqual(self.said(), SAID)

    def test_the_guides_programs_compile_on_the_installed_headers(self):
        listed = (SOURCE / "debian/libkelarc-dev.examples").read_text().splitlines()
        self.assertEqual(len(listed), 4)
        for program in listed:
            standard = "c++20" if "coroutine" in program else "c++17"
            self.assertEqual(ran([os.environ["COMPILER"], f"-std={standard}", "-fsyntax-only", "-Wno-psabi",
                                  f"-I{self.prefix}/include", SOURCE / program]), "")

    def test_is_refused_a_version_that_is_not_installed(self):
        project = self.folder / "consumer/CMakeLists.txt"
        project.write_text(project.read_text().replace("KelArc 0.1 ", "KelArc 1.0 "))
        configured = self.configure(f"-DKelArc_DIR={self.prefix / LIBDIR}/cmake/KelArc")
        self.assertNotEqual(configured.returncode, 0)
        self.assertIn('compatible with requested version "1.0"', " ".join(configured.stdout.split()))

    def finding(self, arguments):
        """What CMake says to a project that looks for the package with these arguments: whether it goes on, and all."""
        (self.folder / "consumer/CMakeLists.txt").write_text(
            "cmake_minimum_required(VERSION 3.19)\nproject(consumer LANGUAGES CXX)\n"
            f"find_package(KelArc {arguments})\n"
            'message(STATUS "Found: ${KelArc_FOUND}.")\n'
            'if(TARGET KelArc::KelArc)\nmessage(STATUS "There is a target.")\nendif()\n')
        configured = self.configure(f"-DKelArc_DIR={self.prefix / LIBDIR}/cmake/KelArc")
        return configured.returncode == 0, " ".join(configured.stdout.split())

    def test_a_component_is_not_found_because_there_are_none(self):
        reason = "KelArc has no components, but find_package asks for nonsense, more: leave COMPONENTS out."
        goes_on, said = self.finding("REQUIRED COMPONENTS nonsense more")
        self.assertFalse(goes_on)
        self.assertIn(reason, said)
        goes_on, said = self.finding("COMPONENTS nonsense more")
        self.assertTrue(goes_on)
        self.assertIn(reason, said)
        self.assertIn("Found: 0.", said)
        self.assertNotIn("There is a target.", said)

    def test_a_component_that_can_be_done_without_is_no_obstacle(self):
        goes_on, said = self.finding("0.1 REQUIRED OPTIONAL_COMPONENTS nonsense")
        self.assertTrue(goes_on, said)
        self.assertIn("Found: 1.", said)
        self.assertIn("There is a target.", said)

    def test_a_range_of_versions_is_looked_at_at_both_ends(self):
        for wanted, suits in (("0.1...0.9", True), ("0.0...0.1.0", True), ("0.0...<0.1.0", False), ("0.2...0.9", False),
                              ("0.1.0 EXACT", True), ("0.1.1 EXACT", False)):
            goes_on, said = self.finding(f"{wanted} REQUIRED")
            self.assertEqual(goes_on, suits, f"{wanted}: {said}")

    def test_pkg_config_tells_the_version(self):
        self.assertEqual(ran(["pkg-config", "--modversion", self.prefix / LIBDIR / "pkgconfig/kelarc.pc"]), "0.1.0\n")


unittest.main()

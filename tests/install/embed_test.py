"""The tree as a part of another project: the library and nothing else, unless more is asked for."""

import os
import pathlib
import unittest

from tree import TreeTest, dynamic, files, ran, run

SOURCE = pathlib.Path(os.environ["SOURCE"])
# What a project that only wants the library need not have.
PACKAGES = ("CLI11", "Curses", "GTest", "Python3", "nlohmann_json", "pugixml")
PROJECT = """cmake_minimum_required(VERSION 3.25)
project(application LANGUAGES C CXX)
{before}
{added}
add_executable(application main.cpp)
target_link_libraries(application PRIVATE KelArc::KelArc)
install(TARGETS application)
"""
ADDED = f"add_subdirectory({SOURCE} kelarc)"
FETCHED = (f"include(FetchContent)\nFetchContent_Declare(kelarc SOURCE_DIR {SOURCE})\n"
           "FetchContent_MakeAvailable(kelarc)")
PROGRAM = """#include "kelarc/KelArc.h"

#include <cstdio>
#include <future>

int main()
{
    std::promise<std::string> version;
    kelarc::KelArc modem([](int, const char*) {});
    modem.getArcVersion([&](int, std::string&& text) { version.set_value(text); });
    std::puts(version.get_future().get().c_str());
}
"""


class Embed(TreeTest):
    def setUp(self):
        super().setUp()
        self.build = self.folder / "build"
        self.packages = PACKAGES
        (self.folder / "main.cpp").write_text(PROGRAM)
        (self.folder / "unit.c").write_text((SOURCE / "tests/packages/unit_library.c").read_text())

    def configure(self, added, *options, before=""):
        (self.folder / "CMakeLists.txt").write_text(PROJECT.format(before=before, added=added))
        return run(["cmake", "-S", self.folder, "-B", self.build, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Debug",
                    f"-DCMAKE_CXX_COMPILER={os.environ['COMPILER']}",
                    *(f"-DCMAKE_DISABLE_FIND_PACKAGE_{package}=ON" for package in self.packages), *options])

    def configured(self, *arguments, **words):
        done = self.configure(*arguments, **words)
        self.assertEqual(done.returncode, 0, done.stdout)

    def refused(self, *arguments, **words):
        done = self.configure(*arguments, **words)
        self.assertNotEqual(done.returncode, 0)
        return " ".join(done.stdout.split())

    def built(self):
        """Libraries and programs that are there after building everything; the links are the library's own."""
        ran(["cmake", "--build", self.build])
        return {path.relative_to(self.build).as_posix() for path in self.build.rglob("*")
                if path.is_file() and not path.is_symlink() and "CMakeFiles" not in path.parts
                and path.read_bytes()[:4] in (b"\x7fELF", b"!<ar")}

    def unit_library(self):
        library = self.folder / "unit/libArcRilD.so"
        library.parent.mkdir()
        ran(["cc", "-shared", "-fPIC", self.folder / "unit.c", "-o", library])
        return library

    def installed(self):
        prefix = self.folder / "prefix"
        ran(["cmake", "--install", self.build, "--prefix", prefix])
        return files(prefix)

    def test_without_a_client_library_it_says_which_three_ways_there_are(self):
        said = self.refused(ADDED)
        for words in ("there is none", "KELARC_ARC_LIBRARY", "a target named ArcRilD", "KELARC_BUILD_SIMULATOR"):
            self.assertIn(words, said)

    def test_with_the_units_client_library_only_the_library_is_built_and_nothing_of_it_installed(self):
        library = self.unit_library()
        self.configured(FETCHED, f"-DKELARC_ARC_LIBRARY={library}")
        self.assertEqual(self.built(), {"_deps/kelarc-build/src/libKelArc.so.1.0.1.0", "application"})
        self.assertEqual(ran([self.build / "application"], env={"LD_LIBRARY_PATH": str(library.parent)}),
                         "the unit's own\n")
        self.assertEqual(self.installed(), {"bin/application"})
        # The same again with what else may be asked for; nothing is compiled anew.
        self.configured(FETCHED, f"-DKELARC_ARC_LIBRARY={library}", "-DKELARC_INSTALL=ON")
        self.built()
        self.assertEqual({name for name in self.installed() if not name.startswith(("include/kelarc/", "lib/cmake/"))},
                         {"bin/application", "lib/libKelArc.so", "lib/libKelArc.so.1", "lib/libKelArc.so.1.0.1.0",
                          "lib/pkgconfig/kelarc.pc"})
        # Three settings that cannot be followed are told.
        said = self.refused(FETCHED, "-DBUILD_SHARED_LIBS=OFF")
        self.assertIn("BUILD_SHARED_LIBS is 'OFF'", said)
        self.assertIn("accepted is ON", said)
        said = self.refused(FETCHED, "-DBUILD_SHARED_LIBS=ON", "-DKELARC_BUILD_TOOLS=ON")
        self.assertIn("kelarcctl needs what is not found: CLI11, nlohmann_json, Curses.", said)
        self.assertIn("-DKELARC_BUILD_TOOLS=OFF", said)
        said = self.refused(FETCHED, "-DKELARC_ARC_LIBRARY=", "-DKELARC_BUILD_TOOLS=OFF", "-DKELARC_BUILD_SIMULATOR=ON")
        self.assertIn("The simulated modem needs what is not found: nlohmann_json, pugixml, CLI11.", said)
        self.assertIn("-DKELARC_BUILD_SIMULATOR=OFF", said)

    def test_a_static_library_on_a_client_library_of_the_projects_own(self):
        self.configured(ADDED, "-DBUILD_SHARED_LIBS=OFF", before="add_library(ArcRilD SHARED unit.c)")
        self.assertEqual(self.built(), {"kelarc/src/libKelArc.a", "libArcRilD.so", "application"})
        self.assertEqual(ran([self.build / "application"]), "the unit's own\n")
        self.assertNotIn("libKelArc.so.1", dynamic(self.build / "application", "NEEDED"))

    def test_the_simulated_modem_is_there_when_asked_for(self):
        asked = """
foreach(target ArcRilD arcsim ArcRecord kelarcctl navigator unit_tests kelarc_counts)
    if(TARGET ${target})
        message(STATUS "There is ${target}.")
    endif()
endforeach()"""
        self.packages = ()
        done = self.configure(ADDED + asked, "-DKELARC_BUILD_SIMULATOR=ON")
        self.assertEqual(done.returncode, 0, done.stdout)
        self.assertIn("There is ArcRilD.", done.stdout)
        self.assertIn("There is arcsim.", done.stdout)
        self.assertIn("There is ArcRecord.", done.stdout)
        self.assertEqual(done.stdout.count("There is "), 3)


unittest.main()

"""The commands that build for a unit, as README.md and the guide have them, with a toolchain that has none of the
packages that the programs and the simulator are built with."""

import os
import pathlib
import re
import shutil
import unittest

from tree import TreeTest, dynamic, files, ran, run

SOURCE = pathlib.Path(os.environ["SOURCE"])
TOOLCHAIN = os.environ["TOOLCHAIN"]


def block(page, text):
    """The one block of commands on a page that has the text."""
    blocks = re.findall(r"^```\w*\n(.*?)^```$", (SOURCE / page).read_text(), re.MULTILINE | re.DOTALL)
    found = [block for block in blocks if text in block]
    if len(found) != 1:
        raise AssertionError(f"{page} has {len(found)} blocks with {text}")
    return found[0]


class Documented(TreeTest):
    def setUp(self):
        super().setUp()
        self.source = self.folder / "kelarc"
        shutil.copytree(SOURCE, self.source, ignore=lambda folder, names: {
            name for name in names if name in (".git", "build")})
        # A library without a name of its own in it is the harder case.
        self.library = self.folder / "unit/libArcRilD.so"
        self.library.parent.mkdir()
        ran([os.environ["COMPILER"], "-x", "c", "-shared", "-fPIC", SOURCE / "tests/packages/unit_library.c",
             "-o", self.library])
        self.toolchain = self.folder / "unit/unit.cmake"
        given = f"include({TOOLCHAIN})" if TOOLCHAIN else (
            f"set(CMAKE_SYSTEM_NAME Linux)\nset(CMAKE_CXX_COMPILER {os.environ['COMPILER']})")
        kinds = "".join(f"set(CMAKE_FIND_ROOT_PATH_MODE_{kind} ONLY)\n" for kind in ("PACKAGE", "LIBRARY", "INCLUDE"))
        self.toolchain.write_text(f"{given}\nset(CMAKE_FIND_ROOT_PATH {self.folder}/unit/root)\n{kinds}")
        (self.folder / "unit/root").mkdir()

    def shell(self, commands, **environment):
        """Runs commands of a page in a copy of the tree; what their reader has to fill in is filled in."""
        for name, value in (("/path/to/libArcRilD.so", self.library), ("/path/to/unit.cmake", self.toolchain),
                            ("--prefix DIR", f"--prefix {self.folder}/DIR")):
            commands = commands.replace(name, str(value))
        self.assertNotIn("/path/to", commands)
        return run(["bash", "-euc", commands], cwd=self.source, env={**os.environ, **environment})

    def installed(self):
        return {name for name in files(self.folder / "DIR") if not name.startswith("include/kelarc/")}

    def check_library(self):
        """It is the unit's that is needed, and by name, though it lies in a folder."""
        built = [path for path in (self.source / "build/unit").rglob("lib*.so") if "CMakeFiles" not in path.parts]
        self.assertIn("src/libKelArc.so", {path.relative_to(self.source / "build/unit").as_posix() for path in built})
        self.assertNotIn("libArcRilD.so", {path.name for path in built})
        self.assertIn("libArcRilD.so", dynamic(self.source / "build/unit/src/libKelArc.so", "NEEDED"))

    LIBRARY = {"lib/cmake/KelArc/KelArcConfig.cmake", "lib/cmake/KelArc/KelArcConfigVersion.cmake", "lib/libKelArc.so",
               "lib/libKelArc.so.1", "lib/libKelArc.so.1.0.1.0", "lib/pkgconfig/kelarc.pc"}

    def test_the_guides_build_the_library_and_install_what_was_built(self):
        done = self.shell(block("docs/guide/porting.md", "--toolchain"))
        self.assertEqual(done.returncode, 0, done.stdout)
        self.check_library()
        self.assertEqual(self.installed(), self.LIBRARY)
        self.assertIn("Not built, so not installed: ArcRecord", done.stdout)
        # A part that was not built is an error where it is asked for by name.
        done = self.shell("cmake --install build/unit --prefix DIR --component simulator")
        self.assertNotEqual(done.returncode, 0)
        self.assertIn("The component simulator has ArcRecord, which was not built", " ".join(done.stdout.split()))
        # The tools are built when asked for; what they lack is named.
        done = self.shell("cmake --preset release -B build/unit -DKELARC_BUILD_TOOLS=ON")
        self.assertNotEqual(done.returncode, 0)
        self.assertIn("kelarcctl needs what is not found: CLI11, nlohmann_json, Curses. ", " ".join(done.stdout.split()))

    def test_the_readmes_build_and_install_the_library_and_the_recorder(self):
        readme = (SOURCE / "README.md").read_text()
        install = "cmake --install build/unit --prefix DIR"
        self.assertEqual(readme.count(f"`{install}`"), 1)
        for commands in (block("README.md", "-DKELARC_ARC_LIBRARY"), install):
            done = self.shell(commands, CMAKE_TOOLCHAIN_FILE=str(self.toolchain))
            self.assertEqual(done.returncode, 0, done.stdout)
        self.check_library()
        self.assertEqual(self.installed(), self.LIBRARY | {"lib/kelarc-sim/libArcRecord.so"})

    def test_a_client_library_that_does_not_exist_is_refused_by_name(self):
        done = self.shell("cmake --preset release -DKELARC_ARC_LIBRARY=/nowhere/libArcRilD.so")
        self.assertNotEqual(done.returncode, 0)
        self.assertIn("'/nowhere/libArcRilD.so', which does not exist", " ".join(done.stdout.split()))


unittest.main()

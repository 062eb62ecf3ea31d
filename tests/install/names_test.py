"""An application may have headers of the same names as the library's: each gets its own, whichever folder is searched
first, and however the library is found."""

import os
import shlex
import unittest

from tree import LIBDIR, TreeTest, install, ran

COMPILERS = os.environ["COMPILERS"].split()
NAMES = ("thread/Thread.h", "task/ExecutionReason.h", "task/TaskContainer.h", "task/TaskQueue.h", "task/TaskStore.h",
         "KelArc.h", "Types.h", "async.h", "idle.h", "names.h", "async/Coroutine.h", "async/Ending.h", "async/Future.h",
         "async/Operation.h",
         "logsink.h", "logsink/Journal.h", "logsink/Line.h", "Thread.h", "ExecutionReason.h", "TaskContainer.h",
         "TaskQueue.h", "TaskStore.h", "Coroutine.h", "Ending.h", "Future.h", "Operation.h", "Journal.h", "Line.h",
         "Call.h", "arc/ArcRilD.h", "record/Recorder.h", "support/Words.h", "nmea/Epoch.h")
LIBRARYS = "".join(f'#include "kelarc/{name}.h"\n' for name in ("KelArc", "async", "idle", "logsink", "names"))
USE = """
int main()
{
    kelarc::KelArc modem(kelarc::logsink::toJournal("application"));
    task::TaskQueue<4, task::TaskContainer> queue("application");
    return %s - %d;
}
"""


class Names(TreeTest):
    def setUp(self):
        super().setUp()
        install(self.folder / "installed", "runtime", "development")
        self.own = self.folder / "own"
        for number, name in enumerate(NAMES):
            header = self.own / name
            header.parent.mkdir(parents=True, exist_ok=True)
            header.write_text(f"#pragma once\ninline int ownHeader{number}() {{ return 1; }}\n")
        self.assertEqual(len(set(NAMES)), 33)
        own = "".join(f'#include "{name}"\n' for name in NAMES)
        use = USE % (" + ".join(f"ownHeader{number}()" for number in range(len(NAMES))), len(NAMES))
        for order, text in (("own_first", own + LIBRARYS), ("librarys_first", LIBRARYS + own)):
            (self.folder / f"{order}.cpp").write_text(text + use)

    def compiles(self, flags):
        """Own and the library's headers included in either order, with the own folder searched before and after."""
        for compiler in COMPILERS:
            for order in ("own_first", "librarys_first"):
                for words in ([f"-I{self.own}", *flags], [*flags, f"-I{self.own}"]):
                    ran([compiler, "-std=c++17", "-fsyntax-only", *words, self.folder / f"{order}.cpp"])

    def test_with_the_folder_of_headers_named_by_hand(self):
        self.compiles([f"-I{self.folder}/installed/include"])

    def test_with_pkg_config(self):
        flags = ran(["pkg-config", "--cflags", self.folder / "installed" / LIBDIR / "pkgconfig/kelarc.pc"])
        self.assertEqual(shlex.split(flags), [f"-I{self.folder}/installed/{LIBDIR}/pkgconfig/../../include", "-pthread"])

    def with_cmake(self, found):
        for place in ("BEFORE", "AFTER"):
            project = self.folder / place
            project.mkdir()
            (project / "CMakeLists.txt").write_text(
                "cmake_minimum_required(VERSION 3.25)\nproject(application LANGUAGES C CXX)\n"
                f"include_directories({place} {self.own})\n{found}\n"
                f"add_library(application OBJECT {self.folder}/own_first.cpp {self.folder}/librarys_first.cpp)\n"
                "target_link_libraries(application PRIVATE KelArc::KelArc)\n"
                f"target_include_directories(application {place} PRIVATE {self.own})\n")
            ran(["cmake", "-S", project, "-B", project / "build", "-G", "Ninja"])
            ran(["cmake", "--build", project / "build", "--target", "application"])

    def test_with_the_cmake_package(self):
        self.with_cmake(f"find_package(KelArc REQUIRED PATHS {self.folder}/installed NO_DEFAULT_PATH)")

    def test_as_a_part_of_the_application(self):
        client = self.folder / "libArcRilD.so"
        client.touch()  # nothing is linked here
        self.with_cmake(f"set(KELARC_ARC_LIBRARY {client})\nadd_subdirectory({os.environ['SOURCE']} kelarc)")

    def test_an_installed_tree_has_one_folder_of_headers(self):
        self.assertEqual([path.name for path in (self.folder / "installed/include").iterdir()], ["kelarc"])


unittest.main()

"""What `cmake --install` puts where."""

import os
import unittest

from tree import BUILD, LIBDIR, TreeTest, dynamic, files, install, ran

LIBRARY = f"{LIBDIR}/libKelArc.so"


class Install(TreeTest):
    def installed(self, component):
        install(self.folder, component)
        return files(self.folder)

    def test_the_runtime_is_the_library_and_its_soname(self):
        self.assertEqual(self.installed("runtime"), {f"{LIBRARY}.1", f"{LIBRARY}.1.0.1.0"})
        self.assertEqual(os.readlink(self.folder / f"{LIBRARY}.1"), "libKelArc.so.1.0.1.0")
        self.assertEqual(dynamic(self.folder / f"{LIBRARY}.1", "SONAME"), ["libKelArc.so.1"])

    def test_the_library_needs_the_runtimes_and_the_client_library_only(self):
        self.installed("runtime")
        library = self.folder / f"{LIBRARY}.1"
        runtimes = {"libstdc++.so.6", "libm.so.6", "libgcc_s.so.1", "libc.so.6", "ld-linux-armhf.so.3"}
        self.assertEqual(set(dynamic(library, "NEEDED")) - runtimes, {"libArcRilD.so"})
        self.assertEqual(dynamic(library, "RUNPATH") + dynamic(library, "RPATH"), [])

    def test_development_files_are_the_public_headers_and_two_ways_to_find_them(self):
        self.assertEqual(self.installed("development"), {
            "include/kelarc/KelArc.h",
            "include/kelarc/Types.h",
            "include/kelarc/async.h",
            "include/kelarc/async/Clock.h",
            "include/kelarc/async/Coroutine.h",
            "include/kelarc/async/Ending.h",
            "include/kelarc/async/Future.h",
            "include/kelarc/async/Opening.h",
            "include/kelarc/async/Operation.h",
            "include/kelarc/idle.h",
            "include/kelarc/names.h",
            "include/kelarc/logsink.h",
            "include/kelarc/logsink/Journal.h",
            "include/kelarc/logsink/Line.h",
            "include/kelarc/logsink/Printable.h",
            "include/kelarc/task/ExecutionReason.h",
            "include/kelarc/task/PlannedTime.h",
            "include/kelarc/task/TaskContainer.h",
            "include/kelarc/task/TaskQueue.h",
            "include/kelarc/task/TaskStore.h",
            "include/kelarc/thread/SignalsBlocked.h",
            "include/kelarc/thread/Thread.h",
            f"{LIBDIR}/cmake/KelArc/KelArcConfig.cmake",
            f"{LIBDIR}/cmake/KelArc/KelArcConfigVersion.cmake",
            f"{LIBDIR}/libKelArc.so",
            f"{LIBDIR}/pkgconfig/kelarc.pc",
        })
        self.assertEqual(os.readlink(self.folder / LIBRARY), "libKelArc.so.1")

    def test_the_simulated_modem_lies_where_nothing_looks_by_itself(self):
        self.assertEqual(self.installed("simulator"), {
            "bin/arcsim",
            f"{LIBDIR}/kelarc-sim/libArcRecord.so",
            f"{LIBDIR}/kelarc-sim/libArcRilD.so",
            "share/bash-completion/completions/arcsim",
            "share/man/man1/arcsim.1",
            "share/kelarc-sim/scenarios/demo.json",
            "share/kelarc-sim/scenarios/scenario.schema.json",
        })

    def test_the_tools_find_their_library_but_no_client_library_beside_it(self):
        self.assertEqual(self.installed("tools"), {
            "bin/kelarcctl",
            "share/bash-completion/completions/kelarcctl",
            "share/kelarc-tools/kelarcctl.schema.json",
            "share/man/man1/kelarcctl.1",
        })
        self.assertEqual(dynamic(self.folder / "bin/kelarcctl", "RUNPATH"), [f"$ORIGIN/../{LIBDIR}"])

    def test_the_components_are_all_there_is(self):
        ran(["cmake", "--install", BUILD, "--prefix", self.folder / "whole"])
        install(self.folder / "parts", "runtime", "development", "tools", "simulator")
        self.assertEqual(files(self.folder / "whole"), files(self.folder / "parts"))

    def test_no_installed_text_names_the_folder_that_it_was_installed_to_or_built_in(self):
        self.installed("development")
        for path in self.folder.rglob("*"):
            if path.is_file() and not path.is_symlink():
                text = path.read_bytes()
                for place in (self.folder, BUILD):
                    self.assertNotIn(str(place).encode(), text, path.name)

    def test_the_installed_kelarcctl_asks_the_simulated_modem_when_told_where_it_is(self):
        install(self.folder, "runtime", "tools", "simulator")
        shown = ran([self.folder / "bin/kelarcctl", "versions"],
                    env={"LD_LIBRARY_PATH": str(self.folder / LIBDIR / "kelarc-sim")})
        self.assertIn("ArcRilD 1.0 (simulated)", shown)


unittest.main()

"""Further kinds of 32-bit ARM that units have get a library, too. What it does is tested on the one that is emulated."""

import os
import pathlib
import re
import subprocess
import tempfile
import unittest

RUNTIMES = {"libstdc++.so.6", "libm.so.6", "libgcc_s.so.1", "libc.so.6", "ld-linux.so.3", "ld-linux-armhf.so.3"}


def ran(*command, **options):
    done = subprocess.run([str(word) for word in command], stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          encoding="utf-8", check=False, timeout=240, **options)
    if done.returncode != 0:
        raise AssertionError(f"{' '.join(map(str, command))} ended with {done.returncode}\n{done.stdout}")
    return done.stdout


def exported(library):
    return sorted(line.split(None, 2)[2] for line in ran("nm", "-DC", "--defined-only", library).splitlines())


class Machines(unittest.TestCase):
    def built(self, compilers, flags=""):
        """The library for a machine, against a client library that has nothing but the functions."""
        folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))
        header = pathlib.Path(os.environ["SOURCE"], "src/arc/ArcRilD.h").read_text()
        functions = sorted(set(re.findall(r"\b(ARC_[A-Z]\w+)\(", header)))
        self.assertEqual(len(functions), 15)
        client = folder / "libArcRilD.so"
        ran(f"{compilers}-gcc", "-shared", "-fPIC", "-x", "c", "-", "-o", client,
            input="\n".join(f"int {name}(void) {{ return 1; }}" for name in functions))
        ran("cmake", "-S", os.environ["SOURCE"], "-B", folder / "build", "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Debug",
            "-DCMAKE_SYSTEM_NAME=Linux", "-DCMAKE_SYSTEM_PROCESSOR=arm", f"-DCMAKE_C_COMPILER={compilers}-gcc",
            f"-DCMAKE_CXX_COMPILER={compilers}-g++", f"-DCMAKE_CXX_FLAGS=-Wno-psabi {flags}",
            f"-DKELARC_ARC_LIBRARY={client}", "-DKELARC_BUILD_TOOLS=OFF", "-DKELARC_WERROR=ON")
        ran("cmake", "--build", folder / "build", "--target", "KelArc")
        library = folder / "build/src/libKelArc.so.1"
        needed = re.findall(r"NEEDED.*\[(.*)\]", ran("readelf", "-dW", library))
        self.assertEqual(set(needed) - RUNTIMES, {"libArcRilD.so"})
        return library

    def test_one_without_floating_point_hardware_gets_a_library(self):
        library = self.built("arm-linux-gnueabi")
        self.assertIn("Flags: 0x5000200, Version5 EABI, soft-float ABI",
                      " ".join(ran("readelf", "-hW", library).split()))

    def test_64_bit_time_and_file_sizes_leave_what_is_exported_as_it_is(self):
        library = self.built("arm-linux-gnueabihf", "-D_TIME_BITS=64 -D_FILE_OFFSET_BITS=64")
        self.assertEqual(exported(library), exported(os.environ["LIBRARY"]))


unittest.main()

#!/usr/bin/env python3
"""Configures and builds the project against a given libArcRilD.so, as for a unit, and checks what comes out.
Usage: check_unit_library.py SOURCE_FOLDER LIBRARY"""

import pathlib
import subprocess
import sys
import tempfile


def cmake(*arguments):
    return subprocess.run(["cmake", *arguments], capture_output=True, text=True)


def main():
    source, library = sys.argv[1:3]
    with tempfile.TemporaryDirectory() as folder:
        options = ["-S", source, "-B", folder, "-G", "Ninja", "-DKELARC_BUILD_EXAMPLES=OFF"]

        missing = cmake(*options, "-DKELARC_ARC_LIBRARY=/nowhere/libArcRilD.so")
        if missing.returncode == 0 or "'/nowhere/libArcRilD.so', which does not" not in " ".join(missing.stderr.split()):
            print("A library that does not exist is not refused by name:", missing.stderr)
            return 1

        configured = cmake(*options, f"-DKELARC_ARC_LIBRARY={library}", "-DKELARC_BUILD_TESTS=OFF")
        built = cmake("--build", folder, "--target", "KelArc")
        if configured.returncode != 0 or built.returncode != 0:
            print(configured.stdout, configured.stderr, built.stdout, built.stderr)
            return 1
        ours = list(pathlib.Path(folder).rglob("libKelArc.so"))
        simulated = list(pathlib.Path(folder).rglob("libArcRilD.so"))
        needed = subprocess.run(["readelf", "-d", *map(str, ours)], capture_output=True, text=True).stdout
        if len(ours) != 1 or simulated or "[libArcRilD.so]" not in needed:
            print("Expected one libKelArc.so that needs libArcRilD.so and no simulated one:", ours, simulated, needed)
            return 1
    print("Built against the given library, without the simulated one")
    return 0


sys.exit(main())

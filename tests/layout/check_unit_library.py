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
        options = ["-S", source, "-B", folder, "-G", "Ninja"]

        missing = cmake(*options, "-DKELARC_ARC_LIBRARY=/nowhere/libArcRilD.so")
        if missing.returncode == 0 or "'/nowhere/libArcRilD.so', which does not" not in " ".join(missing.stderr.split()):
            print("A library that does not exist is not refused by name:", missing.stderr)
            return 1

        # The harder case: a library without a name of its own in it.
        nameless = pathlib.Path(folder, "unit", "libArcRilD.so")
        nameless.parent.mkdir()
        functions = subprocess.run(["nm", "-D", "--defined-only", library], capture_output=True, text=True, check=True)
        names = [line.split()[2] for line in functions.stdout.splitlines() if line.split()[2].startswith("ARC_")]
        code = "\n".join(f"int {name}(void) {{ return 1; }}" for name in names)
        subprocess.run(["cc", "-shared", "-fPIC", "-x", "c", "-", "-o", nameless], input=code, text=True, check=True)

        configured = cmake(*options, f"-DKELARC_ARC_LIBRARY={nameless}")
        built = cmake("--build", folder, "--target", "KelArc")
        if configured.returncode != 0 or built.returncode != 0:
            print(configured.stdout, configured.stderr, built.stdout, built.stderr)
            return 1
        ours = list(pathlib.Path(folder).rglob("libKelArc.so"))
        simulated = [path for path in pathlib.Path(folder).rglob("libArcRilD.so") if path != nameless]
        needed = subprocess.run(["readelf", "-d", *map(str, ours)], capture_output=True, text=True).stdout
        if len(ours) != 1 or simulated or "[libArcRilD.so]" not in needed:
            print("Expected one libKelArc.so that needs libArcRilD.so and no simulated one:", ours, simulated, needed)
            return 1
    print("Built against the given library, without the simulated one")
    return 0


sys.exit(main())

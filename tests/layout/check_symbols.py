#!/usr/bin/env python3
"""Checks that a built libKelArc.so exports what is public of the facade class and nothing else, under the version that
its soname says, and needs nothing but the client library and the runtimes.
Usage: check_symbols.py LIBRARY HEADER [--sanitized]"""

import pathlib
import re
import subprocess
import sys

CLASS = re.compile(r"^(kelarc::KelArc::.+|(typeinfo|typeinfo name|vtable) for kelarc::KelArc)$")
# In the library under a sanitizer or with branch counting on, their own symbols; never in a shipped one.
NEEDED = re.compile(r"^(libArcRilD|libstdc\+\+|libm|libgcc_s|libc|libpthread|ld-linux.*)\.so")
SANITIZERS = re.compile(r"^lib(clang_rt\.)?(asan|ubsan|tsan)(-\w+)?\.so")

EXPECTED = [
    "kelarc::KelArc::KelArc(std::function<void (int, char const*)>&&)",
    "kelarc::KelArc::~KelArc()",
    "kelarc::KelArc::open(std::function<void (int)>&&)",
    "kelarc::KelArc::tasksToString[abi:cxx11]() const",
    "typeinfo for kelarc::KelArc",
    "vtable for kelarc::KelArc",
]


def lines(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout.splitlines()


def main():
    library, header = sys.argv[1:3]
    exported = set()
    versions = set()
    for line in lines("nm", "-DC", "--defined-only", "--with-symbol-versions", library):
        kind, name = line.split(None, 2)[1:]
        name, _, version = name.partition("@@")
        if kind != "A":  # the version itself
            exported.add(name)
            versions.add(version)
    faults = [f"exported, but not of the facade class: {name}" for name in sorted(exported) if not CLASS.match(name)]
    faults += [f"not exported: {name}" for name in EXPECTED if name not in exported]
    public = pathlib.Path(header).read_text().partition("\nprivate:\n")[0]
    members = {name: match.group(1) for name in exported if (match := re.match(r"kelarc::KelArc::(~?\w+)", name))}
    faults += [f"exported, but not public: {name}" for name, member in sorted(members.items())
               if not re.search(rf"{member}\(", public)]
    soname = next(m.group(1) for line in lines("readelf", "-d", library)
                  if (m := re.search(r"SONAME.*\[libKelArc\.so\.(\d+)\]", line)))
    if versions != {f"KELARC_{soname}"}:
        faults.append(f"exported under {versions}, which is not the soname's KELARC_{soname}")
    needed = [m.group(1) for line in lines("readelf", "-d", library) if (m := re.search(r"NEEDED.*\[(.+)\]", line))]
    if "libArcRilD.so" not in needed:
        faults.append("does not need libArcRilD.so")
    for name in needed:
        if not NEEDED.match(name) and not ("--sanitized" in sys.argv and SANITIZERS.match(name)):
            faults.append(f"needs {name}")
    print("\n".join(faults) or f"{len(exported)} symbols, all public; needs {', '.join(needed)}")
    return 1 if faults else 0


sys.exit(main())

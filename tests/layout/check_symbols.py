#!/usr/bin/env python3
"""Checks that a built libKelArc.so exports the facade class and nothing else, and needs nothing but the client library
and the runtimes. Usage: check_symbols.py LIBRARY [--sanitized]"""

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
    library = sys.argv[1]
    exported = {line.split(None, 2)[2] for line in lines("nm", "-DC", "--defined-only", library)}
    faults = [f"exported, but not of the facade class: {name}" for name in sorted(exported) if not CLASS.match(name)]
    faults += [f"not exported: {name}" for name in EXPECTED if name not in exported]
    needed = [m.group(1) for line in lines("readelf", "-d", library) if (m := re.search(r"NEEDED.*\[(.+)\]", line))]
    if "libArcRilD.so" not in needed:
        faults.append("does not need libArcRilD.so")
    for name in needed:
        if not NEEDED.match(name) and not ("--sanitized" in sys.argv and SANITIZERS.match(name)):
            faults.append(f"needs {name}")
    print("\n".join(faults) or f"{len(exported)} symbols, all of the facade class; needs {', '.join(needed)}")
    return 1 if faults else 0


sys.exit(main())

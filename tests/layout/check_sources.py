#!/usr/bin/env python3
"""Checks rules of the source tree that no compiler checks: who may include whom, and what the library's sources must
not contain. Prints every breach with file and line; exit code 1 when there is one."""

import os
import pathlib
import re
import sys

PUBLIC = ("kelarc/KelArc.h", "kelarc/Types.h", "kelarc/async.h", "kelarc/idle.h", "kelarc/logsink.h", "kelarc/names.h",
          "client/ArcSim.h",
          "sim/client/ArcSim.h")

# Folder -> what its files may include with quotes. Arrows point one way: thread <- task <- kelarc, arc <- kelarc,
# arc <- sim.
ALLOWED = {
    "src/thread": ("thread/",),
    "src/task": ("task/", "thread/"),
    "src/arc": ("arc/",),
    "src/kelarc": ("kelarc/", "task/", "thread/", "arc/"),
    "sim/modem": ("modem/", "receiver/Noise.h"),
    "sim/receiver": ("receiver/", "support/Files.h", "support/StandardDescriptors.h", "nmea/"),
    "sim/scenario": ("scenario/", "support/", "modem/", "receiver/"),
    "sim/host": ("host/", "support/Words.h", "support/Printable.h", "scenario/", "modem/", "receiver/"),
    "sim/protocol": ("protocol/", "support/Nesting.h", "host/", "scenario/", "modem/", "arc/"),
    "sim/client": ("client/", "support/", "protocol/", "host/", "scenario/", "modem/", "receiver/", "arc/"),
    "sim/arcsim": ("arcsim/", "support/", "protocol/", "host/", "scenario/", "modem/", "receiver/"),
    "sim/record": ("record/", "arc/"),
    "support": ("support/", "kelarc/logsink/Printable.h"),
    "nmea": ("nmea/",),
    "examples": ("kelarc/KelArc.h", "kelarc/Types.h", "kelarc/async.h", "kelarc/idle.h", "kelarc/logsink.h",
                 "kelarc/names.h", "support/", "nmea/", "navigator/"),
    "tools/kelarcctl": ("kelarc/KelArc.h", "kelarc/idle.h", "kelarc/logsink.h", "kelarc/names.h", "support/", "nmea/",
                        "kelarcctl/"),
    "tests/consumer": ("kelarc/KelArc.h",),
    "bench": ("kelarc/", "task/", "thread/", "arc/", "support/", "client/", "counts/", "peers/", "questions/", "runner/"),
    "tests/feed": ("kelarc/KelArc.h", "kelarc/Types.h", "support/", "nmea/"),
    "tests/async": ("async/", *PUBLIC, "support/"),
    "tests/coroutine": ("async/", "coroutine/", *PUBLIC, "support/"),
    "tests/facade": ("facade/", *PUBLIC, "arc/", "support/"),
    "tests/contract": ("contract/", *PUBLIC, "arc/", "support/"),
    "tests/memory": ("memory/", *PUBLIC, "arc/"),
    "tests/logsink": ("logsink/", *PUBLIC),
    "tests/support": (*PUBLIC, "arc/", "support/"),
    "tests/unit": ("kelarc/", "task/", "thread/", "arc/", "client/ArcSim.h", "support/", "unit/"),
    "tests/sim": ("arc/", "client/", "host/", "protocol/", "scenario/", "modem/", "receiver/", "sim/", "support/"),
    "tests/daemon": ("arc/", "daemon/"),
    "tests/files": ("support/", "files/"),
    "tests/program": ("arcsim/", "files/", "support/"),
    "tests/record": ("support/HeldBytes.h", "arc/", "arcsim/", "scenario/", "record/"),
    "tests/scenario": ("scenario/",),
    "tests/service": ("arcsim/", "record/", "service/"),
    "tests/seeds": ("seeds/", *PUBLIC, "kelarc/logsink/Printable.h", "arcsim/", "contract/CallTable.h",
                    "sim/held_clock.h", "support/"),
    "tests/bench": ("runner/",),
    "tests/nmea": ("nmea/",),
    "tests/kelarcctl": ("kelarcctl/Advice.h", "kelarcctl/monitor/", "nmea/", "monitor_model.h"),
    "tests/fuzz": ("arcsim/", "host/", "protocol/", "receiver/", "scenario/", "nmea/", "kelarcctl/", "fuzz/", "sim/held_clock.h",
                   "support/"),
}

# Published line numbers and the published source name are values of their own, not positions in today's files.
FORBIDDEN_IN_SRC = re.compile(r"__LINE__|__FILE__|__func__|__FUNCTION__|^\s*#\s*line\b")
PUBLIC_HEADERS = ("src/kelarc/KelArc.h", "src/kelarc/Types.h", "src/kelarc/async", "src/kelarc/idle.h", "src/kelarc/logsink", "src/kelarc/names.h", "src/task",
                  "src/thread")
# A program that runs with more rights than its user has must not let his environment name its files.
GETENV = re.compile(r'(?<!secure_)getenv\((?!"(NO_COLOR|TERM|ARCSIM_TIME)"\))')
ENVIRONMENT_OF_USERS = ("src", "sim", "support", "nmea", "examples", "tools")
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"')


def sources(root, folder):
    return sorted(p for p in (root / folder).rglob("*") if p.suffix in (".h", ".cpp", ".c"))


def included(path, root, name):
    """Name and complaint, if any: a public header names another by where it lies, since an application has folders of
    its own to search, and is told by its place in src."""
    if not path.relative_to(root).as_posix().startswith(PUBLIC_HEADERS):
        return name, None
    found = pathlib.Path(os.path.normpath(path.parent / name))
    if not found.exists():
        return name, f"a public header names {name}, which does not lie there as seen from its own folder"
    return found.relative_to(root / "src").as_posix(), None


def main():
    root = pathlib.Path(sys.argv[1])
    breaches = []
    checked = 0
    for folder, allowed in ALLOWED.items():
        for path in sources(root, folder):
            name = path.relative_to(root).as_posix()
            for number, line in enumerate(path.read_text().splitlines(), 1):
                match = INCLUDE.match(line)
                if match:
                    other, complaint = included(path, root, match.group(1))
                    if complaint:
                        breaches.append(f"{name}:{number}: {complaint}")
                    elif not other.startswith(allowed):
                        breaches.append(f"{name}:{number}: {folder} may not include {other}; "
                                        f"it may include {', '.join(allowed)}")
                if folder.startswith("src/") and FORBIDDEN_IN_SRC.search(line):
                    breaches.append(f"{name}:{number}: a compiler's position where a published value belongs")
                if name.startswith(PUBLIC_HEADERS) and re.match(r"^\s*#\s*define\b", line):
                    breaches.append(f"{name}:{number}: a macro in a public header")
            checked += 1
    for folder in ENVIRONMENT_OF_USERS:
        for path in sources(root, folder):
            for number, line in enumerate(path.read_text().splitlines(), 1):
                if GETENV.search(line):
                    breaches.append(f"{path.relative_to(root).as_posix()}:{number}: getenv() of another variable than "
                                    "NO_COLOR, TERM and ARCSIM_TIME; a file's name comes by secure_getenv()")
    if checked < 40:
        breaches.append(f"only {checked} files found below {root}: wrong folder?")
    print("\n".join(breaches) or f"{checked} files keep the rules")
    return 1 if breaches else 0


sys.exit(main())

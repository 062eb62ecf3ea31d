#!/usr/bin/env python3
"""Counts what one task and one request of the library cost, in numbers that repeat, and compares them with the recorded
ones. Usage: check_counts.py PROGRAM RECORD [--record]

Instructions and system calls are those of all threads, counted by valgrind; of two runs of different length the
difference is taken, so that beginning and end of the process do not count. Under valgrind a reading of the clock is a
system call; natively it is none, so it is left out. Allocations are counted by the program, run natively.

Exit code 1 when a task or request takes more than 3 % more instructions, more allocations, or more system calls than
recorded; both numbers are shown. With another compiler or C library than the recorded one's the instructions are shown
and not compared. --record writes the file anew."""

import json
import os
import platform
import re
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor

OURS = ("queue", "task", "request")
PEER = "asio"
SHORT, LONG, BATCH = 5, 25, 100
# Per count: what may be multiplied and added before it is more. The hand-overs of a batch, which are a few hundredths of a
# system call for each thing, differ from run to run.
LIMITS = {"instructions": (1.03, 0), "allocations": (1, 0), "systemCalls": (1, 0.1)}
SYSTEM_CALL = re.compile(r"^SYSCALL\[\d+,\d+\]\( *\d+\) sys_(\w+)", re.MULTILINE)
# Which memcpy runs depends on the processor; without these all x86-64 processors take the same.
PLAIN_PROCESSOR = "glibc.cpu.hwcaps=-AVX2,-AVX512VL,-AVX_Fast_Unaligned_Load,-ERMS,-FSRM"


def run(*command):
    environment = {**os.environ, "GLIBC_TUNABLES": PLAIN_PROCESSOR}
    done = subprocess.run(command, env=environment, capture_output=True, text=True)
    if done.returncode != 0:
        sys.exit(f"{' '.join(command)} ended with {done.returncode}:\n{done.stderr}")
    return done


def whole_run(program, kind, batches):
    text = run("valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null", "--trace-syscalls=yes",
               program, kind, str(batches)).stderr
    calls = sum(name != "clock_gettime" for name in SYSTEM_CALL.findall(text))
    return int(re.search(r"Collected : (\d+)", text).group(1)), calls


def count(program, kind):
    short, long = (whole_run(program, kind, batches) for batches in (SHORT, LONG))
    things = (LONG - SHORT) * BATCH
    return {"instructions": round((long[0] - short[0]) / things),
            "allocations": float(run(program, kind, "3").stdout),
            "systemCalls": round((long[1] - short[1]) / things, 2)}


def compare(recorded, measured, same_tools):
    faults = []
    for kind in OURS:
        for what, (factor, margin) in LIMITS.items():
            if what == "instructions" and not same_tools:
                continue
            before, now = recorded[kind][what], measured[kind][what]
            if now > before * factor + margin:
                faults.append(f"{kind}: {now} {what}, recorded are {before}")
    return faults


def main():
    program, record_path = sys.argv[1:3]
    tools = f"{platform.machine()}, {run(program, 'environment', '1').stdout.strip()}"
    with ThreadPoolExecutor(2) as pool:
        measured = dict(zip((*OURS, PEER), pool.map(lambda kind: count(program, kind), (*OURS, PEER))))

    print(f"Counted with {tools}\n{'':<8} {'instructions':>12} {'of asio':>8} {'allocations':>12} {'system calls':>13}")
    for kind, counts in measured.items():
        share = counts["instructions"] / measured[PEER]["instructions"]
        print(f"{kind:<8} {counts['instructions']:>12} {share:>7.2f}x {counts['allocations']:>12.2f} "
              f"{counts['systemCalls']:>13.2f}")

    if "--record" in sys.argv[3:]:
        with open(record_path, "w") as file:
            json.dump({"tools": tools, "counts": measured}, file, indent=2)
            file.write("\n")
        return 0
    with open(record_path) as file:
        recorded = json.load(file)
    same_tools = recorded["tools"] == tools
    if not same_tools:
        print(f"Recorded with {recorded['tools']}: instructions are not compared")
    faults = compare(recorded["counts"], measured, same_tools)
    print("\n".join(faults) or "No more than recorded")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())

#!/bin/bash
# Run by scripts/package inside a clean root, with the packages and a unit's client library beside it: installs, uses and
# removes them. Prints a line for each thing that holds and stops at the first that does not.
set -euo pipefail
cd "$(dirname "$0")"
export DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8
machine=$(dpkg --print-architecture)

holds() {
    echo "$machine: $1"
}

fails() {
    echo "$machine: NOT SO: $1" >&2
    exit 1
}

# name, expected, actual
same() {
    [ "$2" = "$3" ] || {
        diff <(echo "$2") <(echo "$3") >&2 || true
        fails "$1"
    }
    holds "$1"
}

everything() {
    find / -xdev \( -path /proc -o -path /var -o -path /tmp -o -path "$PWD" \) -prune -o -print | sort
}

quietly() {
    "$@" >log.txt 2>&1 || {
        cat log.txt >&2
        fails "$*"
    }
}

quietly apt-get update
everything >before.txt

quietly apt-get install -y --no-install-recommends ./libkelarc1_*.deb ./kelarc-tools_*.deb
if kelarcctl versions >log.txt 2>&1; then
    fails "without any client library kelarcctl does not start"
fi
grep -q 'libArcRilD.so: cannot open shared object file' log.txt || fails "the loader names the client library as missing"
holds "the library alone brings no client library along"

quietly apt-get install -y --no-install-recommends ./libkelarc1_*.deb ./kelarc-tools_*.deb ./kelarc-sim_*.deb
same "kelarcctl status asks the simulated modem" \
"client library  ArcRilD 1.0 (simulated)
RIL             RIL 1.0 (simulated), Modem 1.0 (simulated)
cpu-power       standard
cpu-psm         off
format          nmea
dr-sync         off
system glonass  on
system galileo  on
system beidou   on
system qzss     off
sbas            on
period          1000 ms
min-elevation   5
raw-mask        0
raw-version     1.0 (simulated)
lsta gps        off, value 0
lsta glonass    off, value 0
lsta beidou     off, value 0
lsta galileo    off, value 0" "$(kelarcctl status)"
same "arcsim serves a modem to a program" "min-elevation: 20 (was 5)" \
    "$(arcsim run -- kelarcctl min-elevation 20)"

shopt -s nullglob
for folder in /usr/local/lib /usr/lib /usr/lib/*-linux-gnu*; do
    cp libArcRilD.so "$folder/"
    ldconfig
    same "a unit's client library in $folder goes before the simulated one" "client library  the unit's own" \
        "$(kelarcctl versions 2>&1 | grep '^client library')"
    rm "$folder/libArcRilD.so"
    ldconfig
done

quietly apt-get install -y --no-install-recommends ./libkelarc-dev_*.deb
[ -e /usr/include/kelarc/KelArc.h ] || fails "the header is where applications look"
same "the development package has the guide and the programs of its excerpts" "async_program.cpp
coroutine_program.cpp
first_program.cpp
guide.cpp
index.md
porting.md" "$(cd /usr/share/doc/libkelarc-dev && find examples/*.cpp guide/index.md guide/porting.md -printf '%f\n')"
dpkg-query -f '${Package}:${Multi-Arch}\n' -W kelarc-sim libkelarc1 libkelarc-dev kelarc-tools | sort >log.txt
same "each package says how it goes with those of another machine" "kelarc-sim:allowed
kelarc-tools:foreign
libkelarc-dev:same
libkelarc1:same" "$(cat log.txt)"
same "applications are told which version they need" "libKelArc.so.1 libkelarc1 #MINVER#" \
    "$(head -n 1 /var/lib/dpkg/info/libkelarc1:"$machine".symbols)"
holds "the development package is installed"

quietly apt-get purge -y --autoremove libkelarc1 libkelarc-dev kelarc-tools kelarc-sim
everything >after.txt
same "nothing is left after removal" "" "$(diff before.txt after.txt || true)"

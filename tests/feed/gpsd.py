"""Runs gpsd on a device and reads what it makes of it, beside the sentences as gpsd got them."""

import json
import os
import shutil
import socket
import subprocess
import time

import feed

GNSS_IDS = {"gps": 0, "sbas": 1, "galileo": 2, "beidou": 3, "qzss": 5, "glonass": 6}


def program(copy):
    """A copy of gpsd: where AppArmor is in force, the one in its place may only open serial lines."""
    original = shutil.which("gpsd", path=os.environ.get("PATH", "") + ":/usr/sbin")
    if original is None:
        raise AssertionError("gpsd is not installed; scripts/setup installs it")
    return shutil.copy2(original, copy)


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


class Epoch:
    """What came from one RMC to the next: sentences as lists of fields, and gpsd's last word on them."""

    def __init__(self):
        self.sentences = []
        self.position = None
        self.sky = None

    def in_view(self):
        """What GSV says: constellation -> sorted elevation, azimuth, C/N0 of its satellites."""
        talkers = {"GPGSV": "gps", "GLGSV": "glonass", "GAGSV": "galileo", "GBGSV": "beidou"}
        satellites = {}
        for fields in self.sentences:
            if fields[0][2:] != "GSV":
                continue
            for at in range(4, len(fields) - 1, 4):
                number, elevation, azimuth, carrier = fields[at:at + 4]
                is_sbas = fields[0] == "GPGSV" and int(number) > 32
                system = "sbas" if is_sbas else talkers[fields[0]]
                satellites.setdefault(system, []).append((int(elevation), int(azimuth), int(carrier or 0)))
        return {system: sorted(each) for system, each in satellites.items()}

    def seen(self):
        """The same as gpsd says it."""
        satellites = {}
        for satellite in self.sky["satellites"] if self.sky else []:
            system = next(name for name, number in GNSS_IDS.items() if number == satellite["gnssid"])
            satellites.setdefault(system, []).append(
                (int(satellite["el"]), int(satellite["az"]), int(satellite.get("ss", 0))))
        return {system: sorted(each) for system, each in satellites.items()}


class Gpsd:
    """A run of gpsd that ends with the test."""

    def __init__(self, test, host):
        self._host = host
        self._errors = test.file("log")
        self._program = program(test.file("gpsd"))
        self._process = None
        test.addCleanup(self._end)
        self._rmc = None  # the sentence that ended the last epoch, read already
        self._connection = self._start(host.device_path)
        test.addCleanup(self._connection.close)
        self._lines = feed.Lines(self._connection.fileno(), self._story)
        self._connection.sendall(b'?WATCH={"enable":true,"json":true,"raw":1};\n')
        devices = self._report("DEVICES")["devices"]
        test.assertEqual([(device["path"], "activated" in device) for device in devices], [(host.device_path, True)])
        self._report("WATCH")
        test.begin(host)

    def epochs(self, is_wanted, count):
        """So many whole epochs on end, from the first one on that is wanted."""
        found = []
        for _ in feed.attempts(self._story):
            epoch = self._epoch()
            if found or is_wanted(epoch):
                found.append(epoch)
            if len(found) == count:
                return found

    def positions(self):
        """TPV reports until the limit, of every time the first one."""
        last = None
        for _ in feed.attempts(self._story):
            report = self._report("TPV")
            if report.get("time") != last:
                last = report.get("time")
                yield report

    def log(self):
        """Its warnings and errors so far."""
        with open(self._errors, encoding="ascii", errors="replace") as stream:
            return stream.read()

    def _epoch(self):
        epoch = Epoch()
        for _ in feed.attempts(self._story):
            line = self._rmc or self._lines.next()
            self._rmc = None
            if line.startswith(b"{"):
                report = json.loads(line)
                if report["class"] == "TPV":
                    epoch.position = report
                elif report["class"] == "SKY":
                    epoch.sky = report
            elif line.startswith(b"$"):
                fields = line.decode("ascii").strip()[1:-3].split(",")
                if fields[0].endswith("RMC") and epoch.sentences:
                    self._rmc = line
                    return epoch
                epoch.sentences.append(fields)

    def _report(self, kind):
        for _ in feed.attempts(self._story):
            line = self._lines.next()
            if line.startswith(b"{") and (report := json.loads(line))["class"] == kind:
                return report

    def _start(self, device):
        process = None
        for _ in feed.attempts(self._story):
            if process is None or process.poll() is not None:  # also when somebody has taken the port meanwhile
                port = free_port()
                with open(self._errors, "wb") as errors:
                    process = self._process = subprocess.Popen(
                        [self._program, "-N", "-n", "-b", "-D", "1", "-S", str(port), device], stdin=subprocess.DEVNULL,
                        stdout=errors, stderr=errors)
            try:
                return socket.create_connection(("localhost", port), feed.LIMIT_S)
            except ConnectionRefusedError:
                time.sleep(0.02)

    def _end(self):
        if self._process is not None and self._process.poll() is None:
            self._process.terminate()
            try:
                self._process.wait(feed.LIMIT_S)
            except subprocess.TimeoutExpired:
                self._process.kill()
                self._process.wait()

    def _story(self):
        return f"\n--- gpsd\n{self.log()}\n---{self._host.story()}"

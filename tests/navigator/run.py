"""Runs the navigator and reads along. Limits are generous: the machine may be busy and the build instrumented."""

import json
import os
import re
import signal
import subprocess
import tempfile
import threading
import time
import unittest

LIMIT_S = 90


class Run:
    """One run of a program; what it has written so far can be looked at while it goes on."""

    def __init__(self, program, arguments, environment=None):
        self.process = subprocess.Popen([os.environ[program], *arguments], stdin=subprocess.DEVNULL,
                                        stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, errors="replace",
                                        env={**os.environ, **(environment or {})})
        self._closing = False
        self._changed = threading.Condition()
        self._text = {"out": "", "err": ""}
        self._readers = [threading.Thread(target=self._read, args=(name, stream), daemon=True)
                         for name, stream in (("out", self.process.stdout), ("err", self.process.stderr))]
        for reader in self._readers:
            reader.start()

    def _read(self, name, stream):
        for line in stream:
            with self._changed:
                self._text[name] += line
                self._changed.notify_all()
                if self._closing and name == "out":
                    break
        stream.close()
        with self._changed:
            self._changed.notify_all()

    @property
    def out(self):
        with self._changed:
            return self._text["out"]

    @property
    def err(self):
        with self._changed:
            return self._text["err"]

    def wait_for(self, pattern, where="out"):
        """Waits until a line matches; returns the match."""
        def search():
            return re.search(pattern, self._text[where], re.MULTILINE)

        with self._changed:
            self._changed.wait_for(lambda: search() or not any(r.is_alive() for r in self._readers), LIMIT_S)
            match = search()
        if not match:
            raise AssertionError(f"{pattern!r} did not come in std{where}. {self.story()}")
        return match

    def stop_reading(self):
        """Closes stdout from our side with the next line that comes."""
        with self._changed:
            self._closing = True

    def send(self, number):
        self.process.send_signal(number)

    def finish(self):
        """Waits for the end; returns the exit code."""
        try:
            self.process.wait(LIMIT_S)
        except subprocess.TimeoutExpired:
            self.process.kill()
            raise AssertionError(f"it did not end within {LIMIT_S} s. {self.story()}") from None
        for reader in self._readers:
            reader.join(LIMIT_S)
        return self.process.returncode

    def story(self):
        return f"\n--- stdout\n{self.out}\n--- stderr\n{self.err}\n---"


class NavigatorTest(unittest.TestCase):
    """Starts runs, and leaves none behind."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def start(self, *arguments, program="NAVIGATOR", environment=None):
        if "ON_DAEMON" in os.environ:
            environment = {**(environment or {}), "ARCSIM_SOCKET": self.serve(arguments)}
        run = Run(program, arguments, environment)
        self.addCleanup(lambda: run.process.poll() is None and (run.process.kill(), run.process.wait()))
        return run

    def serve(self, arguments):
        """A daemon with what the arguments say of the modem, instead of a modem in the program itself. Its socket."""
        socket = os.path.join(tempfile.mkdtemp(dir=self.folder), "s")
        options = dict(zip(arguments, arguments[1:]))
        command = [os.environ["ARCSIM"], "serve", "--socket", socket]
        for option, of_daemon in (("--scenario", "--scenario"), ("--replay", "--nmea")):
            if option in options:
                command += [of_daemon, options[option]]
        daemon = subprocess.Popen(command, stdout=subprocess.PIPE, text=True)
        self.addCleanup(lambda: (daemon.terminate(), daemon.wait(LIMIT_S), daemon.stdout.close()))
        self.assertIn("Serving", daemon.stdout.readline())
        return socket

    def write(self, name, text):
        path = os.path.join(self.folder, name)
        with open(path, "w", encoding="ascii", newline="") as file:
            file.write(text)
        return path

    def scenario(self, **content):
        """A scenario file; by default nothing takes longer than it must."""
        quick = {"latencies": False, "engineStartMs": 0, "firstFix": {"coldMs": 500, "hotMs": 100}}
        return self.write("scenario.json", json.dumps({**quick, **content}))

    def assert_ends(self, run, exit_code):
        self.assertEqual(run.finish(), exit_code, run.story())

    def assert_closed(self, run):
        """The modem was left in order: stopped, then closed."""
        self.assertRegex(run.err, r"(?s)ARC_StopGNSS\(\) took.*\(0\)\n.*ARC_Close\(\) took.*\(0\)\n", run.story())


def sentence(body):
    checksum = 0
    for character in body:
        checksum ^= ord(character)
    return f"${body}*{checksum:02X}\r\n"


def epoch(clock, latitude="3352.12345,S", longitude="15112.54321,W"):
    """One epoch at rest with a 3D fix: 4 of 5 GPS, 2 of 2 GLONASS and 1 of 1 Galileo satellites, 1 SBAS in view."""
    return "".join(map(sentence, (
        f"GNRMC,{clock},A,{latitude},{longitude},21.598,123.4,290224,,,A,V",
        f"GNGGA,{clock},{latitude},{longitude},1,07,0.90,58.7,M,20.0,M,,",
        "GNGSA,A,3,02,05,12,25,,,,,,,,,1.50,0.90,1.20,1",
        "GNGSA,A,3,65,78,,,,,,,,,,,1.50,0.90,1.20,2",
        "GNGSA,A,3,11,,,,,,,,,,,,1.50,0.90,1.20,3",
        "GPGSV,2,1,06,02,45,100,40,05,30,200,42,12,60,300,44,25,15,050,38,1",
        "GPGSV,2,2,06,29,05,010,,40,35,120,36,1",
        "GLGSV,1,1,02,65,25,080,40,78,35,170,40,1",
        "GAGSV,1,1,01,11,50,090,40,7",
    )))


EPOCH_LINE = (r"^{clock} 3D    33\.868724S  151\.209054W   58\.7   40\.0 123   4/5   2/2   1/1   0/0   0/0   0/1   40$")


def epoch_line(clock):
    """How epoch(clock) reads, as a pattern."""
    return EPOCH_LINE.format(clock=clock)


SIGINT = signal.SIGINT
SIGHUP = signal.SIGHUP
SIGQUIT = signal.SIGQUIT
SIGTERM = signal.SIGTERM
monotonic = time.monotonic
main = unittest.main

"""What our programs make of a receiver's sentences is what gpsd makes of them, however the bytes come."""

import contextlib
import functools
import json
import operator
import os
import socket
import subprocess
import threading
import time
import tty
import unittest

import feed
import gpsd
import recordings_test

CLOSE_DEG = 1e-6
HERE = "4807.50000,N,01131.00000,E"
THERE = "3512.00000,S,07030.00000,W"
BINARY = bytes([0xB5, 0x62, 0x01, 0x07, 0x00, 0xFF, 0x24, 0x00])  # with a dollar sign in it


def sentence(body, end=b"\r\n"):
    return b"$%s*%02X" % (body.encode(), functools.reduce(operator.xor, body.encode())) + end


def rmc(utc, position=HERE, talker="GN"):
    return sentence(f"{talker}RMC,{utc},A,{position},10.0,90.0,290224,,,A")


def gga(utc, position=HERE, talker="GN"):
    return sentence(f"{talker}GGA,{utc},{position},1,08,0.9,545.4,M,46.9,M,,")


def gll(utc, position=HERE, talker="GN"):
    return sentence(f"{talker}GLL,{position},{utc},A,A")


def gns(utc, position=HERE, talker="GN"):
    return sentence(f"{talker}GNS,{utc},{position},AN,13,0.9,255.7,40.0,,")


def seconds(first, count, *makers):
    """Of a drive: so many seconds, in each the sentences that the makers give."""
    times = [f"12{at // 60:02d}{at % 60:02d}.00" for at in range(first, first + count)]
    return b"".join(make(utc) for utc in times for make in makers)


class Terminal:
    """gpsd on a terminal to which the test writes."""

    def __init__(self, test):
        self._master, slave = os.openpty()
        test.addCleanup(os.close, self._master)
        test.addCleanup(os.close, slave)
        tty.setraw(slave)
        self._errors = test.file("log")
        program = gpsd.program(test.file("gpsd"))
        port = gpsd.free_port()
        with open(self._errors, "wb") as errors:
            process = subprocess.Popen([program, "-N", "-n", "-b", "-S", str(port), os.ttyname(slave)],
                                       stdin=subprocess.DEVNULL, stdout=errors, stderr=errors)
        test.addCleanup(process.wait)
        test.addCleanup(process.kill)
        for _ in feed.attempts(self.story):
            with contextlib.suppress(ConnectionRefusedError):
                self._connection = socket.create_connection(("localhost", port), feed.LIMIT_S)
                break
            time.sleep(0.02)
        test.addCleanup(self._connection.close)
        self._lines = feed.Lines(self._connection.fileno(), self.story)
        self._connection.sendall(b'?WATCH={"enable":true,"json":true};\n')
        self._drive_until(10)  # what comes first gpsd may still throw away

    def reports(self, content):
        """Of positions, of every time the last one."""
        writing = threading.Thread(target=self._write, args=(content + b"\r\n",))
        writing.start()
        writing.join(feed.LIMIT_S)
        if writing.is_alive():
            raise AssertionError(f"gpsd does not read. {self.story()}")
        found = self._drive_until(14)
        return {at: report for at, report in found.items() if "T10:" not in at}

    def _drive_until(self, hour):
        """Writes seconds of this hour, one after the other, until gpsd tells of one; what it has told by then."""
        found = {}
        for second in range(feed.LIMIT_S * 4):
            utc = f"{hour}{second // 60:02d}{second % 60:02d}.00"
            self._write(rmc(utc) + gga(utc))
            while line := self._lines.within(0.25):
                report = json.loads(line)
                if report["class"] == "TPV" and "time" in report:
                    if f"T{hour}:" in report["time"]:
                        return found
                    found[report["time"]] = report
        raise AssertionError(f"gpsd does not come so far. {self.story()}")

    def _write(self, content):
        while content:
            content = content[os.write(self._master, content[:512]):]

    def story(self):
        with open(self._errors, encoding="ascii", errors="replace") as stream:
            return f"\n--- gpsd\n{stream.read()}\n---"


class Reader(feed.Embedded):
    def epochs(self, content):
        """As nmea reads them, cut into pieces of awkward length, and its counters."""
        read = subprocess.run([os.environ["FEED_EPOCHS"], "37"], input=content, stdout=subprocess.PIPE, check=True,
                              timeout=feed.LIMIT_S)
        lines = [json.loads(line) for line in read.stdout.splitlines()]
        return lines[:-1], lines[-1]

    def check(self, content, least):
        """That both tell the same position of every time; they have to tell at least so many."""
        reports = Terminal(self).reports(content)
        epochs, _ = self.epochs(content)
        told = {}
        for epoch in epochs:
            if epoch["date"] and epoch["lat"] is not None:
                told[f"{epoch['date']}T{epoch['time']}.{epoch['utcMs'] % 1000:03d}Z"] = epoch
        located = {at: report for at, report in reports.items() if "lat" in report}
        self.assertGreaterEqual(len(located), least)
        self.assertEqual(sorted(set(located) - set(told)), [])
        for at, report in located.items():
            self.assertAlmostEqual(report["lat"], told[at]["lat"], delta=CLOSE_DEG, msg=at)
            self.assertAlmostEqual(report["lon"], told[at]["lon"], delta=CLOSE_DEG, msg=at)
            self.assertEqual(report["mode"], told[at]["mode"], at)
        return epochs

    def test_agrees_with_gpsd_on_recordings(self):
        for path in recordings_test.recorded():  # where there are none, the drive below remains
            with self.subTest(recording=path.name):
                self.check(path.read_bytes(), 20)
        self.check(seconds(0, 20, gll, rmc, gga, gns), 20)

    def test_agrees_with_gpsd_whatever_the_lines_end_in(self):
        drive = seconds(0, 20, rmc, gga)
        for end in (b"\n", b"\r\r\n"):
            with self.subTest(end=end):
                self.check(drive.replace(b"\r\n", end), 20)

    def test_agrees_with_gpsd_on_sentences_among_binary_bytes(self):
        self.check(seconds(0, 20, lambda utc: BINARY + rmc(utc), lambda utc: BINARY + gga(utc)), 15)

    def test_agrees_with_gpsd_on_talkers_that_alternate_within_a_second(self):
        makers = [functools.partial(make, talker=talker) for talker in ("GP", "GN", "GL") for make in (rmc, gga)]
        epochs = self.check(seconds(0, 20, *makers), 20)
        self.assertEqual(len(epochs), 20)

    def test_agrees_with_gpsd_on_sources_that_disagree_about_the_place(self):
        makers = [functools.partial(make, talker=talker, position=position)
                  for talker, position in (("GP", HERE), ("GL", THERE)) for make in (rmc, gga)]
        for epoch in self.check(seconds(0, 20, *makers), 20):
            self.assertAlmostEqual(epoch["lat"], -35.2, delta=CLOSE_DEG)

    def test_finds_every_epoch_among_binary_bytes_and_broken_sentences(self):
        drive = seconds(0, 20, rmc, gga)
        clean, counters = self.epochs(drive)
        self.assertEqual((len(clean), counters), (20, {"sentences": 40, "wrongChecksums": 0, "garbage": 0}))
        for disturbed in (drive.replace(b"$", BINARY + b"$"), drive.replace(b"$", b"$GPGGA,1200$"),
                          drive.replace(b"\r\n", b"\r\r\n"), drive.replace(b"\r\n", b"\r\n$GPGGA,1*00\r\n!x\r\n")):
            epochs, counters = self.epochs(disturbed)
            self.assertEqual(epochs, clean)
            self.assertEqual(counters["sentences"], 40)


if __name__ == "__main__":
    unittest.main()

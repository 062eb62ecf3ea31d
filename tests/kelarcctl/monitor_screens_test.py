"""What the monitor's screen shows, on different terminals."""

import fcntl
import os
import pty
import re
import select
import struct
import subprocess
import termios

import ctl
import run
import terminal
from monitoring import MonitorTest
from programs import LIMIT_S


def masked(screen):
    """Without what differs from run to run."""
    screen = re.sub(r"output on \S+ ( *)", lambda match: "output on PATH" + " " * (len(match.group(0)) - 14), screen)
    screen = re.sub(r"(?m)(?<=deg  )\d+ s ago$", "used 25/25", screen)  # once the recording has ended
    screen = re.sub(r"(?m)\d\d:\d\d:\d\d (?=[(e]|LSTA|output|No)", "hh:mm:ss ", screen)
    screen = re.sub(r"(?m)^no sentence for .*$", "", screen)
    return re.sub(r"\] [ \d]{4} ms: ", "] nnnn ms: ", screen)


class Screens(MonitorTest):
    """What comes out of a recording, which ends, so that the screen stands still."""

    def setUp(self):
        super().setUp()
        self.scenario()
        sky = self.write("sky.json", {"seed": 5, "firstFix": {"coldMs": 2000, "hotMs": 1000},
                                      "settings": {"Engine/Glonass": "0", "Nmea/Sbas": "off"},
                                      "route": [{"latitudeDeg": 48.1371, "longitudeDeg": 11.5754, "altitudeM": 519}]})
        ran = subprocess.run([os.environ["ARCSIM"], "play", sky, "--for", "12s"], stdout=subprocess.PIPE, check=True,
                             timeout=LIMIT_S)
        path = self.write("sky.nmea", ran.stdout.decode("ascii"))
        self.replaying = self.scenario(replay={"file": path, "speed": 1000}, lsta=[
            {"atMs": 0, "system": system, "status": 1, "value": 40} for system in ("gps", "beidou", "galileo")],
            settings={"Engine/Glonass": "0", "Nmea/Sbas": "off"})
        self.serve(scenario=self.replaying)

    def test_every_panel_at_80x24(self):
        shown = self.monitor()
        shown.wait_for("03:00:12 UTC")
        for key, name in (("1", "overview"), ("2", "signal"), ("3", "modem"), ("6", "help")):
            shown.keys(key)
            self.assert_shows(shown, name)

    def assert_shows(self, shown, name):
        path = os.path.join(os.path.dirname(__file__), "screens", name + ".txt")
        expected = terminal.read(path).rstrip("\n")
        try:
            run.wait_until(lambda: masked(shown.screen()) == expected, "it is shown")
        except AssertionError:
            self.assertEqual(masked(shown.screen()), expected)

    def test_all_panels_at_160x50(self):
        shown = self.monitor(columns=160, rows=50)
        shown.wait_for("03:00:12 UTC")
        self.assert_shows(shown, "all")

    def test_without_utf8(self):
        shown = self.monitor(environment={"LC_ALL": "C"})
        shown.wait_for("03:00:12 UTC")
        shown.keys("2")
        screen = shown.wait_for("positions, ")
        self.assertTrue(screen.isascii(), screen)
        self.assertRegex(screen, r"(?m)^GPS  \d\d.\d \d\d.\d .*[#*+=]+")

    def test_silence_is_told(self):
        shown = self.monitor()
        shown.wait_for(r"no sentence for \d+ s")


class Looks(MonitorTest):
    def test_colours_unless_they_are_not_wanted(self):
        self.serve()
        for arguments, environment, coloured in (([], {}, True), (["--no-color"], {}, False),
                                                 ([], {"NO_COLOR": "1"}, False), ([], {"TERM": "vt100"}, False)):
            with self.subTest(arguments=arguments, environment=environment):
                shown = self.monitor(*arguments, environment=environment)
                shown.wait_for("3D fix")
                self.assertEqual("\x1b[32m" in shown.screen("-e"), coloured)
                shown.close()
                self.assert_no_clients()

    def test_a_terminal_without_a_cursor_is_refused(self):
        self.serve()
        shown = self.monitor(environment={"TERM": "dumb"})
        self.assertEqual(shown.wait_for("exit 2").replace("\n", ""),
                         "kelarcctl: a screen cannot be drawn on a terminal of type 'dumb'; set TERM to what it is, or "
                         "use --jsonexit 2")
        self.assert_no_clients()

    def test_no_terminal_at_all_is_refused(self):
        ran = self.ctl("monitor")
        self.assertEqual((ran.returncode, ran.stdout, ran.stderr),
                         (2, "", "kelarcctl: standard input and output are no terminal; --json prints lines instead\n"))


class SlowLine(MonitorTest):
    def test_9600_baud_are_enough(self):
        self.serve(scenario=os.path.join(os.path.dirname(__file__), "..", "..", "scenarios", "demo.json"))
        for kind in ("vt100", "xterm"):
            for panel, each in self.bytes_per_second(kind).items():
                self.assertTrue(50 < each < 960, (kind, panel, each))

    def bytes_per_second(self, kind):
        """Of the receiver's time, by panel, after the screen has been built."""
        master, slave = pty.openpty()
        fcntl.ioctl(slave, termios.TIOCSWINSZ, struct.pack("HHHH", 24, 80, 0, 0))
        program = subprocess.Popen([os.environ["KELARCCTL"], "monitor"], stdin=slave, stdout=slave, stderr=slave,
                                   start_new_session=True,
                                   env={**self.environment(), "TERM": kind, "LC_ALL": "C.UTF-8"})
        os.close(slave)
        counted = {}
        try:
            self.read_for(master, 8000)  # until the receiver has a fix
            for panel in "12":
                os.write(master, panel.encode())
                self.read_for(master, 2000)
                counted[panel] = len(self.read_for(master, 8000)) / 8
            self.assertIsNone(program.poll(), "the monitor has ended by itself")
        finally:
            program.terminate()
            run.wait_until(lambda: [self.read_some(master), program.poll() is not None][1], "the monitor ends")
            os.close(master)
        return counted

    def read_for(self, master, ms):
        received = []
        end = self.status()["scenarioMs"] + ms
        run.wait_until(lambda: [received.append(self.read_some(master)), self.status()["scenarioMs"] >= end][1],
                       f"{ms} ms have passed for the receiver")
        return b"".join(received)

    @staticmethod
    def read_some(master):
        if not select.select([master], [], [], 0.2)[0]:
            return b""
        try:
            return os.read(master, 65536)
        except OSError:
            return b""


if __name__ == "__main__":
    ctl.main()

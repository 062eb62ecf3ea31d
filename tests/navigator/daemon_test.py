"""The navigator on a modem in a process of its own: it goes on when that process is killed and comes back."""

import os
import re
import time
import unittest

import run

RESULT_LINE = re.compile(r" (info|warning) +KelArc::logArcResult\.1224: \[-?\d+\] ")


class OnTheDaemon(run.NavigatorTest):
    def setUp(self):
        super().setUp()
        self.socket = os.path.join(self.folder, "modem.sock")

    def serve(self, scenario, *options):
        daemon = self.start("serve", "--socket", self.socket, "--scenario", scenario, *options, program="ARCSIM")
        daemon.wait_for("^Serving ")
        return daemon

    def navigate(self, *arguments):
        return self.start(*arguments, environment={"ARCSIM_SOCKET": self.socket})

    def test_survives_a_kill_of_the_daemon_and_tells_of_it_by_repetitions_only(self):
        scenario = self.scenario()
        daemon = self.serve(scenario)
        navigator = self.navigate("--min-elevation", "12")
        navigator.wait_for(r"^\d\d:\d\d:\d\d 3D ")
        daemon.process.kill()
        daemon.finish()
        navigator.wait_for(r"warning .*\[14\] ARC_Close\(\) took \d+ ms: .* \(31\)$", "err")
        daemon = self.serve(scenario)
        self.assertIn("Serving again", daemon.out)
        navigator.wait_for(r"info .*\[-1\] ARC_StartGNSSraw\(\) took \d+ ms: .* \(0\)\n(.*\n)*.*warning (.*\n)*"
                           r".*info .*\[-1\] ARC_StartGNSSraw\(\) took \d+ ms: .* \(0\)$", "err")
        shown = navigator.out.count(" 3D ")
        navigator.wait_for(rf"(?s)( 3D .*){{{shown + 2}}}")
        navigator.send(run.SIGINT)
        self.assert_ends(navigator, 0)
        for line in navigator.err.splitlines():
            if "stopGNSS called" not in line and "interrupt" not in line:
                self.assertRegex(line, RESULT_LINE, navigator.story())
        self.assertEqual({"31"}, set(re.findall(r"warning .*\((\d+)\)$", navigator.err, re.MULTILINE)),
                         navigator.story())
        daemon.send(run.signal.SIGTERM)
        self.assert_ends(daemon, 0)

    def test_shows_a_text_of_the_modem_that_would_forge_lines_or_steer_a_terminal(self):
        self.serve(self.scenario())
        changed = self.start("set", "--socket", self.socket, "--force", "Raw/Version", "v\x1b[2J\x9b\n>> forged",
                             program="ARCSIM")
        self.assert_ends(changed, 0)
        navigator = self.navigate("--seconds", "1")
        self.assert_ends(navigator, 0)
        self.assertIn(r"v\x1b[2J\xc2\x9b\n>> forged", navigator.out)
        for written in (navigator.out, navigator.err):
            steering = [each for each in written if each < " " and each != "\n" or "\x7f" <= each < "\xa0"]
            self.assertEqual(steering, [], navigator.story())

    def test_finds_its_settings_and_its_position_again(self):
        scenario = self.scenario()
        daemon = self.serve(scenario)
        navigator = self.navigate("--no-galileo")
        navigator.wait_for(r"^\d\d:\d\d:\d\d 3D ")
        daemon.process.kill()
        daemon.finish()
        self.serve(scenario)
        before = navigator.out.count(" 3D ")
        navigator.wait_for(rf"(?s)( 3D .*){{{before + 2}}}")
        navigator.send(run.SIGINT)
        self.assert_ends(navigator, 0)
        epochs = re.findall(r"^(\d\d):(\d\d):(\d\d) 3D .*$", navigator.out, re.MULTILINE)
        seconds = [int(h) * 3600 + int(m) * 60 + int(s) for h, m, s in epochs]
        self.assertEqual(seconds, sorted(set(seconds)), "time went on")
        columns = [line.split() for line in navigator.out.splitlines() if re.match(r"\d\d:\d\d:\d\d 3D ", line)]
        self.assertEqual({"-"}, {column[9] for column in columns}, "Galileo stayed off: " + navigator.story())

    def test_asks_for_notifications_and_lsta_again(self):
        """A daemon that remembers nothing reports only what it is asked for after its start."""
        scenario = self.scenario()
        daemon = self.serve(scenario)
        navigator = self.navigate()
        navigator.wait_for(r"^\d\d:\d\d:\d\d 3D ")
        daemon.process.kill()
        daemon.finish()
        daemon = self.serve(scenario, "--fresh")
        before = navigator.out.count(" 3D ")
        navigator.wait_for(rf"(?s)( 3D .*){{{before + 1}}}")
        for control, shown in ((("lsta", "beidou", "--status", "7", "--value", "12.5"), "LSTA of BeiDou: status 7, "
                                "value 12.5"), (("event", "72"), "event 72")):
            told = self.start(*control, "--socket", self.socket, program="ARCSIM")
            self.assert_ends(told, 0)
            navigator.wait_for(f"^>> {shown}")
        navigator.send(run.SIGINT)
        self.assert_ends(navigator, 0)

    def test_survives_kills_of_the_daemon_before_the_first_byte(self):
        """At moments around the start of the output; whichever it meets, the navigator comes to its position."""
        scenario = self.scenario()
        for delay_ms in range(0, 24, 2):
            with self.subTest(delay_ms=delay_ms):
                daemon = self.serve(scenario)
                navigator = self.navigate()
                navigator.wait_for(r"ARC_StartGNSSraw\(\) took \d+ ms: .* \(0\)$", "err")
                time.sleep(delay_ms / 1000)  # no wait for anything: the moments differ
                daemon.process.kill()
                daemon.finish()
                daemon = self.serve(scenario)
                navigator.wait_for(r"(?s)( 3D .*){2}")
                navigator.send(run.SIGINT)
                self.assert_ends(navigator, 0)
                daemon.send(run.signal.SIGTERM)
                self.assert_ends(daemon, 0)

    def test_waits_for_a_daemon_that_is_not_there_yet(self):
        navigator = self.navigate("--seconds", "2")
        navigator.wait_for(r"ARC_RegisterNotification\(\) took \d+ ms: .* \(31\)$", "err")
        self.serve(self.scenario())
        self.assert_ends(navigator, 0)
        self.assert_closed(navigator)


if __name__ == "__main__":
    unittest.main()

"""A run on the simulated modem shows where it is, what it receives, and what went wrong on the way."""

import re

import run

LINE_3D = (r"^\d\d:\d\d:\d\d 3D +\d+\.\d{6}N +\d+\.\d{6}E +-?\d+\.\d +\d+\.\d +\d+"
           r" +(\d+)/(\d+) +(\d+)/(\d+) +(\d+)/(\d+) +(\d+)/(\d+) +(\d+)/(\d+) +(\d+)/(\d+) +(\d+)$")


class Navigation(run.NavigatorTest):
    def test_reaches_a_3d_fix_with_satellites_of_every_system(self):
        navigator = self.start("--scenario", self.scenario())
        counts = list(map(int, navigator.wait_for(LINE_3D).groups()))
        navigator.send(run.SIGTERM)
        self.assert_ends(navigator, 0)
        pairs = list(zip(counts[0:10:2], counts[1:10:2]))
        for system, (used, in_view) in zip(("GPS", "GLONASS", "Galileo", "BeiDou", "QZSS"), pairs):
            self.assertTrue(0 <= used <= in_view and in_view > 0, f"{system}: {used}/{in_view}")
        self.assertGreaterEqual(sum(used for used, _ in pairs), 4)
        self.assertEqual(counts[10], 0, "SBAS brings corrections but no ranges")
        self.assertGreater(counts[11], 0, "SBAS in view")
        self.assertTrue(20 <= counts[12] <= 60, f"C/N0 {counts[12]}")
        self.assertRegex(navigator.out, r"First fix after      \d+\.\d s, at \d\d:\d\d:\d\d UTC on \d{4}-\d\d-\d\d\n")
        self.assertIn("Checksum errors      0\n", navigator.out)
        self.assertIn("Other bad lines      0\n", navigator.out)
        self.assertLessEqual(max(map(len, navigator.out.splitlines())), 100)
        self.assertNotIn("\033", navigator.out)
        self.assert_closed(navigator)

    def test_failed_attempts_show_on_stderr_and_are_repeated(self):
        navigator = self.start("--seconds", "1", "--scenario", self.scenario(faults=[
            {"function": "ARC_Open", "call": 1, "code": 31},
            {"function": "ARC_StartGNSSraw", "call": 1, "count": 2, "code": 15}]))
        self.assert_ends(navigator, 0)
        time = r"^\d\d:\d\d:\d\d\.\d{3} "
        attempt = r"KelArc::logArcResult\.1224: \[-1\] "
        self.assertRegex(navigator.err, re.compile(
            time + "warning " + attempt + r"ARC_Open\(\) took \d+ ms: .*\(31\)\n" +
            time + "info    " + attempt + r"ARC_Open\(\) took \d+ ms: .*\(0\)\n", re.MULTILINE))
        self.assertEqual(len(re.findall(time + "busy    " + attempt + r"ARC_StartGNSSraw\(\)", navigator.err,
                                        re.MULTILINE)), 2)
        self.assertNotIn("KelArc::", navigator.out)

    def test_shows_versions_and_settings_and_what_configuring_changed(self):
        navigator = self.start(
            "--seconds", "1", "--period", "200", "--min-elevation", "15", "--no-glonass", "--no-sbas", "--scenario",
            self.scenario(settings={"Nmea/FreqMs": "500", "Power/Cpu": "max", "Engine/Galileo": "0"}))
        self.assert_ends(navigator, 0)
        for section in ("Versions", "Settings found in the modem", "Configuring the receiver", "LSTA, per system",
                        "Starting the receiver's output", "Navigation", "Summary"):
            self.assertIn(f"\n{section}\n", navigator.out)
        for line in ("client library       ArcRilD 1.0 (simulated)", "CPU power            maximum",
                     "Galileo              off", "output period        500 ms",
                     "output format        NMEA         was so already", "GLONASS              off          changed",
                     "Galileo              on           changed", "BeiDou               on           was so already",
                     "SBAS                 off          changed", "output period        200 ms       changed",
                     "minimum elevation    15           changed"):
            self.assertIn(f"\n  {line}\n", navigator.out)
        satellites = re.findall(r"^[-\d]\S+ (?:none|2D|3D) .*", navigator.out, re.MULTILINE)
        self.assertTrue(satellites, navigator.story())
        for line in satellites:
            columns = line.split()[-7:]
            self.assertEqual((columns[1], columns[5]), ("-", "-"), line)

    def test_shows_lsta_changes_and_notifications_when_they_come(self):
        navigator = self.start("--scenario", self.scenario(
            events=[{"atMs": 1500, "id": 73, "payload": "0a0b"},
                    {"atMs": 1600, "id": 75, "payload": "00112233445566778899"}],
            lsta=[{"atMs": 2500, "system": "Glonass", "status": 3, "value": 12.5}]))
        for event in ("the request to start the output has ended", "event 73 with 2 bytes: 0a 0b",
                      r"event 75 with 10 bytes: 00 11 22 33 44 55 66 77 \.\.\.",
                      r"LSTA of GLONASS: status 3, value 12\.5", r"LSTA of GPS: status 1, value \d+\.\d"):
            navigator.wait_for(f"^>> {event}$")
        navigator.send(run.SIGINT)
        self.assert_ends(navigator, 0)

    def test_shows_one_line_a_second_of_a_shorter_period(self):
        navigator = self.start("--period", "100", "--seconds", "4", "--scenario", self.scenario())
        self.assert_ends(navigator, 0)
        times = re.findall(r"^(\d\d:\d\d:\d\d) ", navigator.out, re.MULTILINE)
        self.assertEqual(sorted(set(times)), times)
        epochs, shown = map(int, re.search(r"Epochs +(\d+), \d+ of them with a 3D fix; (\d+) shown",
                                           navigator.out).groups())
        self.assertTrue(2 <= shown <= 6, navigator.story())
        self.assertGreater(epochs, 2 * shown, navigator.story())

    def test_colours_only_when_asked_for(self):
        navigator = self.start("--color", "always", "--seconds", "1", "--scenario", self.scenario())
        self.assert_ends(navigator, 0)
        self.assertIn("\033[1mSummary\033[0m\n", navigator.out)


if __name__ == "__main__":
    run.main()

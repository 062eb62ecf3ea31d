"""arcsim play prints what a scenario puts out: at once, the same every time."""

import functools
import json
import operator
import os
import re

import run


class PlayTest(run.ArcsimTest):
    def scenario(self, **content):
        """By default nothing takes longer than it must."""
        quick = {"latencies": False, "engineStartMs": 0, "firstFix": {"coldMs": 500}}
        path = os.path.join(self.folder, "scenario.json")
        with open(path, "w", encoding="ascii") as file:
            json.dump({**quick, **content}, file)
        return path

    def play(self, duration, **content):
        ran = self.run_arcsim("play", self.scenario(**content), "--for", duration)
        self.assertEqual(ran.returncode, 0, ran.stderr)
        return ran

    def times(self, ran):
        """The time of day of every epoch."""
        return re.findall(r"(?m)^\$GNRMC,(\d{6}\.\d\d),", ran.stdout)


class Output(PlayTest):
    def test_begins_with_the_first_whole_period(self):
        ran = self.play("3s", startUtc="2024-02-29T23:59:58Z", engineStartMs=300, latencies=True)
        self.assertEqual(self.times(ran), ["235959.00", "000000.00", "000001.00"])
        self.assertEqual(ran.stderr, "")

    def sentence(self, body):
        return f"${body}*{self.checksum(body):02X}\n"

    def checksum(self, body):
        return functools.reduce(operator.xor, body.encode("ascii"))

    def test_is_made_of_whole_sentences_with_right_checksums(self):
        lines = self.play("20s").stdout.split("\n")
        self.assertEqual(lines.pop(), "")
        self.assertGreater(len(lines), 100)
        for line in lines:
            body, checksum = re.fullmatch(r"\$([^*]*)\*([0-9A-F]{2})", line.rstrip("\r")).groups()
            self.assertEqual(f"{self.checksum(body):02X}", checksum)

    def test_is_the_same_every_time(self):
        storm = {"faults": [{"function": "ARC_Open", "fromMs": 0, "untilMs": 900, "code": 31}],
                 "events": [{"atMs": 5000, "id": 75, "count": 500, "everyMs": 7, "numbered": True}]}
        first, second = self.play("1m", latencies=True, **storm), self.play("1m", latencies=True, **storm)
        self.assertEqual(first.stdout, second.stdout)
        self.assertEqual(first.stderr, second.stderr)
        self.assertNotEqual(first.stdout, self.play("1m", latencies=True, seed=2, **storm).stdout)

    def test_of_an_hour_comes_in_one_go(self):
        ran = self.play("1h")
        expected = [f"{3 + s // 3600:02d}{s // 60 % 60:02d}{s % 60:02d}.00" for s in range(1, 3601)]
        self.assertEqual(self.times(ran), expected)

    def test_comes_with_the_period_of_the_scenario(self):
        for period in (100, 200, 500):
            times = self.times(self.play("10s", settings={"Nmea/FreqMs": str(period)}))
            expected = [f"0300{ms // 1000:02d}.{ms % 1000 // 10:02d}" for ms in range(1000, 10001, period)]
            self.assertEqual(times[-len(expected):], expected)

    def test_has_what_the_scenario_does_to_the_reception(self):
        ran = self.play("30s", noFix=[{"fromMs": 10000, "untilMs": 20000}])
        states = re.findall(r"(?m)^\$GNRMC,[^,]*,([AV]),", ran.stdout)
        self.assertEqual("".join(states), "V" + "A" * 9 + "V" * 10 + "A" * 11)

    def test_of_a_recording_is_the_recording(self):
        sentences = [self.sentence(f"GNGGA,0915{second:02d}.00,,,,,0,00,,,M,,M,,") for second in range(60)]
        with open(os.path.join(self.folder, "drive.nmea"), "w", encoding="ascii") as file:
            file.writelines(sentences)
        ran = self.play("5s", replay={"file": "drive.nmea"})
        self.assertEqual(ran.stdout.replace("\r\n", "\n"), "".join(sentences[:6]))

    def test_needs_no_scenario(self):
        ran = self.run_arcsim("play", "--for", "10s")
        self.assertEqual((ran.returncode, ran.stderr), (0, ""))
        self.assertEqual(self.times(ran), [])
        self.assertRegex(ran.stdout, r"\A\$GNRMC,,V,")
        self.assertEqual(len(re.findall(r"(?m)^\$GNRMC,", ran.stdout)), 10)


class News(PlayTest):
    def test_tells_events_at_their_times(self):
        ran = self.play("3s", events=[{"atMs": 1200, "id": 75, "payload": "0a0b"},
                                      {"atMs": 2000, "id": 76, "count": 2, "everyMs": 1, "numbered": True},
                                      {"atMs": 9000, "id": 77}])
        self.assertEqual(ran.stderr, "      1200 ms  event 75 0a0b\n"
                                     "      2000 ms  event 76 00000000\n"
                                     "      2001 ms  event 76 01000000\n")

    def test_repeats_what_fails_as_applications_do(self):
        ran = self.play("2s", faults=[{"function": "ARC_Open", "call": 1, "count": 2, "code": 31},
                                      {"function": "ARC_StartGNSSraw", "call": 1, "code": 3, "latencyMs": 40},
                                      {"function": "ARC_StartGNSSraw", "call": 2, "hang": True}])
        self.assertEqual(ran.stderr, "         0 ms  ARC_Open answered 31\n"
                                     "       250 ms  ARC_Open answered 31\n"
                                     "       540 ms  ARC_StartGNSSraw answered 3\n"
                                     "       790 ms  ARC_StartGNSSraw answered 32\n")
        self.assertEqual(self.times(ran), ["030002.00"])

    def test_ends_with_its_time_when_everything_fails(self):
        ran = self.play("1s", faults=[{"function": "ARC_Open", "fromMs": 0, "untilMs": 86400000, "code": 31}])
        self.assertEqual(ran.stdout, "")
        self.assertEqual(ran.stderr.splitlines()[-1], "      1000 ms  ARC_Open answered 31")


class BadValues(PlayTest):
    def refused(self, arguments, message):
        self.assert_run(self.run_arcsim("play", *arguments), 2,
                        err=f"arcsim: play: {message}\nRun 'arcsim play --help' for more information.\n")

    def test_of_the_command_line_are_named(self):
        times = "a time with its unit, as 800ms, 20s, 1.5s, 2m or 1h, from 1ms to 24h"
        self.refused([], "--for is required")
        for given in ("0s", "25h", "10", "soon", ""):
            self.refused(["--for", given], f"--for: '{given}' is not accepted; accepted: {times}")
        self.refused(["", "--for", "1s"], "SCENARIO: '' is not accepted; accepted: a text that is not empty")
        self.refused(["a", "b", "--for", "1s"], "The following argument was not expected: b")

    def test_of_the_scenario_are_named(self):
        self.assert_run(self.run_arcsim("play", "nowhere.json", "--for", "1s"), 3,
                        err="arcsim: nowhere.json: cannot be read: No such file or directory; accepted: the name of a "
                            "scenario file\n")
        path = self.scenario(seed="x")
        self.assert_run(self.run_arcsim("play", path, "--for", "1s"), 3,
                        err=f'arcsim: {path}:1: seed: "x" is not accepted; accepted: a whole number from 0 to '
                            "4294967295\n")

    def test_an_output_that_cannot_be_written_is_told_of(self):
        with open("/dev/full", "wb") as full:
            ran = self.run_arcsim("play", "--for", "5m", stdout=full)
        self.assertEqual((ran.returncode, ran.stderr), (1, "arcsim: standard output could not be written\n"))


if __name__ == "__main__":
    run.main()

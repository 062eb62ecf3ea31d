"""A recorded run of the navigator goes the same way again when it is replayed, and what differs is told."""

import json
import os
import signal

import recorded
import run

STORM = [{"atMs": 200, "id": 75, "count": 50, "numbered": True}]


class TheSame(recorded.RecordedTest):
    def assert_same(self, original, replayed):
        self.assert_says(replayed, f"no difference: {len(self.calls())} calls answered as recorded", 0)
        self.assertEqual(recorded.log(replayed.err), recorded.log(original.err))

    def test_embedded(self):
        scenario = self.scenario(faults=recorded.FAILURES)
        original = self.recorded_run("--seconds", "2", "--scenario", scenario)
        self.assertEqual(recorded.failures(original.err),
                         [("ARC_Open()", 31), ("ARC_Open()", 31), ('Get ARC_CheckModuleSetting("Nmea/DRSync")', 8),
                          ("ARC_StartGNSSraw()", 3)])
        self.assert_same(original, self.replay("--seconds", "1"))

    def test_on_the_daemon(self):
        environment = self.serve(self.scenario(faults=recorded.FAILURES))
        original = self.recorded_run("--seconds", "2", environment=environment)
        self.assertEqual(len(recorded.failures(original.err)), 4)
        self.assert_same(original, self.replay("--seconds", "1"))

    def test_in_the_recorded_time(self):
        scenario = self.scenario(faults=[{"function": "ARC_Open", "call": 1, "latencyMs": 1500}])
        original = self.recorded_run("--seconds", "1", "--scenario", scenario)
        replayed = self.replay("--seconds", "1", options=())
        self.assert_same(original, replayed)
        self.assertGreaterEqual(int(replayed.wait_for(r"ARC_Open\(\) took (\d+) ms", "err").group(1)), 1490)

    def test_with_its_events(self):
        scenario = self.scenario(events=STORM)
        original = self.recorded_run("--seconds", "2", "--scenario", scenario)
        self.assertEqual(len(recorded.unasked(original.out)), 50)
        replayed = self.replay("--seconds", "2")
        self.assert_same(original, replayed)
        self.assertEqual(recorded.unasked(replayed.out), recorded.unasked(original.out))

    def test_with_sentences_of_its_own(self):
        self.recorded_run("--seconds", "1", "--scenario", self.scenario())
        drive = self.write("drive.nmea", "".join(run.epoch(f"0915{second:02d}.00") for second in range(60)))
        replayed = self.replay("--seconds", "2", options=("--fast", "--nmea", drive))
        self.assert_says(replayed, f"no difference: {len(self.calls())} calls answered as recorded", 0)
        self.assertRegex(replayed.out, "(?m)" + run.epoch_line(r"09:15:\d\d"))

    def test_for_a_program_from_elsewhere(self):
        self.recorded_run("--seconds", "1", "--scenario", self.scenario())
        socket = os.path.join(self.folder, "modem.sock")
        replaying = self.start("replay", self.recording, "--fast", "--socket", socket, program="ARCSIM")
        replaying.wait_for("^Replaying ", "err")
        self.assert_ends(self.start("--seconds", "1", environment={"ARCSIM_SOCKET": socket}), 0)
        self.assert_says(replaying, f"no difference: {len(self.calls())} calls answered as recorded", 0)
        self.assertFalse(os.path.exists(socket))

    def test_until_it_is_stopped(self):
        self.recorded_run("--seconds", "1", "--scenario", self.scenario())
        socket = os.path.join(self.folder, "modem.sock")
        for stop in (lambda replaying: replaying.send(run.SIGINT), lambda replaying: replaying.send(run.SIGTERM),
                     lambda _: self.assert_ends(self.start("stop", "--socket", socket, program="ARCSIM"), 0)):
            replaying = self.start("replay", self.recording, "--socket", socket, program="ARCSIM")
            replaying.wait_for("^Replaying ", "err")
            stop(replaying)
            self.assert_says(replaying, "call 1: expected ARC_RegisterNotification(set), got no call", 6)


class Differences(recorded.RecordedTest):
    def setUp(self):
        super().setUp()
        self.recorded_run("--seconds", "1", "--scenario", self.scenario())
        self.expected = 'ARC_CheckModuleSetting("Sens/MinElevAngle", "\\"5\\"", null, 0, set)'
        self.got = 'ARC_CheckModuleSetting("Sens/MinElevAngle", "\\"12\\"", null, 0, set)'
        self.number = next(line["n"] for line in self.calls()
                           if line["args"].get("key") == "Sens/MinElevAngle" and line["args"]["value"] == '"5"')

    def test_of_an_option_are_told_with_the_first_call(self):
        replayed = self.replay("--seconds", "1", "--min-elevation", "12")
        self.assert_says(replayed, f"call {self.number}: expected {self.expected}, got {self.got}", 6)

    def test_are_told_as_json(self):
        self.assert_ends(replayed := self.replay("--seconds", "1", "--min-elevation", "12",
                                                 options=("--fast", "--json")), 6)
        count = len(self.calls())
        self.assertEqual(json.loads(replayed.out.splitlines()[-1]),
                         {"answered": count, "recorded": count,
                          "difference": {"call": self.number, "expected": self.expected, "got": self.got}})
        self.assert_ends(replayed := self.replay("--seconds", "1", options=("--fast", "--json")), 0)
        self.assertEqual(json.loads(replayed.out.splitlines()[-1]),
                         {"answered": count, "recorded": count, "difference": None})

    def test_go_before_the_exit_code_of_the_program(self):
        replayed = self.start("replay", self.recording, "--", "sh", "-c", "exit 7", program="ARCSIM")
        self.assert_says(replayed, "call 1: expected ARC_RegisterNotification(set), got no call", 6)


class WhatHangs(recorded.RecordedTest):
    def test_hangs_again(self):
        scenario = self.scenario(faults=[{"function": "ARC_Close", "call": 1, "hang": True}])
        self.recorded_run("--seconds", "1", "--timeout", "2", "--scenario", scenario, exit_code=4)
        self.assertEqual(self.lines()[-1]["call"], "ARC_Close")
        replayed = self.replay("--seconds", "1", "--timeout", "2")
        self.assert_says(replayed, f"no difference: {len(self.calls()) - 1} calls answered as recorded", 4)

    def test_and_was_killed_leaves_what_can_be_replayed(self):
        scenario = self.scenario(faults=[{"function": "ARC_StartGNSSraw", "call": 1, "hang": True}])
        killed = self.record("--scenario", scenario)
        self.wait_for_lines(lambda lines: lines and lines[-1].get("call") == "ARC_StartGNSSraw")
        killed.send(signal.SIGKILL)
        killed.finish()
        replayed = self.replay("--timeout", "2")
        self.assert_says(replayed, f"no difference: {len(self.calls()) - 1} calls answered as recorded", 4)


class AKill(recorded.RecordedTest):
    """In the middle of everything."""

    def setUp(self):
        super().setUp()
        killed = self.record("--scenario", self.scenario())
        killed.wait_for(r"^\d\d:\d\d:\d\d 3D ")
        killed.send(signal.SIGKILL)
        killed.finish()

    def assert_replays_to_its_end(self):
        count = len(self.calls())
        replayed = self.replay("--seconds", "1")
        self.assert_says(replayed, f"call {count + 1}: expected no further call of this thread, got ARC_StopGNSS()", 6)
        failures = recorded.failures(replayed.err)
        self.assertEqual((failures[0], failures[-1]), (("ARC_StopGNSS()", 32), ("ARC_Close()", 32)))

    def test_leaves_what_can_be_replayed(self):
        self.assert_replays_to_its_end()

    def test_may_leave_half_a_line(self):
        calls = self.calls()
        whole = self.recording
        self.recording = self.write("half.jsonl", self.text(whole) + '{"n":99,"us":12345,"thr')
        self.calls = lambda: calls
        self.assert_replays_to_its_end()

    @staticmethod
    def text(path):
        with open(path, encoding="ascii") as file:
            return file.read()


class BadRecordings(recorded.RecordedTest):
    HEADER = '{"recording":1,"utc":"2024-06-12T03:00:00.000Z","pid":1,"program":"p","library":null}\n'

    def assert_refused(self, file, message):
        for command in (["replay", file, "--", "true"], ["convert", file]):
            with self.subTest(command):
                refused = self.start(*command, program="ARCSIM")
                self.assert_ends(refused, 3)
                self.assertEqual((refused.out, refused.err), ("", f"arcsim: {message}\n"))

    def test_are_named_with_the_line(self):
        path = self.write("r.jsonl", self.HEADER + '{"n":1,"us":1,"thread":1,"call":"ARC_Open","args":{}}\n'
                                                   '{"n":1,"us":1,"thread":1,"code":"0","out":{},"tookUs":1}\n')
        self.assert_refused(path, f'{path}:3: code: "0" is not accepted; accepted: a whole number from -2147483648 to '
                                  "2147483647")
        path = self.write("r.jsonl", self.HEADER + "{\n{}\n")
        self.assert_refused(path, f"{path}:2: {{ is not accepted; accepted: a JSON object")
        path = self.write("r.jsonl", "")
        self.assert_refused(path, f"{path}: is empty; accepted: a recording, as libArcRecord.so writes it")

    def test_that_are_missing_are_named(self):
        path = os.path.join(self.folder, "nowhere.jsonl")
        self.assert_refused(path, f"{path}: cannot be read: No such file or directory; accepted: the name of a "
                                  "recording, as libArcRecord.so writes it")
        self.assert_refused(self.folder, f"{self.folder}: cannot be read: Is a directory; accepted: the name of a "
                                         "recording, as libArcRecord.so writes it")


if __name__ == "__main__":
    run.main()

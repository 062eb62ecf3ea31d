"""Continuous commands: notifications, LSTA reports, and the library's tasks meanwhile."""

import json
import os
import re
import signal
import subprocess

import ctl
import run

UTC = r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}Z"


class Streams(ctl.CtlTest):
    def setUp(self):
        super().setUp()
        self.daemon = self.serve()

    def listening(self, *arguments):
        """A command that has registered for notifications."""
        program = self.start(*arguments)
        run.wait_until(lambda: any(client["handler"] for client in self.status()["clients"]), "it listens")
        return program

    def assert_closed(self):
        run.wait_until(lambda: self.status()["clients"] == [], "the modem has no clients left")

    def test_notifications_are_shown_as_they_come(self):
        program = self.listening("events", "--count", "4")
        for event in ("72", "74 01ff", "73 6a616d6d6564", "22"):
            self.control(f"event {event}")
        self.assertEqual(program.finish(), 0)
        self.assertEqual([re.sub(f"^{UTC}  ", "", line) for line in program.lines],
                         ["EVENT_72, 0 bytes", "EVENT_74, 2 bytes: 01ff", "EVENT_73, 6 bytes: 6a616d6d6564  'jammed'",
                          "EVENT_22, 0 bytes"])
        self.assertEqual(program.errors(), "")
        self.assert_closed()

    def test_notifications_as_lines_of_json(self):
        program = self.listening("events", "--json", "--count", "2")
        self.control("event 75 6f6b")
        program.wait_for(lambda: len(program.lines) == 1, "the first comes at once")
        self.control("event 72")
        self.assertEqual(program.finish(), 0)
        first, second = map(json.loads, program.lines)
        self.assertEqual(self.checked(first, "events"), {"event": "EVENT_75", "length": 2, "data": "6f6b"})
        self.assertEqual(second["event"], "EVENT_72")

    def test_a_watch_ends_at_its_time_and_by_a_signal(self):
        self.assertEqual(self.says("events --for 100ms"), "")
        for number in (signal.SIGINT, signal.SIGTERM):
            program = self.listening("events", "--timeout", "1s")
            self.control("event 72")
            program.wait_for(lambda: program.lines, "the event")
            program.send(number)
            self.assertEqual(program.finish(), 130)
            self.assertEqual(program.errors(), "kelarcctl: interrupted while watching notifications\n")
            self.assert_closed()

    def test_a_watch_that_cannot_begin_ends_at_the_deadline(self):
        self.control("fail ARC_RegisterNotification --code 15 --forever")
        ran = self.ctl("events", "--timeout", "1500ms", "--log", "/dev/null")
        self.assertEqual((ran.returncode, ran.stdout), (4, ""))
        self.assertRegex(ran.stderr, r"no success within 1500 ms: registering for notifications failed \d times: "
                                     r"This API is temporary not available \(15\)\n  .*\n  -> Wait")

    def test_a_reader_that_leaves_ends_a_watch(self):
        read, write = os.pipe()
        program = subprocess.Popen([os.environ["KELARCCTL"], "events"], stdin=subprocess.DEVNULL, stdout=write,
                                   stderr=subprocess.DEVNULL, env=self.environment())
        self.addCleanup(program.wait)
        self.addCleanup(program.kill)
        os.close(write)
        run.wait_until(lambda: any(client["handler"] for client in self.status()["clients"]), "it listens")
        os.close(read)
        self.control("event 72")
        self.assertEqual(program.wait(run.LIMIT_S), 3)
        self.assert_closed()

    def test_lsta_reports_are_enabled_and_disabled(self):
        self.control("stop")
        self.daemon.finish()
        self.daemon = self.serve("--verbose")
        self.assertEqual(self.says("lsta enable galileo gps --parameter 7"),
                         "gps: reports enabled\ngalileo: reports enabled")
        self.assertEqual(self.document("lsta disable gps --parameter -3"), {"system": "gps", "reports": False})
        self.assertEqual(len(self.says("lsta enable ALL").splitlines()), 4)
        calls = re.findall(r'ARC_EnableLSTA{"arcTechnologyId":(\d+),"enable":(\w+),"parameter":(-?\d+)}',
                           self.daemon.errors())
        self.assertEqual(calls, [("10", "true", "7"), ("13", "true", "7"), ("10", "false", "-3"), ("10", "true", "0"),
                                 ("11", "true", "0"), ("12", "true", "0"), ("13", "true", "0")])

    def test_lsta_reports_are_shown_as_they_come(self):
        for command, of in (("lsta enable gps galileo --watch --count 2", 2), ("lsta --watch --count 2", 4)):
            self.control("reset")
            program = self.listening(*command.split())
            run.wait_until(lambda: self.status()["calls"].get("ARC_EnableLSTA", {}).get("count") == of, "it watches")
            self.control("lsta gps --status 3 --value 41.5")
            self.control("lsta galileo --status 1 --value 30")
            self.assertEqual(program.finish(), 0)
            self.assertEqual(sorted(re.sub(f"^{UTC}  ", "", line) for line in program.lines),
                             ["galileo: status 1, value 30", "gps: status 3, value 41.5"])
            self.assert_closed()
        self.control("reset")
        program = self.listening("lsta", "--watch", "--json", "--count", "1")
        run.wait_until(lambda: self.status()["calls"].get("ARC_EnableLSTA", {}).get("count") == of, "it watches")
        self.control("lsta beidou --status 2 --value 1.25")
        self.assertEqual(program.finish(), 0)
        document = self.checked(json.loads(program.lines[0]), "lsta-watch")
        self.assertEqual(document, {"system": "beidou", "on": True, "value": 1.25, "status": 2})

    def test_lsta_that_is_refused(self):
        self.control("fail ARC_EnableLSTA --code 21 --forever")
        ran = self.ctl("lsta", "enable", "all", "--log", "/dev/null")
        self.assertEqual((ran.returncode, ran.stdout), (3, ""))
        self.assertIn("kelarcctl: enabling the LSTA reports of gps failed 15 times: A requested service has been denied "
                      "(21)\n", ran.stderr)
        ran = self.ctl("lsta", "disable", "galileo", "--log", "/dev/null")
        self.assertEqual(ran.returncode, 3)
        self.assertIn("kelarcctl: disabling the LSTA reports of galileo failed 15 times: A requested service has been "
                      "denied (21)\n", ran.stderr)

    def test_lsta_of_several_systems(self):
        self.control("lsta gps --status 1 --value 40")
        self.assertEqual(self.says("lsta get GPS beidou"), "gps: on, value 40\nbeidou: off, value 0")
        self.assertEqual(len(self.says("lsta get all").splitlines()), 4)

    def test_tasks_show_what_the_library_does(self):
        self.control("delay ARC_CheckModuleSetting 500ms --times 1")
        text = self.says("tasks cpu-power")
        self.assertIn('367: Get ARC_CheckModuleSetting("Power/Cpu"); waiting: 0\n', text)
        self.assertRegex(text, r"(?m)^running \d+: kelarc/KelArc\.367: ")
        self.assertTrue(text.endswith("cpu-power: standard"))
        self.assertIn("cpu-power       standard", self.says("tasks"))

    def test_tasks_as_lines_of_json(self):
        self.control("delay ARC_StopGNSS 500ms --times 1")
        self.open_client("start")
        lines = [json.loads(line) for line in self.says("tasks --json gnss stop").splitlines()]
        self.assertEqual(self.checked(lines[-1], "done"), {"request": "stopping the engine", "done": True})
        running = [line["running"]["name"] for line in lines[:-1]]
        self.assertIn("kelarc/KelArc.601: ARC_StopGNSS()", running)
        for line in lines[:-1]:
            self.assertEqual(list(self.checked(line, "tasks")), ["running", "waiting", "dueMs", "queue"])
            self.assertEqual(line["waiting"], len(line["queue"]))

    def test_what_tasks_looks_at_ends_as_it_would_alone(self):
        self.control("fail ARC_StopGNSS --code 2 --forever")
        self.assertEqual(self.ctl("tasks", "gnss", "stop", "--log", "/dev/null").returncode, 3)
        self.control("hang ARC_StopGNSS --forever")
        ran = self.ctl("tasks", "--timeout", "1s", "gnss", "stop")
        self.assertEqual(ran.returncode, 4)
        self.assertRegex(ran.stderr, r"stopping the engine: ARC_StopGNSS\(\) has not returned for \d+ ms")


if __name__ == "__main__":
    ctl.main()

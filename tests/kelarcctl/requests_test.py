"""Requests other than settings: versions, engine, LSTA, pass-through; refusals, and the target of the log."""

import json
import os
import re

import ctl
import run


class Requests(ctl.CtlTest):
    def setUp(self):
        super().setUp()
        self.daemon = self.serve()

    def calls(self):
        return self.status()["calls"]

    def test_versions(self):
        self.assertEqual(self.says("versions"), "client library  ArcRilD 1.0 (simulated)\n"
                                                "RIL             RIL 1.0 (simulated), Modem 1.0 (simulated)")
        self.assertEqual(self.document("versions"), {"clientLibrary": "ArcRilD 1.0 (simulated)",
                                                     "ril": {"primary": "RIL 1.0 (simulated)",
                                                             "secondary": "Modem 1.0 (simulated)"}})

    def test_the_engine_starts_and_runs_as_long_as_it_is_held(self):
        self.assertEqual(self.says("gnss start"), self.socket + ".nmea")
        self.assertEqual(self.document("gnss start"), {"path": self.socket + ".nmea"})
        holding = self.start("gnss", "start", "--hold")
        holding.wait_for(lambda: holding.lines, "the path")
        self.assertEqual(self.status()["engine"], "running")
        holding.send(run.SIGTERM)
        self.assertEqual(holding.finish(), 130)
        self.assertEqual(holding.errors(), "kelarcctl: interrupted while the output runs\n")
        self.assertEqual([client["open"] for client in self.status()["clients"]], [])

    def test_the_engine_is_stopped_by_each_of_its_commands(self):
        for command, function, what in (("stop", "ARC_StopGNSS", "stopping the engine"),
                                        ("force-stop", "ARC_ForceStopGNSS", "stopping the engine by force")):
            other = self.open_client("start")
            self.assertEqual(self.status()["engine"], "running")
            self.assertEqual(self.document(f"gnss {command}"), {"request": what, "done": True})
            self.assertEqual((self.status()["engine"], self.calls()[function]["count"]), ("off", 1))
            other.close()
        self.assertEqual(self.says("gnss reset-assistance"), "done")
        self.assertEqual(self.calls()["ARC_ResetAGNSS"]["count"], 1)

    def test_lsta_of_every_system(self):
        for number, system in enumerate(("gps", "glonass", "beidou", "galileo"), 1):
            self.control(f"lsta {system} --status 1 --value {number}.9")
        for number, system in enumerate(("gps", "glonass", "beidou", "galileo"), 1):
            self.assertEqual(self.says(f"lsta get {system}"), f"{system}: on, value {number}")
            self.assertEqual(self.document(f"lsta get {system}"), {"system": system, "on": True, "value": number})

    def test_what_is_passed_through(self):
        self.assertEqual(self.document("at AT+CSQ"), {"request": "sending AT+CSQ", "done": True})
        self.assertEqual(self.says("at AT"), "done")
        self.assertEqual(self.document("logging 3 verbose"), {"request": "switching logging", "done": True})
        self.assertEqual(self.calls()["ARC_AtcTunneling"]["count"], 2)
        self.assertEqual(self.calls()["ARC_EnableLogging"]["count"], 1)

    def test_a_refusal_is_shown_with_code_and_text(self):
        self.control("fail ARC_StopGNSS --code 2 --forever")
        ran = self.ctl("gnss", "stop", "--log", "/dev/null")
        self.assertEqual((ran.returncode, ran.stdout), (3, ""))
        self.assertEqual(ran.stderr.splitlines()[-3:],
                         ["kelarcctl: stopping the engine failed 15 times: Timeout while waiting for module response (2)",
                          "  The modem does not answer the client library in time: it is overloaded, hangs or has no "
                          "power.",
                          "  -> See to the modem's power and its other users; if it stays, restart the modem."])
        ran = self.ctl("get", "No/Such", "--json", "--log", "/dev/null")
        self.assertEqual(ran.returncode, 3)
        text = "reading No/Such failed 15 times: The requested information cannot be found (16)"
        cause = "This modem has no such setting, or nothing to tell about it."
        following = "Compare the call with the modem's manual."
        self.assertTrue(ran.stderr.endswith(f"kelarcctl: {text}\n  {cause}\n  -> {following}\n"), ran.stderr)
        self.assertEqual(self.checked(json.loads(ran.stdout), "failure"),
                         {"error": {"kind": "refused", "code": 16, "text": text, "cause": cause, "next": following,
                                    "attempts": 15}})

    def test_the_log_goes_to_stderr_from_its_level_on(self):
        self.control("fail ARC_StopGNSS --code 15 --times 1")
        line = r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}Z "
        ran = self.ctl("gnss", "stop")
        self.assertRegex(ran.stderr, f"^{line}busy KelArc::.*ARC_StopGNSS.* \\(15\\)\n$")
        self.assertEqual(ran.stdout, "done\n")
        self.assertEqual(self.says("versions"), self.says("versions --log-level error"))
        levels = re.findall(f"(?m)^{line}(\\w+) ", self.ctl("versions", "--log-level", "info").stderr)
        self.assertEqual(set(levels), {"info"})
        for level, left in (("busy", 1), ("warning", 0), ("error", 0)):
            self.control("fail ARC_StopGNSS --code 15 --times 1")
            self.assertEqual(len(self.ctl("gnss", "stop", "--log-level", level).stderr.splitlines()), left, level)

    def test_the_log_goes_to_the_journal(self):
        self.control("fail ARC_StopGNSS --code 15 --times 1")
        ran = self.ctl("gnss", "stop", "--log", "journal")
        is_there = os.path.exists("/run/systemd/journal/socket") or os.path.exists("/dev/log")
        self.assertEqual((ran.returncode, ran.stdout), (0, "done\n") if is_there else (3, ""))
        self.assertFalse(os.path.exists("journal"))

    def test_the_log_is_added_to_a_file(self):
        path = f"{self.folder}/log"
        self.says(f"versions --log {path} --log-level info")
        with open(path, encoding="utf-8") as file:
            first = file.read()
        self.says(f"versions --log {path} --log-level info")
        with open(path, encoding="utf-8") as file:
            both = file.read()
        self.assertTrue(first.count("\n") > 2 and both.startswith(first) and len(both) > len(first))
        ran = self.ctl("versions", "--log", self.folder + "/no/log")
        self.assertEqual((ran.returncode, ran.stdout, ran.stderr),
                         (3, "", f"kelarcctl: --log: {self.folder}/no/log: No such file or directory\n"))

    def test_json_is_one_line_of_ascii(self):
        self.ask("set", key="Power/Cpu", quoted='"\u00fc\u00ff"')
        ran = self.ctl("get", "Power/Cpu", "--json")
        self.assertEqual(ran.stdout.count("\n"), 1)
        self.assertTrue(ran.stdout.isascii())
        self.assertEqual(self.checked(json.loads(ran.stdout), "get"), {"key": "Power/Cpu", "reply": '"\ufffd\ufffd"'})


if __name__ == "__main__":
    ctl.main()

"""Every command's JSON is what the schema says, in success and in failure."""

import json
import os
import re
import signal

import ctl
import run

# what is typed, which definition its lines have, and how many lines there are
COMMANDS = (
    ("status", "status", 1),
    ("versions", "versions", 1),
    ("doctor --timeout 60s", "doctor", 1),
    ("cpu-power", "setting", 1), ("cpu-power max", "setting", 1),
    ("cpu-psm", "setting", 1), ("cpu-psm on", "setting", 1),
    ("format", "setting", 1), ("format nmea", "setting", 1),
    ("dr-sync", "setting", 1), ("dr-sync on", "setting", 1),
    ("system glonass", "setting", 1), ("system glonass off", "setting", 1),
    ("system galileo", "setting", 1), ("system beidou", "setting", 1), ("system qzss on", "setting", 1),
    ("sbas", "setting", 1), ("sbas off", "setting", 1),
    ("period", "setting", 1), ("period 500", "setting", 1),
    ("min-elevation", "setting", 1), ("min-elevation 9", "setting", 1),
    ("raw-mask", "setting", 1), ("raw-mask 3", "setting", 1),
    ("raw-version", "setting", 1),
    ("get Power/Cpu", "get", 1),
    ("set Power/Cpu \"max\"", "set", 1),
    ("export", "export", 1),
    ("export FILE", "export", 1),
    ("apply FILE", "apply", 1),
    ("apply FILE --dry-run", "apply", 1),
    ("gnss start", "gnss-start", 1),
    ("gnss stop", "done", 1), ("gnss force-stop", "done", 1), ("gnss reset-assistance", "done", 1),
    ("lsta get all", "lsta-get", 4),
    ("lsta enable all", "lsta-enable", 4),
    ("lsta disable gps galileo", "lsta-enable", 2),
    ("events --for 50ms", "events", 0),
    ("lsta --watch --for 50ms", "lsta-watch", 0),
    ("at AT", "done", 1),
    ("logging 1 on", "done", 1),
)


class EveryCommand(ctl.CtlTest):
    def line(self, text):
        return text.replace("FILE", os.path.join(self.folder, "settings.json")).split()

    def test_success(self):
        self.serve()
        for text, definition, count in COMMANDS:
            with self.subTest(text):
                ran = self.ctl(*self.line(text), "--json")
                self.assertEqual((ran.returncode, ran.stderr), (0, ""))
                lines = ran.stdout.splitlines()
                self.assertEqual(len(lines), count)
                for line in lines:
                    self.assertTrue(line.isascii())
                    self.assertNotIn("error", self.checked(json.loads(line), definition))

    def assert_fails(self, text, definition, exit_code, code, kind):
        with self.subTest(text):
            ran = self.ctl(*self.line(text), "--json", "--log", "/dev/null")
            self.assertEqual(ran.returncode, exit_code, ran.stdout)
            document = json.loads(ran.stdout)
            parts = len(document) > 2
            document = self.checked(document, definition if parts else "failure")
            error = document["error"]
            self.assertEqual((error["code"], error["kind"]), (code, kind))
            self.assertEqual(ran.stderr == "", parts)
            if not parts:
                self.assertIn(f"kelarcctl: {error['text']}\n", ran.stderr)

    def test_refusal(self):
        self.serve(scenario=self.scenario(faults=[{"function": f"ARC_{function}", "call": 1, "count": 100_000, "code": 24}
                                                  for function in ("CheckModuleSetting", "GetRilVersion", "StopGNSS",
                                                                   "ForceStopGNSS", "StartGNSSraw", "ResetAGNSS",
                                                                   "CurrentLSTA", "EnableLSTA", "AtcTunneling",
                                                                   "EnableLogging", "RegisterNotification")]))
        self.write("settings.json", {"settings": {"sbas": "off"}})
        seen = set()
        for text, definition, _ in COMMANDS:
            kind = definition if definition != "setting" else text.split()[0]
            if kind in seen or definition in ("status", "doctor"):  # have tests of their own, for each read takes 4 s
                continue
            seen.add(kind)
            self.assert_fails(text, definition, 3, 24, "refused")

    def test_a_status_of_which_parts_are_refused(self):
        self.serve()
        self.control("fail ARC_CurrentLSTA --code 16 --times 15")
        self.assert_fails("status", "status", 3, 16, "refused")

    def test_no_daemon(self):
        self.serve().kill()
        self.write("settings.json", {"settings": {"sbas": "off"}})
        for text, definition, _ in COMMANDS:
            if "--timeout" not in text:
                self.assert_fails(text + " --timeout 100ms", definition, 4, 31, "refused")

    def test_an_opening_that_hangs(self):
        self.serve()
        self.control("hang ARC_Open --forever")
        for text in ("versions", "events", "lsta --watch", "gnss start --hold"):
            self.assert_fails(text + " --timeout 100ms", "failure", 4, None, "silent")

    def test_a_closing_that_hangs_or_is_refused(self):
        self.serve()
        self.control("hang ARC_Close --times 1")
        self.control("fail ARC_Close --code 21 --forever")
        for kind, code in (("silent", None), ("refused", 21)):
            ran = self.ctl("versions", "--json", "--log", "/dev/null")
            self.assertEqual(ran.returncode, 4)
            done, last = map(json.loads, ran.stdout.splitlines())
            self.checked(done, "versions")
            error = self.checked(last, "failure")["error"]
            self.assertEqual((error["kind"], error["code"]), (kind, code))
            self.assertTrue(error["text"].startswith("the modem was not closed within 3 s: "))

    def test_a_value_that_reads_back_otherwise(self):
        self.serve()
        self.control("fail ARC_CheckModuleSetting --nth 3 --reply-length 9")
        ran = self.ctl("cpu-power", "max", "--json", "--log", "/dev/null")
        self.assertEqual(ran.returncode, 3)
        document = self.checked(json.loads(ran.stdout), "setting")
        error = document.pop("error")
        self.assertEqual(document, {"setting": "cpu-power", "key": "Power/Cpu", "value": None, "before": "standard"})
        self.assertEqual((error["kind"], error["code"], error["text"]),
                         ("failed", None, "the modem took cpu-power max but reads back not understood"))

    def test_an_export_that_leaves_something_out(self):
        self.serve()
        self.control("set Nmea/FreqMs 300 --force")
        for text in ("export", "export FILE"):
            ran = self.ctl(*self.line(text), "--json", "--log", "/dev/null")
            self.assertEqual(ran.returncode, 3)
            document = self.checked(json.loads(ran.stdout), "export")
            self.assertEqual(document["error"]["kind"], "failed")

    def test_a_file_of_settings_that_is_wrong(self):
        self.serve()
        self.write("settings.json", {"settings": {"sbas": "maybe", "period": 3}})
        ran = self.ctl(*self.line("apply FILE --json"))
        self.assertEqual(ran.returncode, 2)
        error = self.checked(json.loads(ran.stdout), "failure")["error"]
        self.assertEqual((error["kind"], error["code"], len(error["notes"])), ("usage", None, 1))

    def test_streams_have_a_time_on_every_line_and_an_error_on_the_last(self):
        self.serve()
        for line, definition, happens in (("events", "events", "event 74 01ff"),
                                          ("lsta --watch", "lsta-watch", "lsta gps --status 3 --value 41.5"),
                                          ("gnss start --hold", "gnss-start", None)):
            program = self.start(*line.split(), "--json")
            if happens:
                run.wait_until(lambda: any(client["handler"] for client in self.status()["clients"]), "it listens")
                if "lsta" in line:
                    run.wait_until(lambda: self.status()["calls"].get("ARC_EnableLSTA", {}).get("count") == 4, "it watches")
                self.control(happens)
            program.wait_for(lambda: program.lines, "the first line")
            program.send(signal.SIGTERM)
            self.assertEqual(program.finish(), 130)
            *lines, last = map(json.loads, program.lines)
            self.assertGreater(len(lines), 0)
            for each in lines:
                self.checked(each, definition)
            error = self.checked(last, "failure")["error"]
            self.assertEqual((error["kind"], error["code"]), ("interrupted", None))
            self.assertTrue(error["text"].startswith("interrupted while "))
            run.wait_until(lambda: self.status()["clients"] == [], "the modem is closed")

    def test_what_tasks_shows_is_followed_by_the_commands_own_lines(self):
        self.serve()
        self.control("fail ARC_ResetAGNSS --code 16 --forever")
        *lines, last = self.ctl("tasks", "--json", "--log", "/dev/null", "gnss", "reset-assistance").stdout.splitlines()
        self.assertGreater(len(lines), 0)
        for line in lines:
            self.checked(json.loads(line), "tasks")
        self.assertEqual(self.checked(json.loads(last), "failure")["error"]["code"], 16)

    def test_a_log_that_cannot_be_written_is_told_as_json_too(self):
        self.serve()
        ran = self.ctl("versions", "--json", "--log", self.folder + "/no/log")
        self.assertEqual(ran.returncode, 3)
        self.assertEqual(self.checked(json.loads(ran.stdout), "failure")["error"]["kind"], "failed")


class Schema(ctl.CtlTest):
    def test_every_command_has_a_line_above(self):
        names = re.findall(r"(?m)^  ([a-z-]+) ", self.ctl("--help").stdout.partition("Subcommands:\n")[2])
        tried = {text.split()[0] for text, _, _ in COMMANDS}
        self.assertEqual(set(names) - tried, {"completion", "man", "monitor", "tasks"})  # the last two have tests above

    def test_a_member_of_another_name_or_kind_does_not_fit(self):
        good = {"utc": "2026-03-01T12:00:00.000Z", "setting": "sbas", "key": "Nmea/Sbas", "value": True}
        self.checked(good, "setting")
        for wrong in ({**good, "valu": 1}, {**good, "value": [1]}, {**good, "setting": "sbs"},
                      {**good, "utc": "2026-03-01 12:00:00"}, {"utc": good["utc"]}):
            with self.assertRaises(ctl.jsonschema.ValidationError):
                self.checked(wrong, "setting")


if __name__ == "__main__":
    ctl.main()

"""Wrong command lines are refused before the modem is touched, with what is accepted."""

import json

import ctl

TIMES = "a time as 500ms, 30s or 2m, from 1ms to 24h"
COMMANDS = ("status, versions, doctor, monitor, cpu-power, cpu-psm, format, dr-sync, system, sbas, period, "
            "min-elevation, raw-mask, raw-version, get, set, export, apply, gnss, lsta, events, at, logging, tasks, completion, man")
GROUPS = {"gnss": "start, stop, force-stop, reset-assistance", "lsta": "get, enable, disable",
          "system": "glonass, galileo, beidou, qzss"}
EVERY = "--help, --timeout, --json, --log, --log-level"
# setting, accepted, values that are not
VALUES = (
    ("cpu-power", "standard, max", ("std", "min", "1")),
    ("cpu-psm", "off, on", ("yes", "0", "true")),
    ("format", "nmea, raw", ("ubx", "1")),
    ("dr-sync", "off, on", ("1",)),
    ("system glonass", "off, on", ("1",)),
    ("system galileo", "off, on", ("enable",)),
    ("system beidou", "off, on", ("x",)),
    ("system qzss", "off, on", ("2",)),
    ("sbas", "off, on", ("waas",)),
    ("period", "1000, 500, 200, 100", ("300", "1s", "1000ms", "50")),
    ("min-elevation", "a whole number from 5 to 45", ("4", "46", "5.5", "+5", "05x", "260")),
    ("raw-mask", "a whole number from 0 to 255", ("256", "-1", "0x10", "99999999999")),
)


class Usage(ctl.CtlTest):
    def refused(self, arguments, command, message):
        with self.subTest(arguments):
            ran = self.ctl(*arguments)
            self.assertEqual((ran.returncode, ran.stderr),
                             (2, f"{command}: {message}\nRun '{command} --help' for more information.\n"))
            self.assertEqual(ran.stdout == "", "--json" not in arguments)

    def test_values_that_a_setting_does_not_have(self):
        for setting, accepted, values in VALUES:
            for value in values:
                self.refused([*setting.split(), "--", value], f"kelarcctl {setting}",
                             f"VALUE: '{value}' is not accepted; accepted: {accepted}")

    def test_what_cannot_be_written(self):
        self.refused(["raw-version", "3"], "kelarcctl raw-version", "unexpected: '3'")

    def test_values_that_were_nearly_right(self):
        for setting, given, nearest, accepted in (("cpu-power", "stan", "standard", "standard, max"),
                                                  ("cpu-power", "maxi", "max", "standard, max"),
                                                  ("sbas", "onn", "on", "off, on"),
                                                  ("system glonass", "of", "off", "off, on"),
                                                  ("format", "nema", "nmea", "nmea, raw")):
            self.refused([*setting.split(), given], f"kelarcctl {setting}",
                         f"VALUE: '{given}' is not accepted; did you mean {nearest}? accepted: {accepted}")
        self.refused(["versions", "--log-level", "warn"], "kelarcctl versions",
                     "--log-level: 'warn' is not accepted; did you mean warning? accepted: info, busy, warning, error")

    def test_times(self):
        for given in ("soon", "5", "0s", "25h", "-1s", "1d", "1 s", ""):
            for command, option in (("versions", "--timeout"), ("events", "--for"), ("lsta enable gps", "--for")):
                self.refused([*command.split(), option, given], f"kelarcctl {command.replace(' gps', '')}",
                             f"{option}: '{given}' is not accepted; accepted: {TIMES}")

    def test_counts(self):
        for given in ("0", "-1", "1.5", "many", "1000000000", ""):
            self.refused(["events", "--count", given], "kelarcctl events",
                         f"--count: '{given}' is not accepted; accepted: a whole number from 1 to 999999999")
        self.refused(["lsta", "enable", "gps", "--count", "1"], "kelarcctl lsta enable", "--count requires --watch")
        self.refused(["lsta", "enable", "gps", "--for", "1s"], "kelarcctl lsta enable", "--for requires --watch")

    def test_times_that_are_accepted(self):
        for given in ("1ms", "1.5s", "2m", "24h"):
            self.assertNotEqual(self.ctl("versions", "--timeout", given).returncode, 2, given)

    def test_where_the_log_goes(self):
        self.refused(["versions", "--log", ""], "kelarcctl versions",
                     "--log: '' is not accepted; accepted: stderr, journal or the path of a file")
        for given in ("debug", "2", ""):
            self.refused(["versions", "--log-level", given], "kelarcctl versions",
                         f"--log-level: '{given}' is not accepted; accepted: info, busy, warning, error")

    def test_systems_of_lsta(self):
        for command in ("get", "enable", "disable"):
            self.refused(["lsta", command, "qzss"], f"kelarcctl lsta {command}",
                         "SYSTEM: 'qzss' is not accepted; accepted: gps, glonass, beidou, galileo, all")
            self.refused(["lsta", command, "gps", "glonas"], f"kelarcctl lsta {command}",
                         "SYSTEM: 'glonas' is not accepted; did you mean glonass? "
                         "accepted: gps, glonass, beidou, galileo, all")
        self.refused(["lsta", "enable", "gps", "--parameter", "much"], "kelarcctl lsta enable",
                     "--parameter: 'much' is not accepted; accepted: a whole number from -2147483648 to 2147483647")
        self.refused(["lsta", "get"], "kelarcctl lsta get", "SYSTEM is required")

    def test_what_is_missing(self):
        self.refused([], "kelarcctl", "a command is missing; accepted: " + COMMANDS)
        for group, commands in GROUPS.items():
            self.refused([group], f"kelarcctl {group}", f"a command is missing; accepted: {commands}")
        self.refused(["get"], "kelarcctl get", "KEY is required")
        self.refused(["set", "Power/Cpu"], "kelarcctl set", "VALUE is required")
        self.refused(["at"], "kelarcctl at", "COMMAND is required")
        self.refused(["logging", "1"], "kelarcctl logging", "TEXT is required")
        self.refused(["logging", "one", "x"], "kelarcctl logging",
                     "ZONE: 'one' is not accepted; accepted: a whole number from -2147483648 to 2147483647")
        self.refused(["apply"], "kelarcctl apply", "FILE is required")

    def test_what_is_not_known(self):
        for given in ("frobnicate", ""):
            self.refused([given], "kelarcctl", f"unknown command '{given}'; accepted: {COMMANDS}")
        for given, nearest in (("stauts", "status"), ("doc", "doctor"), ("event", "events")):
            self.refused([given], "kelarcctl", f"unknown command '{given}'; did you mean {nearest}? "
                                               f"accepted: {COMMANDS}")
        for group, commands in GROUPS.items():
            self.refused([group, "frobnicate"], f"kelarcctl {group}",
                         f"unknown command 'frobnicate'; accepted: {commands}")
        self.refused(["gnss", "sotp"], "kelarcctl gnss",
                     f"unknown command 'sotp'; did you mean stop? accepted: {GROUPS['gnss']}")
        self.refused(["--json", "status"], "kelarcctl", "'--json' comes before the command; options come after it")
        self.refused(["gnss", "--json", "stop"], "kelarcctl gnss",
                     "'--json' comes before the command; options come after it")
        self.refused(["status", "--quick"], "kelarcctl status", f"unknown option '--quick'; accepted: {EVERY}")
        self.refused(["status", "--jsn"], "kelarcctl status",
                     f"unknown option '--jsn'; did you mean --json? accepted: {EVERY}")
        self.refused(["status", "now"], "kelarcctl status", "unexpected: 'now'")

    def test_wrong_words_are_answered_as_json_too(self):
        for arguments, text in ((["sbas", "maybe", "--json"],
                                 "kelarcctl sbas: VALUE: 'maybe' is not accepted; accepted: off, on"),
                                (["tasks", "--json", "sbas", "maybe"],
                                 "kelarcctl sbas: VALUE: 'maybe' is not accepted; accepted: off, on"),
                                (["frobnicate", "--json"],
                                 f"kelarcctl: unknown command 'frobnicate'; accepted: {COMMANDS}")):
            ran = self.ctl(*arguments)
            self.assertEqual(ran.returncode, 2)
            self.assertEqual(ran.stderr.splitlines()[0], text)
            error = self.checked(json.loads(ran.stdout), "failure")["error"]
            self.assertEqual((error["kind"], error["code"], error["text"]), ("usage", None, text))

    def test_what_is_repeated_is_cut_and_steers_no_terminal(self):
        long, steering = "x" * 100_000, "\x1b[31m\x07\r\n\x9b"
        for command in ([], ["status"], ["sbas"], ["lsta", "get"], ["versions", "--timeout"], ["versions", "--log-level"],
                        ["logging"], ["gnss"], ["raw-version"], ["lsta", "enable", "gps", "--parameter"],
                        ["tasks"], ["apply"]):
            for given in (long, steering + "y", "-" + steering, "--" + long):
                ran = self.ctl(*command, given)
                with self.subTest(command=command, given=given[:10]):
                    self.assertNotEqual(ran.returncode, 0)
                    self.assertLess(len(ran.stderr), 2000)
                    self.assertEqual(ran.stdout, "")
                    self.assertNotRegex(ran.stderr, "[^\n -~]")
        self.assertLess(len(self.ctl("versions", "--log", long).stderr), 2000)

    def test_words_are_taken_in_any_case(self):
        self.scenario()
        for line in ("STATUS", "Versions", "GNSS Reset-Assistance", "System GLONASS Off", "LSTA GET Gps", "sbas ON",
                     "versions --log STDERR", "versions --log-level INFO --log /dev/null", "versions --timeout 9S",
                     "LSTA --watch --for 50MS", "TASKS Versions"):
            self.assertEqual(self.ctl(*line.split()).returncode, 0, line)

    def test_what_tasks_cannot_look_at(self):
        for command in ("doctor", "monitor", "tasks"):
            ran = self.ctl("tasks", command)
            self.assertEqual((ran.returncode, ran.stdout, ran.stderr),
                             (2, "", f"kelarcctl tasks: '{command}' cannot be looked at; accepted: commands that make "
                                     "requests\n"))
        self.refused(["tasks", "stauts"], "kelarcctl",
                     f"unknown command 'stauts'; did you mean status? accepted: {COMMANDS}")
        self.refused(["tasks", "sbas", "maybe"], "kelarcctl sbas",
                     "VALUE: 'maybe' is not accepted; accepted: off, on")

    def test_help_names_every_command_and_the_exit_codes(self):
        text = self.says("--help")
        for command in COMMANDS.split(", "):
            self.assertRegex(text, f"(?m)^  {command} ")
        self.assertRegex(text, r"(?s)\nExit codes:\n  0    success\n  2    the command line.*\n  130  interrupted")
        self.assertIn("off, on", self.says("sbas --help"))
        self.assertEqual(self.says("--version"), "kelarcctl 0.1")


if __name__ == "__main__":
    ctl.main()

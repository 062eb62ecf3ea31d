"""Wrong command lines are refused before the modem is touched, with what is accepted."""

import ctl

TIMES = "a time as 500ms, 30s or 2m, from 1ms to 24h"
COMMANDS = ("status, versions, cpu-power, cpu-psm, format, dr-sync, system, sbas, period, min-elevation, raw-mask, "
            "raw-version, get, set, gnss, lsta, at, logging")
GROUPS = {"gnss": "start, stop, force-stop, reset-assistance", "lsta": "get", "system": "glonass, galileo, beidou, qzss"}
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
            self.assertEqual((ran.returncode, ran.stdout, ran.stderr),
                             (2, "", f"{command}: {message}\nRun '{command} --help' for more information.\n"))

    def test_values_that_a_setting_does_not_have(self):
        for setting, accepted, values in VALUES:
            for value in values:
                self.refused([*setting.split(), "--", value], f"kelarcctl {setting}",
                             f"VALUE: '{value}' is not accepted; accepted: {accepted}")

    def test_what_cannot_be_written(self):
        self.refused(["raw-version", "3"], "kelarcctl raw-version", "The following argument was not expected: 3")

    def test_times(self):
        for given in ("soon", "5", "0s", "25h", "-1s", "1d", "1 s", ""):
            self.refused(["versions", "--timeout", given], "kelarcctl versions",
                         f"--timeout: '{given}' is not accepted; accepted: {TIMES}")
        for given in ("1ms", "1.5s", "2m", "24h"):
            self.assertNotEqual(self.ctl("versions", "--timeout", given).returncode, 2, given)

    def test_where_the_log_goes(self):
        self.refused(["versions", "--log", ""], "kelarcctl versions",
                     "--log: '' is not accepted; accepted: stderr, journal or the path of a file")
        for given in ("debug", "2", ""):
            self.refused(["versions", "--log-level", given], "kelarcctl versions",
                         f"--log-level: '{given}' is not accepted; accepted: info, busy, warning, error")

    def test_systems_of_lsta(self):
        for given in ("qzss", "all", "GPS"):
            self.refused(["lsta", "get", given], "kelarcctl lsta get",
                         f"SYSTEM: '{given}' is not accepted; accepted: gps, glonass, beidou, galileo")
        self.refused(["lsta", "get"], "kelarcctl lsta get", "SYSTEM is required")

    def test_what_is_missing(self):
        self.refused([], "kelarcctl", "a command is missing; accepted: " + COMMANDS)
        for group, commands in GROUPS.items():
            self.refused([group], "kelarcctl", f"a command is missing; accepted: {commands}")
        self.refused(["get"], "kelarcctl get", "KEY is required")
        self.refused(["set", "Power/Cpu"], "kelarcctl set", "VALUE is required")
        self.refused(["at"], "kelarcctl at", "COMMAND is required")
        self.refused(["logging", "1"], "kelarcctl logging", "TEXT is required")

    def test_what_is_not_known(self):
        for given in ("stauts", "Status", ""):
            self.refused([given], "kelarcctl", f"unknown command '{given}'; accepted: {COMMANDS}")
        for group, commands in GROUPS.items():
            self.refused([group, "x"], "kelarcctl", f"unknown command 'x'; accepted: {commands}")
        self.refused(["--json", "status"], "kelarcctl", "'--json' comes before the command; options come after it")
        self.refused(["status", "--quick"], "kelarcctl status", "The following argument was not expected: --quick")

    def test_help_names_every_command_and_the_exit_codes(self):
        text = self.says("--help")
        for command in ("status", "versions", "cpu-power", "cpu-psm", "format", "dr-sync", "system", "sbas", "period",
                        "min-elevation", "raw-mask", "raw-version", "get", "set", "gnss", "lsta", "at", "logging"):
            self.assertRegex(text, f"(?m)^  {command} ")
        self.assertIn("Exit codes: 0 success, 2 usage, 3 the modem refused, 4 no answer in time, 130 interrupted.", text)
        self.assertIn("off, on", self.says("sbas --help"))
        self.assertEqual(self.says("--version"), "kelarcctl 0.1")


if __name__ == "__main__":
    ctl.main()

"""What is wrong is found, with the next step, from the client library to the fix."""

import ctl
import run

CHECKS = ["client library", "RIL daemon", "open", "settings readable", "settings plausible", "raw output",
          "sentences arrive", "sentences correct", "satellites in view", "signal", "fix"]


class Doctor(ctl.CtlTest):
    def setUp(self):
        super().setUp()
        self.daemon = self.serve()

    def findings(self, *options, code=0, timeout="60s"):
        ran = self.ctl("doctor", "--json", "--timeout", timeout, "--log", "/dev/null", *options)
        self.assertEqual((ran.returncode, ran.stderr), (code, ""), ran.stdout)
        document = ctl.json.loads(ran.stdout)
        self.assertEqual([check["check"] for check in document["checks"]], CHECKS)
        return document["healthy"], {check["check"]: check for check in document["checks"]}

    def states(self, checks):
        return " ".join({"ok": ".", "warning": "w", "failed": "F", "skipped": "-"}[checks[name]["state"]]
                        for name in CHECKS).replace(" ", "")

    def assert_problem(self, check, reason, following):
        self.assertIn({"reason": reason, "next": following}, check["problems"])

    def test_nothing_is_wrong(self):
        healthy, checks = self.findings()
        self.assertEqual((healthy, self.states(checks)), (True, "..........."))
        self.assertRegex(checks["client library"]["detail"], r"^ArcRilD 1\.0 \(simulated\), /.*/libArcRilD\.so$")
        self.assertEqual(checks["settings readable"]["detail"], "13 of 13")
        self.assertEqual(checks["raw output"]["detail"], self.socket + ".nmea")
        self.assertRegex(checks["satellites in view"]["detail"], r"^GPS \d+, GLONASS \d+, Galileo \d+, BeiDou \d+$")
        self.assertRegex(checks["signal"]["detail"], r"^\d+ of \d+ satellites heard, mean C/N0 \d\d dB-Hz$")
        self.assertRegex(checks["fix"]["detail"], r"^[23]D, latitude \d+\.\d{5}, longitude \d+\.\d{5}, \d+ satellites")
        run.wait_until(lambda: self.status()["clients"] == [], "the modem is closed")

    def test_for_people(self):
        self.control("set Engine/Glonass 0")
        ran = self.ctl("doctor", "--timeout", "60s")
        self.assertEqual((ran.returncode, ran.stderr), (0, ""))
        lines = ran.stdout.splitlines()
        self.assertRegex(lines[0], r"^client library      ok       ArcRilD 1\.0")
        self.assertEqual(lines[2:7], ["open                ok", "settings readable   ok       13 of 13",
                                      "settings plausible  warning", "                    GLONASS is off",
                                      "                    -> kelarcctl system glonass on"])
        self.assertEqual(lines[-1], "0 failed, 1 warned.")
        self.control("set Engine/Glonass 1")
        self.assertEqual(self.ctl("doctor", "--timeout", "60s").stdout.splitlines()[-1], "Nothing is wrong.")

    def test_a_dead_daemon(self):
        self.daemon.kill()
        healthy, checks = self.findings(code=3)
        self.assertEqual((healthy, self.states(checks)), (False, ".F---------"))
        self.assert_problem(checks["RIL daemon"],
                            "Error in connection between library and RIL daemon or RIL daemon not running (31)",
                            "see whether the RIL daemon runs and the modem is powered; start it, and run this again")

    def test_a_modem_that_does_not_open(self):
        self.control("fail ARC_Open --code 21 --forever")
        _, checks = self.findings(code=3, timeout="5s")
        self.assertEqual(self.states(checks), "..F--------")
        self.assert_problem(checks["open"], "the modem does not open: A requested service has been denied (21)",
                            "see whether another program holds the modem; restart the RIL daemon")

    def test_an_opening_that_is_not_answered(self):
        self.control("hang ARC_Open --forever")
        _, checks = self.findings(code=3, timeout="5s")
        self.assertEqual(self.states(checks), "..F--------")
        self.assert_problem(checks["open"], "the call that opens the modem is not answered",
                            "see whether another program holds the modem; restart the RIL daemon")

    def test_a_setting_that_cannot_be_read(self):
        self.control("fail ARC_CheckModuleSetting --code 16 --times 15")
        _, checks = self.findings(code=3)
        self.assertEqual(self.states(checks)[:4], "...F")
        self.assertEqual(checks["settings readable"]["detail"], "12 of 13")
        self.assert_problem(checks["settings readable"],
                            "cpu-power: The requested information cannot be found (16)", "kelarcctl get Power/Cpu")

    def test_settings_that_cost_satellites(self):
        self.control("set Engine/Glonass 0")
        self.control("set Engine/Galileo 0")
        self.control("set Engine/Beidou 0")
        self.control("set Sens/MinElevAngle 21")
        _, checks = self.findings()
        plausible = checks["settings plausible"]
        self.assertEqual((self.states(checks)[:5], plausible["state"]), ("....w", "warning"))
        self.assertEqual([(each["reason"], each["next"]) for each in plausible["problems"]],
                         [("GLONASS is off", "kelarcctl system glonass on"),
                          ("Galileo is off", "kelarcctl system galileo on"),
                          ("BeiDou is off", "kelarcctl system beidou on"),
                          ("satellites below 21 degrees are not used", "kelarcctl min-elevation 5")])
        self.assertRegex(checks["satellites in view"]["detail"], r"^GPS \d+, GLONASS off, Galileo off, BeiDou off$")
        self.control("set Sens/MinElevAngle 20")
        _, checks = self.findings()
        self.assertEqual(len(checks["settings plausible"]["problems"]), 3)

    def test_a_setting_that_is_not_understood(self):
        self.control("set Nmea/FreqMs 300 --force")
        _, checks = self.findings()
        self.assert_problem(checks["settings plausible"], "period has a value that is not understood",
                            "kelarcctl get Nmea/FreqMs; then kelarcctl period with one of: 1000, 500, 200, 100")

    def test_raw_data_instead_of_sentences(self):
        self.control("set Nmea/Data/Format Raw")
        _, checks = self.findings(code=3)
        self.assertEqual(self.states(checks), "....w.F----")
        self.assert_problem(checks["settings plausible"], "the output is raw data, no sentences",
                            "kelarcctl format nmea")
        self.assert_problem(checks["sentences arrive"],
                            f"what comes from {self.socket}.nmea is raw data", "kelarcctl format nmea")

    def test_an_output_that_does_not_start(self):
        self.control("fail ARC_StartGNSSraw --code 21 --forever")
        _, checks = self.findings(code=3, timeout="5s")
        self.assertEqual(self.states(checks), ".....F-----")
        problem = checks["raw output"]["problems"][0]
        self.assertRegex(problem["reason"], r"^no answer within \d+ ms while starting the raw output; running: kelarc")
        self.assertEqual(problem["next"],
                         "the modem is busy or hangs: kelarcctl tasks shows the request; restart the RIL daemon")

    def test_a_device_that_cannot_be_opened(self):
        self.control("fail ARC_StartGNSSraw --times 1 --reply-length 200")
        _, checks = self.findings(code=3)
        self.assertEqual(self.states(checks), "......F----")
        self.assertRegex(checks["sentences arrive"]["problems"][0]["reason"],
                         f"^cannot open the receiver's device '{self.socket}.*': No such file or directory$")

    def test_a_jammed_system(self):
        self.control("jam galileo")
        _, checks = self.findings(timeout="10s")
        self.assertEqual(self.states(checks), ".........w.")
        self.assertRegex(checks["signal"]["problems"][0]["reason"],
                         r"^Galileo: \d+ satellites in view and none is heard: its band may be jammed$")
        self.assertEqual(len(checks["signal"]["problems"]), 1)

    def test_a_jammed_receiver(self):
        self.control("jam all")
        _, checks = self.findings(code=3, timeout="8s")
        self.assertEqual(self.states(checks), ".........FF")
        self.assertEqual(checks["signal"]["problems"][0]["reason"],
                         "satellites are in view and none is heard: no antenna, or jamming")
        self.assertRegex(checks["fix"]["problems"][0]["reason"],
                         r"^none in \d+ s; 0 satellites heard, and 4 are needed$")
        self.assertEqual(checks["fix"]["problems"][0]["next"], "see to the signal first")

    def test_no_fix_yet(self):
        self.control("no-fix 10m")
        _, checks = self.findings(code=3, timeout="8s")
        self.assertEqual(checks["fix"]["state"], "failed")
        self.assertRegex(checks["fix"]["problems"][0]["reason"],
                         r"^none in \d+ s; \d+ satellites heard, and 4 are needed$")

    def test_an_interrupted_run_closes_the_modem(self):
        self.control("hang ARC_StartGNSSraw --forever")
        program = self.start("doctor")
        run.wait_until(lambda: self.status()["hanging"] == 1, "the call hangs")
        program.send(run.SIGINT)
        self.assertEqual(program.finish(), 130)
        self.assertIn("raw output", CHECKS)
        self.assertEqual(program.errors(), "kelarcctl: interrupted while starting the raw output\n")


class OnAModemOfItsOwn(ctl.CtlTest):
    def test_nothing_is_wrong(self):
        ran = self.ctl("doctor", "--timeout", "60s")
        self.assertEqual((ran.returncode, ran.stdout.splitlines()[-1]), (0, "Nothing is wrong."), ran.stdout)


if __name__ == "__main__":
    ctl.main()

"""The doctor finds every problem from the client library to the fix, and names the next step."""

import os
import subprocess

import ctl
import run

CHECKS = ["client library", "RIL daemon", "open", "settings readable", "settings plausible", "raw output",
          "sentences arrive", "sentences correct", "satellites in view", "signal", "fix"]
DENIED = ("The RIL daemon or the modem does not let this process do it.",
          "Run the program as a user who may use the RIL daemon; else find out who has locked the function.")


class Doctor(ctl.CtlTest):
    def setUp(self):
        super().setUp()
        self.daemon = self.serve()

    def findings(self, *options, code=0, timeout="60s"):
        ran = self.ctl("doctor", "--json", "--timeout", timeout, "--log", "/dev/null", *options)
        self.assertEqual((ran.returncode, ran.stderr), (code, ""), ran.stdout)
        document = self.checked(ctl.json.loads(ran.stdout), "doctor")
        self.assertEqual("error" in document, code != 0)
        self.assertEqual([check["check"] for check in document["checks"]], CHECKS)
        return document["healthy"], {check["check"]: check for check in document["checks"]}

    def states(self, checks):
        return " ".join({"ok": ".", "warning": "w", "failed": "F", "skipped": "-"}[checks[name]["state"]]
                        for name in CHECKS).replace(" ", "")

    def assert_problem(self, check, reason, following):
        self.assertIn((reason, following), [(each["text"], each["next"]) for each in check["problems"]])

    def assert_trouble(self, check, code, text, cause, following):
        """One that the modem's code has told; the text as a pattern."""
        problem = check["problems"][0]
        self.assertEqual((problem["error"]["code"], problem["error"]["cause"], problem["error"]["next"]),
                         (code, cause, following))
        self.assertRegex(problem["error"]["text"], f"^{text}$")
        self.assertEqual((problem["text"], problem["next"]), (f"{problem['error']['text']}. {cause}", following))

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
        self.assert_trouble(checks["RIL daemon"], 31,
                            r"opening the modem failed \d+ times: Error in connection between library and RIL daemon or "
                            r"RIL daemon not running \(31\)",
                            "The RIL daemon does not run, or the connection to it is broken.",
                            "Start the RIL daemon, or find out from its log why it ended.")

    def test_a_modem_that_does_not_open(self):
        self.control("fail ARC_Open --code 21 --forever")
        _, checks = self.findings(code=3, timeout="5s")
        self.assertEqual(self.states(checks), "..F--------")
        self.assert_trouble(checks["open"], 21,
                            r"opening the modem failed \d+ times: A requested service has been denied \(21\)", *DENIED)

    def test_a_daemon_of_another_release(self):
        self.control("fail ARC_Open --code 34 --forever")
        _, checks = self.findings(code=3, timeout="5s")
        self.assertEqual(self.states(checks), ".F---------")
        self.assert_trouble(checks["RIL daemon"], 34,
                            r"opening the modem failed \d+ times: Version of ARC library is not supported by RIL daemon "
                            r"\(34\)",
                            "The client library and the RIL daemon are of releases that do not belong together.",
                            "Install a client library and a RIL daemon of the same release.")

    def test_a_modem_that_is_off(self):
        self.control("fail ARC_Open --code 3 --forever")
        _, checks = self.findings(code=3, timeout="5s")
        self.assertEqual(self.states(checks), "..F--------")
        self.assert_trouble(checks["open"], 3, r"opening the modem failed \d+ times: Command cannot be executed because "
                            r"the module is off or in power state transition \(3\)",
                            "The modem is off, or on its way up or down.", "Switch the modem on and wait until it is up.")

    def test_a_daemon_that_does_not_let_this_user_in(self):
        ran = self.as_a_stranger("doctor", "--json", "--log", "/dev/null")
        self.assertEqual((ran.returncode, ran.stderr), (3, ""))
        checks = {check["check"]: check for check in self.checked(ctl.json.loads(ran.stdout), "doctor")["checks"]}
        self.assertEqual(self.states(checks), ".F---------")
        self.assert_trouble(checks["RIL daemon"], 21,
                            r"opening the modem failed \d+ times: A requested service has been denied \(21\)", *DENIED)

    def test_a_modem_that_is_late(self):
        self.control("delay ARC_Open 1500ms")
        self.control("fail ARC_Open --code 2 --forever")
        _, checks = self.findings(code=3, timeout="7s")
        self.assertEqual(self.states(checks), "..F--------")
        self.assertRegex(checks["open"]["problems"][0]["text"],
                         r"^opening the modem failed [2-4] times: Timeout while waiting for module response \(2\); each "
                         r"answer was late, the last by 1\d{3} ms\. The modem does not answer")

    def test_an_opening_that_is_not_answered(self):
        self.control("hang ARC_Open --forever")
        _, checks = self.findings(code=3, timeout="5s")
        self.assertEqual(self.states(checks), "..F--------")
        problem = checks["open"]["problems"][0]
        self.assertEqual((problem["error"]["kind"], problem["error"]["code"]), ("silent", None))
        self.assertRegex(problem["text"], r"^opening the modem: ARC_Open\(\) has not returned for [45]\d{3} ms\. The "
                                          r"call hangs in the client library, in the RIL daemon or in the modem\.$")
        self.assertEqual(problem["next"], "Restart the RIL daemon, then the modem; run this again.")

    def test_a_setting_that_cannot_be_read(self):
        self.control("fail ARC_CheckModuleSetting --code 16 --times 15")
        _, checks = self.findings(code=3)
        self.assertEqual(self.states(checks)[:4], "...F")
        self.assertEqual(checks["settings readable"]["detail"], "12 of 13")
        self.assert_trouble(checks["settings readable"], 16,
                            r"reading cpu-power failed 15 times: The requested information cannot be found \(16\)",
                            "This modem has no such setting, or nothing to tell about it.",
                            "Compare the call with the modem's manual.")

    def test_settings_that_cost_satellites(self):
        self.control("set Engine/Glonass 0")
        self.control("set Engine/Galileo 0")
        self.control("set Engine/Beidou 0")
        self.control("set Sens/MinElevAngle 21")
        _, checks = self.findings()
        plausible = checks["settings plausible"]
        self.assertEqual((self.states(checks)[:5], plausible["state"]), ("....w", "warning"))
        self.assertEqual([(each["text"], each["next"]) for each in plausible["problems"]],
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
        self.assert_trouble(checks["raw output"], 21,
                            r"starting the raw output failed \d+ times: A requested service has been denied \(21\)",
                            *DENIED)

    def test_a_device_that_cannot_be_opened(self):
        self.control("fail ARC_StartGNSSraw --times 1 --reply-length 200")
        _, checks = self.findings(code=3)
        self.assertEqual(self.states(checks), "......F----")
        self.assertRegex(checks["sentences arrive"]["problems"][0]["text"],
                         f"^cannot open the receiver's device '{self.socket}.*': No such file or directory$")

    def test_a_jammed_system(self):
        self.control("jam galileo")
        _, checks = self.findings(timeout="10s")
        self.assertEqual(self.states(checks), ".........w.")
        self.assertRegex(checks["signal"]["problems"][0]["text"],
                         r"^Galileo: \d+ satellites in view and none is heard: its band may be jammed$")
        self.assertEqual(len(checks["signal"]["problems"]), 1)

    def test_a_jammed_receiver(self):
        self.control("jam all")
        _, checks = self.findings(code=3, timeout="8s")
        self.assertEqual(self.states(checks), ".........FF")
        self.assertEqual(checks["signal"]["problems"][0]["text"],
                         "satellites are in view and none is heard: no antenna, or jamming")
        self.assertRegex(checks["fix"]["problems"][0]["text"],
                         r"^none in \d+ s; 0 satellites heard, and 4 are needed$")
        self.assertEqual(checks["fix"]["problems"][0]["next"], "see to the signal first")

    def test_no_fix_yet(self):
        self.control("no-fix 10m")
        _, checks = self.findings(code=3, timeout="8s")
        self.assertEqual(checks["fix"]["state"], "failed")
        self.assertRegex(checks["fix"]["problems"][0]["text"],
                         r"^none in \d s; \d+ satellites heard, and 4 are needed; too early to tell, since a cold start "
                         r"takes up to a minute$")
        self.assertEqual(checks["fix"]["problems"][0]["next"], "give it more time: kelarcctl doctor --timeout 3m")

    def test_no_fix_for_longer_than_a_cold_start_takes(self):
        ran = subprocess.run([os.environ["ARCSIM"], "play", self.scenario(noFix=[{"fromMs": 0, "untilMs": 600_000}]), "--for", "3m"],
                             stdout=subprocess.PIPE, check=True, timeout=run.LIMIT_S)
        path = os.path.join(self.folder, "lasting.nmea")
        with open(path, "wb") as file:
            file.write(ran.stdout)
        self.control("stop")
        self.daemon.finish()
        self.serve(scenario=self.scenario(replay={"file": path, "speed": 10}))
        _, checks = self.findings(code=3, timeout="12s")
        self.assertRegex(checks["fix"]["problems"][0]["text"],
                         r"^none in \d+ s; \d+ satellites heard, and 4 are needed; no cold start takes that long$")
        self.assertEqual(checks["fix"]["problems"][0]["next"],
                         "kelarcctl gnss reset-assistance, then this again; if it stays, somebody sends false signals or "
                         "the receiver is defective: ask the modem's maker")

    def test_an_interrupted_run_closes_the_modem(self):
        self.control("hang ARC_StartGNSSraw --forever")
        program = self.start("doctor")
        run.wait_until(lambda: self.status()["hanging"] == 1, "the call hangs")
        program.send(run.SIGINT)
        self.assertEqual(program.finish(), 130)
        self.assertIn("raw output", CHECKS)
        self.assertTrue(program.errors().startswith("kelarcctl: interrupted while starting the raw output\n"))


class OnAModemOfItsOwn(ctl.CtlTest):
    def test_nothing_is_wrong(self):
        ran = self.ctl("doctor", "--timeout", "60s")
        self.assertEqual((ran.returncode, ran.stdout.splitlines()[-1]), (0, "Nothing is wrong."), ran.stdout)


if __name__ == "__main__":
    ctl.main()

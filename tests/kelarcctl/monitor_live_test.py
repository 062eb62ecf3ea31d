"""What the monitor's keys do, and what becomes of it when the modem or its daemon misbehaves."""

import json
import os
import re
import subprocess

import ctl
import run
from monitoring import MonitorTest
from programs import LIMIT_S

GARBAGE = b"no sentence\r\n$GNRMC,030000.00,wrong*00\r\n\x01\x02\xff\r\n"


class Live(MonitorTest):
    def setUp(self):
        super().setUp()
        self.daemon = self.serve()

    def test_keys_and_sizes(self):
        shown = self.monitor()
        shown.wait_for("3D fix")
        shown.keys("Tab")
        shown.wait_for("positions, ")
        shown.keys("BTab")
        shown.wait_for("G used  g tracked")
        shown.keys("?")
        shown.wait_for("number, elevation and azimuth")
        shown.keys("1")
        shown.resize(79, 24)
        self.assertEqual(shown.wait_for("needs").split("\n")[0], "The monitor needs 80x24; this is 79x24.")
        shown.resize(20, 3)
        shown.wait_for("The monitor needs")
        shown.resize(160, 50)
        shown.wait_for(" 0 All ")
        shown.keys("0")
        shown.wait_for("Tasks and log")
        shown.resize(100, 30)
        shown.wait_for("G used  g tracked")
        shown.keys("q")
        shown.wait_for("exit 0")
        self.assert_restored(shown)
        self.assert_no_clients()

    def test_a_pause_holds_the_screen_only(self):
        shown = self.monitor()
        shown.wait_for("3D fix")
        shown.keys("p")
        before = shown.wait_for("PAUSED").split("\n")[0]
        paused = self.status()["scenarioMs"]
        self.control("event 75 0102")
        shown.keys("5")
        shown.wait_for("Notifications")
        run.wait_until(lambda: self.status()["scenarioMs"] > paused + 2000, "time has passed")
        self.assertEqual(shown.screen().split("\n")[0], before)
        self.assertNotIn("event 75", shown.screen())
        shown.keys("p")
        self.assertNotIn("PAUSED", shown.wait_for("event 75, 2 bytes: 0102"))

    def test_a_setting_arrives_at_the_modem(self):
        shown = self.monitor()
        shown.wait_for("3D fix")
        shown.keys("s")
        shown.wait_for("^> cpu-power +standard")
        shown.keys("Enter")
        shown.wait_for(r"^> cpu-power +\[standard\] max")
        shown.keys("Right", "Enter")
        shown.wait_for("cpu-power is now max")
        self.assertEqual(self.status()["settings"]["Power/Cpu"], "max")
        for _ in range(10):
            shown.keys("Down")
        shown.wait_for("^> min-elevation +5")
        shown.keys("Enter")
        shown.wait_for(r"^> min-elevation +\[5\]  \(a whole number from 5 to 45\)")
        shown.keys("5", "0", "Enter")
        shown.wait_for("'50' is not accepted; accepted: a whole number from 5 to 45")
        shown.keys("BSpace", "BSpace", "3", "1", "Left", "Enter")
        shown.wait_for("min-elevation is now 30")
        shown.keys("Enter")
        for key, shown_value in (("PageUp", "40"), ("End", "45"), ("DC", ""), ("Home", "5"), ("PageDown", "5")):
            shown.keys(key)
            shown.wait_for(rf"^> min-elevation +\[?{shown_value}[\]_]  \(a whole")
        shown.keys("C-u")
        shown.wait_for(r"^> min-elevation +_  \(a whole")
        shown.keys("Escape", "Home")
        shown.wait_for("^> cpu-power +max")
        self.assertEqual(self.status()["settings"]["Sens/MinElevAngle"], "30")
        shown.keys("Escape")
        shown.wait_for("1-6 Tab panel")

    def test_a_refused_setting_is_shown_with_the_reason(self):
        shown = self.monitor()
        shown.wait_for("3D fix")
        self.control("fail ARC_CheckModuleSetting --code 21 --forever")
        shown.keys("s", "Enter", "Right", "Enter")
        shown.wait_for(r"the modem refused cpu-power max: A requested service has been denied \(21\)")
        self.control("clear")
        shown.wait_for("cpu-power +standard")

    def test_a_system_that_others_switch_off_is_marked(self):
        shown = self.monitor()
        shown.wait_for(r"GAL +\d+/\d+ +\d\d\.\d")
        self.control("set Engine/Galileo 0")
        shown.wait_for("GAL off")

    def test_a_jammed_system_drops_and_is_lost(self):
        shown = self.monitor()
        shown.wait_for(r"GPS +\d+/\d+ +\d\d\.\d")
        shown.keys("5")
        shown.wait_for("LSTA of gps: status 1")
        shown.keys("1")
        self.control("jam gps")
        shown.wait_for("GPS +0/.* LOST")
        shown.keys("2")
        shown.wait_for("GPS +LOST")
        shown.wait_for("\u2588\u2581|[\u2582-\u2588]\u2581")
        shown.keys("5")
        shown.wait_for("LSTA of gps: status 0")

    def test_output_is_stopped_and_started(self):
        shown = self.monitor()
        shown.wait_for("3D fix")
        shown.keys("x")
        shown.wait_for(r"^3D fix .* deg  \d+ s ago\nthe output is off")
        self.assertEqual(self.status()["engine"], "off")
        shown.keys("g")
        shown.wait_for("output on ")
        self.assertEqual(self.status()["engine"], "running")

    def test_a_daemon_that_dies_and_comes_back(self):
        shown = self.monitor()
        shown.wait_for("3D fix")
        self.daemon.kill()
        shown.wait_for(r"NO DAEMON for \d+ s \(31\).*\n3D fix .* deg  \d+ s ago")
        shown.keys("3")
        shown.wait_for(r"^Settings  \d+ s old")
        shown.keys("4")
        shown.wait_for(r"Running +kelarc/KelArc.141: ARC_Open\(\)\n +attempt \d+, without limit; last: Error")
        self.serve("--fresh")
        shown.wait_for("output on ")
        shown.keys("1")
        shown.wait_for(r"3D fix")
        run.wait_until(lambda: self.calls("ARC_EnableLSTA") == 4, "LSTA is reported again")
        run.wait_until(lambda: self.calls("ARC_RegisterNotification") == 1, "so are events")
        self.control("event 22 6a616d6d696e6700")
        shown.keys("5")
        shown.wait_for(r'event 22, 8 bytes: 6a616d6d696e6700 "jamming"')

    def test_a_daemon_that_comes_back_is_told_everything_anew_in_the_guides_order(self):
        program = self.start("monitor", "--json", "--log", "/dev/null")

        def lines(kind, **members):
            return [line for line in map(json.loads, list(program.lines)) if {"type": kind, **members}.items() <= line.items()]
        program.wait_for(lambda: lines("output", state="running"), "the output")
        self.daemon.kill()
        program.wait_for(lambda: lines("link", state="no daemon"), "the daemon is missed")
        program.wait_for(lambda: lines("result", call="ARC_Open()", code=31), "the modem is being opened again")
        before = len(program.lines)
        self.serve("--fresh")
        program.wait_for(lambda: len(lines("output", state="running")) > 1, "the output again")
        steps = []
        for line in map(json.loads, program.lines[before:]):
            step = line.get("call", "").partition("(")[0]
            if line["type"] == "result" and line["code"] == 0 and step not in (*steps, "ARC_GetArcVersion", "ARC_GetRilVersion"):
                steps.append(step)
        self.assertEqual(steps, ["ARC_Open", "ARC_RegisterNotification", "ARC_EnableLSTA", "ARC_StartGNSSraw"])

    def test_a_modem_that_was_reset_is_opened_again(self):
        shown = self.monitor()
        shown.wait_for("3D fix")
        self.control("reset")
        shown.keys("r", "5")
        shown.wait_for("the daemon is back")
        run.wait_until(lambda: self.status()["fix"] == "3D", "the output runs again")
        self.control("event 72 01")
        shown.wait_for("event 72, 1 bytes: 01")

    def test_an_outage_is_survived(self):
        shown = self.monitor()
        shown.wait_for("3D fix")
        self.control("outage 3s")
        shown.keys("r")
        shown.wait_for("NO DAEMON")
        shown.wait_for("^KelArc monitor  output on .*\n3D fix.*\n(?!no sentence)")
        run.wait_until(lambda: self.status()["engine"] == "running", "the output runs again")

    def test_an_output_that_others_have_stopped_is_started_by_its_key(self):
        shown = self.monitor()
        shown.wait_for("3D fix")
        self.says("gnss stop")
        shown.wait_for("no sentence for")
        shown.keys("g")
        run.wait_until(lambda: self.status()["engine"] == "running", "the output runs again")

    def test_a_daemon_that_is_not_there_yet(self):
        self.control("stop")
        shown = self.monitor()
        shown.wait_for(r"NO DAEMON for \d+ s \(31\)")
        self.serve()
        shown.wait_for("3D fix")

    def test_a_dead_daemon_does_not_keep_it(self):
        self.control("stop")
        shown = self.monitor()
        shown.wait_for("NO DAEMON")
        shown.keys("q")
        shown.wait_for("exit 0")
        self.assert_restored(shown)

    def test_a_call_that_hangs_is_shown_with_its_age(self):
        shown = self.monitor("--timeout", "4s")
        shown.wait_for("3D fix")
        self.control("hang ARC_CheckModuleSetting")
        shown.keys("r")
        shown.wait_for(r"no answer for \d+ s: reading cpu-power")
        shown.keys("4")
        screen = shown.wait_for(r"no answer within 4 s: reading cpu-power")
        self.assertEqual(screen.count("no answer within"), 1, "those behind it only wait for their turn")
        screen = shown.wait_for(r"Running +kelarc/KelArc.367: Get ARC_CheckModuleSetting")
        self.assertRegex(screen, r"In queue +\d\d\n")
        utc = re.search(r"\d\d:\d\d:\d\d UTC", screen).group(0)
        run.wait_until(lambda: utc not in shown.screen(), "everything else goes on")
        shown.keys("q")
        self.assertIn("kelarcctl: the modem was not closed within 3 s: closing the modem: Get ARC_",
                      shown.wait_for("exit 4"))
        self.assert_restored(shown)
        self.assert_no_clients()

    def test_retries_are_counted(self):
        shown = self.monitor()
        shown.wait_for("3D fix")
        self.control("fail ARC_CheckModuleSetting --code 21 --forever")
        shown.keys("4", "r")
        shown.wait_for(r"attempt [3-9], \d+ left; last: A requested service has been denied \(21\)")


class Garbage(MonitorTest):
    def test_is_counted_and_nothing_else(self):
        ran = subprocess.run([os.environ["ARCSIM"], "play", self.scenario(), "--for", "6s"], stdout=subprocess.PIPE,
                             check=True, timeout=LIMIT_S)
        path = os.path.join(self.folder, "bad.nmea")
        with open(path, "wb") as file:
            lines = ran.stdout.splitlines(keepends=True)
            file.write(b"".join(lines[:10]) + GARBAGE + b"".join(lines[10:]))
        self.serve(scenario=self.scenario(replay={"file": path, "speed": 1000}))
        shown = self.monitor()
        shown.wait_for("bad checksums 1  garbage 2")
        self.assertRegex(shown.screen(), "^KelArc monitor .* 03:00:0. UTC\n3D fix")


if __name__ == "__main__":
    ctl.main()

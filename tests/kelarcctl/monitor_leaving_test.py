"""The monitor's end: the terminal is restored and the modem closed. Also the lines that it prints without a
terminal."""

import json
import os
import signal
import subprocess
import time

import ctl
import run
from monitoring import MonitorTest
from programs import LIMIT_S


class Leaving(MonitorTest):
    def setUp(self):
        super().setUp()
        self.serve()
        self.shown = self.monitor()
        self.shown.wait_for("3D fix")

    def test_by_a_signal(self):
        os.kill(self.shown.pid("kelarcctl"), signal.SIGTERM)
        self.shown.wait_for("exit 130")
        self.assert_restored(self.shown)
        self.assert_no_clients()

    def test_by_a_hang_up(self):
        os.kill(self.shown.pid("kelarcctl"), signal.SIGHUP)
        self.shown.wait_for("exit 130")
        self.assert_restored(self.shown)
        self.assert_no_clients()

    def test_by_ctrl_c(self):
        self.leave_by("C-c")

    def test_by_the_key_that_quits(self):
        self.leave_by("C-\\")

    def leave_by(self, key):
        self.shown.keys(key)
        self.shown.wait_for("exit 130")
        self.assert_restored(self.shown)
        self.assert_no_clients()

    def test_while_the_modem_is_not_closed(self):
        self.control("hang ARC_Close")
        self.shown.keys("q")
        self.shown.wait_for("exit 4")
        self.assert_restored(self.shown)
        self.shown.wait_for(r"^kelarcctl: the modem was not closed within 3 s: closing the modem: ARC_Close")
        self.assert_no_clients()

    def test_by_a_second_signal_while_it_closes(self):
        self.control("hang ARC_Close")
        pid = self.shown.pid("kelarcctl")
        os.kill(pid, signal.SIGTERM)
        run.wait_until(lambda: self.status()["hanging"] == 1, "the modem is being closed")
        os.kill(pid, signal.SIGTERM)
        self.shown.wait_for("exit 130")
        self.assert_restored(self.shown)
        self.assert_no_clients()

    def test_a_kill_leaves_the_modem_usable(self):
        os.kill(self.shown.pid("kelarcctl"), signal.SIGKILL)
        self.shown.wait_for("exit 137")
        self.assert_no_clients()
        self.assertEqual(self.says("cpu-power"), "cpu-power: standard")

    def test_a_terminal_that_is_closed_closes_the_modem(self):
        self.shown.close()
        self.assert_no_clients()
        self.assertEqual(self.status()["calls"]["ARC_Close"]["count"], 1)


class Lines(MonitorTest):
    def lines(self, *arguments):
        program = self.start("monitor", "--json", *arguments)
        return program, lambda **members: [line for line in map(self.line, list(program.lines))
                                           if members.items() <= line.items()]

    def line(self, text):
        return self.checked(json.loads(text), "monitor" if '"type":' in text else "failure")

    def test_every_kind(self):
        self.serve(scenario=self.scenario(settings={"Engine/Galileo": "0"}))
        program, lines = self.lines()
        epoch = program.wait_for(lambda: lines(type="epoch", fix="3D"), "a fix")[0]
        self.assertEqual(list(epoch), ["type", "receiverUtc", "fix", "latitudeDeg", "longitudeDeg", "altitudeM",
                                       "speedKmh", "courseDeg", "hdop", "meanCarrierDbHz", "systems", "satellites",
                                       "wrongChecksums", "garbage"])
        self.assertEqual(epoch["systems"]["galileo"], {"used": 0, "inView": 0, "tracked": 0, "off": True, "lost": False})
        self.assertEqual(lines(type="link"), [{"type": "link", "state": "open"}])
        self.assertEqual(lines(type="output"), [{"type": "output", "state": "running", "path": self.socket + ".nmea"}])
        self.assertEqual(lines(type="setting", setting="period"),
                         [{"type": "setting", "setting": "period", "key": "Nmea/FreqMs", "value": 1000}])
        self.assertEqual(len(lines(type="setting")), 13)
        self.assertEqual(lines(type="result", call="ARC_Open()")[0]["code"], 0)
        self.control("event 74 0aff")
        program.wait_for(lambda: lines(type="event", event="EVENT_74", length=2, data="0aff"), "the event")
        self.control("lsta gps --status 1 --value 12.5")
        program.wait_for(lambda: lines(type="lsta", system="gps", on=True, status=1, value=12.5), "the report")
        self.control("jam gps")
        program.wait_for(lambda: any(each["systems"]["gps"]["lost"] for each in lines(type="epoch")), "GPS is lost")
        program.send(signal.SIGTERM)
        self.assertEqual((program.finish(), program.errors()),
                         (130, "kelarcctl: interrupted while watching the modem\n"))
        self.assertEqual(self.line(program.lines[-1])["error"]["kind"], "interrupted")
        self.assert_no_clients()

    def test_a_daemon_that_dies_and_comes_back(self):
        daemon = self.serve()
        program, lines = self.lines("--log", "/dev/null")
        program.wait_for(lambda: lines(type="epoch"), "an epoch")
        daemon.kill()
        program.wait_for(lambda: lines(type="link", state="no daemon"), "that it is noticed")
        before = len(lines(type="epoch"))
        self.serve()
        program.wait_for(lambda: len(lines(type="epoch")) > before + 1, "more epochs")
        self.assertEqual([line["state"] for line in lines(type="link")], ["open", "no daemon", "opening", "open"])
        self.assertEqual([line["state"] for line in lines(type="output")], ["running", "lost", "running"])
        program.send(signal.SIGHUP)
        self.assertEqual(program.finish(), 130)
        self.assert_no_clients()

    def test_it_ends_by_itself_when_it_is_told_to(self):
        self.serve()
        begin = time.monotonic()
        ran = self.ctl("monitor", "--json", "--for", "1500ms")
        self.assertGreaterEqual(time.monotonic() - begin, 1.5)
        self.assertEqual((ran.returncode, ran.stderr), (0, ""))
        self.assertNotEqual(ran.stdout, "")
        self.assert_no_clients()

    def test_what_is_not_answered_in_time_ends_nothing(self):
        self.serve()
        self.control("hang ARC_CheckModuleSetting")
        program, lines = self.lines("--timeout", "1s")
        program.wait_for(lambda: lines(type="overdue"), "that it is overdue")
        self.assertEqual(lines(type="overdue"), [{"type": "overdue", "request": "reading cpu-power", "afterMs": 1000}])
        self.control("clear")
        program.wait_for(lambda: lines(type="epoch"), "an epoch")

    def test_a_reader_that_has_gone_ends_it(self):
        self.serve()
        read, write = os.pipe()
        os.close(read)
        with subprocess.Popen([os.environ["KELARCCTL"], "monitor", "--json"], stdin=subprocess.DEVNULL, stdout=write,
                              stderr=subprocess.DEVNULL, env=self.environment()) as program:
            os.close(write)
            self.assertEqual(program.wait(LIMIT_S), 3)
        self.assert_no_clients()


if __name__ == "__main__":
    ctl.main()

"""What the operator's program does to a daemon, as applications feel it."""

import json
import os

import run

SYSTEMS = ("gps", "glonass", "galileo", "beidou", "qzss", "sbas")
FACTORY = {"Power/Cpu": "std", "Power/Psm": "0", "Nmea/Data/Format": "Nmea", "Nmea/Data/RawMask": "0",
           "Nmea/DRSync": "off", "Nmea/Sbas": "on", "Nmea/FreqMs": "1000", "Engine/Glonass": "1",
           "Engine/Galileo": "1", "Engine/Beidou": "1", "Engine/Qzss": "0", "Sens/MinElevAngle": "5",
           "Raw/Version": "1.0 (simulated)"}
OUT_OF_REACH = {"status": 0, "value": 0.0}


class Control(run.DaemonTest):
    def setUp(self):
        super().setUp()
        self.daemon = self.serve()

    def wait_for_status(self, condition, what):
        return run.wait_until(lambda: (lambda status: condition(status) and status)(self.status()), what)

    def test_status_of_a_modem_that_nobody_uses(self):
        status = self.status()
        for key in ("output", "satellites"):
            status.pop(key)
        self.assertEqual(status, {
            "version": "1.0", "pid": self.daemon.pid, "time": "real", "scenarioMs": 0, "engine": "off",
            "settings": FACTORY, "lsta": {name: OUT_OF_REACH for name in ("gps", "glonass", "beidou", "galileo")},
            "fix": "none", "utc": None, "latitudeDeg": None, "longitudeDeg": None, "altitudeM": None,
            "speedMps": None, "courseDeg": None, "noFix": False, "jammed": [], "outage": False, "clients": [], "calls": {}, "faults": [],
            "hanging": 0})

    def test_status_of_a_modem_at_work(self):
        client = self.open_client("start")
        self.assert_calls(client, [("at NONE", 24), ("at AT", 0)])
        self.client().call("version")
        self.control("set Nmea/FreqMs 100")
        status = self.wait_for_status(lambda status: status["fix"] == "3D" and status["lsta"]["gps"]["status"] == 1,
                                      "there is a fix")
        self.assertEqual((status["engine"], status["settings"]), ("running", {**FACTORY, "Nmea/FreqMs": "100"}))
        self.assertEqual(status["calls"], {
            "ARC_SetNotificationMethod": {"count": 1, "failed": 0}, "ARC_Open": {"count": 1, "failed": 0},
            "ARC_RegisterNotification": {"count": 1, "failed": 0}, "ARC_GetArcVersion": {"count": 1, "failed": 0},
            "ARC_AtcTunneling": {"count": 2, "failed": 1}, "ARC_StartGNSSraw": {"count": 1, "failed": 0}})
        self.assertEqual(status["clients"][0], {"pid": client.pid, "name": "arc_client", "open": True, "handler": True,
                                                "calls": 6, "waiting": 0})
        self.assertEqual([(each["open"], each["handler"], each["calls"]) for each in status["clients"][1:]],
                         [(False, False, 1)])
        self.assertEqual(list(status["satellites"]), list(SYSTEMS))
        gps = status["satellites"]["gps"]
        self.assertTrue(4 <= gps["used"] <= gps["tracked"] <= gps["inView"], gps)
        self.assertEqual(status["satellites"]["qzss"]["tracked"], 0)
        self.assertEqual(status["output"]["path"], self.socket + ".nmea")
        self.assertEqual((status["output"]["hasReader"], status["output"]["written"]), (False, 0))
        with open(self.socket + ".nmea", "rb", buffering=0) as terminal:
            self.assertTrue(terminal.read(1))
            self.wait_for_status(lambda status: status["output"]["hasReader"] and status["output"]["written"] > 0,
                                 "the reader is seen")

    def test_status_for_people(self):
        self.open_client("start")
        self.control("hang ARC_AtcTunneling")
        text = self.control("status")
        for line in (f"arcsim 1.0, process {self.daemon.pid}\n", "  engine      running\n", "  outage      no\n",
                     f"  output      {self.socket}.nmea\n", "  Power/Cpu                std\n",
                     "  ARC_Open                          1        0\n",
                     "  ARC_AtcTunneling: the next call hangs\n", "  jammed      nothing\n"):
            self.assertIn(line, text)

    def test_set_and_its_refusals(self):
        client = self.open_client()
        self.assertEqual(self.control("set Power/Cpu max"), "Power/Cpu: max (was std)\n")
        self.assertEqual(client.call("read Power/Cpu"), (0, '"max"'))
        self.assertEqual(self.control("set Power/Cpu max"), "Power/Cpu: max as before\n")
        keys = ", ".join(FACTORY)
        for text, error in (
                ("set Power/Cpu fast", 'set: value: "fast" is not accepted; accepted: std or max'),
                ("set Sens/MinElevAngle 4", 'set: value: "4" is not accepted; accepted: 5 to 45'),
                ("set Nmea/FreqMs 1001", 'set: value: "1001" is not accepted; accepted: 1000, 500, 200 or 100'),
                ("set Power/Gpu max", f'set: key: "Power/Gpu" is not accepted; accepted: {keys}; did you mean '
                                      "Power/Cpu?")):
            self.assertEqual(self.refused(text), f"arcsim: {error}\n")
        self.assertEqual(self.control("set Power/Cpu fast --force"), "Power/Cpu: fast (was max)\n")
        self.assert_calls(client, [("read Power/Cpu", (0, '"fast"')), ("read New/Key", (16, ""))])
        self.control("set New/Key 1 --force")
        self.assert_calls(client, [("read New/Key", (0, '"1"'))])
        ran = self.arcsim("set", "--socket", self.socket, "New/Key", b"\xe4\xff", "--force")
        self.assertEqual((ran.returncode, ran.stdout), (0, "New/Key: \\xe4\\xff (was 1)\n"))
        self.assertEqual(client.call("read New/Key"), (0, '"\xe4\xff"'))

    def test_read_only_settings_are_written_by_force_alone(self):
        self.assertEqual(self.refused("set Raw/Version 2"),
                         'arcsim: set: value: "2" is not accepted; accepted: nothing (read only)\n')
        self.control("set Raw/Version 2 --force")
        self.assertEqual(self.open_client().call("read Raw/Version"), (0, '"2"'))

    def test_event(self):
        client = self.open_client()
        self.assertEqual(self.control("event 22"), "event 22: sent 1 time, 0 bytes\n")
        self.assertEqual(self.control("event 2147483647 00FFab --count 2 --every 1ms"),
                         "event 2147483647: sent 2 times, one every 1ms, 3 bytes\n")
        self.assertEqual(client.wait_for_events(3), [(22, ""), (2147483647, "00ffab"), (2147483647, "00ffab")])

    def test_lsta_and_its_event(self):
        client = self.open_client("start", "enable-lsta 10")
        self.wait_for_status(lambda status: status["satellites"]["gps"]["tracked"] > 0, "GPS is heard")
        self.control("lsta gps --status 3 --value 12.5")
        payload = "e8030000" "00000000" "03000000" "00000000" "0000000000002940" + "00" * 40
        client.wait_for(lambda: (34, payload) in client.events, "the report")
        self.assertEqual(client.call("lsta 10"), (0, "1000 3 12.5"))
        self.assertEqual(self.status()["lsta"]["gps"], {"status": 3, "value": 12.5})
        client.forget_events()
        self.control("lsta gps --auto")
        (number, report), = client.wait_for_events(1)
        self.assertEqual((number, report[:32]), (34, "e8030000" "00000000" "01000000" "00000000"))
        self.control("lsta gps --status 0")
        self.wait_for_status(lambda status: status["satellites"]["gps"]["tracked"] == 0, "GPS is silent")
        self.assertEqual(client.call("lsta 10"), (0, "1000 0 0"))

    def test_fail(self):
        client = self.open_client()
        self.assertEqual(self.control("fail ARC_AtcTunneling --code 7"), "ARC_AtcTunneling: the next call answers 7\n")
        self.assert_calls(client, [("at AT", 7), ("at AT", 0)])
        self.control("fail ARC_AtcTunneling --code 8 --times 2")
        self.assertEqual(self.status()["faults"], [{"function": "ARC_AtcTunneling", "times": 2, "code": 8}])
        self.assert_calls(client, [("at AT", 8), ("versions", 0), ("at AT", 8), ("at AT", 0)])
        self.control("fail ARC_AtcTunneling --code 9 --nth 3")
        self.assert_calls(client, [("at AT", 0), ("at AT", 0), ("at AT", 9), ("at AT", 0)])
        self.assertEqual(self.status()["faults"], [])
        self.control("fail ARC_AtcTunneling --code 10 --forever")
        self.control("fail ARC_CheckModuleSetting --no-quotes --reply-length 6")
        self.assert_calls(client, [("at AT", 10), ("at AT", 10), ("read Power/Cpu", (0, "stdxxx"))])
        self.assertEqual(self.control("clear"), "1 injected fault dropped, 0 hanging calls released\n")
        self.assert_calls(client, [("at AT", (0, "OK"))])

    def test_delay(self):
        client = self.open_client()
        self.assertEqual(self.control("delay ARC_AtcTunneling 10m"), "ARC_AtcTunneling: every call takes 10m\n")
        slow = client.begin("at AT", "slow")
        self.wait_for_status(lambda status: status["clients"][0]["waiting"] == 1, "the call waits")
        self.assert_calls(client, [("versions", 0)])
        self.assertEqual(self.status()["hanging"], 0)
        self.control("clear")
        self.assertEqual(client.call("at AT"), (0, "OK"))
        self.control("delay ARC_AtcTunneling 50ms")
        self.assertEqual(client.call("at AT"), (0, "OK"))
        self.assertFalse(client.has_answered(slow))

    def test_hanging_calls_are_released(self):
        client = self.open_client()
        self.control("hang ARC_AtcTunneling --times 2")
        self.control("hang ARC_GetRilVersion")
        hanging = [client.begin(call, thread) for thread, call in (("a", "at AT"), ("b", "at AT"), ("c", "versions"))]
        self.wait_for_status(lambda status: status["hanging"] == 3, "three calls hang")
        self.assertEqual(self.control("clear ARC_AtcTunneling"),
                         "ARC_AtcTunneling: 0 injected faults dropped, 2 hanging calls released\n")
        self.assertEqual([client.answer(number)[0] for number in hanging[:2]], [32, 32])
        self.assertFalse(client.has_answered(hanging[2]))
        self.assertEqual(self.control("clear"), "0 injected faults dropped, 1 hanging call released\n")
        self.assertEqual(client.answer(hanging[2])[0], 32)
        self.assert_calls(client, [("at AT", 0), ("versions", 0)])

    def test_no_fix_ends_by_itself_or_when_told(self):
        self.open_client('write Nmea/FreqMs "100"', "start")
        self.wait_for_status(lambda status: status["fix"] == "3D", "there is a fix")
        self.control("no-fix on")
        lost = self.wait_for_status(lambda status: status["fix"] == "none", "there is none")
        self.assertTrue(lost["noFix"])
        self.control("no-fix off")
        self.wait_for_status(lambda status: status["fix"] == "3D" and not status["noFix"], "there is one again")
        self.control("no-fix 1s")
        self.wait_for_status(lambda status: status["fix"] == "none" and status["noFix"], "there is none")
        self.wait_for_status(lambda status: status["fix"] == "3D" and not status["noFix"], "its time is over")

    def test_jamming_ends_by_itself_or_when_told(self):
        self.open_client('write Nmea/FreqMs "100"', "start")
        self.wait_for_status(lambda status: status["satellites"]["gps"]["tracked"] > 0, "GPS is heard")
        self.control("jam gps")
        # The LSTA is worked out when it is asked for, the satellites at each epoch.
        status = self.wait_for_status(lambda status: status["satellites"]["gps"]["tracked"] == 0 and
                                      status["lsta"]["gps"] == OUT_OF_REACH, "GPS is jammed")
        self.assertEqual(self.daemon.errors(), "")
        self.assertEqual((status["jammed"], status["fix"]), (["gps"], "3D"))
        self.control("jam gps --off")
        self.wait_for_status(lambda status: status["satellites"]["gps"]["tracked"] > 0, "GPS is heard")
        self.control("jam all --for 1s")
        status = self.wait_for_status(lambda status: status["fix"] == "none", "nothing is heard")
        self.assertEqual(status["jammed"], list(SYSTEMS))
        self.assertEqual([each["tracked"] for each in status["satellites"].values()], [0] * 6)
        self.wait_for_status(lambda status: status["fix"] == "3D" and status["jammed"] == [], "its time is over")

    def test_outage(self):
        client = self.open_client('write Power/Cpu "max"', "start")
        self.control("hang ARC_AtcTunneling")
        hanging = client.begin("at AT", "slow")
        self.wait_for_status(lambda status: status["hanging"] == 1, "the call hangs")
        self.control("outage 2s")
        self.assertEqual(client.answer(hanging)[0], 31)
        status = self.status()
        self.assertEqual((status["outage"], status["clients"]), (True, []))
        self.assert_calls(client, [("versions", 31), ("version", (0, "ArcRilD 1.0 (simulated)"))])
        self.control("event 72 01")  # nobody is told, then or later
        self.wait_for_status(lambda status: [each for each in status["clients"] if each["open"]], "it is over")
        self.control("event 72 02")
        self.assertEqual(client.wait_for_events(1), [(72, "02")])
        self.assert_calls(client, [("read Power/Cpu", (0, '"max"')), ("at AT", 0)])
        self.assertEqual(self.status()["engine"], "running")

    def test_reset(self):
        client = self.open_client('write Power/Cpu "max"', "start")
        self.control("hang ARC_AtcTunneling")
        hanging = client.begin("at AT", "slow")
        self.wait_for_status(lambda status: status["hanging"] == 1, "the call hangs")
        self.control("jam gps")
        self.control("fail ARC_GetRilVersion --code 5 --forever")
        self.assertEqual(self.control("reset"), "the modem is at its start; the scenario begins anew\n")
        self.assertEqual(client.answer(hanging)[0], 32)
        status = self.status()
        self.assertEqual((status["engine"], status["jammed"], status["faults"], status["calls"], status["settings"]),
                         ("off", [], [], {}, FACTORY))
        run.repeat_while_unreachable(client, "version")
        self.assert_calls(client, [("versions", 0), ("open", 0), ("read Power/Cpu", (0, '"std"')),
                                   ("start", (0, self.socket + ".nmea"))])
        with open(self.socket + ".nmea", "rb", buffering=0) as terminal:
            self.assertTrue(terminal.read(1))

    def test_a_reset_is_to_an_application_as_a_modem_that_starts_again(self):
        """It is open and has its handler without doing anything for it; a call under way answers 31."""
        client = self.open_client("start")
        self.control("delay ARC_AtcTunneling 60s")
        late = client.begin("at AT", "slow")
        self.wait_for_status(lambda status: status["clients"][0]["waiting"] == 1, "the call waits")
        self.control("reset")
        self.assertEqual(client.answer(late)[0], 31)
        self.wait_for_status(lambda status: [(each["open"], each["handler"], each["waiting"])
                                             for each in status["clients"]] == [(True, True, 0)], "it is back")
        self.control("event 72 02")
        self.assertEqual(client.wait_for_events(1), [(72, "02")])
        self.assert_calls(client, [("versions", 0), ("start", 0), ("stop", 0), ("close", 0), ("versions", 1),
                                   ("open", 0), ("versions", 0)])

    def test_stop_leaves_nothing_behind(self):
        client = self.open_client("start")
        self.assertEqual(self.control("stop"), "the daemon has ended\n")
        self.assertEqual((self.daemon.finish(), self.daemon.errors()), (0, ""))
        self.assertEqual(os.listdir(self.folder), ["scenario.json"])
        self.assertEqual(client.call("versions")[0], 31)
        ran = self.arcsim("status", "--socket", self.socket)
        self.assertEqual((ran.returncode, ran.stdout, ran.stderr), (
            5, "", f"arcsim: no daemon at {self.socket} (No such file or directory); start one with: arcsim serve\n"))

    def test_advance_needs_virtual_time(self):
        self.assertEqual(self.refused("advance 1s"), "arcsim: advance: real time goes on by itself; accepted: only "
                                                     "with virtual time (ARCSIM_TIME=virtual)\n")

    def test_refusals_for_programs(self):
        ran = self.arcsim("advance", "1s", "--json", "--socket", self.socket)
        self.assertEqual(ran.returncode, 3)
        self.assertEqual(json.loads(ran.stdout), {
            "ok": False, "error": "advance: real time goes on by itself; accepted: only with virtual time "
                                  "(ARCSIM_TIME=virtual)"})
        self.assertEqual(self.arcsim("advance", "1", "--socket", self.socket).returncode, 2)


if __name__ == "__main__":
    run.main()

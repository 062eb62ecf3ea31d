"""How the daemon's status reads."""

import json

import run

FULL = {
    "version": "1.0", "pid": 4711, "time": "real", "scenarioMs": 83456, "engine": "running",
    "settings": {"Power/Cpu": "std", "Nmea/FreqMs": "1000"},
    "lsta": {"gps": {"status": 1, "value": 41.25}, "glonass": {"status": 0, "value": 0},
             "beidou": {"status": -1, "value": -1000.5}, "galileo": {"status": 1, "value": 38}},
    "output": {"path": "/dev/pts/3", "written": 120, "unheard": 1, "dropped": 0},
    "fix": "3D", "utc": "2024-06-12T03:00:10.000Z", "latitudeDeg": 35.681241, "longitudeDeg": -139.767121,
    "altitudeM": 4.04, "speedMps": 8.0, "courseDeg": 45.26,
    "satellites": {"gps": {"inView": 10, "tracked": 9, "used": 8, "meanCarrierDbHz": 41.04},
                   "glonass": {"inView": 7, "tracked": 0, "used": 0, "meanCarrierDbHz": 0},
                   "sbas": {"inView": 2, "tracked": 2, "used": 0, "meanCarrierDbHz": 38.5}},
    "noFix": False, "jammed": [], "outage": False,
    "clients": [{"pid": 123, "name": "navigator", "open": True, "handler": True, "calls": 10, "waiting": 0},
                {"pid": 4194304, "name": "a program with a long name", "open": False, "handler": False,
                 "calls": 1000000, "waiting": 1}],
    "calls": {"ARC_Open": {"count": 2, "failed": 1}, "ARC_SetNotificationMethod": {"count": 1000000, "failed": 0}},
    "faults": [{"function": "ARC_StopGNSS", "code": 2, "times": 3},
               {"function": "ARC_Open", "latencyMs": {"min": 5, "max": 30}}],
    "hanging": 1,
}

FULL_TEXT = """\
arcsim 1.0, process 4711

Modem
  engine      running
  time        real, 83.456s of the scenario
  outage      no
  output      /dev/pts/3
  epochs      120 written, 1 unheard, 0 dropped

Receiver
  fix         3D
  utc         2024-06-12T03:00:10.000Z
  position    35.681241 -139.767121, 4.0 m
  motion      8.0 m/s, course 45.3 degrees
  jammed      nothing

Satellites    in view  tracked  used  mean C/N0
  gps              10        9     8  41.0 dB-Hz
  glonass           7        0     0  0.0 dB-Hz
  sbas              2        2     0  38.5 dB-Hz

Settings
  Power/Cpu                std
  Nmea/FreqMs              1000

LSTA           status    value
  gps               1     41.2
  glonass           0      0.0
  beidou           -1  -1000.5
  galileo           1     38.0

Clients       process  open  handler      calls  waiting
  navigator       123   yes      yes         10        0
  a progra... 4194304    no       no    1000000        1

Calls                           count   failed
  ARC_Open                          2        1
  ARC_SetNotificationMethod   1000000        0

Faults injected
  ARC_StopGNSS: the next 3 calls answer 2
  ARC_Open: every call takes 5ms to 30ms
  1 call hangs
"""

NOTHING_TEXT = """\
arcsim -, process -

Modem
  engine      -
  time        -, - of the scenario
  outage      -
  output      -
  epochs      - written, - unheard, - dropped

Receiver
  fix         -
  utc         -
  position    - -, -
  motion      -, course -
  jammed      -
"""


def emptied(value):
    """The same with everything in it null."""
    return {key: emptied(each) for key, each in value.items()} if isinstance(value, dict) else None


class Status(run.ControlTest):
    def test_all_that_is_known_in_sections(self):
        self.assert_control("status", {"control": "status"}, FULL_TEXT, FULL)

    def test_what_is_missing_null_or_of_a_wrong_kind_does_no_harm(self):
        for result in ({}, dict.fromkeys(FULL), dict.fromkeys(FULL, {}), dict.fromkeys(FULL, True)):
            with self.subTest(result):
                text = NOTHING_TEXT
                if result.get("pid") is True:
                    text = text.replace("outage      -", "outage      yes, clients cannot reach the modem")
                    text = text.replace("fix         -", "fix         - (kept from one)")
                if result.get("pid") == {}:
                    text += "\nCalls                           count   failed\n  none\n"
                self.assert_control("status", {"control": "status"}, text, result)

    def test_a_result_that_is_no_object(self):
        for result in (5, "text", [1], None):
            daemon_result = {"id": 1, "ok": True, "result": result}
            self.made.talk = lambda line, request, said=daemon_result: line.say(said)
            self.assert_run(self.ask("status"), out=NOTHING_TEXT)

    def test_lists_of_nulls(self):
        text = self.shown(emptied(FULL) | {"satellites": {"gps": None}, "lsta": {"gps": {"value": None}},
                                           "clients": [None], "faults": [None, {}, {"function": None, "code": "2"}],
                                           "calls": {"ARC_Open": None}, "settings": {"Power/Cpu": None},
                                           "jammed": [None, "gps"]})
        for line in ("  gps               -        -     -  -", "  gps               -        -",
                     "  Power/Cpu                -", "  ARC_Open                          -        -",
                     "  -                 -     -        -          -        -", "  -", "  -: every call",
                     "  jammed      -, gps"):
            self.assertIn(line + "\n", text)

    def test_a_receiver_in_trouble(self):
        text = self.shown({**FULL, "fix": "none", "noFix": True, "jammed": ["gps", "beidou"], "outage": True,
                           "engine": "starting", "time": "virtual", "scenarioMs": 0, "hanging": 2})
        for line in ("fix         none (kept from one)", "jammed      gps, beidou",
                     "outage      yes, clients cannot reach the modem", "engine      starting",
                     "time        virtual, 0ms of the scenario", "2 calls hang"):
            self.assertIn("  " + line + "\n", text)

    def test_a_daemon_that_nobody_has_used(self):
        text = self.shown({**FULL, "clients": [], "calls": {}, "faults": [], "hanging": 0})
        self.assertTrue(text.endswith("""
Clients       process  open  handler      calls  waiting
  none

Calls                           count   failed
  none

Faults injected
  none
"""))

    def test_faults_in_every_form(self):
        for fault, line in (({"code": 2}, "every call answers 2"), ({"code": 2, "call": 5}, "call 5 answers 2"),
                            ({"code": 2, "call": 5, "count": 2}, "2 calls from call 5 answer 2"),
                            ({"code": 2, "count": 3}, "3 calls from call 1 answer 2"),
                            ({"code": 2, "times": 1}, "the next call answers 2"),
                            ({"hang": True}, "every call hangs"), ({"hang": False, "code": 1}, "every call answers 1"),
                            ({"code": 2, "latencyMs": 1500}, "every call answers 2 and takes 1.5s"),
                            ({"latencyMs": {"mean": 50, "deviation": 7}},
                             "every call takes 50ms on average, with a deviation of 7ms"),
                            ({"latencyMs": "x"}, "every call takes another time"),
                            ({"quotes": False, "times": 2}, "the next 2 calls return texts without quotes"),
                            ({"code": 2, "fromMs": 1000, "untilMs": 60000},
                             "every call answers 2 from 1s on until 1m")):
            with self.subTest(fault):
                self.assertIn(f"\n  ARC_Open: {line}\n", self.shown({"faults": [{"function": "ARC_Open", **fault}]}))

    def test_no_line_is_wider_than_a_terminal(self):
        wide = "\xfcx" * 200
        number = 2 ** 63 - 1
        text = self.shown({**FULL, "output": {"path": wide, "written": number, "unheard": number, "dropped": number},
                           "settings": {wide: wide}, "engine": wide, "fix": wide, "utc": wide, "jammed": [wide],
                           "version": wide, "latitudeDeg": 1e300, "longitudeDeg": -1e300, "altitudeM": 1e8,
                           "clients": [dict.fromkeys(FULL["clients"][0], number) | {"name": wide}],
                           "satellites": {wide: dict.fromkeys(FULL["satellites"]["gps"], number)},
                           "lsta": {wide: {"status": number, "value": 9e8}}, "calls": {wide: {"count": number}},
                           "faults": [{"function": wide, "code": number}], "scenarioMs": number})
        for line in text.splitlines():
            self.assertLessEqual(len(line), 80, line)
            self.assertEqual(line, line.rstrip())

    def test_texts_cannot_move_the_cursor(self):
        text = self.shown({**FULL, "clients": [{"name": "\x1b[2\n"}], "settings": {"a\tb": "\r"},
                           "jammed": ["\x00", "\xc2\x9b", "\xff\x7f"]})
        for line in (r"  \x1b[2\n          -     -        -          -        -", r"  a\tb                     \r",
                     r"  jammed      \x00, \xc2\x9b, \xff\x7f"):
            self.assertIn(line + "\n", text)

    def test_json_cannot_move_the_cursor(self):
        self.result = {"name": "\x1b[2J\x7f\x9b\xe4"}
        ran = self.ask("status", "--json")
        self.assertEqual(ran.stdout, r'{"ok":true,"result":{"name":"\u001b[2J\u007f\u009b\u00e4"}}' + "\n")

    def test_json_keeps_the_order_of_the_daemon(self):
        self.result = FULL
        ran = self.ask("status", "--json")
        self.assertEqual(list(json.loads(ran.stdout)["result"]), list(FULL))

    def shown(self, result):
        self.result = result
        ran = self.ask("status")
        self.assertEqual((ran.returncode, ran.stderr), (0, ""))
        return ran.stdout


if __name__ == "__main__":
    run.main()

"""Every setting is read, and written and read back, by the words that people use."""

import json

import ctl

# command, key, what the factory set, the modem's text for it, what to write, the modem's text for that, as it is shown
SETTINGS = (
    ("cpu-power", "Power/Cpu", "standard", '"std"', "max", '"max"', "max"),
    ("cpu-psm", "Power/Psm", "off", '"0"', "on", '"1"', "on"),
    ("format", "Nmea/Data/Format", "nmea", '"Nmea"', "raw", '"Raw"', "raw"),
    ("dr-sync", "Nmea/DRSync", "off", '"off"', "on", '"on"', "on"),
    ("system glonass", "Engine/Glonass", "on", '"1"', "off", '"0"', "off"),
    ("system galileo", "Engine/Galileo", "on", '"1"', "off", '"0"', "off"),
    ("system beidou", "Engine/Beidou", "on", '"1"', "off", '"0"', "off"),
    ("system qzss", "Engine/Qzss", "off", '"0"', "on", '"1"', "on"),
    ("sbas", "Nmea/Sbas", "on", '"on"', "off", '"off"', "off"),
    ("period", "Nmea/FreqMs", "1000", '"1000"', "200", '"200"', "200"),
    ("min-elevation", "Sens/MinElevAngle", "5", '"5"', "45", '"45"', "45"),
    ("raw-mask", "Nmea/Data/RawMask", "0", '"0"', "255", '"255"', "255"),
)
UNITS = {"period": " ms"}


def plain(value):
    """A value as JSON has it."""
    return {"off": False, "on": True}[value] if value in ("off", "on") else int(value) if value.isdigit() else value



class OnTheDaemon(ctl.CtlTest):
    def setUp(self):
        super().setUp()
        self.serve()

    def test_every_setting_is_read(self):
        for command, key, value, quoted, *_ in SETTINGS:
            self.assertEqual(self.says(command), f"{command}: {value}{UNITS.get(command, '')}")
            self.assertEqual(self.document(command), {"setting": command, "key": key, "value": plain(value)})
            self.assertEqual(self.says(f"get {key}"), quoted)
        self.assertEqual(self.says("raw-version"), "raw-version: 1.0 (simulated)")

    def test_every_setting_is_written_and_read_back(self):
        for command, key, before, _, value, quoted, shown in SETTINGS:
            unit = UNITS.get(command, "")
            self.assertEqual(self.says(f"{command} {value}"), f"{command}: {shown}{unit} (was {before}{unit})")
            self.assertEqual(self.says(f"get {key}"), quoted)
            self.assertEqual(self.document(f"{command} {before}"),
                             {"setting": command, "key": key, "value": plain(before),
                              "before": plain(value)})

    def test_words_are_taken_in_any_case(self):
        self.assertEqual(self.says("cpu-power MAX"), "cpu-power: max (was standard)")
        self.assertEqual(self.says("sbas Off"), "sbas: off (was on)")

    def test_every_value_of_a_list(self):
        for value in ("1000", "500", "200", "100"):
            self.assertTrue(self.says(f"period {value}").startswith(f"period: {value} ms (was "))
            self.assertEqual(self.says("get Nmea/FreqMs"), f'"{value}"')

    def test_a_text_that_is_no_known_value_is_said_to_be_so(self):
        self.control("set Nmea/FreqMs 300 --force")
        self.assertEqual(self.ctl("period").stdout, "period: not understood\n")
        ran = self.ctl("period", "--json")
        self.assertEqual((ran.returncode, self.checked(json.loads(ran.stdout), "setting")),
                         (0, {"setting": "period", "key": "Nmea/FreqMs", "value": None}))
        self.assertIn("Unknown return value from ARC_CheckModuleSetting(Nmea/FreqMs) -> '\"300\"'", ran.stderr)

    def test_any_key_is_written_as_it_is_given(self):
        self.assertEqual(self.ctl("set", "Power/Cpu", '"max"').stdout, '"max"\n')
        self.assertEqual(self.status()["settings"]["Power/Cpu"], "max")
        ran = self.ctl("set", "Power/Cpu", '"max"', "--json")
        self.assertEqual(self.checked(json.loads(ran.stdout), "set"),
                         {"key": "Power/Cpu", "reply": '"max"', "changed": False})

    def test_status_shows_everything(self):
        self.control("set Engine/Glonass 0")
        self.control("lsta gps --status 1 --value 2.9")
        document = self.document("status")
        self.assertEqual(document["versions"], {"clientLibrary": "ArcRilD 1.0 (simulated)",
                                                "ril": {"primary": "RIL 1.0 (simulated)",
                                                        "secondary": "Modem 1.0 (simulated)"}})
        expected = {command: plain(value) for command, _, value, *_ in SETTINGS}
        self.assertEqual(document["settings"],
                         {**expected, "system glonass": False, "raw-version": "1.0 (simulated)"})
        self.assertEqual(document["lsta"]["gps"], {"on": True, "value": 2})
        self.assertEqual(list(document["lsta"]), ["gps", "glonass", "beidou", "galileo"])
        text = self.says("status").splitlines()
        self.assertEqual(text[:3], ["client library  ArcRilD 1.0 (simulated)",
                                    "RIL             RIL 1.0 (simulated), Modem 1.0 (simulated)",
                                    "cpu-power       standard"])
        self.assertIn("system glonass  off", text)
        self.assertIn("period          1000 ms", text)
        self.assertIn("lsta gps        on, value 2", text)
        self.assertEqual(len(text), 2 + 13 + 4)

    def test_status_goes_on_after_what_is_refused(self):
        self.control("fail ARC_GetRilVersion --code 21 --forever")
        ran = self.ctl("status", "--log", "/dev/null")
        self.assertEqual((ran.returncode, ran.stderr), (3, ""))
        self.assertIn("\n                reading the RIL's version failed 15 times: A requested service has been denied "
                      "(21)\n                -> Run the program as a user who may use the RIL daemon; else find out who "
                      "has locked the function.\ncpu-power       standard\n", ran.stdout)
        ran = self.ctl("status", "--json", "--log", "/dev/null")
        self.assertEqual((ran.returncode, ran.stderr), (3, ""))
        document = self.checked(json.loads(ran.stdout), "status")
        self.assertEqual(document["versions"]["clientLibrary"], "ArcRilD 1.0 (simulated)")
        self.assertEqual(document["versions"]["ril"]["error"]["code"], 21)
        self.assertEqual(document["settings"]["cpu-power"], "standard")
        self.assertEqual(document["error"], document["versions"]["ril"]["error"])


class OnAModemOfItsOwn(ctl.CtlTest):
    def test_every_setting_is_written_and_read_back(self):
        for command, _, before, _, value, _, shown in SETTINGS:
            unit = UNITS.get(command, "")
            self.assertEqual(self.says(command), f"{command}: {before}{unit}")
            self.assertEqual(self.says(f"{command} {value}"), f"{command}: {shown}{unit} (was {before}{unit})")


if __name__ == "__main__":
    ctl.main()

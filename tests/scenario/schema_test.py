"""The schema of scenario files and the simulator's reader give the same verdict on the same documents."""

import json
import os
import pathlib
import subprocess
import tempfile
import unittest

import jsonschema

SCENARIOS = pathlib.Path(os.environ["SCENARIOS"])
GPX = "<gpx><wpt lat='1' lon='2'/><wpt lat='1' lon='3'/></gpx>"
DAY = 86400000


def fault(**keys):
    return {"faults": [{"function": "ARC_Open", **keys}]}


def event(**keys):
    return {"events": [{"atMs": 1, "id": 75, **keys}]}


def point(**keys):
    return {"route": [{"latitudeDeg": 1, "longitudeDeg": 2, **keys}]}


def jam(systems):
    return {"jamming": [{"fromMs": 1, "untilMs": 2, "systems": systems}]}


def lsta(system, **keys):
    return {"lsta": [{"atMs": 1, "system": system, "status": 1, **keys}]}


GOOD = [
    {},
    {"$schema": "scenario.schema.json", "seed": 4294967295, "latencies": False, "engineStartMs": 0},
    {"seed": 7.0},
    {"engineStartMs": DAY},
    {"startUtc": "2000-01-01T00:00:00Z"},
    {"startUtc": "2024-02-29T23:59:59Z"},
    {"startUtc": "2099-12-31T23:59:59Z"},
    {"firstFix": {}},
    {"firstFix": {"coldMs": 1, "hotMs": 0}},
    {"settings": {"Power/Cpu": "max", "Power/Psm": "1", "Nmea/Data/Format": "Raw", "Nmea/Data/RawMask": "255",
                  "Nmea/DRSync": "on", "Nmea/Sbas": "off", "Nmea/FreqMs": "100", "Engine/Glonass": "0",
                  "Engine/Galileo": "0", "Engine/Beidou": "0", "Engine/Qzss": "1", "Sens/MinElevAngle": "45"}},
    {"settings": {"Nmea/Data/RawMask": "0", "Sens/MinElevAngle": "5"}},
    {"faults": []},
    fault(call=1, code=31),
    fault(count=2, code=-2147483647),
    fault(fromMs=0, latencyMs=0),
    fault(untilMs=1, latencyMs=DAY),
    fault(times=2147483647, hang=True),
    fault(call=1, count=2, fromMs=3, untilMs=4, times=5, code=6, latencyMs=7, hang=True, indicator=8, replyLength=9,
          quotes=False),
    fault(call=1, latencyMs={"min": 0, "max": DAY}),
    fault(call=1, latencyMs={"mean": 1, "deviation": 0}),
    fault(call=1, replyLength=4096),
    fault(call=1, indicator=-5),
    fault(call=1, quotes=False),
    event(),
    event(payload=""),
    event(payload="00ffAB"),
    event(payload="7" * 64000),
    event(payload="00", numbered=False),
    event(count=100000, everyMs=0, numbered=True),
    event(everyMs=DAY),
    *(lsta(system) for system in ("gps", "GPS", "Glonass", "BeiDou", "galileo")),
    lsta("gps", value=-1e9),
    {"outages": [{"atMs": 0, "forMs": 1}, {"atMs": DAY, "forMs": DAY}]},
    {"noFix": [{"fromMs": 0, "untilMs": 1}]},
    jam("all"),
    jam("All"),
    jam(["gps", "Glonass", "BEIDOU", "galileo", "qzss", "Sbas", "gps"]),
    {"satellites": {}},
    {"satellites": {"carrierOffsetDbHz": -20, "systems": ["glonass"]}},
    {"satellites": {"carrierOffsetDbHz": 20.0, "systems": "all"}},
    point(),
    point(altitudeM=-500, speedMps=300, waitMs=DAY),
    {"route": [{"latitudeDeg": -89, "longitudeDeg": 180, "speedMps": 0.01}, {"latitudeDeg": 89, "longitudeDeg": -180}]},
    {"route": {"gpx": "d.gpx"}},
    {"route": {"gpx": "d.gpx", "speedMps": 0.1}},
    {"route": {"gpx": "d.gpx", "speedMps": 300}},
    {"replay": {"file": "drive.nmea"}},
    {"replay": {"file": "\u00e4/\u20ac.nmea", "speed": 0.01, "loop": True}},
]

BAD = [
    [],
    None,
    "scenario",
    {"sed": 1},
    {"$schema": 7},
    {"seed": -1},
    {"seed": 4294967296},
    {"seed": 1.5},
    {"seed": "1"},
    {"seed": True},
    {"seed": None},
    {"startUtc": "1999-12-31T23:59:59Z"},
    {"startUtc": "2100-01-01T00:00:00Z"},
    {"startUtc": "2023-02-29T00:00:00Z"},
    {"startUtc": "2024-04-31T00:00:00Z"},
    {"startUtc": "2024-06-12T24:00:00Z"},
    {"startUtc": "2024-06-12T03:00:00"},
    {"startUtc": 1718161200},
    {"latencies": 0},
    {"engineStartMs": DAY + 1},
    {"engineStartMs": -1},
    {"firstFix": 3},
    {"firstFix": {"warmMs": 3}},
    {"settings": []},
    {"settings": {"Power/Cpus": "max"}},
    {"settings": {"Power/Cpu": "\"max\""}},
    {"settings": {"Raw/Version": "1.0 (simulated)"}},
    {"settings": {"Nmea/FreqMs": 1000}},
    {"settings": {"Nmea/Data/RawMask": "256"}},
    {"settings": {"Nmea/Data/RawMask": "01"}},
    {"settings": {"Sens/MinElevAngle": "4"}},
    {"settings": {"Sens/MinElevAngle": "46"}},
    {"faults": {}},
    {"faults": [{}]},
    {"faults": [{"call": 1, "code": 31}]},
    {"faults": [{"function": "ARC_Reboot", "call": 1, "code": 31}]},
    {"faults": [{"function": "arc_open", "call": 1, "code": 31}]},
    fault(code=31),
    fault(call=1),
    fault(call=0, code=31),
    fault(call=1, count=0, code=31),
    fault(times=0, code=31),
    fault(call=1, code=0),
    fault(call=1, code=2147483648),
    fault(untilMs=0, code=31),
    fault(call=1, latencyMs=-1),
    fault(call=1, latencyMs={}),
    fault(call=1, latencyMs={"min": 1}),
    fault(call=1, latencyMs={"min": 1, "max": 2, "mean": 3}),
    fault(call=1, latencyMs={"mean": 1, "deviation": -1}),
    fault(call=1, latencyMs={"mean": 1}),
    fault(call=1, hang=False),
    fault(call=1, hang=1),
    fault(call=1, quotes=True),
    fault(call=1, quotes=0),
    fault(call=1, indicator=1.5),
    fault(call=1, replyLength=0),
    fault(call=1, replyLength=4097),
    fault(call=1, code=31, comment="x"),
    {"events": [{"id": 75}]},
    {"events": [{"atMs": 1}]},
    {"events": [1]},
    event(id=-1),
    event(id=2147483648),
    event(payload="abc"),
    event(payload="0x"),
    event(payload=7),
    event(payload="7" * 64002),
    event(payload="", numbered=True),
    event(numbered=1),
    event(count=0),
    event(count=100001),
    event(everyMs=DAY + 1),
    lsta("qzss"),
    lsta(10),
    lsta("gps", value=2e9),
    lsta("gps", status="1"),
    {"lsta": [{"atMs": 1, "system": "gps"}]},
    {"outages": [{"atMs": 0}]},
    {"outages": [{"atMs": 0, "forMs": 0}]},
    {"outages": [{"atMs": 0, "untilMs": 5}]},
    {"noFix": [{"fromMs": 0}]},
    {"noFix": [{"untilMs": 1}]},
    {"noFix": [{"fromMs": 0, "untilMs": 0}]},
    {"noFix": {"fromMs": 0, "untilMs": 1}},
    jam([]),
    jam("gps"),
    jam(["all"]),
    jam(["gps", "navstar"]),
    jam(None),
    {"jamming": [{"fromMs": 1, "untilMs": 2}]},
    {"satellites": []},
    {"satellites": {"carrierOffsetDbHz": -20.1}},
    {"satellites": {"carrierOffsetDbHz": 21}},
    {"satellites": {"carrierOffsetDbHz": "1"}},
    {"satellites": {"systems": []}},
    {"satellites": {"count": 3}},
    {"route": []},
    {"route": "d.gpx"},
    {"route": {}},
    {"route": {"gpx": ""}},
    {"route": {"gpx": "d.gpx\u0000"}},
    {"route": {"gpx": "d.gpx", "speedMps": 0.05}},
    {"route": {"gpx": "d.gpx", "speedMps": 301}},
    {"route": {"gpx": "d.gpx", "waitMs": 1}},
    {"route": [{"latitudeDeg": 1}]},
    {"route": [{"longitudeDeg": 1}]},
    point(latitudeDeg=89.5),
    point(longitudeDeg=-181),
    point(altitudeM=9001),
    point(speedMps=-1),
    point(speedMps=301),
    point(waitMs=-1),
    point(waitMs=1.5),
    point(heading=1),
    {"replay": {}},
    {"replay": "drive.nmea"},
    {"replay": {"file": ""}},
    {"replay": {"file": "a", "speed": 0}},
    {"replay": {"file": "a", "speed": 1001}},
    {"replay": {"file": "a", "loop": "yes"}},
]

# Only the reader knows: the schema's own description says so.
BEYOND_THE_SCHEMA = [
    fault(fromMs=5, untilMs=5, code=31),
    fault(call=1, latencyMs={"min": 2, "max": 1}),
    {"noFix": [{"fromMs": 5, "untilMs": 4}]},
    {"jamming": [{"fromMs": 5, "untilMs": 5, "systems": "all"}]},
    {"route": [{"latitudeDeg": 1, "longitudeDeg": 2}, {"latitudeDeg": 2, "longitudeDeg": 2}]},
    {"events": [{"atMs": 1, "id": 1, "count": 100000}] * 3},
    {"events": [{"atMs": 1, "id": 1, "count": 100000, "payload": "00" * 700}]},
    {"route": {"gpx": "missing.gpx"}},
]


class SchemaTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.schema = json.loads((SCENARIOS / "scenario.schema.json").read_text(encoding="utf-8"))
        cls.validator = jsonschema.Draft7Validator(cls.schema)
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.folder = pathlib.Path(folder.name)
        (cls.folder / "d.gpx").write_text(GPX, encoding="ascii")

    def said_by_reader(self, documents):
        """One line for each document: "accepted" or the error."""
        names = []
        for number, document in enumerate(documents):
            names.append(self.folder / f"{number}.json")
            names[-1].write_text(json.dumps(document), encoding="ascii")
        return self.said_of_files(names)

    @staticmethod
    def said_of_files(names):
        run = subprocess.run([os.environ["CHECK_SCENARIO"], *map(str, names)], stdout=subprocess.PIPE, text=True,
                             encoding="utf-8", timeout=120, check=False)
        lines = run.stdout.splitlines()
        assert len(lines) == len(names), run
        assert run.returncode == any(line != "accepted" for line in lines), run
        return lines

    def check(self, documents, by_schema, by_reader):
        for document, line in zip(documents, self.said_by_reader(documents)):
            with self.subTest(document=json.dumps(document)[:200]):
                self.assertEqual(self.validator.is_valid(document), by_schema, "the schema's verdict")
                self.assertEqual(line == "accepted", by_reader, line)

    def test_is_a_schema(self):
        jsonschema.Draft7Validator.check_schema(self.schema)

    def test_good_documents_are_accepted_by_both(self):
        self.check(GOOD, True, True)

    def test_bad_documents_are_refused_by_both(self):
        self.check(BAD, False, False)

    def test_what_no_schema_can_say_is_refused_by_the_reader(self):
        self.check(BEYOND_THE_SCHEMA, True, False)

    def test_lists_end_at_the_same_length(self):
        span = {"fromMs": 1, "untilMs": 2}
        self.check([{"noFix": [span] * 10000}], True, True)
        self.check([{"noFix": [span] * 10001}], False, False)

    def test_every_key_is_described(self):
        def walk(node, path):
            for name, child in node.get("properties", {}).items():
                described = "description" in child or "$ref" in child
                self.assertTrue(described, f"{path}.{name}")
                walk(child, f"{path}.{name}")
            for child in node.get("anyOf", []):
                walk(child, path)
            if isinstance(node.get("items"), dict):
                walk(node["items"], path + "[]")

        walk(self.schema, "")
        for name, definition in self.schema["definitions"].items():
            walk(definition, name)

    def test_scenarios_that_are_shipped_are_accepted_by_both(self):
        files = sorted(file for file in SCENARIOS.glob("*.json") if not file.name.endswith(".schema.json"))
        self.assertIn(SCENARIOS / "demo.json", files)
        for file, line in zip(files, self.said_of_files(files)):
            with self.subTest(file=file.name):
                document = json.loads(file.read_text(encoding="utf-8"))
                self.assertEqual(document["$schema"], "scenario.schema.json")
                self.assertEqual(list(self.validator.iter_errors(document)), [])
                self.assertEqual(line, "accepted")


unittest.main()

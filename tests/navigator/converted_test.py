"""A recording that was turned into a scenario goes wrong in the same way."""

import json
import os

import jsonschema

import recorded
import run


class Converted(recorded.RecordedTest):
    def convert(self):
        """The recording as a scenario that was looked at in every way."""
        path = os.path.join(self.folder, "converted.json")
        self.assert_ends(self.start("convert", self.recording, "--output", path, program="ARCSIM"), 0)
        check = self.start("check", path, program="ARCSIM")
        self.assert_ends(check, 0)
        self.assertEqual((check.out, check.err), (f"{path}: accepted\n", ""))
        with open(os.path.join(os.environ["SCENARIOS"], "scenario.schema.json"), encoding="utf-8") as file:
            schema = json.load(file)
        with open(path, encoding="utf-8") as file:
            document = json.load(file)
        jsonschema.validate(document, schema)
        return path, document

    def test_fails_as_the_original(self):
        original = self.recorded_run("--seconds", "1", "--scenario", self.scenario(faults=recorded.FAILURES))
        path, _ = self.convert()
        again = self.start("--seconds", "1", "--scenario", path)
        self.assert_ends(again, 0)
        self.assertEqual(len(recorded.failures(original.err)), 4)
        self.assertEqual(recorded.failures(again.err), recorded.failures(original.err))
        self.assertEqual(recorded.log(again.err), recorded.log(original.err))

    def test_fails_as_the_original_on_the_daemon(self):
        environment = self.serve(self.scenario(faults=recorded.FAILURES))
        original = self.recorded_run("--seconds", "1", environment=environment)
        path, _ = self.convert()
        again = self.start("run", "--scenario", path, "--", os.environ["NAVIGATOR"], "--seconds", "1",
                           program="ARCSIM")
        self.assert_ends(again, 0)
        self.assertEqual(len(recorded.failures(original.err)), 4)
        self.assertEqual(recorded.failures(again.err), recorded.failures(original.err))

    def test_hangs_as_the_original(self):
        scenario = self.scenario(faults=[{"function": "ARC_Close", "call": 1, "hang": True}])
        self.recorded_run("--seconds", "1", "--timeout", "2", "--scenario", scenario, exit_code=4)
        path, document = self.convert()
        self.assertIn({"function": "ARC_Close", "call": 1, "hang": True}, document["faults"])
        self.assert_ends(self.start("--seconds", "1", "--timeout", "2", "--scenario", path), 4)

    def test_starts_with_the_settings_of_the_original(self):
        settings = {"Engine/Galileo": "0", "Sens/MinElevAngle": "17", "Power/Cpu": "max"}
        self.recorded_run("--seconds", "1", "--scenario", self.scenario(settings=settings))
        _, document = self.convert()
        self.assertEqual({key: document["settings"][key] for key in settings}, settings)

    def test_sends_the_events_of_the_original(self):
        events = [{"atMs": 3000, "id": 75, "payload": "0a0b"}, {"atMs": 3100, "id": 22}]
        scenario = self.scenario(latencies=True, events=events)
        original = self.recorded_run("--seconds", "4", "--scenario", scenario)
        path, document = self.convert()
        self.assertEqual([{**event, "atMs": 0} for event in document["events"] if event["id"] in (75, 22)],
                         [{"atMs": 0, "id": 75, "payload": "0a0b"}, {"atMs": 0, "id": 22}])
        again = self.start("--seconds", "4", "--scenario", path)
        self.assert_ends(again, 0)
        wanted = [line for line in recorded.unasked(original.out) if " 75 " in line or " 22 " in line]
        self.assertEqual(len(wanted), 2)
        self.assertEqual([line for line in recorded.unasked(again.out) if line in wanted], wanted)

    def test_goes_to_standard_output_if_not_told_otherwise(self):
        self.recorded_run("--seconds", "1", "--scenario", self.scenario())
        path, document = self.convert()
        printed = self.start("convert", self.recording, program="ARCSIM")
        self.assert_ends(printed, 0)
        self.assertEqual(json.loads(printed.out), document)
        nowhere = os.path.join(path, "nowhere.json")
        refused = self.start("convert", self.recording, "-o", nowhere, program="ARCSIM")
        self.assert_ends(refused, 3)
        self.assertEqual(refused.err,
                         f"arcsim: {nowhere}: cannot be written: Not a directory; "
                         "accepted: the name of a file, or - for standard output\n")


if __name__ == "__main__":
    run.main()

"""Virtual time: hours of a scenario in moments, and the same in every run."""

import hashlib
import os
import re

import run

HOUR = 3600
# Without a wait for answers: how fast this test is must not show.
CALLS = ("method 1", "register", "open", "enable-lsta 10", "enable-lsta 11", "start", "start-until-ready")
EVENTS = [{"atMs": 5000, "id": 22, "payload": "01"}, {"atMs": 5000, "id": 23, "payload": "02"},
          {"atMs": 30000, "id": 72, "count": 20, "everyMs": 700, "numbered": True},
          {"atMs": 60000, "id": 99, "payload": "ff"}]
LSTA = [{"atMs": 40000, "system": "GPS", "status": 0}, {"atMs": 50000, "system": "GLONASS", "status": 5, "value": 7}]


class VirtualTime(run.DaemonTest):
    def embedded(self, scenario):
        return self.client(path="", environment={"ARCSIM_TIME": "virtual", "ARCSIM_SCENARIO": scenario})

    def on_daemon(self, scenario):
        return self.client(path="", command=[os.environ["ARCSIM"], "run", "--time", "virtual", "--scenario", scenario,
                                             "--"])

    def make_calls(self, client):
        """The path of the raw output."""
        begun = [client.begin(call) for call in CALLS]
        answers = [client.answer(number) for number in begun]
        self.assertEqual([code for code, _ in answers], [0] * len(CALLS))
        self.assertEqual(answers[-1][1], "was busy")
        return answers[-2][1]

    def read_epochs(self, path, count):
        """The hash of so many epochs and the UTC of the first and the last."""
        received = bytearray()
        begin = re.compile(rb"\$GNRMC,(\d{6}\.\d+|),")
        starts, searched = [], 0
        with open(path, "rb", buffering=0) as terminal:
            while len(starts) <= count:
                received += terminal.read(65536)
                for match in begin.finditer(received, searched):
                    starts.append(match)
                    searched = match.end()
        return (hashlib.sha256(received[starts[0].start():starts[count].start()]).hexdigest(),
                [starts[0].group(1), starts[count - 1].group(1)])

    def test_an_hour_of_sentences_is_the_same_in_every_run(self):
        scenario = self.write("hour.json", {"startUtc": "2024-06-12T03:00:00Z"})
        outcomes = []
        for make in (self.embedded, self.on_daemon):
            client = make(scenario)
            outcomes.append(self.read_epochs(self.make_calls(client), HOUR))
            client.close()
        self.assertEqual(outcomes[0], outcomes[1])
        self.assertEqual(outcomes[0][1], [b"", b"040001.00"], "the first epoch has no time yet")

    def test_events_and_reports_come_in_the_same_order_without_being_asked_for(self):
        scenario = self.write("events.json", {"events": EVENTS, "lsta": LSTA})
        outcomes = []
        for make in (self.embedded, self.embedded, self.on_daemon, self.on_daemon):
            client = make(scenario)
            self.make_calls(client)
            client.wait_for(lambda: (99, "ff") in client.events, "the last event")
            outcomes.append(client.events[:client.events.index((99, "ff"))])
            client.close()
        for outcome in outcomes:
            self.assertEqual(outcome, outcomes[0])
        planned = [event for event in outcomes[0] if event[0] != 34]
        self.assertEqual(planned, [(22, "01"), (23, "02")] +
                         [(72, number.to_bytes(4, "little").hex()) for number in range(20)])
        reports = [(payload[:8], payload[16:24]) for number, payload in outcomes[0] if number == 34]
        self.assertEqual([status for system, status in reports if system == "e8030000"][-1], "00000000")
        self.assertEqual([status for system, status in reports if system == "e9030000"][-1], "05000000")

    def test_a_day_goes_by_while_nobody_does_anything(self):
        scenario = self.scenario(events=[{"atMs": 86400000, "id": 99}])
        client = self.on_daemon(scenario)
        for call in ("register", "open"):
            client.begin(call)
        self.assertEqual(client.wait_for_events(1), [(99, "")])

    def test_advance(self):
        self.serve("--time", "virtual")
        self.assertEqual(self.status()["time"], "virtual")
        self.assertEqual(self.control("advance 1h"), "scenario time has gone on by 1h\n")
        self.assertEqual(self.status()["scenarioMs"], 3600000)
        self.assertEqual(self.ask("advance", ms=86400000), {"scenarioMs": 3600000 + 86400000})

    def test_advance_lets_what_is_planned_happen_in_order(self):
        self.serve("--time", "virtual", scenario=self.write("far.json", run.QUICK))
        client = self.client()
        begun = [client.begin(call) for call in ("register", "open")]
        self.assertEqual([client.answer(number)[0] for number in begun], [0, 0])
        for number, delay in ((3, 3000), (1, 1000), (2, 2000)):
            self.ask("event", eventId=number, count=2, everyMs=delay)
        self.control("advance 10s")
        self.assertEqual(sorted(client.wait_for_events(6)), [(1, ""), (1, ""), (2, ""), (2, ""), (3, ""), (3, "")])
        self.assertEqual(client.events[3:], [(1, ""), (2, ""), (3, "")])

    def test_what_has_no_end_lets_time_stand(self):
        self.serve("--time", "virtual")
        client = self.client()
        for number in [client.begin(call) for call in ("register", "open")]:
            self.assertEqual(client.answer(number)[0], 0)
        for text in ("jam gps", "no-fix on", "advance 1s", "event 72"):
            self.control(text)
        client.wait_for_events(1)
        self.assertEqual((self.status()["scenarioMs"], self.status()["jammed"]), (1000, ["gps"]))

    def test_a_word_that_is_no_time_is_named(self):
        client = self.client(path="", environment={"ARCSIM_TIME": "fast"})
        self.assert_calls(client, [("open", 31), ("version", 0)])
        self.assertEqual(client.errors(), 'simulated modem: ARCSIM_TIME: "fast" is not accepted; accepted: real, '
                                          "virtual\n")


if __name__ == "__main__":
    run.main()

"""A client that takes more than its share is cut off; others are served as before, and the daemon's memory stays
bounded."""

import json
import threading

import run
from hostile import CALL, HostileTest


class Greedy(HostileTest):
    def test_half_a_line_and_then_silence(self):
        silent = [self.raw() for _ in range(20)]
        for raw in silent:
            raw.send(b'{"hello":"client","name":"' + b"x" * 60000)
        self.assert_others_are_served()
        for raw in silent[:10]:
            raw.close()
        self.assert_others_are_served()
        self.assertEqual(len(self.status()["clients"]), 1)

    def test_more_connections_than_are_taken(self):
        connections = [self.raw() for _ in range(300)]
        for raw in connections:
            raw.send({"id": 1, "control": "quoted-settings"})
        answered = [raw for raw in connections if raw.line() is not None]
        # 256, of which the other application has one
        self.assertEqual(len(answered), 255)
        self.assert_others_are_served()
        for raw in connections:
            raw.close()
        run.wait_until(lambda: self.arcsim("status", "--socket", self.socket).returncode == 0, "there is room again")
        self.open_client()

    def test_somebody_who_never_reads_is_cut_off(self):
        raw = self.raw()
        raw.greet(open=True, handler=True)
        for number in range(30):
            self.ask("set", key=f"Long{number}", value="x" * 2000, force=True)
        line = json.dumps({"id": 1, "control": "quoted-settings"}).encode("ascii") + b"\n"  # its answer is much longer
        ended = threading.Event()

        def send():
            try:
                while True:
                    raw.socket.sendall(line * 50)
            except OSError:
                ended.set()

        threading.Thread(target=send, daemon=True).start()
        while not ended.is_set():
            self.assert_others_are_served()
        run.wait_until(lambda: len(self.status()["clients"]) == 1, "the daemon has forgotten it")
        self.assert_others_are_served()

    def test_somebody_who_reads_no_events_is_cut_off(self):
        raw = self.raw()
        raw.greet(open=True, handler=True)
        self.assert_calls(self.other, [("unregister", 0)])
        for _ in range(5):
            self.ask("event", eventId=72, count=250, payload="00" * 32000)
            self.assert_others_are_served()
        self.assertEqual(len(self.status()["clients"]), 1)
        self.assert_calls(self.other, [("register", 0)])
        self.control("event 72 0a")
        self.assertEqual(self.other.wait_for_events(1), [(72, "0a")])

    def test_somebody_who_has_too_many_calls_waiting(self):
        self.control("hang ARC_AtcTunneling --times 100000")
        for _ in range(20):
            raw = self.raw()
            raw.greet(open=True)
            raw.send(b"".join(json.dumps({**CALL, "id": number}).encode("ascii") + b"\n" for number in range(1001)))
            self.assertEqual(raw.line(), {"error": "too many calls at a time; accepted: 1000"})
            self.assertIsNone(raw.line())
        patient = [self.raw() for _ in range(15)]
        for raw in patient:
            raw.greet(open=True)
            raw.send(b"".join(json.dumps({**CALL, "id": number}).encode("ascii") + b"\n" for number in range(1000)))
        run.wait_until(lambda: self.status()["hanging"] == 15000, "15 clients have 1000 calls each hanging")
        self.control("clear ARC_AtcTunneling")
        self.assert_others_are_served()
        for raw in patient:
            self.assertEqual([raw.line()["code"] for _ in range(1000)], [32] * 1000)

    def test_an_event_storm_of_the_largest_size(self):
        error = self.refused_result("event", eventId=72, count=100000, payload="00" * 1000)
        self.assertRegex(error, "accepted: events with at most 8388608 bytes of payload altogether$")
        self.ask("event", eventId=72, count=262, payload="0a" * 32000)
        self.assertEqual(self.other.wait_for_events(262), [(72, "0a" * 32000)] * 262)
        self.assert_others_are_served()

    def test_an_answer_that_would_be_too_long(self):
        error = self.refused_result("set", key="One", value="x" * 2049, force=True)
        self.assertRegex(error, r"^set: value: \"x+\.\.\. is not accepted; accepted: a value without quotes of at most "
                                r"2048 bytes$")
        for number in range(40):
            self.ask("set", key=f"Long{number}", value="x" * 2048, force=True)
        self.assertRegex(self.refused_result("quoted-settings"),
                         r"^quoted-settings: the answer would have 8\d{4} bytes; a line has room for 65536$")
        self.assertEqual(self.status()["settings"]["Power/Cpu"], "std")
        self.assert_others_are_served()


if __name__ == "__main__":
    run.main()

"""Several applications share one modem, each through a connection of its own."""

import os

import run


def epochs(path):
    """Opens the raw output and reads until a sentence has come."""
    with open(path, "rb", buffering=0) as terminal:
        received = b""
        while b"\r\n" not in received:
            received += terminal.read(4096)
        return received


class Sharing(run.DaemonTest):
    def setUp(self):
        super().setUp()
        self.daemon = self.serve()

    def test_settings_outlive_the_program_that_made_them(self):
        first = self.open_client()
        self.assert_calls(first, [("read Power/Cpu", (0, '"std"')), ('write Power/Cpu "max"', (0, "1")), ("close", 0)])
        first.process.stdin.close()
        self.assertEqual(first.finish(), 0)
        self.assert_calls(self.open_client(), [("read Power/Cpu", (0, '"max"')), ('write Power/Cpu "max"', (0, "0"))])

    def test_what_an_application_has_closed_stays_closed(self):
        """Or else what it writes there goes to the modem."""
        for path in (self.socket, ""):
            client = self.client(path, command=("sh", "-c", 'exec "$@" 2>&-', "sh"))
            for call in ("method 1", "register", "open", "start"):
                self.assertEqual(client.call(call)[0], 0, call)
            self.assertFalse(os.path.lexists(f"/proc/{client.pid}/fd/2"), os.listdir(f"/proc/{client.pid}/fd"))

    def test_settings_are_seen_by_others_at_once(self):
        one, other = self.open_client(), self.open_client()
        for value in ("200", "500", "100"):
            self.assertEqual(one.call(f'write Nmea/FreqMs "{value}"'), (0, "1"))
            self.assertEqual(other.call("read Nmea/FreqMs"), (0, f'"{value}"'))
            one, other = other, one

    def test_everybody_opens_and_closes_for_himself(self):
        self.open_client("start")
        second = self.client()
        for call in ("versions", "log text", "at AT", "read Power/Cpu", 'write Power/Cpu "max"', "start", "stop",
                     "force-stop", "reset-assistance", "lsta 10", "enable-lsta 10", "close"):
            self.assertEqual(second.call(call)[0], 1, call)
        self.assert_calls(second, [("method 1", 0), ("register", 0), ("version", (0, "ArcRilD 1.0 (simulated)")),
                                   ("open", 0), ("versions", (0, "RIL 1.0 (simulated)|Modem 1.0 (simulated)")),
                                   ("close", 0), ("close", 1), ("versions", (1, "|"))])

    def test_closing_leaves_the_engine_of_others_on(self):
        one, other = self.open_client("start"), self.open_client()
        path = one.call("start")[1]
        self.assertEqual(path, self.socket + ".nmea")
        self.assertEqual(other.call("start"), (0, path))
        self.assertEqual(one.call("close"), (0, ""))
        self.assertEqual(self.status()["engine"], "running")
        self.assertIn(b"$", epochs(path))
        self.assertEqual(other.call("close"), (0, ""))
        self.assertEqual(self.status()["engine"], "off")

    def test_the_end_of_the_last_program_ends_output_and_reports(self):
        for end in ("kill", "finish"):
            with self.subTest(end):
                one, other = self.open_client("start", "enable-lsta 10"), self.open_client()
                one.kill()
                run.wait_until(lambda: len(self.status()["clients"]) == 1, "the dead one is forgotten")
                self.assertEqual(self.status()["engine"], "running")
                self.control("lsta gps --status 1 --value 30")
                self.assertEqual(other.wait_for_events(1)[0][0], 34)
                if end == "finish":
                    other.process.stdin.close()
                getattr(other, end)()
                run.wait_until(lambda: self.status()["clients"] == [], "the last one is forgotten")
                self.assertEqual(self.status()["engine"], "off")
                # A new one hears of no system that it has not asked for.
                new = self.open_client()
                self.control("lsta gps --status 1 --value 50")
                self.control("event 72 0a")
                self.assertEqual(new.wait_for_events(1), [(72, "0a")])
                new.kill()
                run.wait_until(lambda: self.status()["clients"] == [], "nobody is left")
                self.control("lsta gps --auto")

    def test_events_are_for_open_connections_with_a_handler(self):
        both, deaf, closed = self.open_client(), self.client(), self.client()
        self.assert_calls(deaf, [("open", 0)])
        self.assert_calls(closed, [("register", 0)])
        self.assertIn('"listeners":1', self.arcsim("event", "--socket", self.socket, "72", "01", "--json").stdout)
        self.assert_calls(deaf, [("register", 0)])
        self.assert_calls(closed, [("open", 0)])
        self.control("event 72 02")
        self.assertEqual(both.wait_for_events(2), [(72, "01"), (72, "02")])
        self.assertEqual(deaf.wait_for_events(1), [(72, "02")])
        self.assertEqual(closed.wait_for_events(1), [(72, "02")])
        self.assert_calls(deaf, [("unregister", 0)])
        self.assert_calls(closed, [("close", 0)])
        self.control("event 72 03")
        self.assertEqual(both.wait_for_events(3)[2], (72, "03"))
        self.assert_calls(deaf, [("register", 0)])
        self.assert_calls(closed, [("open", 0)])
        self.control("event 72 04")
        self.assertEqual(deaf.wait_for_events(2), [(72, "02"), (72, "04")])
        self.assertEqual(closed.wait_for_events(2), [(72, "02"), (72, "04")])


if __name__ == "__main__":
    run.main()

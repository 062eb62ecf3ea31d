"""Signals end a run in order, a second one at once, and a reader of stdout may leave."""

import run

FIRST_LINE = r"^\S+ +(none|2D|3D) "


class Ending(run.NavigatorTest):
    def test_ends_after_the_seconds_asked_for(self):
        begin = run.monotonic()
        navigator = self.start("--seconds", "2", "--scenario", self.scenario())
        self.assert_ends(navigator, 0)
        self.assertGreaterEqual(run.monotonic() - begin, 2)
        self.assert_closed(navigator)

    def test_a_signal_during_navigation_stops_closes_and_sums_up(self):
        for signal in (run.SIGINT, run.SIGTERM, run.SIGHUP, run.SIGQUIT):
            with self.subTest(signal):
                navigator = self.start("--scenario", self.scenario())
                navigator.wait_for(FIRST_LINE)
                navigator.send(signal)
                self.assert_ends(navigator, 0)
                self.assertIn("\nSummary\n", navigator.out)
                self.assert_closed(navigator)

    def test_a_signal_before_the_output_closes_what_is_open(self):
        navigator = self.start("--scenario", self.scenario(faults=[
            {"function": "ARC_StartGNSSraw", "call": 1, "count": 1000000, "code": 3}]))
        navigator.wait_for(r"ARC_StartGNSSraw\(\) took .*\(3\)$", "err")
        navigator.send(run.SIGINT)
        self.assert_ends(navigator, 130)
        self.assertIn("interrupted while waiting for the answer to 'start the output'\n", navigator.err)
        self.assert_closed(navigator)

    def test_a_signal_ends_an_opening_that_never_succeeds(self):
        navigator = self.start("--scenario", self.scenario(faults=[
            {"function": "ARC_Open", "call": 1, "count": 1000000, "code": 31}]))
        navigator.wait_for(r"ARC_Open\(\) took .*\(31\)$", "err")
        navigator.send(run.SIGTERM)
        self.assert_ends(navigator, 130)
        self.assertIn("leaving while the library is still at: kelarc/KelArc.141: ARC_Open()\n", navigator.err)

    def test_a_second_signal_leaves_at_once(self):
        navigator = self.start("--timeout", "600", "--scenario", self.scenario(faults=[
            {"function": "ARC_StopGNSS", "call": 1, "latencyMs": 600000}]))
        navigator.wait_for(FIRST_LINE)
        navigator.send(run.SIGINT)
        navigator.wait_for("stopGNSS called", "err")
        navigator.send(run.SIGINT)
        self.assert_ends(navigator, 130)

    def test_a_reader_that_leaves_ends_the_run_in_order(self):
        navigator = self.start("--scenario", self.scenario())
        navigator.wait_for(FIRST_LINE)
        navigator.stop_reading()
        self.assert_ends(navigator, 0)
        self.assert_closed(navigator)


if __name__ == "__main__":
    run.main()

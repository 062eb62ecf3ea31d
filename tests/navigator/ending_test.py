"""Signals end a run in order, a second one at once, and a reader of stdout may leave."""

import os
import subprocess

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

    def redirected(self, redirections, *arguments):
        """The exit code and what comes on the standard error that is left."""
        ran = subprocess.run(["bash", "-c", f'exec "$@" {redirections}', "bash", os.environ["NAVIGATOR"], *arguments],
                             stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
                             timeout=run.LIMIT_S, check=False)
        return ran.returncode, ran.stderr

    def test_what_cannot_be_written_is_an_error(self):
        scenario = ("--seconds", "1", "--scenario", self.scenario())
        for redirections in ("1>/dev/full", "1>&-", "0<&- 1>&-"):
            code, errors = self.redirected(redirections, *scenario)
            self.assertEqual(code, 5, redirections)
            self.assertRegex(errors, r"program the results could not be written\n\Z")
            self.assertRegex(errors, r"ARC_Close\(\) took.*\(0\)\n")
        for redirections in ("2>/dev/full", "2>&-", "0<&- 1>&- 2>&-"):
            self.assertEqual(self.redirected(redirections, *scenario), (5, ""), redirections)
        self.assertEqual(self.redirected("1>/dev/full", "--help"), (5, ""))

    def test_a_reader_that_leaves_ends_the_run_in_order(self):
        navigator = self.start("--scenario", self.scenario())
        navigator.wait_for(FIRST_LINE)
        navigator.stop_reading()
        self.assert_ends(navigator, 0)
        self.assert_closed(navigator)


if __name__ == "__main__":
    run.main()

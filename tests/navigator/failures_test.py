"""No wait lasts for ever: requests that are refused or not answered are named, and the exit code tells which of the two
it was."""

import run


class Failures(run.NavigatorTest):
    def test_an_opening_that_never_succeeds_ends_at_the_deadline(self):
        navigator = self.start("--timeout", "1", "--scenario", self.scenario(faults=[
            {"function": "ARC_Open", "call": 1, "count": 1000000, "code": 31}]))
        self.assert_ends(navigator, 4)
        self.assertIn("no answer to 'open the modem' within 1 s. The library is at 'kelarc/KelArc.141: ARC_Open()', "
                      "requests waiting: 0. Its lines above tell what", navigator.err)

    def test_a_start_that_never_succeeds_is_given_up_and_the_modem_closed(self):
        navigator = self.start("--timeout", "3", "--scenario", self.scenario(faults=[
            {"function": "ARC_StartGNSSraw", "call": 1, "count": 1000000, "code": 3}]))
        self.assert_ends(navigator, 4)
        self.assertIn("no answer to 'start the output' within 3 s. ", navigator.err)
        self.assert_closed(navigator)

    def test_a_call_that_does_not_return_is_left_behind(self):
        navigator = self.start("--timeout", "1", "--scenario", self.scenario(faults=[
            {"function": "ARC_StartGNSSraw", "call": 1, "latencyMs": 600000}]))
        self.assert_ends(navigator, 4)
        self.assertIn("no answer to 'start the output' within 1 s. ", navigator.err)
        self.assertIn("no answer to 'stop the output' within 1 s. The library is at "
                      "'kelarc/KelArc.526: ARC_StartGNSSraw()', requests waiting: 1. ", navigator.err)

    def test_a_long_wait_is_reported(self):
        navigator = self.start("--timeout", "8", "--scenario", self.scenario(faults=[
            {"function": "ARC_Open", "call": 1, "latencyMs": 600000}]))
        self.assert_ends(navigator, 4)
        self.assertRegex(navigator.err, r"no answer to 'open the modem' for \d+ s; giving up after 8 s\n")

    def test_a_refused_setting_is_named_and_navigation_goes_on(self):
        navigator = self.start("--seconds", "1", "--scenario", self.scenario(faults=[
            {"function": "ARC_CheckModuleSetting", "call": 14, "count": 15, "code": 13}]))
        self.assert_ends(navigator, 1)
        self.assertIn("\n  output format        refused with result code 13\n", navigator.out)
        self.assertIn("the modem refused 'output format' with result code 13; ", navigator.err)
        self.assertIn("\nSummary\n", navigator.out)
        self.assert_closed(navigator)

    def test_refused_lsta_is_named_and_navigation_goes_on(self):
        navigator = self.start("--seconds", "1", "--scenario", self.scenario(faults=[
            {"function": "ARC_EnableLSTA", "call": 2, "count": 15, "code": 24}]))
        self.assert_ends(navigator, 1)
        self.assertIn("\n  GLONASS notifications refused with result code 24\n", navigator.out)
        self.assertIn("\nSummary\n", navigator.out)

    def test_a_refused_stop_is_named_and_the_modem_closed(self):
        navigator = self.start("--seconds", "1", "--scenario", self.scenario(faults=[
            {"function": "ARC_StopGNSS", "call": 1, "count": 15, "code": 21}]))
        self.assert_ends(navigator, 1)
        self.assertIn("the modem refused to stop the output with result code 21\n", navigator.err)
        self.assertRegex(navigator.err, r"ARC_Close\(\) took .*\(0\)\n")

    def test_an_argument_steers_no_terminal(self):
        navigator = self.start("--min-elevation", "\x1b[2J\x9b\n")
        self.assert_ends(navigator, 2)
        self.assertIn(r"--min-elevation: Value \x1b[2J\xc2\x9b\n not in range 5 to 45" + "\n", navigator.err)


if __name__ == "__main__":
    run.main()

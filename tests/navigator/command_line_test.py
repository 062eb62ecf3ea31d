"""Wrong command lines are refused with a message that says what is accepted; help names every option."""

import run


class CommandLine(run.NavigatorTest):
    def refused(self, arguments, message):
        with self.subTest(arguments):
            navigator = self.start(*arguments.split())
            self.assert_ends(navigator, 2)
            self.assertEqual(navigator.err, message + "\nRun with --help for more information.\n")
            self.assertEqual(navigator.out, "")

    def test_wrong_values_are_named_with_what_is_accepted(self):
        for value in ("300", "0", "-100", "fast", "100.5"):
            self.refused(f"--period={value}", f"--period: {value} not in {{1000,500,200,100}}")
        for value in ("4", "46", "-5", "5.5", "low"):
            self.refused(f"--min-elevation={value}", f"--min-elevation: Value {value} not in range 5 to 45")
        for option in ("--seconds", "--timeout"):
            for value in ("0", "-1", "604801", "soon", "1.5"):
                self.refused(f"{option}={value}", f"{option}: Value {value} not in range 1 to 604800")
        self.refused("--color=blue", "--color: blue not in {auto,always,never}")

    def test_files_must_exist(self):
        self.refused("--replay missing.nmea", "--replay: File does not exist: missing.nmea")
        self.refused("--scenario missing.json", "--scenario: File does not exist: missing.json")

    def test_missing_values_and_unknown_arguments_are_refused(self):
        self.refused("--period", "--period: 1 required MS:{1000,500,200,100} missing")
        self.refused("--fast", "The following argument was not expected: --fast")
        self.refused("now", "The following argument was not expected: now")

    def test_help_names_every_option_and_exit_code(self):
        navigator = self.start("--help")
        self.assert_ends(navigator, 0)
        for word in ("--seconds", "--timeout", "--period", "--min-elevation", "--no-glonass", "--no-galileo",
                     "--no-beidou", "--no-qzss", "--no-sbas", "--color", "--replay", "--scenario", "130"):
            self.assertIn(f"  {word} ", navigator.out)
        self.assertLessEqual(max(map(len, navigator.out.splitlines())), 110)
        self.assertEqual(navigator.err, "")


if __name__ == "__main__":
    run.main()

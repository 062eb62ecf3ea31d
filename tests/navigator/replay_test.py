"""A recording takes the place of the simulated receiver."""

import run


class Replay(run.NavigatorTest):
    def test_shows_the_recorded_positions(self):
        recording = self.write("drive.nmea", "".join(run.epoch(f"0915{second:02d}.00") for second in range(60)))
        navigator = self.start("--replay", recording, "--scenario", self.scenario())
        navigator.wait_for(run.epoch_line(r"09:15:\d\d"))
        navigator.send(run.SIGINT)
        self.assert_ends(navigator, 0)
        self.assertRegex(navigator.out, r"First fix after      \d+\.\d s, at 09:15:\d\d UTC on 2024-02-29\n")
        self.assertIn("Distance travelled   0 m\n", navigator.out)

    def test_counts_what_is_broken_in_a_recording(self):
        broken = "$GPGGA,091500.00,broken*00\r\nnot a sentence\r\n"
        recording = self.write("broken.nmea",
                               "".join(run.epoch(f"0915{second:02d}.00") + broken for second in range(60)))
        navigator = self.start("--replay", recording, "--scenario", self.scenario())
        navigator.wait_for(run.epoch_line(r"09:15:\d\d"))
        navigator.send(run.SIGINT)
        self.assert_ends(navigator, 0)
        self.assertRegex(navigator.out, r"Checksum errors      [1-9]\d*\n")
        self.assertRegex(navigator.out, r"Other bad lines      [1-9]\d*\n")

    def test_a_file_that_is_no_recording_is_named(self):
        recording = self.write("empty.nmea", "nothing here\n")
        navigator = self.start("--timeout", "1", "--replay", recording)
        self.assert_ends(navigator, 4)
        self.assertIn(recording, navigator.err)


if __name__ == "__main__":
    run.main()

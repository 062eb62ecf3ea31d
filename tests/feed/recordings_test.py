"""A recording comes out of the device byte for byte: those of real receivers, or some made here where there are none.

Recordings of real receivers are no part of the project. They are looked for in the folder KELARC_RECORDINGS or else in
shared/nmea beside the project's root."""

import os
import pathlib
import sys

import feed

SPEED = 20  # leaves a reader on a busy machine some tenths of a second before the terminal is full


def recorded():
    """The recordings at hand."""
    named = os.environ.get("KELARC_RECORDINGS")
    folder = pathlib.Path(named or pathlib.Path(os.environ["KELARC_SOURCE"]).parent / "shared" / "nmea")
    files = sorted(folder.glob("*.nmea"))
    if named and not files:
        raise AssertionError(f"KELARC_RECORDINGS names '{named}'; accepted is a folder with files *.nmea")
    return files


class Recordings(feed.Replayed):
    def check(self, path):
        content = path.read_bytes()
        self.assertGreater(content.count(b"$G"), 50, "hardly a recording")
        print(f"replaying {path}, {len(content)} bytes", file=sys.stderr)
        scenario = self.scenario(replay={"file": str(path), "speed": SPEED})
        host = self.launch("", {"ARCSIM_SCENARIO": scenario, "ARCSIM_REPLAY": str(path)})
        device = self.open_before_start(host)
        self.assertEqual(device.bytes(len(content)), content)
        host.obey("stop")
        self.assertIsNone(device.lines.some(0), "more than was recorded")

    def made(self, name, settings, epochs, **scenario):
        path = pathlib.Path(self.folder, name)
        path.write_bytes(self.record(settings, epochs, **scenario))
        return path

    def test_at_hand_come_byte_for_byte(self):
        files = recorded() or [
            self.made("cold-start.nmea", "period 100", 30, firstFix={"coldMs": 1500, "hotMs": 1500}),
            self.made("gps-only.nmea", "period 100 glonass off galileo off beidou off", 10)]
        for path in files:
            with self.subTest(recording=path.name):
                self.check(path)

    def test_with_what_is_no_sentence_come_byte_for_byte(self):
        path = self.made("damaged.nmea", "period 100", 10)
        content = path.read_bytes()
        third = len(content) // 3
        path.write_bytes(b"\x00\xff no sentence\n" + content[:third] + b"\r\n\r\n$GPGGA,cut" + content[third:] + b"$GN")
        self.check(path)


if __name__ == "__main__":
    feed.main()

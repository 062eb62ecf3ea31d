"""The period of the output arrives at gpsd as it was set, with no epoch missing."""

import datetime
import itertools

import feed
import gpsd

# Short epochs, so that many fit into the terminal while a busy machine lets gpsd wait.
GPS_ONLY = "glonass off galileo off beidou off sbas off"


def time_of(report):
    return datetime.datetime.fromisoformat(report["time"].replace("Z", "+00:00"))


@feed.reached(feed.Embedded, feed.Daemon)
class Period:
    def reader(self, period_ms):
        host = self.receiver(f"period {period_ms} {GPS_ONLY}")
        return host, gpsd.Gpsd(self, host)

    def check(self, reader, period_ms):
        """21 epochs on end, from the first one on that comes a period after the one before it."""
        positions = (time_of(report) for report in reader.positions() if report["mode"] >= 2)
        steps_ms = ((later - earlier) / datetime.timedelta(milliseconds=1)
                    for earlier, later in itertools.pairwise(positions))
        found = itertools.islice(itertools.dropwhile(lambda step: step != period_ms, steps_ms), 20)
        self.assertEqual(list(found), [period_ms] * 20)

    def test_is_the_one_that_was_set_before_the_start(self):
        readers = {period_ms: self.reader(period_ms)[1] for period_ms in (100, 200, 500, 1000)}
        for period_ms, reader in readers.items():  # they run side by side
            with self.subTest(period_ms=period_ms):
                self.check(reader, period_ms)

    def test_changes_while_gpsd_reads(self):
        host, reader = self.reader(1000)
        for period_ms in (100, 200):
            host.obey(f"period {period_ms}")
            self.check(reader, period_ms)


if __name__ == "__main__":
    feed.main()

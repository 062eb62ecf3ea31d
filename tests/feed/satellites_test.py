"""gpsd sees the satellites that the sentences tell of, and follows what is switched."""

import feed
import gpsd

SYSTEMS = {"gps", "sbas", "glonass", "galileo", "beidou"}


@feed.reached(feed.Embedded, feed.Replayed, feed.Daemon)
class SatellitesInView:
    def test_are_those_of_the_sentences_of_the_same_epoch(self):
        reader = gpsd.Gpsd(self, self.receiver("period 100"))
        for epoch in reader.epochs(lambda epoch: set(epoch.seen()) == SYSTEMS, 10):
            self.assertEqual(epoch.seen(), epoch.in_view())
            self.assertTrue(all(len(epoch.in_view()[system]) >= 3 for system in SYSTEMS), epoch.in_view())

    def test_are_those_of_the_sentences_when_there_is_one_talker_only(self):
        reader = gpsd.Gpsd(self, self.receiver("period 100 glonass off galileo off beidou off"))
        for epoch in reader.epochs(lambda epoch: set(epoch.seen()) == {"gps", "sbas"}, 10):
            self.assertEqual(epoch.seen(), epoch.in_view())
            self.assertEqual(set(epoch.seen()), {"gps", "sbas"})
            self.assertGreaterEqual(len(epoch.seen()["gps"]), 3)


@feed.reached(feed.Embedded, feed.Daemon)
class SwitchedSystem:
    def check(self, name):
        host = self.receiver("period 100")
        reader = gpsd.Gpsd(self, host)
        reader.epochs(lambda epoch: set(epoch.seen()) == SYSTEMS, 3)
        for switch, expected in (("off", SYSTEMS - {name}), ("on", SYSTEMS)):
            host.obey(f"{name} {switch}")
            for epoch in reader.epochs(lambda epoch, there=expected: set(epoch.seen()) == there, 4):
                self.assertEqual(set(epoch.seen()), expected)
                self.assertEqual(epoch.seen(), epoch.in_view())
                self.assertEqual(epoch.position["mode"], 3)

    def test_glonass_goes_and_comes_back(self):
        self.check("glonass")

    def test_galileo_goes_and_comes_back(self):
        self.check("galileo")

    def test_beidou_goes_and_comes_back(self):
        self.check("beidou")

    def test_sbas_goes_and_comes_back(self):
        self.check("sbas")


if __name__ == "__main__":
    feed.main()

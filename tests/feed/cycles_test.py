"""gpsd sees where epochs begin and end, whichever systems are on and in view."""

import feed
import gpsd

EUROPE = {"latitudeDeg": 48.1, "longitudeDeg": 11.5}  # none of QZSS rises there


def uses_qzss(epoch):
    """None while the sentences do not tell; gpsd passes on no GSV without a satellite, but GSA."""
    used = [fields[3:15] for fields in epoch.sentences if fields[0][2:] == "GSA" and fields[-1] == "5"]
    return any(used[0]) if used else None


@feed.reached(feed.Embedded, feed.Daemon)
class Cycles:
    def warnings(self, settings, is_wanted, **scenario):
        """Those of a dozen epochs at the period at which gpsd looks for pauses between them."""
        reader = gpsd.Gpsd(self, self.receiver(f"period 1000 {settings}", **scenario))
        epochs = reader.epochs(is_wanted, 12)
        self.assertEqual([epoch for epoch in epochs if not is_wanted(epoch)], [])
        return [line for line in reader.log().splitlines() if "cycle" in line]

    def test_with_qzss_on_and_none_in_view(self):
        self.assertEqual(self.warnings("qzss on", lambda epoch: uses_qzss(epoch) is False, route=[EUROPE]), [])

    def test_with_qzss_in_view(self):
        self.assertEqual(self.warnings("qzss on", uses_qzss), [])

    def test_with_nothing_but_gps_and_none_of_qzss(self):
        self.assertEqual(self.warnings("qzss on glonass off galileo off beidou off sbas off",
                                       lambda epoch: uses_qzss(epoch) is False, route=[EUROPE]), [])


if __name__ == "__main__":
    feed.main()

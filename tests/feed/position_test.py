"""gpsd reports where the simulated receiver is."""

import datetime
import math

import feed
import gpsd

START = datetime.datetime(2024, 6, 12, 3, 0, 0, tzinfo=datetime.timezone.utc)  # of every scenario


def metres_per_degree(latitude_deg):
    """North and east, by the usual series for WGS 84."""
    angle = math.radians(latitude_deg)
    return (111132.954 - 559.822 * math.cos(2 * angle) + 1.175 * math.cos(4 * angle),
            111412.84 * math.cos(angle) - 93.5 * math.cos(3 * angle) + 0.118 * math.cos(5 * angle))


def offset(report, latitude_deg, longitude_deg):
    """Metres north and east of a place."""
    north, east = metres_per_degree(latitude_deg)
    return (report["lat"] - latitude_deg) * north, (report["lon"] - longitude_deg) * east


def seconds_driven(report):
    return (datetime.datetime.fromisoformat(report["time"].replace("Z", "+00:00")) - START).total_seconds()


@feed.reached(feed.Embedded, feed.Replayed, feed.Daemon)
class Position:
    """The receiver's own error is about a metre, twice that in height."""

    def reports(self, route):
        reader = gpsd.Gpsd(self, self.receiver("period 100", route=route))
        epochs = reader.epochs(lambda epoch: epoch.position and epoch.position["mode"] == 3, 10)
        return [epoch.position for epoch in epochs]

    def test_a_standing_receiver_is_where_its_route_says(self):
        for report in self.reports([{"latitudeDeg": -33.8568, "longitudeDeg": -70.6483, "altitudeM": 520}]):
            self.assertEqual(report["mode"], 3)
            self.assertLess(math.hypot(*offset(report, -33.8568, -70.6483)), 5, report)
            self.assertAlmostEqual(report["altMSL"], 520, delta=5)
            self.assertLess(report["speed"], 0.5, report)

    def test_a_driven_receiver_is_where_its_route_says_at_the_time_of_the_fix(self):
        # 3 parts east, 4 parts north at 20 m/s: 12 m/s and 16 m/s.
        latitude, longitude = 48.1, 11.5
        north, east = metres_per_degree(latitude)
        route = [{"latitudeDeg": latitude, "longitudeDeg": longitude, "altitudeM": 500, "speedMps": 20},
                 {"latitudeDeg": latitude + 16000 / north, "longitudeDeg": longitude + 12000 / east, "altitudeM": 500}]
        reports = self.reports(route)
        for report in reports:
            driven_s = seconds_driven(report)
            self.assertTrue(0 <= driven_s < 300, report)
            self.assertEqual(report["mode"], 3)
            to_north, to_east = offset(report, latitude, longitude)
            self.assertLess(math.hypot(to_north - 16 * driven_s, to_east - 12 * driven_s), 5, report)
            self.assertAlmostEqual(report["altMSL"], 500, delta=5)
            self.assertAlmostEqual(report["speed"], 20, delta=0.5)
            self.assertAlmostEqual(report["track"], math.degrees(math.atan2(3, 4)), delta=0.5)
        # Of ten: on a slow machine gpsd still has epochs from before the recording was begun anew.
        self.assertGreaterEqual(len({report["time"] for report in reports}), 5, reports)


if __name__ == "__main__":
    feed.main()

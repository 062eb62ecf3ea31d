"""Every sentence parses, and the sentences of an epoch agree with each other, whatever the receiver is set to."""

import datetime
import itertools

import pynmea2

import feed

# Talker of GSV, system id of GSA, signal id of GSV, numbers of satellites; in the order in which they are put out.
SYSTEMS = {
    "gps": ("GP", "1", "1", range(1, 65)),  # from 33 on SBAS
    "glonass": ("GL", "2", "1", range(65, 97)),
    "galileo": ("GA", "3", "7", range(1, 37)),
    "beidou": ("GB", "4", "1", range(1, 64)),
    "qzss": ("GQ", "5", "1", range(1, 11)),
}
ALL = ("gps", "glonass", "galileo", "beidou")  # QZSS is off unless it is switched on
FIELDS = {"RMC": 13, "VTG": 9, "GGA": 14, "GSA": 18}
LONGEST = 82  # of a sentence, from the dollar sign to the line feed

MOVING = [{"latitudeDeg": -33.45, "longitudeDeg": -70.66, "speedMps": 15},
          {"latitudeDeg": -33.4, "longitudeDeg": -70.66}]
STANDING = [{"latitudeDeg": 35.68, "longitudeDeg": 139.76, "altitudeM": 40}]
AT_THE_POLE = [{"latitudeDeg": 89, "longitudeDeg": 0}]


def silent(*systems):
    """LSTA status 0 from the beginning."""
    return [{"atMs": 0, "system": system, "status": 0} for system in systems]


class Satellites:
    """The GSV sentences of one system."""

    def __init__(self, test, messages, signal):
        self.carriers = {}  # number -> C/N0 or empty
        test.assertEqual([int(message.data[0]) for message in messages], [len(messages)] * len(messages))
        test.assertEqual([int(message.data[1]) for message in messages], list(range(1, len(messages) + 1)))
        for message in messages:
            blocks = message.data[3:-1]
            test.assertEqual(message.data[-1], signal)
            test.assertEqual(len(blocks) % 4, 0, message)
            is_last = message is messages[-1]
            least = 4 if len(messages) > 1 else 0
            test.assertTrue(least <= len(blocks) <= 16 if is_last else len(blocks) == 16, message)
            for number, elevation, azimuth, carrier in zip(*[iter(blocks)] * 4):
                test.assertTrue(0 <= int(elevation) <= 90 and 0 <= int(azimuth) <= 359, message)
                test.assertTrue(carrier == "" or 0 < int(carrier) <= 99, message)
                test.assertNotIn(int(number), self.carriers)
                self.carriers[int(number)] = carrier
        test.assertEqual([int(message.data[2]) for message in messages], [len(self.carriers)] * len(messages))


class Epoch:
    """One epoch, parsed and held against itself."""

    def __init__(self, test, lines, systems):
        self.test = test
        self.messages = [self.parse(line) for line in lines]
        self.rmc, self.vtg, self.gga = self.messages[:3]
        self.gsa = self.messages[3:3 + len(systems)]
        talker = "GN" if len(systems) > 1 else "GP"
        # Those of QZSS first: they may tell of no satellite, which does not end an epoch for every reader.
        gsv = [SYSTEMS[system][0] + "GSV" for system in sorted(systems, key=lambda system: system != "qzss")]
        kinds = [message.talker + message.sentence_type for message in self.messages]
        test.assertEqual(kinds[:3], [talker + kind for kind in ("RMC", "VTG", "GGA")])
        test.assertEqual(kinds[3:3 + len(systems)], [talker + "GSA"] * len(systems))
        test.assertEqual(list(dict.fromkeys(kinds[3 + len(systems):])), gsv)
        test.assertEqual(kinds[3 + len(systems):], sorted(kinds[3 + len(systems):], key=gsv.index))
        self.satellites = {
            system: Satellites(test, [message for message in self.messages[3 + len(systems):]
                                      if message.talker == SYSTEMS[system][0]], SYSTEMS[system][2])
            for system in systems}
        self.used = {system: [int(number) for number in gsa.data[2:14] if number]
                     for system, gsa in zip(systems, self.gsa)}
        self.has_fix = self.rmc.status == "A"
        self.time = self.rmc.timestamp
        self.check_position()
        self.check_satellites()

    def parse(self, line):
        self.test.assertTrue(line.endswith(b"\r\n") and len(line) <= LONGEST, line)
        message = pynmea2.parse(line.decode("ascii"), check=True)
        expected = FIELDS.get(message.sentence_type)
        if expected:
            self.test.assertEqual(len(message.data), expected, line)
        return message

    def check_position(self):
        test, rmc, vtg, gga = self.test, self.rmc, self.vtg, self.gga
        test.assertEqual((rmc.data[0], *rmc.data[2:6]), tuple(gga.data[:5]))
        test.assertEqual((rmc.data[6], rmc.data[7]), (vtg.data[4], vtg.data[0]))
        test.assertEqual(rmc.data[11], vtg.data[8])
        test.assertEqual(int(gga.gps_qual), {"N": 0, "A": 1, "D": 2}[rmc.data[11]])
        test.assertEqual(self.has_fix, rmc.data[11] != "N")
        test.assertEqual({gsa.mode_fix_type in ("2", "3") for gsa in self.gsa}, {self.has_fix})
        if not self.has_fix:
            test.assertEqual((*rmc.data[2:8], *gga.data[1:5], *gga.data[8:]), ("",) * 16)
            return
        test.assertEqual(rmc.datestamp, datetime.date(2024, 6, 12))
        test.assertAlmostEqual(float(vtg.spd_over_grnd_kmph), float(rmc.spd_over_grnd) * 1.852, delta=0.002)
        test.assertTrue(-500 < gga.altitude < 9000 and float(gga.geo_sep) == 36.7, gga)
        test.assertEqual((gga.altitude_units, gga.geo_sep_units), ("M", "M"))

    def check_satellites(self):
        test = self.test
        test.assertEqual(int(self.gga.num_sats), sum(map(len, self.used.values())))
        least = {"1": 0, "2": 3, "3": 4}[self.gsa[0].mode_fix_type]
        test.assertGreaterEqual(int(self.gga.num_sats), least)
        test.assertEqual(len({(*gsa.data[:2], *gsa.data[14:17]) for gsa in self.gsa}), 1)
        test.assertEqual(float(self.gga.horizontal_dil), float(self.gsa[0].hdop))
        for (system, used), gsa in zip(self.used.items(), self.gsa):
            carriers = self.satellites[system].carriers
            test.assertEqual(gsa.data[17], SYSTEMS[system][1])
            test.assertTrue(all(number in SYSTEMS[system][3] for number in carriers), carriers)
            test.assertEqual(len(set(used)), len(used))
            test.assertTrue(all(carriers.get(number) for number in used), f"{used} of {carriers}")
            test.assertTrue(all(number < 33 or system != "gps" for number in used), "SBAS has no ranges")


@feed.reached(feed.Embedded, feed.Daemon)
class Sentences:
    def epochs(self, settings, systems=ALL, period_ms=100, **scenario):
        """Of a receiver that tracks everything at once."""
        at_once = {"route": STANDING, "firstFix": {"coldMs": 0, "hotMs": 0}}
        host = self.receiver(f"period {period_ms} {settings}", **{**at_once, **scenario})
        epochs = self.in_step(self.read(self.open_before_start(host), systems, 4), period_ms)
        self.assertEqual({epoch.gsa[0].mode_fix_type for epoch in epochs}, {"3"})
        return epochs

    def read(self, device, systems, count):
        epochs = [Epoch(self, lines, systems) for lines in device.epochs(count)]
        self.assertEqual(len(epochs), count)
        return epochs

    def in_step(self, epochs, period_ms):
        """Their times are a period apart; only before the first one time may be unknown."""
        known = list(itertools.dropwhile(lambda epoch: not epoch.time, epochs))
        day = datetime.date(2024, 6, 12)
        times = [datetime.datetime.combine(day, epoch.time) for epoch in known]
        self.assertEqual({later - earlier for earlier, later in itertools.pairwise(times)},
                         {datetime.timedelta(milliseconds=period_ms)})
        return epochs

    def sbas(self, epoch):
        return [number for number in epoch.satellites["gps"].carriers if number > 32]

    def test_of_every_period(self):
        for period_ms in (1000, 500, 200, 100):
            with self.subTest(period_ms=period_ms):
                self.epochs("", period_ms=period_ms)

    def test_of_every_system_together(self):
        for epoch in self.epochs("qzss on", (*ALL, "qzss")):
            self.assertTrue(all(map(len, epoch.used.values())), epoch.used)
            self.assertTrue(self.sbas(epoch))

    def test_without_one_system(self):
        for off in ("glonass", "galileo", "beidou"):
            with self.subTest(off=off):
                self.epochs(f"{off} off", tuple(system for system in ALL if system != off))

    def test_without_sbas(self):
        for epoch in self.epochs("sbas off"):
            self.assertEqual(self.sbas(epoch), [])
            self.assertEqual(epoch.rmc.data[11], "A")

    def test_with_sbas_are_of_a_corrected_position(self):
        for epoch in self.epochs(""):
            self.assertTrue(self.sbas(epoch))
            self.assertEqual(epoch.rmc.data[11], "D")

    def test_of_gps_only(self):
        for sbas in ("on", "off"):
            with self.subTest(sbas=sbas):
                for epoch in self.epochs(f"glonass off galileo off beidou off sbas {sbas}", ("gps",)):
                    self.assertEqual(len(self.sbas(epoch)) > 0, sbas == "on")

    def test_of_high_satellites_only(self):
        self.epochs("elevation 45")

    def test_in_the_south_and_west_while_driving(self):
        for epoch in self.epochs("", route=MOVING):
            self.assertEqual((epoch.rmc.lat_dir, epoch.rmc.lon_dir), ("S", "W"))
            self.assertAlmostEqual(epoch.rmc.latitude, -33.45, delta=0.01)
            self.assertAlmostEqual(epoch.rmc.longitude, -70.66, delta=0.01)
            self.assertAlmostEqual(float(epoch.vtg.spd_over_grnd_kmph), 54, delta=1)
            self.assertEqual(float(epoch.rmc.true_course), 0)

    def test_of_a_standing_receiver_give_no_course(self):
        for epoch in self.epochs(""):
            self.assertEqual((epoch.rmc.data[6], epoch.rmc.data[7]), ("0.000", ""))

    def test_before_the_first_fix_and_across_it(self):
        host = self.receiver("period 100", firstFix={"coldMs": 2000, "hotMs": 2000}, route=STANDING)
        epochs = self.in_step(self.read(self.open_before_start(host), ALL, 30), 100)
        states = [epoch.gsa[0].mode_fix_type for epoch in epochs]
        self.assertEqual([state for state, _ in itertools.groupby(states)], ["1", "2", "3"])
        in_2d = epochs[states.index("2")]
        self.assertEqual(sum(map(len, in_2d.used.values())), 3)
        self.assertIsNone(epochs[0].time)
        self.assertIsNotNone(epochs[states.index("2") - 1].time)

    def test_of_a_silent_system_list_it_without_carriers(self):
        for name, system in (("GPS", "gps"), ("Glonass", "glonass"), ("BeiDou", "beidou"), ("Galileo", "galileo")):
            with self.subTest(system=system):
                for epoch in self.epochs("sbas off", lsta=silent(name)):
                    carriers = epoch.satellites[system].carriers
                    self.assertEqual((epoch.used[system], set(carriers.values())), ([], {""}))

    def test_of_silence_on_all_systems_have_neither_time_nor_position(self):
        host = self.receiver("period 100 sbas off", lsta=silent("GPS", "Glonass", "BeiDou", "Galileo"))
        for epoch in self.read(self.open_before_start(host), ALL, 10):
            self.assertEqual((epoch.has_fix, epoch.time), (False, None))
            self.assertTrue(all(each.carriers for each in epoch.satellites.values()))

    def test_of_no_satellites_in_view(self):
        host = self.receiver("period 100 elevation 45 sbas off glonass off galileo off beidou off", route=AT_THE_POLE)
        for epoch in self.read(self.open_before_start(host), ("gps",), 10):
            self.assertEqual([message.sentence_type for message in epoch.messages], ["RMC", "VTG", "GGA", "GSA", "GSV"])
            self.assertEqual(epoch.messages[-1].data, ["1", "1", "00", "1"])
            self.assertFalse(epoch.has_fix)

    def test_of_the_raw_format_parse_too(self):
        host = self.receiver("format raw period 100")
        device = self.open_before_start(host)
        counts = []
        while len(counts) < 12:
            message = pynmea2.parse(device.lines.next().decode("ascii"), check=True)
            self.assertEqual(message.manufacturer, "SIM")
            if message.data[1] == "T":
                counts.append((int(message.data[4]), []))
                self.assertEqual(len(message.data), 5, message)
            else:
                counts[-1][1].append(int(message.data[2]))
                self.assertEqual(len(message.data), 10, message)
        for count, numbers in counts[:-1]:
            self.assertEqual(numbers, list(range(1, count + 1)))
        self.assertGreater(counts[-2][0], 30)


if __name__ == "__main__":
    feed.main()

"""Every command, on the modem inside the program and on the daemon's, with the faults that any of them may meet."""

import json

import ctl
import run

# what is typed, what comes out as the last line
COMMANDS = (
    ("status", "lsta galileo    off, value 0"),
    ("versions", "RIL             RIL 1.0 (simulated), Modem 1.0 (simulated)"),
    ("cpu-power max", "cpu-power: max (was standard)"),
    ("cpu-psm on", "cpu-psm: on (was off)"),
    ("format nmea", "format: nmea (was nmea)"),
    ("dr-sync on", "dr-sync: on (was off)"),
    ("system glonass off", "system glonass: off (was on)"),
    ("system galileo off", "system galileo: off (was on)"),
    ("system beidou off", "system beidou: off (was on)"),
    ("system qzss on", "system qzss: on (was off)"),
    ("sbas off", "sbas: off (was on)"),
    ("period 100", "period: 100 ms (was 1000 ms)"),
    ("min-elevation 6", "min-elevation: 6 (was 5)"),
    ("raw-mask 1", "raw-mask: 1 (was 0)"),
    ("raw-version", "raw-version: 1.0 (simulated)"),
    ("get Sens/MinElevAngle", None),
    ("set Power/Psm \"1\"", '"1"'),
    ("export", "}"),
    ("gnss start", None),
    ("gnss stop", "done"),
    ("gnss force-stop", "done"),
    ("gnss reset-assistance", "done"),
    ("lsta get gps", "gps: off, value 0"),
    ("lsta enable gps", "gps: reports enabled"),
    ("lsta disable gps", "gps: reports disabled"),
    ("lsta --watch --for 50ms", ""),
    ("events --for 50ms", ""),
    ("at AT", "done"),
    ("logging 1 on", "done"),
    ("tasks versions", "RIL             RIL 1.0 (simulated), Modem 1.0 (simulated)"),
)


class EveryCommand(ctl.CtlTest):
    def assert_all(self):
        for line, last in COMMANDS:
            with self.subTest(line):
                text = self.says(line)
                if last is not None:
                    self.assertEqual(text.rpartition("\n")[2], last)
                for document in self.says(line + " --json" if "tasks" not in line else "tasks --json versions").split("\n"):
                    if document:
                        self.assertIsInstance(json.loads(document), dict)

    def test_on_a_modem_of_its_own(self):
        self.scenario()
        self.assert_all()

    def test_on_the_daemons(self):
        self.serve()
        self.assert_all()
        self.assertEqual(self.status()["clients"], [])

    def assert_all_end_at_the_deadline(self, why):
        for line, _ in COMMANDS:
            with self.subTest(line):
                first, *rest = line.split()  # what tasks looks at has no time of its own
                ran = self.ctl(first, "--timeout", "300ms", *rest) if first == "tasks" else \
                    self.ctl(first, *rest, "--timeout", "300ms")
                self.assertEqual(ran.returncode, 4)
                self.assertRegex(ran.stderr, "(?m)^kelarcctl: no success within 300 ms: opening the modem" + why)

    def test_each_ends_at_its_deadline_without_a_daemon(self):
        self.serve().kill()
        self.assert_all_end_at_the_deadline(r" failed(?: 2 times)?: Error in connection "
                                            r"between library and RIL daemon or RIL daemon not running \(31\)\n"
                                            r"  The RIL daemon does not run, .*\n  -> Start the RIL daemon, .*\n")

    def test_each_ends_at_its_deadline_when_the_modem_hangs(self):
        self.serve()
        self.control("hang ARC_Open --forever")
        # On a busy machine the call before it is still under way.
        self.assert_all_end_at_the_deadline(r": ARC_(?:Open|SetNotificationMethod)\(\) has not returned for \d+ ms\n"
                                            r"  The call hangs .*\n  -> Restart the RIL daemon, .*\n")
        self.control("clear")
        run.wait_until(lambda: self.status()["clients"] == [], "the modem has no clients left")
        self.assertEqual(self.says("cpu-power"), "cpu-power: standard")


if __name__ == "__main__":
    ctl.main()

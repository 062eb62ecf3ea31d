"""kelarcctl when its nth call of a system function fails while it writes or applies a file of settings: the work is
done, or a message and the exit code report the failure; no file and no setting is left half changed."""

import errno
import json
import os
import subprocess

import failing
import run
from programs import LIMIT_S, outside

OLD = "old"
FACTORY = {"cpu-power": "standard", "cpu-psm": False, "format": "nmea", "dr-sync": False, "system glonass": True,
           "system galileo": True, "system beidou": True, "system qzss": False, "sbas": True, "period": 1000,
           "min-elevation": 5, "raw-mask": 0}


class Kelarcctl(failing.FailingTest):
    most_open = 7  # the pipe of the signals and the way to the modem; two while a lost one is being let go of

    def setUp(self):
        super().setUp()
        self.serve()

    def ctl(self, environment, *arguments):
        ran = subprocess.run([os.environ["KELARCCTL"], *arguments], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                             stderr=subprocess.PIPE, encoding="utf-8", timeout=LIMIT_S, check=False,
                             env={**outside(), **environment, "ARCSIM_SOCKET": self.socket})
        self.assertIn(ran.returncode, (0, 2, 3, 4), ran)
        if ran.returncode != 0:
            self.assertRegex(ran.stderr, "(?m)^kelarcctl: ", ran)
        if environment["NTH_FAILURE"].startswith("*"):
            self.assertEqual(ran.returncode, 0, ran)
        return ran

    def export(self, environment):
        path = self.write("exported.json", OLD)
        before = self.files()
        ran = self.ctl(environment, "export", path)
        if environment["NTH_FAILURE"].startswith("unlinkat"):
            return
        self.assertEqual(self.files(), before, ran)
        with open(path, encoding="utf-8") as file:
            content = file.read()
        if f" {errno.EIO} " in environment["NTH_FAILURE"] and self.has_come("fsync"):
            self.assertEqual(ran.returncode, 3, "what may be lost was said to be stored")
        if ran.returncode == 0:
            self.assertEqual(ran.stdout, f"{path}: 12 settings\n")
            self.assertNotEqual(content, OLD)
        if content != OLD:
            self.assertEqual(json.loads(content), {"settings": FACTORY}, ran)

    def apply(self, environment):
        path = self.write("wanted.json", {"settings": {"cpu-power": "max", "sbas": "off"}})
        for key, quoted in (("Power/Cpu", '"std"'), ("Nmea/Sbas", '"on"')):
            self.ask("set", key=key, quoted=quoted)
        ran = self.ctl(environment, "apply", path)
        settings = self.ask("quoted-settings")
        now = (settings["Power/Cpu"], settings["Nmea/Sbas"])
        if "2 changed, 0 as wanted already\n" in ran.stdout:
            self.assertEqual(now, ('"max"', '"off"'), ran)
        else:
            self.assertNotEqual(ran.returncode, 0, ran)
            if "could not be put back to" not in ran.stderr:
                self.assertEqual(now, ('"std"', '"on"'), ran)

    def test_export_leaves_the_old_file_or_the_new_one(self):
        self.fail_every_call(self.export, {"close", "connect", "eventfd", "fchmod", "fsync", "openat", "poll",
                                           "pthread_create", "recv", "renameat", "send", "write"})

    def test_apply_brings_the_modem_there_or_back(self):
        self.fail_every_call(self.apply, {"close", "connect", "eventfd", "open", "poll", "pthread_create", "read",
                                          "recv", "send"})


if __name__ == "__main__":
    run.main()

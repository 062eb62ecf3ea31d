"""Settings as a file: written, read, compared, applied, and put back."""

import fcntl
import json
import os
import resource
import signal
import stat
import subprocess
import termios

import ctl
import run

FACTORY = {"cpu-power": "standard", "cpu-psm": False, "format": "nmea", "dr-sync": False, "system glonass": True,
           "system galileo": True, "system beidou": True, "system qzss": False, "sbas": True, "period": 1000,
           "min-elevation": 5, "raw-mask": 0}
OTHER = {"cpu-power": "max", "cpu-psm": True, "format": "raw", "dr-sync": True, "system glonass": False,
         "system galileo": False, "system beidou": False, "system qzss": True, "sbas": False, "period": 200,
         "min-elevation": 12, "raw-mask": 7}
KEYS = ("Power/Cpu", "Power/Psm", "Nmea/Data/Format", "Nmea/DRSync", "Engine/Glonass", "Engine/Galileo",
        "Engine/Beidou", "Engine/Qzss", "Nmea/Sbas", "Nmea/FreqMs", "Sens/MinElevAngle", "Nmea/Data/RawMask")
WRITABLE = ", ".join(FACTORY)
DENIED = ("  The RIL daemon or the modem does not let this process do it.",
          "  -> Run the program as a user who may use the RIL daemon; else find out who has locked the function.")


class Files(ctl.CtlTest):
    def setUp(self):
        super().setUp()
        self.daemon = self.serve()

    def file(self, content):
        return self.write("settings.json", content)

    def settings(self):
        return self.document("export")["settings"]

    def written(self):
        return self.status()["calls"].get("ARC_CheckModuleSetting", {}).get("count", 0)

    def assert_invalid(self, content, *complaints):
        path = self.file(content)
        ran = self.ctl("apply", path)
        self.assertEqual((ran.returncode, ran.stdout), (2, ""), content)
        self.assertEqual(ran.stderr, "".join(f"kelarcctl: {path}: {each}\n" for each in complaints))
        self.assertEqual(self.status()["calls"], {}, "the modem was touched")

    def test_all_that_can_be_written_is_exported(self):
        ran = self.ctl("export")
        self.assertEqual((ran.returncode, ran.stderr), (0, ""))
        self.assertEqual(json.loads(ran.stdout), {"settings": FACTORY})
        self.assertEqual(list(json.loads(ran.stdout)["settings"]), list(FACTORY))
        self.assertEqual(ran.stdout.splitlines()[2], '    "cpu-power": "standard",')
        self.assertEqual(self.ctl("export", "--json").stdout.count("\n"), 1)

    def test_a_file_is_written_whole_or_not(self):
        path = self.file("old")
        self.assertEqual(self.says(f"export {path}"), f"{path}: 12 settings")
        with open(path, encoding="utf-8") as file:
            self.assertEqual(json.load(file), {"settings": FACTORY})
        self.assertEqual(self.document(f"export {path}"), {"file": path, "count": 12})
        self.control("fail ARC_CheckModuleSetting --code 2 --forever")
        self.assertEqual(self.ctl("export", path, "--log", "/dev/null").returncode, 3)
        with open(path, encoding="utf-8") as file:
            self.assertEqual(json.load(file), {"settings": FACTORY})
        self.assertEqual(sorted(os.listdir(self.folder)),
                         sorted(name for name in os.listdir(self.folder) if not name.startswith("settings.json.")))

    def test_a_file_that_cannot_be_written(self):
        path = self.folder + "/no/settings.json"
        ran = self.ctl("export", path)
        self.assertEqual((ran.returncode, ran.stdout, ran.stderr),
                         (3, "", f"kelarcctl: {path}: cannot be written: No such file or directory; accepted: the name of a "
                          "file, or - for standard output\n"))

    def test_a_disk_that_is_full_keeps_the_old_file(self):
        path = self.file("old")

        def full():
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
            resource.setrlimit(resource.RLIMIT_FSIZE, (100, 100))

        ran = subprocess.run([os.environ["KELARCCTL"], "export", path, "--log", "/dev/null"], stdin=subprocess.DEVNULL,
                             stdout=subprocess.PIPE, stderr=subprocess.PIPE, encoding="utf-8", timeout=run.LIMIT_S,
                             check=False, env=self.environment(), preexec_fn=full)
        self.assertEqual((ran.returncode, ran.stdout, ran.stderr),
                         (3, "", f"kelarcctl: {path}: cannot be written: File too large; accepted: the name of a file, "
                                 "or - for standard output\n"))
        with open(path, encoding="utf-8") as file:
            self.assertEqual(file.read(), "old")
        self.assertEqual([name for name in os.listdir(self.folder) if name.startswith(".")], [])

    def test_standard_output_has_names_too(self):
        for name in ("-", "/dev/stdout", "/dev/fd/1", "/proc/self/fd/1"):
            ran = self.ctl("export", name)
            self.assertEqual((ran.returncode, json.loads(ran.stdout), ran.stderr), (0, {"settings": FACTORY}, ""))

    def test_pipes_and_devices_are_written_to_and_links_are_left_alone(self):
        pipe = self.folder + "/pipe"
        os.mkfifo(pipe)
        reader = os.open(pipe, os.O_RDONLY | os.O_NONBLOCK)
        self.assertEqual(self.says(f"export {pipe}"), f"{pipe}: 12 settings")
        self.assertEqual(json.loads(os.read(reader, 100000)), {"settings": FACTORY})
        os.close(reader)
        self.assertEqual(self.says("export /dev/null"), "/dev/null: 12 settings")
        self.assertTrue(stat.S_ISFIFO(os.stat(pipe).st_mode) and stat.S_ISCHR(os.stat("/dev/null").st_mode))
        ran = self.ctl("export", "/dev/full")
        self.assertEqual(ran.returncode, 3)
        self.assertIn("/dev/full: cannot be written: No space left on device", ran.stderr)
        victim, link = self.file("precious"), self.folder + "/link"
        os.symlink(victim, link)
        ran = self.ctl("export", link)
        self.assertEqual((ran.returncode, ran.stderr), (3, f"kelarcctl: {link}: cannot be written: Is a symbolic link; "
                                                           "accepted: the name of a file, or - for standard output\n"))
        self.assertEqual(os.readlink(link), victim)
        with open(victim, encoding="utf-8") as file:
            self.assertEqual(file.read(), "precious")

    def test_what_is_not_understood_is_left_out_and_said(self):
        self.control("set Nmea/FreqMs 300 --force")
        ran = self.ctl("export", "--log", "/dev/null")
        self.assertEqual((ran.returncode, ran.stderr),
                         (3, "kelarcctl: left out, because the modem's value is not understood: period\n"
                             "  -> Read it with kelarcctl get, and write a value that is accepted.\n"))
        self.assertEqual(json.loads(ran.stdout)["settings"],
                         {key: value for key, value in FACTORY.items() if key != "period"})

    def test_only_what_differs_is_written(self):
        path = self.file({"settings": {"period": "500", "sbas": "on", "cpu-power": "MAX", "min-elevation": 9}})
        self.assertEqual(self.says(f"apply {path}"),
                         "cpu-power: standard -> max\nperiod: 1000 ms -> 500 ms\nmin-elevation: 5 -> 9\n"
                         "3 changed, 1 as wanted already")
        self.assertEqual(self.settings(), {**FACTORY, "cpu-power": "max", "period": 500, "min-elevation": 9})
        self.assertEqual(self.says(f"apply {path}"), "0 changed, 4 as wanted already")

    def test_every_setting_is_applied(self):
        self.assertEqual(self.document("apply " + self.file({"settings": OTHER})),
                         {"dryRun": False, "same": 0,
                          "changes": [{"setting": name, "key": key, "value": OTHER[name], "before": FACTORY[name]}
                                      for name, key in zip(FACTORY, KEYS)]})
        self.assertEqual(self.settings(), OTHER)

    def test_a_dry_run_changes_nothing(self):
        path = self.file({"settings": {"sbas": "off", "period": 1000}})
        self.assertEqual(self.says(f"apply {path} --dry-run"), "sbas: on -> off\n1 to change, 1 as wanted already")
        self.assertEqual(self.document(f"apply {path} --dry-run"),
                         {"dryRun": True, "same": 1,
                          "changes": [{"setting": "sbas", "key": "Nmea/Sbas", "value": False, "before": True}]})
        self.assertEqual(self.settings(), FACTORY)

    def test_standard_input_is_a_file_too(self):
        ran = subprocess.run([os.environ["KELARCCTL"], "apply", "-"], input='{"settings": {"sbas": "off"}}',
                             stdout=subprocess.PIPE, stderr=subprocess.PIPE, encoding="utf-8", timeout=run.LIMIT_S,
                             check=False, env=self.environment())
        self.assertEqual((ran.returncode, ran.stdout, ran.stderr),
                         (0, "sbas: on -> off\n1 changed, 0 as wanted already\n", ""))

    def test_what_a_person_would_write_is_accepted(self):
        for content in ({"Period": "500 ms", "SBAS": False, "system": {"QZSS": "On", "glonass": False}, "raw-mask": 7.0},
                        {"settings": {"period": 500.0, "sbas": "OFF", "System QZSS": True, "system": {"glonass": "off"},
                                      "raw-mask": "7"}},
                        '{"utc": "2026-03-01T12:00:00.000Z", "settings": {"period": 5e2, "sbas": false, "raw-mask": 7,'
                        ' "system qzss": true, "system glonass": false}}'):
            self.assertEqual(self.document("apply --dry-run " + self.file(content))["changes"],
                             [{"setting": name, "key": key, "value": OTHER[name] if name != "period" else 500,
                               "before": FACTORY[name]} for name, key in zip(FACTORY, KEYS)
                              if name in ("system glonass", "system qzss", "sbas", "period", "raw-mask")])

    def test_what_export_writes_is_accepted(self):
        self.assertEqual(self.says("apply " + self.file(self.says("export"))), "0 changed, 12 as wanted already")
        self.assertEqual(self.says("apply " + self.file(self.says("export --json"))), "0 changed, 12 as wanted already")

    def test_a_setting_under_two_names_stands_twice(self):
        self.assert_invalid('{"settings": {"sbas": "on", "SBAS": "off"}}', "SBAS: stands twice")
        self.assert_invalid('{"system qzss": true, "system": {"qzss": true}}', "system qzss: stands twice")

    def test_what_is_no_file_of_settings(self):
        self.assert_invalid("", "is no JSON: parse error at line 1, column 1: syntax error while parsing value - "
                                "unexpected end of input; expected '[', '{', or a literal")
        for content in ("[]", "1", "{}", '{"settings": []}', '{"settings": null}'):
            self.assert_invalid(content, 'has no settings; accepted: {"settings": {"period": 1000, "sbas": true, ...}}')
        self.assert_invalid('{"settings": {}, "version": 2}', "version: is not known; accepted: settings")
        self.assert_invalid('{"settings": {"sbas": "on", "sbas": "off"}}', "sbas: stands twice")

    def test_values_that_a_setting_does_not_have(self):
        for name, accepted, values in (
                ("cpu-power", "standard, max", ('"std"', "1", "null", "true", "{}", '""')),
                ("cpu-psm", "off, on", ("1", '"yes"', '"true"', "[true]")),
                ("format", "nmea, raw", ('"ubx"',)),
                ("system glonass", "off, on", ('"1"',)),
                ("period", "1000, 500, 200, 100", ("300", "500.5", '"500 s"', '" ms"', "-500", "[500]", "true")),
                ("min-elevation", "a whole number from 5 to 45", ("4", "46", "5.5", '"5 ms"')),
                ("raw-mask", "a whole number from 0 to 255", ("256", "-1", "99999999999999999999"))):
            for value in values:
                shown = {"99999999999999999999": "1e+20"}.get(value, value)
                self.assert_invalid('{"settings": {"%s": %s}}' % (name, value),
                                    f"settings.{name}: {shown} is not accepted; accepted: {accepted}")

    def test_everything_that_is_wrong_is_said_at_once(self):
        self.assert_invalid({"settings": {"perod": "500", "sbas": "maybe", "raw-version": "1", "cpu-power": "max"}},
                            f"settings: unknown setting 'perod'; did you mean period? accepted: {WRITABLE}",
                            'settings.sbas: "maybe" is not accepted; accepted: off, on',
                            f"settings: unknown setting 'raw-version'; accepted: {WRITABLE}")

    def test_files_that_cannot_be_read(self):
        for path, why in ((self.folder + "/none", "No such file or directory"), (self.folder, "Is a directory")):
            ran = self.ctl("apply", path)
            self.assertEqual((ran.returncode, ran.stdout, ran.stderr), (2, "", f"kelarcctl: {path}: cannot be read: {why}; accepted: the name of a file of settings, or "
                                     "- for standard input\n"))
        for path in (self.file(" " * 1_000_001), "/dev/zero"):
            ran = self.ctl("apply", path)
            self.assertEqual((ran.returncode, ran.stderr),
                             (2, f"kelarcctl: {path}: a larger file is not accepted; accepted: at most 1000000 "
                                 "bytes\n"))

    def test_a_pipe_is_a_file_too_and_none_is_waited_for_that_nobody_writes_to(self):
        pipe = self.folder + "/pipe"
        os.mkfifo(pipe)
        ran = self.ctl("apply", pipe)
        self.assertEqual(ran.returncode, 2)
        self.assertIn(f"{pipe}: is no JSON", ran.stderr)
        writer = os.open(pipe, os.O_RDWR)
        os.write(writer, b'{"settings": {"sbas": "off"}}')
        program = self.start("apply", pipe)
        run.wait_until(lambda: fcntl.ioctl(writer, termios.FIONREAD, b"\0" * 4) == b"\0" * 4, "the pipe is read")
        os.close(writer)
        self.assertEqual(program.finish(), 0)
        self.assertEqual(self.settings()["sbas"], False)

    def test_what_stands_behind_a_byte_0_is_not_left_out_in_silence(self):
        for content in ('{"settings": {"sbas": "off"}}\0', '{"settings": {"sbas": "off"}}\0{"period": 7}'):
            self.assert_invalid(content, "is no JSON: it has a byte 0")

    def test_values_within_values_are_refused_however_deep(self):
        for content in ("[" * 100_000, '{"settings":' * 50_000, '{"settings": {"sbas": ' + "[" * 400_000 + "]" * 400_000
                        + "}}", '{"a":' * 33 + "1" + "}" * 33):
            self.assert_invalid(content, "nests too deeply; accepted: objects and arrays at most 32 deep")
        self.assert_invalid('{"settings": {"sbas": ' + "[" * 30 + "]" * 30 + "}}",
                            "settings.sbas: " + "[" * 30 + "]" * 10 + "... is not accepted; accepted: off, on")

    def test_a_long_list_takes_no_time_to_refuse(self):
        self.assert_invalid('{"settings": {"sbas": [' + "1," * 400_000 + "1]}}",
                            "settings.sbas: [" + "1," * 19 + "1... is not accepted; accepted: off, on")

    def test_a_failure_puts_back_what_was_changed(self):
        # 12 reads of the settings and 12 of their texts come first, then 3 calls for each: the 8th write fails.
        path = self.file({"settings": OTHER})
        self.ask("reset")
        self.serve_again({"faults": [{"function": "ARC_CheckModuleSetting", "call": 24 + 7 * 2 + 1, "count": 15,
                                      "code": 21}]})
        ran = self.ctl("apply", path, "--log", "/dev/null")
        self.assertEqual((ran.returncode, ran.stdout), (3, ""))
        self.assertEqual(ran.stderr.splitlines(), [
            "kelarcctl: writing system qzss failed 15 times: A requested service has been denied (21)", *DENIED,
            "kelarcctl: system qzss is off again", "kelarcctl: system beidou is on again",
            "kelarcctl: system galileo is on again", "kelarcctl: system glonass is on again",
            "kelarcctl: dr-sync is off again", "kelarcctl: format is nmea again", "kelarcctl: cpu-psm is off again",
            "kelarcctl: cpu-power is standard again"])
        self.assertEqual(self.settings(), FACTORY)

    def test_a_failure_as_json(self):
        path = self.file({"settings": {"cpu-power": "max", "sbas": "off"}})
        self.serve_again({"faults": [{"function": "ARC_CheckModuleSetting", "call": 4 + 2 + 1, "count": 15,
                                      "code": 21}]})
        ran = self.ctl("apply", path, "--json", "--log", "/dev/null")
        self.assertEqual(ran.returncode, 3)
        document = self.checked(json.loads(ran.stdout), "apply")
        error = document.pop("error")
        self.assertEqual(document, {
            "dryRun": False, "same": 0, "putBack": ["sbas", "cpu-power"], "notPutBack": [],
            "changes": [{"setting": "cpu-power", "key": "Power/Cpu", "value": "max", "before": "standard"},
                        {"setting": "sbas", "key": "Nmea/Sbas", "value": False, "before": True}]})
        self.assertEqual((error["kind"], error["code"], error["attempts"], error["text"]),
                         ("refused", 21, 15,
                          "writing sbas failed 15 times: A requested service has been denied (21)"))
        self.assertEqual(error["notes"], ["sbas is on again", "cpu-power is standard again"])

    def test_what_cannot_be_put_back_is_said(self):
        path = self.file({"settings": {"cpu-power": "max", "sbas": "off"}})
        self.serve_again({"faults": [{"function": "ARC_CheckModuleSetting", "call": 4 + 2 + 1, "count": 45,
                                      "code": 21}]})
        ran = self.ctl("apply", path, "--log", "/dev/null")
        self.assertEqual((ran.returncode, ran.stdout), (3, ""))
        self.assertEqual(ran.stderr.splitlines(), [
            "kelarcctl: writing sbas failed 15 times: A requested service has been denied (21)", *DENIED,
            "kelarcctl: sbas could not be put back to on: writing Nmea/Sbas failed 15 times: A requested service has "
            "been denied (21)",
            "kelarcctl: cpu-power could not be put back to standard: writing Power/Cpu failed 15 times: A requested "
            "service has been denied (21)"])

    def test_a_value_that_was_not_understood_is_put_back_as_it_was(self):
        path = self.file({"settings": {"period": 500, "min-elevation": 9}})
        self.serve_again({"faults": [{"function": "ARC_CheckModuleSetting", "call": 4 + 2 + 1, "count": 15,
                                      "code": 21}]})
        self.control("set Nmea/FreqMs 300 --force")
        ran = self.ctl("apply", path, "--log", "/dev/null")
        self.assertEqual((ran.returncode, ran.stdout), (3, ""))
        self.assertEqual(ran.stderr.splitlines(), [
            "kelarcctl: writing min-elevation failed 15 times: A requested service has been denied (21)", *DENIED,
            "kelarcctl: min-elevation is 5 again",
            'kelarcctl: period could not be put back to "300": writing Nmea/FreqMs failed 15 times: A parameter is '
            "set incorrectly or is pointing to a non-existing index (13)"])

    def test_an_interrupted_run_puts_back_what_was_changed(self):
        path = self.file({"settings": {"cpu-power": "max", "sbas": "off"}})
        self.serve_again({"faults": [{"function": "ARC_CheckModuleSetting", "call": 4 + 2 + 1, "count": 12,
                                      "code": 15}]})
        program = self.start("apply", path, "--log", "/dev/null")
        run.wait_until(lambda: self.written() >= 4 + 2 + 2, "the second setting is being refused")
        program.send(run.SIGINT)
        self.assertEqual(program.finish(), 130)
        self.assertEqual(program.errors().splitlines(), [
            "kelarcctl: interrupted while writing sbas", "kelarcctl: sbas is on again",
            "kelarcctl: cpu-power is standard again"])
        self.assertEqual(self.settings(), FACTORY)

    def serve_again(self, scenario):
        self.control("stop")
        self.daemon.finish()
        self.daemon = self.serve(scenario=self.scenario(**scenario))


if __name__ == "__main__":
    ctl.main()

"""The commands that need no daemon: their help, their examples, and command lines that are wrong."""

import os
import re
import subprocess

import run

# What has to follow each command to be right.
COMMANDS = {"serve": "", "run": "true", "play": "--for 1s", "check": "f", "replay": "f", "convert": "f"}
OPTIONS = {"serve": ("--socket PATH", "--scenario FILE", "--nmea FILE", "--time KIND", "--fresh"),
           "run": ("PROGRAM", "--scenario FILE", "--nmea FILE", "--time KIND"),
           "play": ("SCENARIO", "--for TIME"), "check": ("FILE",),
           "replay": ("FILE", "PROGRAM", "--socket PATH", "--nmea FILE", "--fast", "--json"),
           "convert": ("FILE",)}
EMPTY_RECORDING = '{"recording":1,"utc":"2024-06-12T03:00:00.000Z","pid":1,"program":"p","library":null}\n'


class Help(run.ArcsimTest):
    def test_of_the_program_shows_every_command_and_exit_code(self):
        text = self.run_arcsim("--help").stdout
        for word in (*COMMANDS, "0", "1", "2", "3", "4", "5", "6"):
            self.assertRegex(text, rf"(?m)^  {word} ")
        self.assertLessEqual(max(map(len, text.splitlines())), 80)

    def test_of_a_command_shows_its_options(self):
        for command, options in OPTIONS.items():
            with self.subTest(command):
                ran = self.run_arcsim(command, "--help")
                self.assertEqual((ran.returncode, ran.stderr), (0, ""))
                for option in (*options, "-h,--help"):
                    self.assertRegex(ran.stdout, rf"(?m)^  {re.escape(option)} ")
                self.assertLessEqual(max(map(len, ran.stdout.splitlines())), 80)
                self.assertNotIn("TEXT", ran.stdout)
                self.assertNotIn("REQUIRED", ran.stdout)

    def example(self, command):
        text = self.run_arcsim(command, "--help").stdout
        self.assertRegex(text, rf"\nExample:\n  arcsim {command} .*\n\Z")
        return text.splitlines()[-1].strip()

    def prepare(self):
        """A folder with what the examples name."""
        os.symlink(os.environ["SCENARIOS"], os.path.join(self.folder, "scenarios"))
        with open(os.path.join(self.folder, "fault.jsonl"), "w", encoding="ascii") as file:
            file.write(EMPTY_RECORDING)
        programs = os.path.join(self.folder, "programs")
        os.mkdir(programs)
        os.symlink(os.environ["ARCSIM"], os.path.join(programs, "arcsim"))
        os.symlink("/bin/true", os.path.join(programs, "navigator"))
        return {**os.environ, "PATH": programs + ":" + os.environ["PATH"]}

    def test_of_a_command_has_an_example_that_is_right(self):
        environment = self.prepare()
        for command in COMMANDS:
            with self.subTest(command):
                example = self.example(command)
                if command == "serve":
                    example += (" & until arcsim status --socket modem.sock > out 2>&1; do sleep 0.05; done; "
                                "arcsim stop --socket modem.sock && wait $!")
                ran = subprocess.run(["bash", "-c", example], cwd=self.folder, env=environment, check=False,
                                     stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=run.LIMIT_S)
                self.assertEqual(ran.returncode, 0, ran.stderr)


class WrongCommandLines(run.ArcsimTest):
    def refused(self, arguments, message):
        with self.subTest(arguments):
            self.assert_run(self.run_arcsim(*arguments), 2,
                            err=f"arcsim: {arguments[0]}: {message}\n"
                                f"Run 'arcsim {arguments[0]} --help' for more information.\n")

    def test_with_unknown_options(self):
        for command, rest in COMMANDS.items():
            self.refused([command, "--quick", *rest.split()], "The following argument was not expected: --quick")

    def test_that_lack_something(self):
        for command, missing in (("run", "PROGRAM"), ("play", "--for"), ("check", "FILE"), ("replay", "FILE"),
                                 ("convert", "FILE")):
            self.refused([command], f"{missing} is required")

    def test_with_empty_names(self):
        for command, option in (("serve", "--socket"), ("serve", "--scenario"), ("serve", "--nmea"),
                                ("run", "--scenario"), ("run", "--nmea"), ("replay", "--socket"), ("replay", "--nmea"),
                                ("convert", "--output")):
            self.refused([command, option, "", *COMMANDS[command].split()],
                         f"{option}: '' is not accepted; accepted: a text that is not empty")
        for command in ("replay", "convert"):
            self.refused([command, ""], "FILE: '' is not accepted; accepted: a text that is not empty")

    def test_with_a_kind_of_time_that_is_none(self):
        for command, rest in (("serve", ""), ("run", "-- true")):
            for given in ("soon", "Real", ""):
                self.refused([command, "--time", given, *rest.split()],
                             f"--time: '{given}' is not accepted; accepted: real, virtual")

    def test_with_too_much(self):
        for command, rest in (("serve", "x"), ("play", "a x --for 1s"), ("convert", "f x")):
            self.refused([command, *rest.split()], "The following argument was not expected: x")

    def test_with_a_program_that_cannot_be_run(self):
        for arguments in (["run", "--", "/nowhere/program"], ["replay", self.recording(), "--", "/nowhere/program"]):
            ran = self.run_arcsim(*arguments)
            with self.subTest(arguments):
                self.assertNotEqual(ran.returncode, 0)
                self.assertIn("/nowhere/program", ran.stderr)
                self.assertIn("No such file or directory", ran.stderr)

    def recording(self):
        path = os.path.join(self.folder, "r.jsonl")
        with open(path, "w", encoding="ascii") as file:
            file.write(EMPTY_RECORDING)
        return path


if __name__ == "__main__":
    run.main()

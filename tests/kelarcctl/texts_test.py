"""Manual page, completion and help say the same, and the page's examples work."""

import os
import re
import subprocess

import ctl


EVERY = ("--timeout", "--json", "--log", "--log-level")


class Texts(ctl.CtlTest):
    def commands(self, path=()):
        """Every command as a list of words, with its help."""
        text = self.ctl(*path, "--help").stdout
        names = re.findall(r"(?m)^  ([a-z-]+) ", text.partition("Subcommands:\n")[2])
        if not names:
            return [(list(path), text)]
        return [each for name in names for each in self.commands((*path, name))]

    def page(self):
        ran = subprocess.run(["man", "-l", "-"], input=self.ctl("man").stdout, stdout=subprocess.PIPE,
                             stderr=subprocess.PIPE, encoding="utf-8", check=False,
                             env={**os.environ, "MANWIDTH": "200", "LC_ALL": "C", "MAN_KEEP_FORMATTING": ""})
        self.assertEqual((ran.returncode, ran.stderr), (0, ""))
        return ran.stdout

    def test_the_page_has_every_command_with_every_option_and_help(self):
        page = self.page()
        commands = self.commands()
        self.assertGreater(len(commands), 30)
        sections = re.split(r"(?m)^   (?=kelarcctl )", page.partition("COMMANDS\n")[2].partition("EXIT STATUS")[0])
        shown = {re.sub(r" \[?[A-Z]+\]?.*", "", section.partition("\n")[0]).removeprefix("kelarcctl "): section
                 for section in sections if section.strip()}
        self.assertEqual(sorted(shown), sorted(" ".join(words) for words, _ in commands))
        general = page.partition("OPTIONS\n")[2].partition("COMMANDS\n")[0]
        for words, text in commands:
            section = shown[" ".join(words)]
            description = text.partition("\n")[0]
            self.assertIn(description, re.sub(r"\s+", " ", section), words)
            for option, meaning in re.findall(r"(?m)^  (?:-h,)?(--[a-z-]+)(?: [A-Z]+)?\s+(.*)$", text):
                where = section if re.search(rf"(?m)^       {option}\b", section) else general
                self.assertRegex(where, rf"(?m)^       (-h, )?{option}\b", words)
                self.assertIn(meaning, re.sub(r"\s+", " ", where), words)
            for argument, meaning in re.findall(r"(?m)^  ([A-Z]+)(?: \.\.\.)?\s+(.*)$", text):
                self.assertIn(argument, section, words)
                self.assertIn(meaning, re.sub(r"\s+", " ", section), words)
        own = re.findall(r"(?m)^       (?:-h, )?(--[a-z-]+)", page)
        self.assertEqual(sorted(own), sorted(["--help", "--version", "--help", *EVERY] + [
            option for words, text in commands for option in re.findall(r"(?m)^  (--[a-z-]+)", text)
            if option not in EVERY]), "nothing that no help has")

    def rows(self, text, title):
        """Of a table at the foot of a help: what can be typed or seen, and what it means."""
        table = re.sub(r"\n +(?=\S)", lambda match: "\n" if len(match.group(0)) == 3 else " ",
                       text.partition(f"\n{title}:\n")[2]).strip().split("\n")
        return [tuple(re.split(r"  +", row.strip(), maxsplit=1)) for row in table]

    def section(self, title):
        """The same of a section of the page."""
        text = re.search(rf"(?ms)^{title}\n(.*?)(?=^\S|\Z)", self.page()).group(1)
        return [tuple(map(str.strip, re.split(r"\n|   +", re.sub(r"\n {14}(?=\S)", "\n", each.strip("\n")), maxsplit=1)))
                for each in re.split(r"(?m)^ {7}(?=\S)", text)[1:]]

    def documented(self, heading):
        """The same of a table in the document."""
        with open(os.path.join(os.environ["KELARCCTL_TEXTS"], "../../docs/kelarcctl.md"), encoding="utf-8") as file:
            table = file.read().partition(heading)[2].partition("\n\n")[0]
        return [(name.replace("`", ""), meaning.replace("`", ""))
                for name, meaning in re.findall(r"(?m)^\| (.*?) \| (.*) \|$", table)]

    def one_line(self, rows):
        return [(name, re.sub(r"\s+", " ", meaning)) for name, meaning in rows]

    def test_exit_codes_are_the_same_everywhere(self):
        rows = self.rows(self.says("--help"), "Exit codes")
        self.assertEqual([code for code, _ in rows], ["0", "2", "3", "4", "130"])
        self.assertEqual(self.one_line(self.section("EXIT STATUS")), rows)
        self.assertEqual(self.documented("| exit code | |\n|---|---|"), rows)

    def test_keys_are_the_same_everywhere(self):
        rows = self.rows(self.says("monitor --help"), "Keys")
        self.assertEqual([key for key, _ in rows], ["1-6", "Tab", "p", "s", "g, x", "r", "h, ?", "q"])
        self.assertEqual(self.one_line(self.section("KEYS OF MONITOR")), rows)
        self.assertEqual(self.documented("| key | |\n|---|---|"), rows)
        with open(os.path.join(os.path.dirname(__file__), "screens", "help.txt"), encoding="utf-8") as file:
            shown = re.sub(r"\s+", " ", file.read())
        for key, meaning in rows:
            self.assertIn(f"{key} {meaning}", shown)

    def test_the_document_names_every_command_and_option(self):
        with open(os.path.join(os.environ["KELARCCTL_TEXTS"], "../../docs/kelarcctl.md"), encoding="utf-8") as file:
            document = file.read()
        code = " ".join(re.findall(r"`([^`\n]+)`", document))
        named = set(re.split(r"[^a-z-]+", code))
        for words, text in self.commands():
            self.assertIn(words[-1], named, words)
            for option in re.findall(r"(?m)^  (?:-h,)?(--[a-z-]+)", text):
                self.assertIn(option, named, words)

    def test_the_committed_page_and_completion_are_todays(self):
        for command, name in (("man", "kelarcctl.1"), ("completion", "kelarcctl.bash")):
            with open(os.path.join(os.environ["KELARCCTL_TEXTS"], name), encoding="utf-8") as file:
                self.assertEqual(file.read(), self.ctl(command).stdout, name)

    def test_the_examples_of_the_page_work(self):
        self.serve()
        page = self.ctl("man").stdout.partition(".SH EXAMPLES")[2].replace("\\-", "-")
        examples = re.findall(r"(?m)^kelarcctl .*$", page)
        self.assertGreater(len(examples), 8)
        folder = os.path.dirname(os.environ["KELARCCTL"])
        for example in examples:
            ran = subprocess.run(["bash", "-c", example], cwd=self.folder, stdin=subprocess.DEVNULL,
                                 stdout=subprocess.PIPE, stderr=subprocess.PIPE, encoding="utf-8", check=False,
                                 env={**self.environment(), "PATH": folder + ":" + os.environ["PATH"]})
            self.assertEqual((ran.returncode, ran.stderr), (0, ""), example)

    def complete(self, line):
        """What can follow: the words that tab offers at the end of a line."""
        words = line.split(" ")
        script = (self.ctl("completion").stdout + "\nCOMP_WORDS=(" + " ".join(f"'{word}'" for word in words) +
                  f"); COMP_CWORD={len(words) - 1}; _kelarcctl; printf '%s\\n' \"${{COMPREPLY[@]}}\"")
        ran = subprocess.run(["bash", "-c", script], stdout=subprocess.PIPE, stderr=subprocess.PIPE, encoding="utf-8",
                             check=False, cwd=self.folder)
        self.assertEqual((ran.returncode, ran.stderr), (0, ""))
        return ran.stdout.split()

    def test_commands_options_and_values_are_completed(self):
        self.write("settings.json", {})
        self.scenario()
        every = ["--help", "--timeout", "--json", "--log", "--log-level"]
        self.assertEqual(self.complete("kelarcctl st"), ["status"])
        self.assertEqual(self.complete("kelarcctl gnss "), ["start", "stop", "force-stop", "reset-assistance", "--help"])
        self.assertEqual(self.complete("kelarcctl gnss st"), ["start", "stop"])
        self.assertEqual(self.complete("kelarcctl gnss start --h"), ["--help", "--hold"])
        self.assertEqual(sorted(self.complete("kelarcctl sbas ")), sorted(["off", "on", *every]))
        self.assertEqual(self.complete("kelarcctl period 5"), ["500"])
        self.assertEqual(self.complete("kelarcctl system glonass o"), ["off", "on"])
        self.assertEqual(self.complete("kelarcctl get Power/"), ["Power/Cpu", "Power/Psm"])
        self.assertEqual(self.complete("kelarcctl lsta enable g"), ["gps", "glonass", "galileo"])
        self.assertEqual(self.complete("kelarcctl lsta enable gps gl"), ["glonass"])
        self.assertEqual(self.complete("kelarcctl status --log-level w"), ["warning"])
        self.assertEqual(self.complete("kelarcctl status --timeout "), [])
        self.assertEqual(sorted(self.complete("kelarcctl status --log s")),
                         ["scenario.json", "settings.json", "stderr"])
        self.assertEqual(self.complete("kelarcctl apply sett"), ["settings.json"])
        self.assertEqual(self.complete("kelarcctl frobnicate "), [])


if __name__ == "__main__":
    ctl.main()

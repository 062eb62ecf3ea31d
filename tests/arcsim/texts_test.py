"""Manual page, completion and help say the same."""

import os
import re
import subprocess

import run


class Texts(run.ArcsimTest):
    def said(self, *words):
        ran = self.run_arcsim(*words)
        self.assertEqual((ran.returncode, ran.stderr), (0, ""), words)
        return ran.stdout

    def commands(self):
        names = re.findall(r"(?m)^  ([a-z][a-z-]*) {2,}\S", self.said("--help"))
        self.assertGreater(len(names), 20)
        return names

    def page(self):
        ran = subprocess.run(["man", "-l", "-"], input=self.said("man"), stdout=subprocess.PIPE,
                             stderr=subprocess.PIPE, encoding="utf-8", check=False,
                             env={**os.environ, "MANWIDTH": "200", "LC_ALL": "C", "MAN_KEEP_FORMATTING": ""})
        self.assertEqual((ran.returncode, ran.stderr), (0, ""))
        return ran.stdout

    def test_the_page_has_every_command_with_every_option(self):
        commands = self.page().partition("COMMANDS\n")[2].partition("EXIT STATUS\n")[0]
        sections = {section.split()[0]: section for section in re.split(r"(?m)^   arcsim ", commands)[1:]}
        self.assertEqual(list(sections), self.commands())
        for name, section in sections.items():
            text = self.said(name, "--help")
            options = re.findall(r"(?m)^  (?:-\w,)?(--[a-z-]+)", text)
            self.assertIn("--help", options)
            for option in options:
                if option != "--help":
                    self.assertRegex(section, rf"(?m)^       (-\w, )?{option}\b", name)
            self.assertIn(text.partition("\n")[0].rstrip("."), " ".join(section.split()), name)

    def test_exit_codes_and_examples_are_those_of_the_help(self):
        page = " ".join(self.page().split())
        rows = re.findall(r"(?m)^  (\d)  (.*)$", self.said("--help"))
        self.assertEqual([code for code, _ in rows], ["0", "1", "2", "3", "4", "5", "6"])
        for code, meaning in rows:
            self.assertIn(f"{code} {meaning}", page)
        examples = [line for name in self.commands()
                    for line in re.findall(r"(?m)^  (arcsim .*)$", self.said(name, "--help").partition("Example:\n")[2])]
        self.assertGreater(len(examples), 18)
        for example in examples:
            self.assertIn(example, page)

    def test_the_committed_page_and_completion_are_todays(self):
        for command, name in (("man", "arcsim.1"), ("completion", "arcsim.bash")):
            with open(os.path.join(os.environ["ARCSIM_TEXTS"], name), encoding="utf-8") as file:
                self.assertEqual(file.read(), self.said(command), name)

    def complete(self, line):
        """The words that tab offers at the end of a line."""
        words = line.split(" ")
        script = (self.said("completion") + "\nCOMP_WORDS=(" + " ".join(f"'{word}'" for word in words) +
                  f"); COMP_CWORD={len(words) - 1}; _arcsim; printf '%s\\n' \"${{COMPREPLY[@]}}\"")
        ran = subprocess.run(["bash", "-c", script], stdout=subprocess.PIPE, stderr=subprocess.PIPE, encoding="utf-8",
                             check=False, cwd=self.folder)
        self.assertEqual((ran.returncode, ran.stderr), (0, ""))
        return ran.stdout.split()

    def test_commands_options_and_files_are_completed(self):
        with open(os.path.join(self.folder, "fault.jsonl"), "w", encoding="ascii"):
            pass
        self.assertEqual(self.complete("arcsim re"), ["reset", "replay"])
        self.assertEqual(self.complete("arcsim serve --s"), ["--socket", "--scenario"])
        self.assertEqual(self.complete("arcsim convert fau"), ["fault.jsonl"])
        self.assertEqual(self.complete("arcsim convert --output fau"), ["fault.jsonl"])
        self.assertEqual(self.complete("arcsim status --timeout "), [])


run.main()

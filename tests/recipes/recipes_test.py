"""Runs a recipe of docs/simulator.md as it stands there, in an empty folder, and compares what it prints with the page.

Usage: recipes_test.py NUMBER, or without one to check that the page has ten of them, all of which are run."""

import os
import pathlib
import re
import signal
import subprocess
import sys
import tempfile
import unittest

import page

LIMIT_S = 240
PAGE = page.Page(os.environ["PAGE"])


def sanitizer_of(library):
    """The library of a sanitizer that `library` was built with has to be loaded before it; else empty."""
    listed = subprocess.run(["ldd", library], stdout=subprocess.PIPE, text=True, check=True).stdout
    return "".join(re.findall(r"=> (\S*/lib(?:clang_rt\.)?[at]san\S*)", listed))


def environment(folder):
    """As the page's preparation makes it, but with the build under test; nothing of the caller's says where a daemon
    is."""
    exports = "\n".join(line for line in PAGE.preparation[0].splitlines() if line.startswith("export "))
    shown = subprocess.run(["bash", "-euc", exports.replace("$PWD/build/dev", os.environ["BUILD"]) +
                            '\nprintf "%s\\n%s" "$PATH" "$RECORDER"'],
                           stdout=subprocess.PIPE, text=True, check=True)
    path, recorder = shown.stdout.split("\n")
    outside = {k: v for k, v in os.environ.items() if not k.startswith(("ARCSIM", "ARCRECORD"))}
    return {**outside, "PATH": path, "RECORDER": " ".join(filter(None, [sanitizer_of(recorder), recorder])),
            "XDG_RUNTIME_DIR": folder, "LC_ALL": "C"}


class RunRecipe(unittest.TestCase):
    maxDiff = None

    def test_prints_what_the_page_says(self):
        recipe = PAGE.recipes[NUMBER - 1]
        with tempfile.TemporaryDirectory() as folder:
            kitchen = os.path.join(folder, "recipe")
            os.mkdir(kitchen)
            printed = self.run_commands(recipe.commands, kitchen, environment(folder))
        if not page.pattern(recipe.printed).fullmatch(printed):
            self.assertEqual(printed, recipe.printed, f"recipe {recipe.number}, {recipe.title}, with ... for anything")

    def run_commands(self, commands, kitchen, variables):
        """What they print on both outputs; a file, as programs in the background may keep it open."""
        with tempfile.TemporaryFile("w+", encoding="utf-8", errors="replace") as output:
            shell = subprocess.Popen(["bash", "-c", commands], cwd=kitchen, env=variables, stdin=subprocess.DEVNULL,
                                     stdout=output, stderr=subprocess.STDOUT, start_new_session=True)
            try:
                shell.wait(LIMIT_S)
                ended = True
            except subprocess.TimeoutExpired:
                ended = False
            left = self.kill_group(shell)
            shell.wait()
            output.seek(0)
            printed = output.read()
        story = f"\n{printed}\n" + "".join(self.files_of(kitchen))
        self.assertTrue(ended, f"the recipe did not end within {LIMIT_S} s; it has printed:{story}")
        self.assertFalse(left, f"the recipe leaves programs running; it has printed:{story}")
        return printed

    @staticmethod
    def kill_group(shell):
        """Whether there was anything left of the recipe."""
        try:
            os.killpg(shell.pid, signal.SIGKILL)
            return True
        except ProcessLookupError:
            return False

    @staticmethod
    def files_of(kitchen):
        for path in sorted(pathlib.Path(kitchen).glob("*.txt")):
            yield f"--- {path.name}\n{path.read_text(encoding='utf-8', errors='replace')[-4000:]}\n"


class ThePage(unittest.TestCase):
    def test_has_ten_recipes_in_order(self):
        self.assertEqual([recipe.number for recipe in PAGE.recipes], list(range(1, 11)))

    def test_has_no_commands_that_are_not_run(self):
        self.assertEqual(len(PAGE.preparation), 1)
        self.assertEqual(PAGE.commands_everywhere, 1 + 10)

    def test_leads_to_the_programs(self):
        with tempfile.TemporaryDirectory() as folder:
            variables = environment(folder)
        for program in ("arcsim", "navigator"):
            folders = variables["PATH"].split(":")[:2]
            self.assertTrue(any(os.access(os.path.join(each, program), os.X_OK) for each in folders), program)
        self.assertTrue(os.path.isfile(variables["RECORDER"].split()[-1]))

    def test_is_compared_line_by_line(self):
        for printed, output, same in (("a\n", "a\n", True), ("a\n", "b\n", False), ("a\n", "a\nb\n", False),
                                      ("a ... c\n", "a b c\n", True), ("a ... c\n", "a b\n c\n", False),
                                      ("a\n...\nb\n", "a\nb\n", True), ("a\n...\nb\n", "a\nx\ny\nb\n", True),
                                      ("a.b\n", "axb\n", False), ("...\n", "", True), ("a\n...\n", "b\n", False)):
            with self.subTest(printed + output):
                self.assertEqual(page.pattern(printed).fullmatch(output) is not None, same)


if __name__ == "__main__":
    NUMBER = int(sys.argv.pop(1)) if len(sys.argv) > 1 else None
    unittest.main(defaultTest="ThePage" if NUMBER is None else "RunRecipe")

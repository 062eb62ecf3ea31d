"""Runs kelarcctl, on the daemon at self.socket where there is one."""

import json
import os
import subprocess

import run
from programs import LIMIT_S, Program, outside


class CtlTest(run.DaemonTest):
    def environment(self):
        """Where the modem is: in the program itself unless a daemon serves."""
        if os.path.exists(self.socket):
            return {**outside(), "ARCSIM_SOCKET": self.socket}
        return {**outside(), "ARCSIM_SCENARIO": self.scenario()}

    def ctl(self, *arguments):
        return subprocess.run([os.environ["KELARCCTL"], *arguments], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, encoding="utf-8", timeout=LIMIT_S, check=False,
                              env=self.environment())

    def start(self, *arguments, before=()):
        """Without waiting for its end."""
        program = Program([*before, os.environ["KELARCCTL"], *arguments], self.environment())
        self.addCleanup(program.close)
        return program

    def says(self, line):
        """What a command prints that must succeed and have nothing to tell on stderr."""
        ran = self.ctl(*line.split())
        self.assertEqual((ran.returncode, ran.stderr), (0, ""), line)
        return ran.stdout.rstrip("\n")

    def document(self, line):
        return json.loads(self.says(line + " --json"))


main = run.main

"""A program in a terminal: what its screen shows, keys, other sizes."""

import os
import re
import shlex
import subprocess
import time

import run
from programs import LIMIT_S, outside


class Terminal:
    """tmux with a server of its own. A shell around the program tells its exit code when it has ended."""

    def __init__(self, folder, command, environment, columns=80, rows=24):
        self._base = ["tmux", "-u", "-L", "t", "-f", "/dev/null"]
        self._environment = {**outside(), "TMUX_TMPDIR": folder, "LC_ALL": "C.UTF-8", "TERM": "xterm"}
        self._environment.pop("TMUX", None)
        settings = [f"{name}={value}" for name, value in environment.items()]
        program = shlex.join(["env", "-u", "NO_COLOR", *settings, *command])
        shell = f"trap : INT QUIT; stty -a > {folder}/before; {program}; echo exit $?; stty -a > {folder}/after; exec sleep 10000"
        self._run("new-session", "-d", "-s", "s", "-x", str(columns), "-y", str(rows), "sh", "-c", shell)

    def _run(self, *arguments, check=True):
        return subprocess.run([*self._base, *arguments], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, encoding="utf-8", timeout=LIMIT_S, check=check,
                              env=self._environment).stdout

    def screen(self, *options):
        return self._run("capture-pane", "-p", "-t", "s", *options).rstrip("\n")

    def keys(self, *names):
        self._run("send-keys", "-t", "s", *names)

    def resize(self, columns, rows):
        self._run("resize-window", "-t", "s", "-x", str(columns), "-y", str(rows))

    def wait_for(self, pattern):
        """Until the screen shows it; returns the screen."""
        deadline = time.monotonic() + LIMIT_S
        while True:
            screen = self.screen()
            if re.search(pattern, screen, re.MULTILINE):
                return screen
            if time.monotonic() > deadline:
                raise AssertionError(f"'{pattern}' did not appear:\n{screen}")
            time.sleep(0.02)

    def pid(self, name):
        """Of the program that the shell has started."""
        def child():
            shell = self._run("list-panes", "-t", "s", "-F", "#{pane_pid}").strip()
            for pid in subprocess.run(["ps", "-o", "pid=,comm=", "--ppid", shell], stdout=subprocess.PIPE,
                                      encoding="utf-8", check=False).stdout.splitlines():
                if pid.split()[1] == name:
                    return int(pid.split()[0])
            return None
        return run.wait_until(child, f"{name} runs")

    def close(self):
        """As a connection that breaks does: the terminal is gone."""
        self._run("kill-server", check=False)


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


def exists(path):
    return os.path.exists(path)

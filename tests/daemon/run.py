"""Runs the daemon and applications on it."""

import json
import os
import re
import signal
import subprocess
import tempfile
import time
import unittest

from programs import LIMIT_S, Client, Program, Raw, outside

QUICK = {"latencies": False, "engineStartMs": 0, "firstFix": {"coldMs": 0, "hotMs": 0}}


def wait_until(condition, what):
    """Waits until `condition` gives something true, and returns that."""
    deadline = time.monotonic() + LIMIT_S
    while True:
        result = condition()
        if result:
            return result
        if time.monotonic() > deadline:
            raise AssertionError(f"within {LIMIT_S} s it did not come about that {what}")
        time.sleep(0.005)


class DaemonTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory(dir="/tmp")  # the path of a socket must be short
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        self.socket = os.path.join(self.folder, "s")

    def write(self, name, content):
        path = os.path.join(self.folder, name)
        with open(path, "w", encoding="utf-8") as file:
            file.write(content if isinstance(content, str) else json.dumps(content))
        return path

    def scenario(self, **content):
        """A scenario file; by default nothing takes longer than it must."""
        return self.write("scenario.json", {**QUICK, **content})

    def serve(self, *arguments, scenario=None, environment=None):
        """A daemon at self.socket that serves already."""
        daemon = Program([os.environ["ARCSIM"], "serve", "--socket", self.socket, "--scenario",
                          scenario or self.scenario(), *arguments], environment)
        self.addCleanup(daemon.close)
        daemon.wait_for(lambda: daemon.lines, "the line that the daemon serves")
        return daemon

    def client(self, path=None, **options):
        """With an empty path: on a modem of its own."""
        client = Client(self.socket if path is None else path, **options)
        self.addCleanup(client.close)
        return client

    def open_client(self, *calls, path=None):
        """With notifications; makes further calls that must succeed."""
        client = self.client(path)
        for call in ("method 1", "register", "open", *calls):
            self.assertEqual(client.call(call)[0], 0, call)
        return client

    def raw(self):
        raw = Raw(self.socket)
        self.addCleanup(raw.close)
        return raw

    def arcsim(self, *arguments, environment=None, **options):
        return subprocess.run([os.environ["ARCSIM"], *arguments], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, encoding="utf-8", errors="surrogateescape",
                              timeout=LIMIT_S, check=False,
                              env={**outside(), **(environment or {})}, **options)

    def control(self, text):
        """What a control says that must succeed."""
        command, *rest = text.split()
        ran = self.arcsim(command, "--socket", self.socket, *rest)
        self.assertEqual((ran.returncode, ran.stderr), (0, ""), text)
        return ran.stdout

    def refused(self, text):
        """The message of a control that must be refused."""
        command, *rest = text.split()
        ran = self.arcsim(command, "--socket", self.socket, *rest)
        self.assertEqual((ran.returncode, ran.stdout), (3, ""), text)
        return ran.stderr

    def ask(self, control, **members):
        """The result of a control, without a program in between."""
        raw = Raw(self.socket)
        try:
            answer = raw.ask({"id": 1, "control": control, **members})
        finally:
            raw.close()
        self.assertTrue(answer["ok"], answer)
        return answer["result"]

    def status(self):
        return self.ask("status")

    def assert_calls(self, client, calls):
        """A table of calls with the code, or the code and the text, that each must answer."""
        for call, answer in calls:
            got = client.call(call)
            self.assertEqual(got if isinstance(answer, tuple) else got[0], answer, call)


def repeat_while_unreachable(client, call, limit_s=LIMIT_S):
    """The answer of a call once the modem can be reached, and how often it could not."""
    deadline = time.monotonic() + limit_s
    lost = 0
    while True:
        answer = client.call(call)
        if answer[0] != 31 or time.monotonic() > deadline:
            return answer, lost
        lost += 1


def memory_kb(pid):
    with open(f"/proc/{pid}/status", encoding="ascii") as file:
        return int(re.search(r"VmRSS:\s+(\d+) kB", file.read()).group(1))


SIGINT = signal.SIGINT
SIGKILL = signal.SIGKILL
SIGTERM = signal.SIGTERM
main = unittest.main

"""Runs the daemon and applications on it. Limits are generous: the machine may be busy and the build instrumented."""

import json
import os
import re
import signal
import socket
import subprocess
import tempfile
import threading
import time
import unittest

LIMIT_S = 90
QUICK = {"latencies": False, "engineStartMs": 0, "firstFix": {"coldMs": 0, "hotMs": 0}}


def outside():
    """The environment without what leads to a modem."""
    return {name: value for name, value in os.environ.items()
            if name not in ("ARCSIM_SOCKET", "ARCSIM_SCENARIO", "ARCSIM_REPLAY", "ARCSIM_TIME", "XDG_RUNTIME_DIR")}


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


class Program:
    """A program whose lines on standard output are taken in by a thread as they come."""

    def __init__(self, command, environment=None, **options):
        self._errors = tempfile.TemporaryFile()
        self.process = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=self._errors,
                                        env={**outside(), **(environment or {})}, **options)
        self.pid = self.process.pid
        self.changed = threading.Condition()
        self.lines = []
        self._reader = threading.Thread(target=self._read, daemon=True)
        self._reader.start()

    def _read(self):
        for line in self.process.stdout:
            with self.changed:
                self.take(line.decode("latin-1").rstrip("\n"))
                self.changed.notify_all()
        with self.changed:
            self.changed.notify_all()

    def take(self, line):
        self.lines.append(line)

    def wait_for(self, condition, what):
        """Until `condition` gives something; the program's end ends the wait."""
        with self.changed:
            self.changed.wait_for(lambda: condition() or not self._reader.is_alive(), LIMIT_S)
            result = condition()
        if not result:
            raise AssertionError(f"{what} did not come; the program said on stderr: {self.errors()}")
        return result

    def errors(self):
        size = os.fstat(self._errors.fileno()).st_size
        return os.pread(self._errors.fileno(), size, 0).decode("latin-1")

    def send(self, number):
        self.process.send_signal(number)

    def finish(self):
        code = self.process.wait(LIMIT_S)
        self._reader.join(LIMIT_S)
        return code

    def kill(self):
        self.process.kill()
        self.process.wait(LIMIT_S)

    def close(self):
        if self.process.poll() is None:
            self.kill()
        self._reader.join(LIMIT_S)
        for stream in (self.process.stdin, self.process.stdout, self._errors):
            try:
                stream.close()
            except BrokenPipeError:
                pass


class Client(Program):
    """An application; see arc_client.cpp."""

    def __init__(self, path, command=(), environment=None):
        super().__init__([*command, os.environ["ARC_CLIENT"]],
                         environment={**({"ARCSIM_SOCKET": path} if path else {}), **(environment or {})})
        self.answers = {}
        self.events = []
        self._number = 0

    def take(self, line):
        number, _, rest = line.partition(" ")
        if number == "event":
            event, _, payload = rest.partition(" ")
            self.events.append((int(event), payload))
        else:
            code, _, text = rest.partition(" ")
            self.answers[int(number)] = (int(code), text.replace("\\r", "\r").replace("\\n", "\n"))

    def begin(self, line, thread="main"):
        """Has a call made and does not wait for its answer; returns what to wait for."""
        self._number += 1
        self.process.stdin.write(f"{self._number} {thread} {line}\n".encode("latin-1"))
        self.process.stdin.flush()
        return self._number

    def close(self):
        """In order, so that a modem of its own goes as well."""
        try:
            self.process.stdin.close()
        except BrokenPipeError:
            pass
        try:
            self.process.wait(LIMIT_S)
        finally:
            super().close()

    def answer(self, number):
        return self.wait_for(lambda: self.answers.get(number), f"the answer of call {number}")

    def call(self, line, thread="main"):
        """The code and the text of one call."""
        return self.answer(self.begin(line, thread))

    def has_answered(self, number):
        with self.changed:
            return number in self.answers

    def wait_for_events(self, count):
        """The first so many."""
        return self.wait_for(lambda: len(self.events) >= count and self.events[:count], f"{count} events")

    def forget_events(self):
        with self.changed:
            self.events.clear()


class Raw:
    """A connection of somebody who need not know the protocol."""

    def __init__(self, path):
        self.socket = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
        self.socket.settimeout(LIMIT_S)
        self.socket.connect(path)
        self.received = self.socket.makefile("rb")

    def send(self, content):
        """Of bytes or a message. A daemon that hangs up meanwhile is no matter."""
        if not isinstance(content, bytes):
            content = json.dumps(content).encode("ascii") + b"\n"
        try:
            self.socket.sendall(content)
        except (BrokenPipeError, ConnectionResetError):
            pass

    def line(self):
        """The next one as a message; None at the end."""
        try:
            line = self.received.readline()
        except ConnectionResetError:
            return None
        return json.loads(line) if line else None

    def ask(self, message):
        self.send(message)
        return self.line()

    def greet(self, **changes):
        return self.ask({"hello": "client", "name": "raw", "pid": 1, "open": False, "handler": False, **changes})

    def close(self):
        self.received.close()
        self.socket.close()


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

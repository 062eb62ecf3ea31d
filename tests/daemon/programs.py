"""The programs of these tests. Limits are generous: the machine may be busy and the build instrumented."""

import json
import os
import socket
import subprocess
import tempfile
import threading

LIMIT_S = 90


def outside():
    """The environment without what leads to a modem."""
    return {name: value for name, value in os.environ.items()
            if name not in ("ARCSIM_SOCKET", "ARCSIM_SCENARIO", "ARCSIM_REPLAY", "ARCSIM_TIME", "XDG_RUNTIME_DIR")}


class Program:
    """A program whose lines on standard output are taken in by a thread as they come."""

    def __init__(self, command, environment=None, **options):
        self._errors = tempfile.TemporaryFile()
        self.process = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=self._errors,
                                        env={**outside(), **(environment or {})}, **options)
        self.pid = self.process.pid
        self.changed = threading.Condition()
        self.lines = []
        self.has_ended = False
        self._reader = threading.Thread(target=self._read, daemon=True)
        self._reader.start()

    def _read(self):
        for line in self.process.stdout:
            with self.changed:
                self.take(line.decode("latin-1").rstrip("\n"))
                self.changed.notify_all()
        with self.changed:
            self.has_ended = True
            self.changed.notify_all()

    def take(self, line):
        self.lines.append(line)

    def wait_for(self, condition, what):
        """Until `condition` gives something; the program's end ends the wait."""
        with self.changed:
            self.changed.wait_for(lambda: condition() or self.has_ended, LIMIT_S)
            result = condition()
        if not result:
            raise AssertionError(f"{what} did not come; the program said on stderr: {self.errors()}")
        return result

    def prints(self):
        """Whether a line comes before the output ends."""
        with self.changed:
            self.changed.wait_for(lambda: self.lines or self.has_ended, LIMIT_S)
            return bool(self.lines)

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

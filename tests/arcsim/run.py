"""Runs arcsim against a daemon made here. Limits are generous: the machine may be busy and the build instrumented."""

import json
import os
import socket
import subprocess
import tempfile
import threading
import unittest

LIMIT_S = 90


class Daemon:
    """Listens at a path, takes one request of each connection and lets `talk` do the rest."""

    def __init__(self, path, talk):
        self.path = path
        self.talk = talk
        self._requests = []
        self._taken = threading.Condition()
        self._listening = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
        self._listening.bind(path)
        self._listening.listen()
        self._thread = threading.Thread(target=self._serve, daemon=True)
        self._thread.start()

    def _serve(self):
        while True:
            try:
                connection, _ = self._listening.accept()
            except OSError:
                return
            with connection, connection.makefile("rb") as lines:
                line = lines.readline()
                if not line:
                    continue
                request = json.loads(line)
                with self._taken:
                    self._requests.append(request)
                    self._taken.notify_all()
                try:
                    self.talk(Line(connection, lines), request)
                except (BrokenPipeError, ConnectionResetError):
                    pass

    def take_requests(self, count):
        """Those that have come since the last time; waits for so many, as a caller that gave up may be gone already."""
        with self._taken:
            if not self._taken.wait_for(lambda: len(self._requests) >= count, LIMIT_S):
                raise AssertionError(f"{count} requests expected, but only {self._requests} came")
            taken, self._requests = self._requests, []
            return taken

    def close(self):
        self._listening.shutdown(socket.SHUT_RDWR)
        self._listening.close()
        self._thread.join(LIMIT_S)
        if self._thread.is_alive():
            raise AssertionError("the daemon of the test does not end")


class Line:
    """The daemon's end of a connection."""

    def __init__(self, connection, lines):
        self._connection = connection
        self._lines = lines

    def say(self, document):
        self.say_bytes(json.dumps(document).encode("ascii") + b"\n")

    def say_bytes(self, content):
        self._connection.sendall(content)

    def wait_for_hanging_up(self):
        self._lines.read()


def answers(result):
    """A daemon that does what it is asked to."""
    return lambda line, request: line.say({"id": request["id"], "ok": True, "result": result})


def refuses(error):
    return lambda line, request: line.say({"id": request["id"], "ok": False, "error": error})


class ArcsimTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        self.socket = os.path.join(self.folder, "s")

    def daemon(self, talk, path=None):
        daemon = Daemon(path or self.socket, talk)
        self.addCleanup(daemon.close)
        return daemon

    def run_arcsim(self, *arguments, environment=None, **options):
        """Nothing of the caller's environment says where a daemon is."""
        outside = {k: v for k, v in os.environ.items() if k not in ("ARCSIM_SOCKET", "XDG_RUNTIME_DIR")}
        options = {"stdout": subprocess.PIPE, **options}
        return subprocess.run([os.environ["ARCSIM"], *arguments], stdin=subprocess.DEVNULL, stderr=subprocess.PIPE,
                              timeout=LIMIT_S, env={**outside, **(environment or {})}, encoding="utf-8",
                              errors="surrogateescape", check=False, **options)

    def ask(self, *arguments):
        """With the socket of this test."""
        command, *rest = arguments
        return self.run_arcsim(command, "--socket", self.socket, *rest)

    def assert_run(self, ran, exit_code=0, out="", err=""):
        self.assertEqual((ran.returncode, ran.stdout, ran.stderr), (exit_code, out, err))


class ControlTest(ArcsimTest):
    """For commands that become one control each."""

    def setUp(self):
        super().setUp()
        self.result = {}
        self.made = self.daemon(lambda line, request: answers(self.result)(line, request))

    def assert_control(self, arguments, control, text, result=None):
        """What is sent, what people read, and what programs read. `arguments` is a list, or a text without blanks in
        its words."""
        arguments = arguments.split() if isinstance(arguments, str) else arguments
        self.result = result or {}
        with self.subTest(arguments):
            self.assert_run(self.ask(*arguments), out=text)
            self.assert_run(self.ask(*arguments, "--json"),
                            out=json.dumps({"ok": True, "result": self.result}, separators=(",", ":")) + "\n")
            requests = self.made.take_requests(2)
            self.assertEqual(len(requests), 2)
            for request in requests:
                self.assertIs(type(request.pop("id")), int)
                self.assertEqual(request, control)


main = unittest.main

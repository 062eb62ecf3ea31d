"""Runs receiver_host and reads its device. Limits are generous: the machine may be busy and the build instrumented."""

import contextlib
import json
import os
import select
import subprocess
import sys
import tempfile
import time
import unittest

LIMIT_S = 90


def attempts(story):
    """Goes on until the limit, then fails."""
    until = time.monotonic() + LIMIT_S
    while time.monotonic() < until:
        yield
    raise AssertionError(f"it did not come within {LIMIT_S} s. {story()}")


class Lines:
    """Lines of a pipe, a terminal or a socket, waited for up to a limit."""

    def __init__(self, descriptor, story):
        self._descriptor = descriptor
        self._story = story  # gives the text for a failure
        self._poll = select.poll()
        self._poll.register(descriptor, select.POLLIN)
        self._rest = b""

    def next(self):
        """The next line with its end."""
        until = time.monotonic() + LIMIT_S
        while b"\n" not in self._rest:
            left = until - time.monotonic()
            if left <= 0:
                raise AssertionError(f"no line within {LIMIT_S} s. {self._story()}")
            more = self.some(left)
            if more == b"":
                raise AssertionError(f"ended instead of giving a line. {self._story()}")
            self._rest += more or b""
        line, self._rest = self._rest.split(b"\n", 1)
        return line + b"\n"

    def within(self, limit_s):
        """The next line with its end, or None when none is complete within the limit."""
        until = time.monotonic() + limit_s
        while b"\n" not in self._rest:
            more = self.some(until - time.monotonic())
            if not more:
                return None
            self._rest += more
        return self.next()

    def some(self, limit_s):
        """What has come, past lines; empty at the end, None when nothing comes within the limit."""
        if not self._poll.poll(max(limit_s, 0) * 1000):
            return None
        try:
            return os.read(self._descriptor, 65536)
        except OSError:  # how a terminal ends
            return b""


class Device:
    """The receiver's device, opened as a program does that knows nothing of its other end."""

    def __init__(self, path, story):
        self.descriptor = os.open(path, os.O_RDONLY | os.O_NOCTTY)
        self.lines = Lines(self.descriptor, story)
        self._story = story
        self._next = b""  # read already

    def close(self):
        os.close(self.descriptor)

    def epochs(self, count=1):
        """So many whole epochs: each a list of lines, the first of which is RMC."""
        epochs = []
        for _ in attempts(self._story):
            if b"RMC," in self._next:
                if len(epochs) == count:
                    return epochs
                epochs.append([])
            if epochs:
                epochs[-1].append(self._next)
            self._next = self.lines.next()

    def bytes(self, count):
        """At least so many bytes, and whatever else has come with them."""
        until = time.monotonic() + LIMIT_S
        content = b""
        while len(content) < count and (more := self.lines.some(until - time.monotonic())):
            content += more
        return content


class Host:
    """A run of receiver_host."""

    def __init__(self, command, environment, errors):
        self._errors = errors
        with open(errors, "wb") as stream:
            self.process = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=stream,
                                            env={**os.environ, **environment})
        self._lines = Lines(self.process.stdout.fileno(), self.story)

    def path(self):
        """Of the device; the first thing that it says."""
        return self._lines.next().decode("ascii").strip()

    def obey(self, command):
        self.process.stdin.write(f"{command}\n".encode())
        self.process.stdin.flush()
        answer = self._lines.next()
        if answer != b"ok\n":
            raise AssertionError(f"{command}: {answer!r}. {self.story()}")

    def end(self):
        """The end of its input ends it."""
        with contextlib.suppress(BrokenPipeError):
            self.process.stdin.close()
        try:
            code = self.process.wait(LIMIT_S)
        except subprocess.TimeoutExpired:
            self.process.kill()
            code = self.process.wait()
        self.process.stdout.close()
        if code != 0:
            raise AssertionError(f"it ended with exit code {code}. {self.story()}")

    def story(self):
        with open(self._errors, encoding="ascii", errors="replace") as stream:
            return f"\n--- stderr of {self.process.args}\n{stream.read()}\n---"


class FeedTest(unittest.TestCase):
    """Starts receivers and leaves none behind. Subclasses say how the modem is reached."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        self._files = 0

    def file(self, ending):
        self._files += 1
        return os.path.join(self.folder, f"{self._files}.{ending}")

    def scenario(self, **content):
        """A scenario file; by default nothing takes longer than it must."""
        path = self.file("json")
        quick = {"latencies": False, "engineStartMs": 0, "firstFix": {"coldMs": 500, "hotMs": 100}}
        with open(path, "w", encoding="ascii") as file:
            json.dump({**quick, **content}, file)
        return path

    def launch(self, settings, environment, wrapper=()):
        host = Host([*wrapper, os.environ["RECEIVER_HOST"], *settings.split()], environment, self.file("log"))
        self.addCleanup(host.end)
        host.device_path = host.path()
        return host

    def open(self, host):
        device = Device(host.device_path, host.story)
        self.addCleanup(device.close)
        return device

    def open_before_start(self, host):
        """The device, opened while the output is stopped: nothing of it is missed."""
        host.obey("stop")
        device = self.open(host)
        host.obey("start")
        return device

    def begin(self, host):
        """A reader has come that needs everything from the first byte on."""


class Embedded(FeedTest):
    """The modem is in the process that uses the library."""

    def receiver(self, settings="", **scenario):
        return self.launch(settings, {"ARCSIM_SCENARIO": self.scenario(**scenario)})


class Daemon(FeedTest):
    """The modem is a program of its own, with which the library talks."""

    def receiver(self, settings="", **scenario):
        return self.launch(settings, {"ARCSIM_SCENARIO": self.scenario(**scenario)},
                           [os.environ["ARCSIM"], "run", "--"])


class Replayed(FeedTest):
    """What an embedded modem puts out, put out again."""

    EPOCHS = 25  # of 100 ms

    def receiver(self, settings="", **scenario):
        recording = self.file("nmea")
        with open(recording, "wb") as file:
            file.write(self.record(settings + " period 100", self.EPOCHS, **scenario))
        return self.launch("", {"ARCSIM_SCENARIO": self.scenario(), "ARCSIM_REPLAY": recording})

    def record(self, settings, epochs, **scenario):
        at_once = {"firstFix": {"coldMs": 0, "hotMs": 0}}
        host = self.launch(settings, {"ARCSIM_SCENARIO": self.scenario(**{**at_once, **scenario})})
        return b"".join(line for epoch in self.open_before_start(host).epochs(epochs) for line in epoch)

    def begin(self, host):
        host.obey("stop")
        host.obey("start")


def reached(*ways):
    """Makes a test case of a class for every way in which the modem can be reached; by daemon where there is one."""
    def spread(tests):
        module = sys.modules[tests.__module__]
        for way in ways:
            if way is Daemon and "ARCSIM" not in os.environ:
                continue
            name = tests.__name__ + way.__name__
            setattr(module, name, type(name, (tests, way), {"__module__": tests.__module__, "__doc__": tests.__doc__}))
    return spread


main = unittest.main

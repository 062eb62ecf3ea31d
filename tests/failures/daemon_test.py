"""The daemon when its nth call of a system function fails: clients get the right answer, or are cut off and reconnect,
and the daemon ends in order."""

import json
import os
import select

import failing
import run

OPEN = ("ARC_Open", {}, 0, {})
WRITE = ("ARC_CheckModuleSetting", {"key": "Power/Cpu", "value": '"max"', "reply": None, "replySize": 0,
                                    "writeIndicator": None}, 0, {})
READ = ("ARC_CheckModuleSetting", {"key": "Power/Cpu", "value": None, "reply": "set", "replySize": 255,
                                   "writeIndicator": None}, 0, {"reply": '"max"'})
START = ("ARC_StartGNSSraw", {"text": "set", "size": 255}, 0, None)
STOP = ("ARC_StopGNSS", {}, 0, {})
NOT_STARTED = 32  # raw output could not be started, standard error says why


class Application:
    """Calls once more when it was cut off."""

    def __init__(self, test):
        self.test = test
        self.is_open = False
        self.raw = None
        self.id = 0

    def answer(self, message):
        if self.raw is None:
            self.raw = run.Raw(self.test.socket)
            if self.raw.greet(open=self.is_open) is None:
                return None
        return self.raw.ask(message)

    def call(self, name, arguments, code, output):
        self.id += 1
        message = {"id": self.id, "call": name, "args": arguments}
        for _ in range(2):
            answer = self.answer(message)
            if answer is not None:
                break
            self.close()
        self.test.assertEqual(answer["id"], self.id)
        if name == "ARC_StartGNSSraw" and answer["code"] == NOT_STARTED:
            self.test.assertIn("simulated modem: cannot ", self.test.daemon.errors())
            return None
        self.test.assertEqual(answer["code"], code, (name, answer))
        self.is_open = True
        if output is not None:
            answer["out"].pop("writeIndicator", None)
            self.test.assertEqual(answer["out"], output)
        return answer["out"]

    def close(self):
        if self.raw is not None:
            self.raw.close()
        self.raw = None


class Daemon(failing.FailingTest):
    # What the end cannot take away, for the very call that takes it away has failed.
    STAYING = {"unlink": ["s"], "remove": ["s.nmea"]}

    def serve_failing(self, environment, *arguments, reads=False):
        self.daemon = run.Program([os.environ["ARCSIM"], "serve", "--socket", self.socket, "--scenario",
                                   self.scenario(), *arguments], environment)
        try:
            if self.daemon.prints():
                self.use(reads)
                self.assertEqual(self.daemon.finish(), 0, self.daemon.errors())
            else:
                self.assertEqual(self.daemon.finish(), 3, self.daemon.errors())
                self.assertRegex(self.daemon.errors(), r"\Aarcsim: .*\n\Z")
            self.assert_nothing_left(environment)
        finally:
            self.daemon.close()

    def assert_nothing_left(self, environment):
        left = self.files()
        for name in left:
            os.unlink(os.path.join(self.folder, name))
        if "s.memory: cannot be removed: " in self.daemon.errors():
            left.discard("s.memory")
        function = environment["NTH_FAILURE"].split()[0]
        self.assertLessEqual(left, set(self.STAYING.get(function, [])), self.daemon.errors())

    def use(self, reads):
        application = Application(self)
        try:
            application.call(*OPEN)
            application.call(*WRITE)
            self.assert_remembered("max")
            application.call(*READ)
            started = application.call(*START)
            if started and reads:
                self.read_sentences(started["text"])
            application.call(*STOP)
        finally:
            application.close()
        self.check_status()
        self.stop()

    def check_status(self):
        """Once more if the daemon hung up without an answer."""
        for _ in range(2):
            raw = run.Raw(self.socket)
            try:
                answer = raw.ask({"id": 1, "control": "status"})
            finally:
                raw.close()
            if answer is not None:
                break
        self.assertTrue(answer["ok"], answer)

    def stop(self):
        """Who has asked may be cut off before the answer is out: the end of the daemon says the same."""
        raw = run.Raw(self.socket)
        try:
            answer = raw.ask({"id": 1, "control": "stop"})
        finally:
            raw.close()
        if answer is None and self.daemon.process.poll() is None:
            self.daemon.send(run.SIGTERM)

    def assert_remembered(self, cpu):
        """What was answered outlives the daemon, unless it has said that it does not."""
        if "will not know what the modem was doing" in self.daemon.errors():
            return
        with open(self.socket + ".memory", encoding="ascii") as file:
            self.assertEqual(json.load(file)["content"]["settings"]["Power/Cpu"], f'"{cpu}"')

    def read_sentences(self, path):
        terminal = os.open(path, os.O_RDONLY | os.O_NOCTTY)
        try:
            got = b""
            while got.count(b"\r\n") < 40:
                self.assertTrue(select.select([terminal], [], [], run.LIMIT_S)[0], "no sentences come")
                got += os.read(terminal, 4096)
        finally:
            os.close(terminal)
        for line in got.split(b"\r\n")[:-1]:
            self.assertRegex(line, rb"\A\$[A-Z]{5},[^$]*\*[0-9A-F]{2}\Z")

    def test_serves_or_says_why_not(self):
        self.fail_every_call(self.serve_failing, {"accept", "bind", "close", "epoll_wait", "fsync", "open", "openat",
                                                  "posix_openpt", "pthread_create", "recv", "renameat", "send",
                                                  "symlink", "unlink", "write"})

    def test_puts_out_sentences_whatever_fails_around_the_terminal(self):
        terminal = {"open", "poll", "read", "tcflush", "tcgetattr", "tcsetattr", "write"}
        # Without a descriptor nobody can tell whether the reader has taken all: it waits until there is one. And a
        # terminal that takes nothing any more gives nothing.
        self.fail_every_call(lambda environment: self.serve_failing(environment, "--time", "virtual", reads=True),
                             terminal, only=terminal, without=("EMFILE on", "ENOSPC on"))


if __name__ == "__main__":
    run.main()

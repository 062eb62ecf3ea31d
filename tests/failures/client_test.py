"""The client library when its nth call of a system function fails: the application gets the right answer, or learns
that the modem cannot be reached."""

import os
import subprocess

import failing
import run
from programs import LIMIT_S, outside

# What the application prints: the codes of all functions, and the library's version.
VERSION = "'ArcRilD 1.0 (simulated)'"
CALLS = 16
OPEN, VERSION_AT, START = 1, 3, 9  # their places among the calls
NOT_OPEN, UNREACHABLE, NOT_STARTED = "1", "31", "32"


class Client(failing.FailingTest):
    most_open = 5  # the way to the modem; two while a lost one is being let go of and the next is there

    def answers(self, environment):
        ran = subprocess.run([os.environ["APPLICATION"]], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                             stderr=subprocess.PIPE, encoding="utf-8", timeout=LIMIT_S, check=False,
                             env={**outside(), **environment})
        self.assertEqual(ran.returncode, 0, ran)
        self.assertIn(VERSION, ran.stdout, "it is there whatever the modem is like")
        answers = ran.stdout.replace(VERSION, "0").split()
        self.assertEqual(len(answers), CALLS, ran)
        for place, answer in enumerate(answers):
            accepted = {"0", UNREACHABLE}
            if answers[OPEN] == UNREACHABLE:
                accepted.add(NOT_OPEN)
            if place >= START:
                accepted.add(NOT_STARTED)
            self.assertIn(answer, accepted, (place, ran))
        if NOT_STARTED in answers:
            self.assertIn("simulated modem: cannot ", ran.stderr)
        return answers, ran.stderr

    def test_behind_a_socket(self):
        self.serve()

        def action(environment):
            answers, _ = self.answers({**environment, "ARCSIM_SOCKET": self.socket})
            if environment["NTH_FAILURE"].startswith("*"):
                self.assertEqual(answers, ["0"] * CALLS)

        self.fail_every_call(action, {"connect", "fcntl", "pthread_create", "recv", "send", "shutdown", "socket"})

    def test_with_the_modem_inside(self):
        scenario = self.scenario()

        def action(environment):
            answers, said = self.answers({**environment, "ARCSIM_SCENARIO": scenario})
            if environment["NTH_FAILURE"].startswith("*"):
                self.assertEqual(answers, ["0"] * CALLS)
            if UNREACHABLE in answers:
                self.assertIn("simulated modem: ", said)

        self.fail_every_call(action, {"open", "posix_openpt", "pthread_create", "ptsname_r", "read", "tcsetattr"})


if __name__ == "__main__":
    run.main()

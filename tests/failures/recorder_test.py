"""The recorder when its nth call of a system function fails: the application notices nothing, and the recording is
correct as far as it goes."""

import json
import os
import subprocess

import failing
import run
from programs import LIMIT_S, outside

CALLS = 17
EARLIER = '{"earlier":1}\n'


class Recorder(failing.FailingTest):
    most_open = 4  # the recording stays open to the end

    def record(self, environment):
        path = os.path.join(self.folder, "recording.jsonl")
        with open(path, "w", encoding="utf-8") as file:
            file.write(EARLIER)
        ran = subprocess.run([os.environ["RECORDED"], "every-function"], stdin=subprocess.DEVNULL,
                             stdout=subprocess.PIPE, stderr=subprocess.PIPE, encoding="utf-8", timeout=LIMIT_S,
                             check=False, env={**outside(), **environment, "ARCRECORD_FILE": path})
        self.assertEqual((ran.returncode, ran.stdout), (0, ""), ran)
        complaints = ran.stderr.splitlines()
        with open(path, encoding="utf-8") as file:
            content = file.read()
        os.unlink(path)
        self.assertEqual(self.files(), set())
        whole, _, rest = content.rpartition("\n")
        lines = [json.loads(line) for line in whole.splitlines()] if content != EARLIER else []
        if complaints:
            self.assertNotIn({"earlier": 1}, lines, "one recording behind the other")
            self.assertEqual(len(complaints), 1, ran)
            self.assertRegex(complaints[0], r"\Aarcrecord: .*: cannot be written: .*; calls are passed on without "
                                            r"being recorded\Z")
            return
        self.assertEqual(rest, "")
        self.assertEqual(len(lines), 1 + 2 * CALLS)

    def test_passes_calls_on_whatever_fails(self):
        self.fail_every_call(self.record, {"fcntl", "flock", "ftruncate", "open", "write"})


if __name__ == "__main__":
    run.main()

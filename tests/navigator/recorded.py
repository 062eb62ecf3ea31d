"""Runs of the navigator that are recorded, and what the recordings say."""

import json
import os
import re
import subprocess

import run

FAILURES = [{"function": "ARC_Open", "call": 1, "count": 2, "code": 31},
            {"function": "ARC_CheckModuleSetting", "call": 5, "code": 8},
            {"function": "ARC_StartGNSSraw", "call": 1, "code": 3}]


def preloaded():
    """The recorder; a sanitizer's library that it was built with has to come before it."""
    recorder = os.environ["RECORDER"]
    listed = subprocess.run(["ldd", recorder], stdout=subprocess.PIPE, text=True, check=True).stdout
    return " ".join([*re.findall(r"=> (\S*/lib(?:clang_rt\.)?[at]san\S*)", listed), recorder])


def log(text):
    """The lines of the library's log without what differs from run to run."""
    return [re.sub(r"took \d+ ms", "took N ms", line.split(" ", 1)[1])
            for line in text.splitlines() if "logArcResult" in line]


def failures(text):
    """Request and code of every log line of a failure."""
    return [(request, int(code)) for request, code in
            re.findall(r"logArcResult\.1224: \[-?\d+\] (.*) took \d+ ms: .* \((\d+)\)$", text, re.MULTILINE)
            if code != "0"]


def unasked(text):
    """The events that the navigator shows, apart from LSTA."""
    return re.findall(r"^>> event .*$", text, re.MULTILINE)


class RecordedTest(run.NavigatorTest):
    def record(self, *arguments, environment=None):
        """Starts a run that is recorded."""
        self.recording = os.path.join(self.folder, "r.jsonl")
        return self.start(*arguments, environment={"LD_PRELOAD": preloaded(), "ARCRECORD_FILE": self.recording,
                                                   **(environment or {})})

    def recorded_run(self, *arguments, environment=None, exit_code=0):
        recorded = self.record(*arguments, environment=environment)
        self.assert_ends(recorded, exit_code)
        return recorded

    def lines(self):
        with open(self.recording, encoding="ascii") as file:
            return [json.loads(line) for line in file]

    def calls(self):
        """The lines with which calls begin."""
        return [line for line in self.lines() if "call" in line]

    def wait_for_lines(self, reaches):
        """Until `reaches` holds of the complete lines that were recorded."""
        end = run.monotonic() + run.LIMIT_S
        while run.monotonic() < end:
            if os.path.exists(self.recording):
                with open(self.recording, encoding="ascii") as file:
                    text = file.read()
                if reaches([json.loads(line) for line in text.split("\n")[:-1]]):
                    return
        raise AssertionError("the recording does not come so far")

    def replay(self, *arguments, options=("--fast",)):
        """Starts the navigator on the recording."""
        return self.start("replay", self.recording, *options, "--", os.environ["NAVIGATOR"], *arguments,
                          program="ARCSIM")

    def assert_says(self, replayed, last_line, exit_code):
        self.assert_ends(replayed, exit_code)
        self.assertEqual(replayed.out.splitlines()[-1], last_line, replayed.story())

    def serve(self, scenario):
        socket = os.path.join(self.folder, "modem.sock")
        daemon = self.start("serve", "--socket", socket, "--scenario", scenario, program="ARCSIM")
        daemon.wait_for("^Serving ")
        return {"ARCSIM_SOCKET": socket}

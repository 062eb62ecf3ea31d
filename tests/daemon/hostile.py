"""Helpers for tests in which a hostile client attacks the daemon."""


import run

ROOM_KB = 400_000  # far above what the daemon needs with instrumentation, far below what a leak would take

CALL = {"id": 1, "call": "ARC_AtcTunneling", "args": {"command": "AT", "answer": None}, "thread": 1}
HELLO = {"hello": "client", "name": "raw", "pid": 1, "open": False, "handler": False}


class HostileTest(run.DaemonTest):
    """With another application that must be served as ever."""

    def setUp(self):
        super().setUp()
        self.daemon = self.serve()
        self.other = self.open_client()
        self.before_kb = run.memory_kb(self.daemon.pid)

    def assert_others_are_served(self):
        for thread in ("one", "two"):
            self.assertEqual(self.other.call("mixed 32", thread), (0, "right"))
        self.assertLess(run.memory_kb(self.daemon.pid) - self.before_kb, ROOM_KB)

    def refused_result(self, control, **members):
        raw = self.raw()
        answer = raw.ask({"id": 1, "control": control, **members})
        self.assertFalse(answer["ok"], answer)
        return answer["error"]

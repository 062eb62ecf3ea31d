"""Runs the monitor in a terminal."""

import os

import ctl
import run
import terminal


class MonitorTest(ctl.CtlTest):
    def monitor(self, *arguments, columns=80, rows=24, environment=None):
        """On the daemon, in a terminal."""
        shown = terminal.Terminal(self.folder, [os.environ["KELARCCTL"], "monitor", *arguments],
                                  {"ARCSIM_SOCKET": self.socket, **(environment or {})}, columns, rows)
        self.addCleanup(shown.close)
        return shown

    def assert_restored(self, shown):
        """The terminal is as it was: its modes, and the screen before."""
        run.wait_until(lambda: terminal.exists(self.folder + "/after") and
                       terminal.read(self.folder + "/after").endswith("\n"), "the shell has gone on")
        modes = [terminal.read(self.folder + f"/{name}").split("\n", 1)[1] for name in ("before", "after")]
        self.assertEqual(*modes)
        self.assertNotIn("KelArc monitor", shown.screen())

    def assert_no_clients(self):
        run.wait_until(lambda: self.status()["clients"] == [], "the modem has no clients left")

    def calls(self, function):
        return self.status()["calls"].get(function, {}).get("count", 0)

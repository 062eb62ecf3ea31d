"""Results and log: a failed write is always reported, and nothing goes to the wrong place."""

import os
import subprocess

import ctl
import run

CLOSED = ((0,), (1,), (2,), (0, 1), (0, 2), (1, 2), (0, 1, 2))


class Output(ctl.CtlTest):
    def setUp(self):
        super().setUp()
        self.serve()

    def run_with(self, redirections, *arguments):
        """By a shell, with what it does to the descriptors."""
        return subprocess.run(["bash", "-c", f'exec "$@" {redirections}', "bash", os.environ["KELARCCTL"], *arguments],
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                              encoding="utf-8", timeout=run.LIMIT_S, check=False, env=self.environment())

    def test_descriptors_that_are_closed_are_not_taken_for_others(self):
        for closed in CLOSED:
            redirections = " ".join(f"{number}>&-" for number in closed)
            for command in (("versions",), ("cpu-power", "max"), ("export",), ("lsta", "get", "all")):
                with self.subTest((redirections, command)):
                    ran = self.run_with(redirections, *command)
                    self.assertEqual(ran.returncode, 3 if 1 in closed else 0)
                    self.assertEqual(ran.stderr, "kelarcctl: the results could not be written\n"
                                     if 1 in closed and 2 not in closed else "")
                    self.assertEqual(self.status()["clients"], [])

    def test_what_closed_descriptors_would_have_said_goes_into_no_file(self):
        path = os.path.join(self.folder, "log")
        self.control("fail ARC_GetRilVersion --code 21 --forever")
        self.assertEqual(self.run_with("1>&- 2>&-", "versions", "--log", path).returncode, 3)
        with open(path, encoding="utf-8") as file:
            self.assertRegex(file.read(), r"\A(\S+Z warning KelArc::\S+ .*\n)+\Z")

    def test_the_results_do_not_fit_on_the_disk(self):
        for command in (("versions",), ("versions", "--json"), ("status",), ("doctor",), ("export",), ("--help",),
                        ("--version",), ("gnss", "--help"), ("completion",), ("man",), ("tasks", "versions"),
                        ("monitor", "--json"), ("events", "--for", "1s")):
            with self.subTest(command):
                if command[0] == "events":
                    program = subprocess.Popen([os.environ["KELARCCTL"], *command], stdin=subprocess.DEVNULL,
                                               stdout=os.open("/dev/full", os.O_WRONLY), stderr=subprocess.PIPE,
                                               encoding="utf-8", env=self.environment())
                    run.wait_until(lambda: any(client["handler"] for client in self.status()["clients"]), "it listens")
                    self.control("event 72")
                    error = program.communicate(timeout=run.LIMIT_S)[1]
                    code = program.returncode
                else:
                    ran = self.run_with("1>/dev/full", *command)
                    code, error = ran.returncode, ran.stderr
                self.assertEqual((code, error), (3, "kelarcctl: the results could not be written\n"))

    def test_the_log_does_not_fit_on_the_disk(self):
        self.assertEqual(self.ctl("versions", "--log", "/dev/full").returncode, 0, "there is nothing to be logged")
        for arguments, redirections in ((("--log", "/dev/full"), ""), ((), "2>/dev/full"), ((), "2>&-")):
            with self.subTest((arguments, redirections)):
                ran = self.run_with(redirections, "versions", "--log-level", "info", *arguments)
                self.assertEqual(ran.returncode, 3)
                self.assertEqual(ran.stderr, "" if redirections else "kelarcctl: the log could not be written\n")
                self.assertIn("client library  ", ran.stdout)
        ran = self.ctl("monitor", "--json", "--for", "1s", "--log-level", "info", "--log", "/dev/full")
        self.assertEqual((ran.returncode, ran.stderr), (3, "kelarcctl: the log could not be written\n"))

    def test_a_log_that_cannot_be_begun_is_told_before_the_modem_is_opened(self):
        for target, error in ((self.folder, f"--log: {self.folder}: Is a directory"),
                              (self.folder + "/none/log", f"--log: {self.folder}/none/log: No such file or directory")):
            ran = self.ctl("versions", "--log", target)
            self.assertEqual((ran.returncode, ran.stdout, ran.stderr), (3, "", f"kelarcctl: {error}\n"))
        self.assertNotIn("ARC_Open", self.status()["calls"])

    def test_a_journal_that_is_not_there(self):
        if os.path.exists("/run/systemd/journal/socket") or os.path.exists("/dev/log"):
            # Not seen by the program in a root of its own.
            command = ["unshare", "--user", "--map-root-user", "--mount", "sh", "-c",
                       'mount -t tmpfs none /run; mount -t tmpfs none /dev; exec "$@"', "sh"]
        else:
            command = []
        ran = subprocess.run([*command, os.environ["KELARCCTL"], "versions", "--log", "journal"],
                             stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                             encoding="utf-8", timeout=run.LIMIT_S, check=False, env=self.environment())
        self.assertEqual((ran.returncode, ran.stdout), (3, ""))
        self.assertRegex(ran.stderr, r"\Akelarcctl: --log: there is neither a journal nor syslog: .+\n\Z")


if __name__ == "__main__":
    ctl.main()

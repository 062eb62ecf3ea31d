"""No command hangs or leaves the modem open, whatever the modem does."""

import os
import signal
import subprocess

import ctl
import run


class Ending(ctl.CtlTest):
    def setUp(self):
        super().setUp()
        self.daemon = self.serve()

    def assert_usable(self):
        run.wait_until(lambda: self.status()["clients"] == [], "the modem has no clients left")
        self.control("clear")
        self.assertEqual(self.says("cpu-power"), "cpu-power: standard")

    def calls(self, name):
        return self.status()["calls"].get(name, {}).get("count", 0)

    def assert_deadline(self, ran, why):
        self.assertEqual((ran.returncode, ran.stdout), (4, ""))
        self.assertRegex(ran.stderr, f"^kelarcctl: no success within 1500 ms: {why}\n  .*\n  -> .*\n$")

    def test_what_is_repeated_for_ever_ends_at_the_deadline(self):
        self.control("fail ARC_StopGNSS --code 15 --forever")
        self.assert_deadline(self.ctl("gnss", "stop", "--timeout", "1500ms", "--log", "/dev/null"),
                             r"stopping the engine failed \d times: This API is temporary not available \(15\)")
        self.assert_usable()

    def test_a_call_that_hangs_ends_at_the_deadline(self):
        self.control("hang ARC_CheckModuleSetting --forever")
        ran = self.ctl("cpu-power", "--timeout", "1500ms")
        self.assert_deadline(ran, r'reading cpu-power: Get ARC_CheckModuleSetting\("Power/Cpu"\) has not returned for \d+ ms')
        self.assert_usable()

    def test_a_modem_that_does_not_open_ends_at_the_deadline(self):
        self.control("fail ARC_Open --code 3 --forever")
        self.assert_deadline(self.ctl("status", "--timeout", "1.5s", "--log", "/dev/null"), r"opening the modem failed \d times: "
                             r"Command cannot be executed because the module is off or in power state transition \(3\)")
        self.assert_usable()

    def test_a_dead_daemon_is_seen_in_the_log(self):
        self.daemon.kill()
        ran = self.ctl("versions", "--timeout", "1500ms")
        self.assertEqual((ran.returncode, ran.stdout), (4, ""))
        self.assertIn("Error in connection between library and RIL daemon or RIL daemon not running (31)", ran.stderr)

    def test_a_daemon_that_dies_in_the_middle_and_comes_back_costs_time_only(self):
        self.control("delay ARC_CheckModuleSetting 60s --times 1")
        program = self.start("cpu-power", "--timeout", "80s")
        run.wait_until(lambda: any(client["waiting"] for client in self.status()["clients"]), "the call is under way")
        self.daemon.kill()
        self.serve()
        self.assertEqual(program.finish(), 0)
        self.assertEqual(program.lines, ["cpu-power: standard"])
        self.assertIn("(31)", program.errors())

    def test_interrupted_commands_close_the_modem(self):
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP, signal.SIGQUIT):
            self.control("fail ARC_StopGNSS --code 15 --forever")
            program = self.start("gnss", "stop", "--log", "/dev/null")
            run.wait_until(lambda: self.calls("ARC_StopGNSS") > 1, "it is repeated")
            program.send(number)
            self.assertEqual(program.finish(), 130)
            self.assertEqual(program.errors(), "kelarcctl: interrupted while stopping the engine\n")
            self.assertEqual(self.status()["clients"], [])
            self.control("reset")

    def test_a_second_signal_ends_it_at_once(self):
        self.control("hang ARC_CheckModuleSetting --forever")
        program = self.start("cpu-power")
        run.wait_until(lambda: self.status()["hanging"] == 1, "the call hangs")
        program.send(run.SIGINT)
        run.wait_until(lambda: "interrupted" in program.errors(), "the first has been noticed")
        program.send(run.SIGINT)
        self.assertEqual(program.finish(), 130)
        self.assertNotIn("not closed", program.errors(), "nothing is waited for")
        self.assert_usable()

    def test_a_hang_up_before_or_behind_another_signal_leaves_the_time_to_close(self):
        # Sent without a pause they may arrive in any order.
        for closings, numbers in enumerate(((signal.SIGTERM, signal.SIGHUP, signal.SIGHUP),
                                            (signal.SIGHUP, signal.SIGTERM, signal.SIGHUP)), 1):
            with self.subTest(numbers):
                self.control("delay ARC_Close 1s")
                program = self.start("gnss", "start", "--hold")
                program.wait_for(lambda: program.lines, "the output")
                for number in numbers:
                    program.send(number)
                self.assertEqual(program.finish(), 130)
                self.assertEqual(self.calls("ARC_Close"), closings)
                self.assertEqual(self.status()["clients"], [])

    def test_a_hang_up_that_is_ignored_ends_nothing(self):
        program = self.start("gnss", "start", "--hold", before=["nohup"])
        program.wait_for(lambda: program.lines, "the output")
        program.send(signal.SIGHUP)
        program.send(signal.SIGTERM)
        self.assertEqual(program.finish(), 130)
        self.assertEqual(program.errors().count("interrupted"), 1)

    def test_interrupted_openings_are_waited_for_and_closed(self):
        for closings, number in enumerate((signal.SIGINT, signal.SIGTERM, signal.SIGHUP, signal.SIGQUIT), 1):
            with self.subTest(number):
                self.control("delay ARC_Open 1s")
                program = self.start("versions", "--log", "/dev/null")
                run.wait_until(lambda: self.calls("ARC_Open") == closings, "it is being opened")
                program.send(number)
                self.assertEqual(program.finish(), 130)
                self.assertEqual(program.errors(), "kelarcctl: interrupted while opening the modem\n")
                self.assertEqual(self.calls("ARC_Close"), closings)

    def test_an_opening_that_fails_over_and_over_is_not_waited_for(self):
        self.control("fail ARC_Open --code 3 --forever")
        program = self.start("versions", "--log", "/dev/null")
        run.wait_until(lambda: self.calls("ARC_Open") > 1, "it is repeated")
        program.send(signal.SIGINT)
        self.assertEqual(program.finish(), 130)
        self.assertEqual(program.errors(), "kelarcctl: interrupted while opening the modem\n")
        self.assert_usable()

    def test_an_opening_that_hangs_is_told(self):
        self.control("hang ARC_Open")
        program = self.start("versions", "--log", "/dev/null")
        run.wait_until(lambda: self.status()["hanging"] == 1, "the call hangs")
        program.send(signal.SIGINT)
        self.assertEqual(program.finish(), 130)
        first, *rest = program.errors().splitlines()
        self.assertEqual(first, "kelarcctl: interrupted while opening the modem")
        self.assert_not_closed(rest, r"ARC_Open\(\)")

    def assert_not_closed(self, lines, call):
        """Three lines about a call that hangs."""
        self.assertRegex(lines[0], rf"^kelarcctl: the modem was not closed within 3 s: closing the modem: {call} has not "
                                   r"returned for \d{4,} ms$")
        self.assertEqual(lines[1:], ["  The call hangs in the client library, in the RIL daemon or in the modem.",
                                     "  -> Restart the RIL daemon, then the modem; run this again."])

    def test_a_modem_that_is_not_closed_is_told(self):
        self.control("hang ARC_Close --forever")
        ran = self.ctl("cpu-power")
        self.assertEqual((ran.returncode, ran.stdout), (4, "cpu-power: standard\n"))
        self.assert_not_closed(ran.stderr.splitlines(), r"ARC_Close\(\)")
        self.control("clear")
        self.control("fail ARC_Close --code 21 --forever")
        ran = self.ctl("cpu-power", "standard", "--log", "/dev/null")
        self.assertEqual(ran.returncode, 4)
        self.assertRegex(ran.stderr, r"^kelarcctl: the modem was not closed within 3 s: closing the modem failed \d+ times: "
                                     r"A requested service has been denied \(21\)\n  .*\n  -> .*\n$")
        self.assert_usable()

    def test_a_modem_that_is_not_closed_is_told_beside_what_went_wrong_before(self):
        self.control("hang ARC_Close --forever")
        self.control("fail ARC_CheckModuleSetting --code 21 --forever")
        ran = self.ctl("set", "Power/Cpu", '"max"', "--log", "/dev/null")
        self.assertEqual(ran.returncode, 3)
        self.assertIn(" (21)\n", ran.stderr)
        self.assert_not_closed(ran.stderr.splitlines()[-3:], r"ARC_Close\(\)")
        self.assert_usable()

    def test_a_killed_run_leaves_the_modem_usable(self):
        self.control("hang ARC_CheckModuleSetting --forever")
        program = self.start("cpu-power")
        run.wait_until(lambda: self.status()["hanging"] == 1, "the call hangs")
        program.kill()
        self.assert_usable()

    def test_a_reader_that_has_gone_is_no_success(self):
        read, write = os.pipe()
        os.close(read)
        program = self.start_into(write, "versions")
        os.close(write)
        self.assertEqual(program.wait(run.LIMIT_S), 3)
        self.assert_usable()

    def start_into(self, descriptor, *arguments):
        return subprocess.Popen([os.environ["KELARCCTL"], *arguments], stdin=subprocess.DEVNULL, stdout=descriptor,
                                stderr=subprocess.DEVNULL, env=self.environment())


if __name__ == "__main__":
    ctl.main()

"""An application goes on, without starting again, after the daemon was killed."""

import os

import run
import session


class Outlasting(run.DaemonTest):
    def setUp(self):
        super().setUp()
        self.daemon = self.serve()

    def kill(self):
        self.daemon.kill()

    def wait_for_clients(self, count):
        def complete():
            return [each for each in self.status()["clients"] if each["open"] and each["handler"]]

        run.wait_until(lambda: len(complete()) >= count, f"{count} clients are back with all they had")

    def test_a_call_that_waits_is_told_and_so_are_those_that_follow(self):
        one, other = self.open_client(), self.open_client()
        self.control("hang ARC_AtcTunneling --forever")
        self.control("delay ARC_GetRilVersion 10m --forever")
        waiting = [(client, client.begin(call, thread)) for client in (one, other)
                   for thread, call in (("a", "at AT"), ("b", "versions"))]
        run.wait_until(lambda: sum(each["waiting"] for each in self.status()["clients"]) == 4, "4 calls wait")
        self.kill()
        for client, number in waiting:
            self.assertEqual(client.answer(number)[0], 31)
        for call in ("open", "versions", "at AT", "read Power/Cpu", 'write Power/Cpu "max"', "start", "stop",
                     "force-stop", "reset-assistance", "lsta 10", "enable-lsta 10", "register", "method 1", "log text",
                     "close"):
            for client in (one, other):
                self.assertEqual(client.call(call)[0], 31, call)
        self.assertEqual(one.call("version"), (0, "ArcRilD 1.0 (simulated)"))
        self.serve()
        self.wait_for_clients(2)
        self.assert_calls(one, [("at AT", 0), ("versions", 0), ("read Power/Cpu", (0, '"std"'))])

    def test_a_program_that_calls_nothing_gets_events_again(self):
        one, other = self.open_client(), self.open_client()
        for number in range(3):
            self.kill()
            self.daemon = self.serve()
            self.wait_for_clients(2)
            self.control(f"event 72 0{number}")
            for client in (one, other):
                self.assertEqual(client.wait_for_events(number + 1)[number], (72, f"0{number}"))

    def test_what_was_closed_before_is_closed_after(self):
        client = self.open_client("close", "unregister")
        self.kill()
        self.daemon = self.serve()
        self.assert_calls(client, [("versions", 1), ("open", 0), ("versions", 0)])
        self.assertEqual([(each["open"], each["handler"]) for each in self.status()["clients"]], [(True, False)])

    def test_the_modem_keeps_settings_engine_and_time(self):
        client = self.open_client('write Power/Cpu "max"', "start")
        self.control("set Some/Key kept --force")
        self.kill()
        self.daemon = self.serve()
        self.assertEqual(self.daemon.lines, [f"Serving again the simulated modem at {self.socket}, its sentences at "
                                             f"{self.socket}.nmea"])
        self.wait_for_clients(1)
        self.assertEqual(self.status()["engine"], "running")
        self.assert_calls(client, [("read Power/Cpu", (0, '"max"')), ("read Some/Key", (0, '"kept"')),
                                   ("start", (0, self.socket + ".nmea"))])
        with open(self.socket + ".nmea", "rb", buffering=0) as terminal:
            self.assertTrue(terminal.read(1))
        begun = self.status()["scenarioMs"]
        self.kill()
        self.daemon = self.serve()
        self.assertGreaterEqual(self.status()["scenarioMs"], begun)

    def test_killed_before_the_first_byte_of_the_output(self):
        """With the start answered, the terminal opened and nothing read: the loss is told, and asking again helps."""
        for _ in range(5):
            client = self.open_client()
            path = client.call("start")[1]
            with open(path, "rb", buffering=0):
                self.kill()
                self.assertEqual(client.call("start")[0], 31)
            self.daemon = self.serve("--fresh")
            self.assertEqual(run.repeat_while_unreachable(client, "start")[0], (0, self.socket + ".nmea"))
            with open(self.socket + ".nmea", "rb", buffering=0) as terminal:
                self.assertTrue(terminal.read(1))
            client.close()

    def test_a_fresh_start_forgets_and_so_does_an_ordered_end(self):
        client = self.open_client('write Power/Cpu "max"')
        self.kill()
        self.assertTrue(os.path.exists(self.socket + ".memory"))
        self.daemon = self.serve("--fresh")
        self.assertEqual(self.daemon.lines, [f"Serving the simulated modem at {self.socket}, its sentences at "
                                             f"{self.socket}.nmea"])
        self.wait_for_clients(1)
        self.assert_calls(client, [("read Power/Cpu", (0, '"std"')), ('write Power/Cpu "max"', (0, "1"))])
        self.daemon.send(run.SIGTERM)
        self.assertEqual((self.daemon.finish(), os.listdir(self.folder)), (0, ["scenario.json"]))
        self.assertEqual(client.call("read Power/Cpu")[0], 31)
        self.daemon = self.serve()
        self.wait_for_clients(1)
        self.assertEqual(client.call("read Power/Cpu"), (0, '"std"'))

    def test_the_memory_of_another_scenario_or_a_damaged_one_is_not_taken_up(self):
        for damage in (None, "", "{", '{"scenario":1}', "[" * 100000, "\0", '{"scenario":"x","engineOn":5}'):
            with self.subTest(damage):
                self.open_client('write Power/Cpu "max"').kill()
                self.kill()
                if damage is None:
                    self.daemon = self.serve(scenario=self.write("other.json", run.QUICK))
                else:
                    self.write("s.memory", damage)
                    self.daemon = self.serve()
                    self.assertRegex(self.daemon.errors(), f"^arcsim: {self.socket}.memory.*; the modem starts as from "
                                                           "the factory\n$")
                self.assertEqual(self.open_client().call("read Power/Cpu"), (0, '"std"'))

    def test_a_memory_that_somebody_edited_is_not_believed(self):
        self.open_client('write Power/Cpu "max"').kill()
        self.kill()
        with open(self.socket + ".memory", encoding="utf-8") as file:
            content = file.read()
        self.write("s.memory", content.replace("1000", "2000"))
        self.daemon = self.serve()
        self.assertEqual(self.daemon.errors(), f"arcsim: {self.socket}.memory: was changed since a daemon wrote it; "
                         "accepted: what a daemon that was killed has left; the modem starts as from the factory\n")
        self.assertEqual(self.open_client().call("read Power/Cpu"), (0, '"std"'))

    def test_no_file_is_written_by_way_of_a_planted_link(self):
        victim = self.write("victim", "precious")
        for name in (".memory", ".memory.new"):
            self.control("stop")
            self.daemon.finish()
            os.symlink(victim, self.socket + name)
            self.daemon = self.serve()
            self.open_client('write Power/Cpu "max"').kill()
            with open(victim, encoding="utf-8") as file:
                self.assertEqual(file.read(), "precious")
            os.unlink(self.socket + name)

    def test_a_memory_that_cannot_be_kept_is_told_once_and_the_daemon_goes_on(self):
        self.control("stop")
        self.daemon.finish()
        os.mkdir(self.socket + ".memory")
        self.daemon = self.serve()
        client = self.open_client('write Power/Cpu "max"', 'write Power/Cpu "std"', 'write Power/Cpu "max"')
        self.assertEqual(client.call("read Power/Cpu"), (0, '"max"'))
        self.assertEqual(self.daemon.errors().splitlines(), [
            f"arcsim: {self.socket}.memory: cannot be read: Is a directory; accepted: what a daemon that was killed has "
            "left; the modem starts as from the factory",
            f"arcsim: {self.socket}.memory: cannot be written: Is a directory; accepted: a path for what a modem "
            "remembers; a daemon after this one will not know what the modem was doing"])

    def test_killed_before_every_call_of_a_session(self):
        client = self.client()
        for doomed in range(len(session.SESSION)):
            for number, (call, right) in enumerate(session.SESSION):
                if number == doomed:
                    self.kill()
                    if call != "version":
                        self.assertEqual(client.call(call)[0], 31, call)
                    self.daemon = self.serve()
                self.assert_right(client.call(call), call, right)

    def test_killed_during_every_call_of_a_session(self):
        client = self.client()
        for doomed in range(len(session.SESSION)):
            for number, (call, right) in enumerate(session.SESSION):
                if number == doomed:
                    self.control(f"hang {session.function_of(call)}")
                    waiting = client.begin(call)
                    run.wait_until(lambda: self.status()["hanging"] == 1, "the call hangs")
                    self.kill()
                    code, text = client.answer(waiting)
                    self.assertEqual((code, text) if call == "version" else code, right if call == "version" else 31)
                    self.daemon = self.serve()
                self.assert_right(client.call(call), call, right)

    def assert_right(self, answer, call, right):
        self.assertTrue(session.is_right(answer, right), f"{call}: {answer}")


if __name__ == "__main__":
    run.main()

"""`arcsim run`: a program with its own modem; and reasons why the daemon does not start."""

import os
import sys

import run


class OwnModem(run.DaemonTest):
    def setUp(self):
        super().setUp()
        self.temporary = os.path.join(self.folder, "t")
        os.mkdir(self.temporary)

    def start(self, *command, options=()):
        program = run.Program([os.environ["ARCSIM"], "run", *options, "--", *command],
                              {"TMPDIR": self.temporary})
        self.addCleanup(program.close)
        return program

    def python(self, text, options=()):
        return self.start(sys.executable, "-u", "-c", text, options=options)

    def assert_nothing_left(self):
        self.assertEqual(os.listdir(self.temporary), [])

    def test_the_exit_code_is_the_programs(self):
        for code in (0, 1, 3, 255):
            self.assertEqual(self.python(f"raise SystemExit({code})").finish(), code)
        self.assertEqual(self.python("import os; os.kill(os.getpid(), 9)").finish(), 128 + 9)
        self.assertEqual(self.python("import os; os.abort()").finish(), 128 + 6)
        self.assert_nothing_left()

    def test_the_program_gets_its_arguments_input_output_and_socket(self):
        program = self.start("sh", "-c", 'read line; echo "$line $0 $1"; echo "$ARCSIM_SOCKET"; ls "$TMPDIR"', "a b",
                             "--help")
        program.process.stdin.write(b"input\n")
        program.process.stdin.close()
        self.assertEqual(program.finish(), 0)
        line, path, folder = program.lines
        self.assertEqual(line, "input a b --help")
        self.assertEqual(path, f"{self.temporary}/{folder}/modem.sock")
        self.assertRegex(folder, r"^arcsim\.\w{6}$")
        self.assert_nothing_left()

    def test_the_program_gets_no_files_of_the_daemon(self):
        program = self.python("import os\n"
                              "print([os.readlink(f'/proc/self/fd/{n}') for n in os.listdir('/proc/self/fd')\n"
                              "       if int(n) > 2 and os.path.exists(f'/proc/self/fd/{n}')])")
        self.assertEqual(program.finish(), 0)
        self.assertNotIn("socket:", program.lines[0])

    def test_the_modem_is_as_the_scenario_says(self):
        scenario = self.scenario(settings={"Power/Cpu": "max"})
        client = self.client(path="", command=[os.environ["ARCSIM"], "run", "--scenario", scenario, "--"],
                             environment={"TMPDIR": self.temporary, "ARCSIM_TIME": "real"})
        self.assert_calls(client, [("open", 0), ("read Power/Cpu", (0, '"max"')), ("start", 0)])
        path = client.call("start")[1]
        self.assertTrue(path.endswith("/modem.sock.nmea"), path)
        self.assertTrue(os.path.exists(path))
        client.process.stdin.close()
        self.assertEqual(client.finish(), 0)
        self.assert_nothing_left()

    def test_signals_are_left_to_the_program(self):
        text = ("import signal, sys, time\n"
                "signal.signal(signal.SIGTERM, lambda *_: sys.exit(7))\n"
                "print('ready')\n"
                "time.sleep(600)\n")
        program = self.python(text)
        program.wait_for(lambda: program.lines, "that the program runs")
        program.send(run.SIGINT)  # the terminal's goes to the program as well; this one does not
        program.send(run.SIGTERM)
        self.assertEqual(program.finish(), 7)
        program = self.python("import time; print('ready'); time.sleep(600)")
        program.wait_for(lambda: program.lines, "that the program runs")
        program.send(run.SIGTERM)
        self.assertEqual(program.finish(), 128 + 15)
        self.assert_nothing_left()

    def test_controls_reach_it(self):
        arcsim = os.environ["ARCSIM"]
        program = self.start("sh", "-c", f"'{arcsim}' set Power/Cpu max && '{arcsim}' stop 2>&1")
        self.assertEqual(program.finish(), 3)
        self.assertEqual(program.lines, ["Power/Cpu: max (was std)",
                                         "arcsim: stop: not possible; the modem of 'arcsim run' ends with the program"])
        self.assert_nothing_left()

    def test_a_program_that_is_not_there_is_named(self):
        ran = self.arcsim("run", "--", "no-such-program", environment={"TMPDIR": self.temporary})
        self.assertEqual((ran.returncode, ran.stdout, ran.stderr),
                         (3, "", "arcsim: cannot start 'no-such-program': No such file or directory\n"))
        ran = self.arcsim("run", "--", self.write("plain", "text"), environment={"TMPDIR": self.temporary})
        self.assertEqual((ran.returncode, ran.stderr),
                         (3, f"arcsim: cannot start '{self.folder}/plain': Permission denied\n"))
        ran = self.arcsim("run")
        self.assertEqual(ran.returncode, 2)
        self.assert_nothing_left()

    def test_a_modem_that_cannot_be_is_told_before_anything_starts(self):
        bad = self.write("bad.json", '{"seed": -1}')
        missing = os.path.join(self.folder, "none")
        for arguments, environment, message in (
                (["--scenario", bad], {}, f"{bad}:1: seed: -1 is not accepted; accepted: a whole number from 0 to "
                                          "4294967295"),
                ([], {"ARCSIM_SCENARIO": bad}, f"{bad}:1: seed: -1 is not accepted; accepted: a whole number from 0 to "
                                               "4294967295"),
                (["--scenario", missing], {}, f"{missing}: cannot be read: No such file or directory; accepted: the "
                                              "name of a scenario file"),
                (["--nmea", missing], {}, f"{missing}: cannot be read: No such file or directory; accepted: the name "
                                      "of a recording of NMEA 0183 sentences"),
                ([], {"ARCSIM_REPLAY": missing}, f"{missing}: cannot be read: No such file or directory; accepted: "
                                                  "the name of a recording of NMEA 0183 sentences"),
                ([], {"ARCSIM_TIME": "soon"}, 'ARCSIM_TIME: "soon" is not accepted; accepted: real, virtual')):
            for command in (["serve", "--socket", self.socket], ["run"]):
                with self.subTest(arguments=arguments, environment=environment, command=command):
                    tail = ["--", "touch", f"{self.folder}/touched"] if command == ["run"] else []
                    ran = self.arcsim(*command, *arguments, *tail,
                                      environment={"TMPDIR": self.temporary, **environment})
                    self.assertEqual((ran.returncode, ran.stdout, ran.stderr), (3, "", f"arcsim: {message}\n"))
                    self.assert_nothing_left()
        self.assertEqual(sorted(os.listdir(self.folder)), ["bad.json", "t"])

    def test_signals_come_to_the_daemons_first_thread_alone(self):
        daemon = self.serve()
        self.open_client("start")
        for thread in os.listdir(f"/proc/{daemon.pid}/task"):
            with open(f"/proc/{daemon.pid}/task/{thread}/status", encoding="ascii") as file:
                blocked = int(next(line.split()[1] for line in file if line.startswith("SigBlk:")), 16)
            for number in (run.SIGINT, run.SIGTERM):
                # a sanitizer's own thread blocks them as well
                self.assertEqual(bool(blocked & 1 << number - 1), int(thread) != daemon.pid, thread)

    def test_the_daemon_ends_in_order(self):
        for end in (run.SIGTERM, run.SIGINT, "stop"):
            daemon = self.serve()
            client = self.open_client("start")
            self.assertTrue(os.path.islink(self.socket + ".nmea"))
            if end == "stop":
                self.assertEqual(self.control("stop"), "the daemon has ended\n")
            else:
                daemon.send(end)
            self.assertEqual((daemon.finish(), daemon.errors()), (0, ""))
            self.assertEqual(sorted(os.listdir(self.folder)), ["scenario.json", "t"])
            self.assertEqual(client.call("versions")[0], 31)


if __name__ == "__main__":
    run.main()

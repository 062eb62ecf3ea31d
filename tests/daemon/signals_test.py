"""A program removes its temporary files, whatever signal ends it."""

import os
import signal

import run

# What ends a program that does nothing about it, apart from what cannot be caught and what stands for a fault of its own.
ENDING = [signal.SIGHUP, signal.SIGALRM, signal.SIGTERM, signal.SIGUSR1, signal.SIGUSR2, signal.SIGVTALRM,
          signal.SIGPROF, signal.SIGXCPU, signal.SIGXFSZ, signal.SIGPOLL, signal.SIGPWR, signal.SIGSTKFLT,
          signal.SIGRTMIN, signal.SIGRTMIN + 7, signal.SIGRTMAX]
OF_A_TERMINAL = [signal.SIGINT, signal.SIGQUIT]
RECORDING = '{"recording":1,"utc":"","pid":1,"program":"p","library":null}\n'  # so no call is missing


class Signals(run.DaemonTest):
    def setUp(self):
        super().setUp()
        self.temporary = os.path.join(self.folder, "t")
        os.mkdir(self.temporary)

    def begin(self, *arguments, **options):
        """A program of its own group, as from a shell, that says a line when it is ready."""
        program = run.Program([os.environ["ARCSIM"], *arguments], environment={"TMPDIR": self.temporary},
                              start_new_session=True, **options)
        self.addCleanup(program.close)
        program.wait_for(lambda: program.lines, "the line that it is ready")
        return program

    def left(self):
        return os.listdir(self.temporary)

    def check_runs(self, *arguments):
        """Of a command that a signal ends as it ends most programs."""
        for number in ENDING + OF_A_TERMINAL:
            program = self.begin(*arguments, "sh", "-c", "echo $$; exec sleep 1000")
            self.assertEqual(len(self.left()), 1, number)
            if number in OF_A_TERMINAL:
                os.killpg(program.pid, number)
            else:
                program.send(number)
            self.assertEqual((program.finish(), self.left()), (128 + number, []), number)

    def test_of_a_run(self):
        self.check_runs("run", "--")

    def test_of_a_replay_with_a_program(self):
        self.check_runs("replay", self.write("r", RECORDING), "--")

    def test_of_a_replay_that_serves(self):
        for number in ENDING + OF_A_TERMINAL:
            program = run.Program([os.environ["ARCSIM"], "replay", "--socket", self.socket, self.write("r", RECORDING)],
                                  environment={"TMPDIR": self.temporary})
            self.addCleanup(program.close)
            run.wait_until(lambda: os.path.exists(self.socket), "it serves")
            self.assertEqual(self.left(), [], "it needs no folder")
            program.send(number)
            program.finish()
            self.assertEqual(os.path.exists(self.socket), False, number)

    def test_of_a_daemon(self):
        for number in ENDING + OF_A_TERMINAL:
            program = self.serve()
            program.send(number)
            self.assertEqual(program.finish(), 0, number)
            self.assertEqual(sorted(os.listdir(self.folder)), ["scenario.json", "t"], number)

    def test_a_reader_that_has_gone_ends_nothing(self):
        program = self.begin("run", "--", "sh", "-c", "echo $$; exec sleep 1000")
        program.send(signal.SIGPIPE)
        program.send(signal.SIGTERM)
        self.assertEqual((program.finish(), self.left()), (128 + signal.SIGTERM, []))

    def test_a_signal_that_was_ignored_before_stays_so(self):
        program = self.begin("run", "--", "sh", "-c", "echo $$; exec sleep 1000",
                             preexec_fn=lambda: signal.signal(signal.SIGHUP, signal.SIG_IGN))
        program.send(signal.SIGHUP)
        program.send(signal.SIGTERM)
        self.assertEqual((program.finish(), self.left()), (128 + signal.SIGTERM, []))

    def test_the_command_has_its_signals_as_ever(self):
        for number in ENDING + OF_A_TERMINAL + [signal.SIGPIPE]:
            ran = self.arcsim("run", "--", "sh", "-c", f"kill -{int(number)} $$")
            self.assertEqual(ran.returncode, 128 + number, number)


if __name__ == "__main__":
    run.main()

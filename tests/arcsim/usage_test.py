"""Wrong command lines are refused with a message that says what is accepted; help shows every command."""

import run

COMMANDS = ("status", "reset", "stop", "advance", "set", "event", "lsta", "outage", "no-fix", "jam", "fail", "delay",
            "hang", "clear")
TIMES = "a time with its unit, as 800ms, 20s, 1.5s, 2m or 1h, from {} to 24h"
SYSTEMS = "gps, glonass, galileo, beidou, qzss, sbas, all"


class UsageTest(run.ArcsimTest):
    """Nobody listens: what is wrong is found before the daemon is asked."""

    def refused(self, arguments, message):
        arguments = arguments.split() if isinstance(arguments, str) else arguments
        with self.subTest(arguments):
            self.assert_run(self.ask(*arguments), 2,
                            err=f"arcsim: {arguments[0]}: {message}\n"
                                f"Run 'arcsim {arguments[0]} --help' for more information.\n")


class Commands(run.ArcsimTest):
    def refused(self, arguments, message):
        with self.subTest(arguments):
            self.assert_run(self.run_arcsim(*arguments), 2,
                            err=f"arcsim: {message}\nRun 'arcsim --help' for more information.\n")

    def setUp(self):
        super().setUp()
        self.accepted = "accepted: " + ", ".join(self.known())

    def known(self):
        """Of all commands, as the help lists them; the program has more than those of this folder."""
        sections = self.run_arcsim("--help").stdout.split("\n\n")
        lines = [line for section in sections[2:] if not section.startswith("arcsim") for line in section.splitlines()]
        return [line.split()[0] for line in lines if line.startswith("  ") and line[2].isalpha()]

    def test_a_command_is_needed(self):
        self.refused([], f"a command is missing; {self.accepted}")

    def test_an_unknown_command_is_answered_with_the_nearest(self):
        for given, meant in (("stauts", "status"), ("Status", "status"), ("fial", "fail"), ("clea", "clear"),
                             ("nofix", "no-fix"), ("advnce", "advance")):
            self.refused([given, "--json"], f"unknown command '{given}'; did you mean {meant}? {self.accepted}")
        for given in ("banana", ""):
            self.refused([given], f"unknown command '{given}'; {self.accepted}")

    def test_a_long_word_is_cut(self):
        self.refused(["x" * 5000], f"unknown command '{'x' * 40}...'; {self.accepted}")

    def test_options_come_after_the_command(self):
        for option in ("--socket", "--json", "-x", "--", "-"):
            self.refused([option, "status"], f"'{option}' comes before the command; options come after it: "
                                             "arcsim COMMAND --option")

    def test_one_command_at_a_time(self):
        self.assert_run(self.run_arcsim("reset", "stop"), 2,
                        err="arcsim: reset: The following argument was not expected: stop\n"
                            "Run 'arcsim reset --help' for more information.\n")

    def test_version(self):
        self.assert_run(self.run_arcsim("--version"), out="arcsim 1.0\n")

    def test_help_shows_every_command_and_exit_code(self):
        for option in ("--help", "-h"):
            ran = self.run_arcsim(option)
            self.assertEqual((ran.returncode, ran.stderr), (0, ""))
            for word in (*COMMANDS, "0", "1", "2", "3", "4", "5"):
                self.assertRegex(ran.stdout, rf"(?m)^  {word} ")
            self.assertLessEqual(max(map(len, ran.stdout.splitlines())), 80)

    def test_the_help_of_every_command_has_an_example_that_is_right(self):
        daemon = self.daemon(run.answers({}))
        for command in COMMANDS:
            with self.subTest(command):
                ran = self.run_arcsim(command, "--help")
                self.assertEqual((ran.returncode, ran.stderr), (0, ""))
                for word in ("--socket PATH", "--json", "--timeout TIME"):
                    self.assertRegex(ran.stdout, rf"(?m)^  {word} ")
                self.assertLessEqual(max(map(len, ran.stdout.splitlines())), 80)
                examples = [line for line in ran.stdout.splitlines() if line.startswith(f"  arcsim {command}")]
                self.assertEqual(len(examples), 1)
                self.assertEqual(self.ask(*examples[0].split()[1:]).returncode, 0)
                self.assertEqual(len(daemon.take_requests(1)), 1)


class Values(UsageTest):
    def test_every_command_refuses_what_it_does_not_know(self):
        right = {"advance": "1s", "set": "K V", "event": "1", "lsta": "gps --auto", "outage": "1s", "no-fix": "on",
                 "jam": "gps", "fail": "open --code 1", "delay": "open 1s", "hang": "open"}
        for command in COMMANDS:
            line = f"{command} {right.get(command, '')}".strip()
            self.refused(line + " --fast", "The following argument was not expected: --fast")
            self.refused(line + " --timeout 5", "--timeout: '5' is not accepted; accepted: " + TIMES.format("1ms"))
            self.refused(line + " --timeout 0s", "--timeout: '0s' is not accepted; accepted: " + TIMES.format("1ms"))
            self.refused(line + " --timeout", "--timeout: 1 required TIME missing")
            self.assert_run(self.run_arcsim(*line.split(), "--socket", ""), 2,
                            err=f"arcsim: {command}: --socket: '' is not accepted; accepted: a text that is not empty\n"
                                f"Run 'arcsim {command} --help' for more information.\n")

    def test_what_is_missing_is_named(self):
        for line, missing in (("set", "KEY"), ("set K", "VALUE"), ("event", "ID"), ("lsta", "SYSTEM"),
                              ("advance", "TIME"), ("outage", "TIME"), ("no-fix", "TIME"), ("jam", "SYSTEM"),
                              ("jam --for 5s", "SYSTEM"), ("fail --code 1", "FUNCTION"), ("delay", "FUNCTION"),
                              ("hang", "FUNCTION")):
            self.refused(line, f"{missing} is required")

    def test_too_many_arguments(self):
        for line in ("status x", "reset x", "stop x", "advance 1s x", "set K V x", "event 1 00 x", "lsta gps x",
                     "outage 1s x", "no-fix on x", "fail open x", "delay open 1s x", "hang open x", "clear open x"):
            self.refused(line, "The following argument was not expected: x")

    def test_times(self):
        for command in ("advance", "outage"):
            for given in ("5", "1.5", "s", "", ".5s", "5.s", "1..5s", "1.5.5s", "-1s", "+1s", "1 s", " 1s", "1s ", "1S",
                          "1sec", "1d", "0x1s", "1e3s", "1,5s", "0ms", "0.5ms", "0.0005s", "0.00000001h", "25h",
                          "24.1h", "86400001ms", "9" * 40 + "s", "9" * 40 + "ms", "0." + "1" * 40 + "h", "\u0661s"):
                self.refused([command, given], f"TIME: '{given}' is not accepted; accepted: "
                                               + TIMES.format("1ms"))
        self.refused("no-fix 5", "TIME: '5' is not accepted; accepted: " + TIMES.format("1ms") + "; or: on, off")
        self.refused("no-fix 0s", "TIME: '0s' is not accepted; accepted: " + TIMES.format("1ms") + "; or: on, off")
        self.refused("no-fix ON", "TIME: 'ON' is not accepted; accepted: " + TIMES.format("1ms") + "; or: on, off")
        self.refused("delay open 5", "TIME: '5' is not accepted; accepted: " + TIMES.format("0ms") + "; or: off")
        self.refused("jam gps --for 5", "--for: '5' is not accepted; accepted: " + TIMES.format("1ms"))
        self.refused("event 1 --every 5 --count 2", "--every: '5' is not accepted; accepted: " + TIMES.format("0ms"))
        for option in ("--between", "--normal"):
            self.refused(f"delay open {option} 5 30ms",
                         f"{option}: '5' is not accepted; accepted: " + TIMES.format("0ms"))
            self.refused(f"delay open {option} 5ms 30",
                         f"{option}: '30' is not accepted; accepted: " + TIMES.format("0ms"))

    def test_whole_numbers(self):
        highest = 2147483647
        for option, line, lowest, top in (("--code", "fail open", -highest, highest),
                                          ("--indicator", "fail open", -highest, highest),
                                          ("--reply-length", "fail open", 1, 4096),
                                          ("--times", "hang open", 1, highest), ("--nth", "hang open", 1, highest),
                                          ("--times", "fail open --code 1", 1, highest),
                                          ("--nth", "delay open 1s", 1, highest),
                                          ("--count", "event 1", 1, 100000),
                                          ("--status", "lsta gps", -highest, highest)):
            for given in ("x", "1.5", "0x1", "+1", "1 ", str(lowest - 1), str(top + 1), "9" * 40, ""):
                self.refused([*line.split(), option, given],
                             f"{option}: '{given}' is not accepted; accepted: a whole number from {lowest} to {top}")
        for given in ("x", "-1", "2147483648", ""):
            self.refused(["event", given],
                         f"ID: '{given}' is not accepted; accepted: a whole number from 0 to 2147483647")

    def test_numbers(self):
        for given in ("x", "nan", "inf", "-inf", "1e10", "-1e10", "1,5", "0x10", "", "1e999"):
            self.refused(["lsta", "gps", "--status", "1", "--value", given],
                         f"--value: '{given}' is not accepted; accepted: a number from -1e+09 to 1e+09")

    def test_an_option_that_is_given_twice(self):
        self.refused("hang open --times 1 --times 2", "--times: At Most 1 required but received 2")
        self.refused("status --timeout 1s --timeout 2s", "--timeout: At Most 1 required but received 2")
        self.refused("delay open --between 1s 2s --between 1s 2s", "--between: At Most 2 required but received 4")

    def test_systems(self):
        self.refused("lsta gsp --status 1",
                     "SYSTEM: unknown system 'gsp'; did you mean gps? accepted: gps, glonass, beidou, galileo")
        self.refused("lsta qzss --auto", "SYSTEM: unknown system 'qzss'; accepted: gps, glonass, beidou, galileo")
        self.refused("jam gps galileoo",
                     f"SYSTEM: unknown system 'galileoo'; did you mean galileo? accepted: {SYSTEMS}")
        self.refused(["jam", ""], f"SYSTEM: unknown system ''; accepted: {SYSTEMS}")


class Combinations(UsageTest):
    def test_fail_says_what_goes_wrong(self):
        self.refused("fail open",
                     "what goes wrong is missing; accepted: --code, --indicator, --reply-length, --no-quotes")
        self.refused("fail open --code 0",
                     "--code: '0' is not accepted; accepted: a result code other than 0, which is success")
        for option in ("--indicator 1", "--reply-length 1", "--no-quotes"):
            self.refused(f"fail open --code 1 {option}",
                         "--code excludes --indicator, --reply-length and --no-quotes: a call that fails reports "
                         "nothing")

    def test_one_choice_of_calls(self):
        for command in ("fail open --code 1", "delay open 1s", "hang open"):
            for options in ("--times 1 --nth 1", "--nth 1 --forever", "--times 1 --forever",
                            "--times 1 --nth 1 --forever"):
                self.refused(f"{command} {options}",
                             "--times, --nth and --forever exclude each other; accepted: one of them")

    def test_delay_has_one_length(self):
        accepted = "accepted: one of TIME, --between, --normal, or the word off"
        self.refused("delay open", f"how long is missing; {accepted}")
        self.refused("delay open --times 2", f"how long is missing; {accepted}")
        for line in ("1s --between 1s 2s", "off --normal 1s 2s", "--between 1s 2s --normal 1s 2s"):
            self.refused(f"delay open {line}", f"how long is said more than once; {accepted}")
        self.refused("delay open --between 2s 1999ms",
                     "--between: 2s is longer than 1.999s; accepted: the shorter time first")
        self.refused("delay open --between 2s", "--between: At least 2 required but received 1")
        for option in ("--times 1", "--nth 1", "--forever"):
            self.refused(f"delay open off {option}", "off excludes --times, --nth and --forever")

    def test_payloads(self):
        for payload in ("0", "0g", "0x00", "00 11", "00112"):
            self.refused(["event", "1", payload],
                         f"HEX: '{payload}' is not accepted; accepted: pairs of hexadecimal digits")
        self.refused("event 1 00 --numbered", "--numbered excludes HEX: the number of the event is its payload")
        self.refused("event 1 --every 1s", "--every is the time between several events; say how many with --count")

    def test_a_request_that_is_too_long_for_the_socket(self):
        daemon = self.daemon(run.answers({"sent": 1}))
        frame = len('{"id":1,"control":"event","eventId":1,"payload":""}\n')
        self.assertEqual(self.ask("event", "1", "0" * ((65536 - frame) // 2 * 2)).returncode, 0)
        self.assertEqual(len(daemon.take_requests(1)), 1)
        self.refused(["event", "1", "0" * ((65536 - frame) // 2 * 2 + 2)],
                     f"the request would have {(65536 - frame) // 2 * 2 + 2 + frame} bytes; accepted: at most 65536")

    def test_lsta_needs_a_status(self):
        for line in ("lsta gps", "lsta gps --value 1"):
            self.refused(line, "the status is missing; accepted: --status, or --auto for what is received")
        for option in ("--status 1", "--value 1"):
            self.refused(f"lsta gps --auto {option}",
                         "--auto excludes --status and --value: it goes back to what is received")

    def test_jam(self):
        self.refused("jam all gps", "'all' cannot be combined with other systems; accepted: all, or the names of some")
        self.refused("jam gps --off --for 1s", "--off excludes --for")


if __name__ == "__main__":
    run.main()

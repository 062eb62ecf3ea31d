"""What a command says when it fails: what the modem has answered, how often, why, and what to do."""

import json
import os

import ctl

SLOW = ("  The modem answers, but late: it is overloaded, or its line is.",
        "  -> Give it more time with --timeout; see to the modem's other users.")
HANGS = ("  The call hangs in the client library, in the RIL daemon or in the modem.",
         "  -> Restart the RIL daemon, then the modem; run this again.")
# code, its text, the cause, what to do
IN_VAIN = (
    (21, "A requested service has been denied", "The RIL daemon or the modem does not let this process do it.",
     "Run the program as a user who may use the RIL daemon; else find out who has locked the function."),
    (31, "Error in connection between library and RIL daemon or RIL daemon not running",
     "The RIL daemon does not run, or the connection to it is broken.",
     "Start the RIL daemon, or find out from its log why it ended."),
    (34, "Version of ARC library is not supported by RIL daemon",
     "The client library and the RIL daemon are of releases that do not belong together.",
     "Install a client library and a RIL daemon of the same release."),
)


class Troubles(ctl.CtlTest):
    def failing(self, *arguments, code):
        """What a command that fails says on stderr, its log apart."""
        ran = self.ctl(*arguments, "--log", "/dev/null")
        self.assertEqual((ran.returncode, ran.stdout), (code, ""))
        return ran.stderr.splitlines()

    def test_what_waiting_does_not_mend_ends_the_opening_early(self):
        self.serve()
        for code, text, cause, following in IN_VAIN:
            self.control(f"fail ARC_Open --code {code} --forever")
            first, *rest = self.failing("status", "--timeout", "10m", code=3)
            self.assertRegex(first, rf"^kelarcctl: opening the modem failed \d+ times: {text} \({code}\)$")
            self.assertEqual(rest, [f"  {cause}", f"  -> {following}"])
            self.control("clear")

    def test_what_waiting_does_not_mend_ends_any_request_that_is_repeated_without_end(self):
        self.serve()
        self.control("fail ARC_StartGNSSraw --code 24 --forever")
        first, *rest = self.failing("gnss", "start", "--timeout", "10m", code=3)
        self.assertRegex(first, r"^kelarcctl: starting the raw output failed \d+ times: This feature is not supported by "
                                r"the module in use \(24\)$")
        self.assertEqual(rest, ["  This modem or its firmware cannot do it.",
                                "  -> Use a modem or a firmware that can; asking again does not help."])
        self.assertEqual(self.status()["clients"], [])

    def test_a_daemon_that_is_not_there_ends_a_command_early(self):
        self.serve().kill()
        ran = self.ctl("status", "--timeout", "10m", "--json", "--log", "/dev/null")
        self.assertEqual(ran.returncode, 3)
        error = self.checked(json.loads(ran.stdout), "failure")["error"]
        self.assertGreater(error.pop("attempts"), 5)
        self.assertRegex(error.pop("text"), r"^opening the modem failed \d+ times: Error in connection between library "
                                            r"and RIL daemon or RIL daemon not running \(31\)$")
        self.assertEqual(error, {"kind": "refused", "code": 31, "cause": IN_VAIN[1][2], "next": IN_VAIN[1][3]})

    def test_a_daemon_that_is_there_soon_is_waited_for(self):
        self.serve()
        self.control("outage 1500ms")
        self.assertEqual(self.ctl("sbas", "--log", "/dev/null").stdout, "sbas: on\n")

    def test_a_daemon_that_does_not_let_the_user_in_is_told_from_none(self):
        self.serve()
        ran = self.as_a_stranger("versions", "--log", "/dev/null")
        self.assertEqual((ran.returncode, ran.stdout), (3, ""))
        self.assertRegex(ran.stderr, r"^kelarcctl: opening the modem failed \d+ times: A requested service has been denied "
                                     r"\(21\)\n  The RIL daemon or the modem does not let this process do it\.\n")
        os.remove(self.socket)
        ran = self.ctl("versions", "--log", "/dev/null")
        self.assertEqual(ran.returncode, 0, "it takes the modem inside")

    def test_a_modem_that_may_come_up_is_waited_for_and_that_is_said(self):
        self.serve()
        self.control("fail ARC_Open --code 3 --forever")
        text = r"Command cannot be executed because the module is off or in power state transition \(3\)"
        notice, first, *rest = self.failing("versions", "--timeout", "6s", code=4)
        self.assertRegex(notice, rf"^kelarcctl: still waiting: opening the modem failed \d+ times: {text}$")
        self.assertRegex(first, rf"^kelarcctl: no success within 6000 ms: opening the modem failed \d+ times: {text}$")
        self.assertEqual(rest, ["  The modem is off, or on its way up or down.",
                                "  -> Switch the modem on and wait until it is up."])

    def test_a_call_that_has_not_returned_is_said_to_be_so(self):
        self.serve()
        self.control("hang ARC_StopGNSS")
        notice, first, *rest = self.failing("gnss", "stop", "--timeout", "6s", code=4)
        self.assertRegex(notice, r"^kelarcctl: still waiting: stopping the engine: ARC_StopGNSS\(\) has not returned for "
                                 r"\d{4} ms$")
        self.assertRegex(first, r"^kelarcctl: no success within 6000 ms: stopping the engine: ARC_StopGNSS\(\) has not "
                                r"returned for [56]\d{3} ms$")
        self.assertEqual(tuple(rest), HANGS)

    def test_a_modem_that_is_slow_is_told_from_one_that_hangs(self):
        self.serve()
        self.control("delay ARC_CheckModuleSetting 1200ms")
        ran = self.ctl("export", "--timeout", "3s", "--json", "--log", "/dev/null")
        self.assertEqual(ran.returncode, 4)
        error = self.checked(json.loads(ran.stdout), "failure")["error"]
        self.assertEqual((error["kind"], error["code"]), ("slow", None))
        self.assertRegex(error["text"], r'^no success within 3000 ms: reading [a-z-]+: the modem is slow, Get '
                                        r'ARC_CheckModuleSetting\("[A-Za-z/]+"\) took 1\d{3} ms$')
        self.assertEqual(tuple(ran.stderr.splitlines()[1:]), SLOW)

    def test_refusals_that_are_late_are_said_to_be_both(self):
        self.serve()
        self.control("delay ARC_StopGNSS 1100ms")
        self.control("fail ARC_StopGNSS --code 2 --forever")
        first, *rest = self.failing("gnss", "stop", "--timeout", "4s", code=4)
        self.assertRegex(first, r"^kelarcctl: no success within 4000 ms: stopping the engine failed [23] times: Timeout "
                                r"while waiting for module response \(2\)$")
        self.assertRegex(rest[-1], r"^kelarcctl: each answer was late, the last by 1\d{3} ms$")

    def test_a_code_without_a_text_has_a_cause_and_a_step(self):
        self.serve()
        self.control("fail ARC_ResetAGNSS --code 77 --forever")
        self.assertEqual(self.failing("gnss", "reset-assistance", code=3)[-3:],
                         ["kelarcctl: resetting the assistance data failed 15 times: Unknown result (77)",
                          "  The library has no text for this code.",
                          "  -> Look it up in the client library's own documentation."])

    def test_what_the_modem_says_steers_no_terminal(self):
        self.serve()
        self.ask("set", key="Raw/Version", quoted='"\x1b[2J\x07\n\xc2\x9b\xff1m"', force=True)  # bytes
        for line, shown in (("raw-version", r'raw-version: \x1b[2J\x07\n\xc2\x9b\xff1m'),
                            ("get Raw/Version", r'"\x1b[2J\x07\n\xc2\x9b\xff1m"')):
            self.assertEqual(self.says(line), shown)
        self.assertEqual(self.document("get Raw/Version")["reply"], '"\x1b[2J\x07\n\x9b\ufffd1m"')
        for line in ("get Raw/Version --json", "raw-version --json", "status --json", "status"):
            self.assertRegex(self.says(line), r"\A[\n -~]*\Z")

    def test_what_was_given_steers_no_terminal(self):
        self.serve()
        key = "\x1b[2J\n" + "k" * 200
        ran = self.ctl("get", key)
        self.assertEqual(ran.returncode, 3)
        self.assertNotRegex(ran.stderr, "[^\n -~]")
        self.assertRegex(ran.stderr.splitlines()[-3], r"^kelarcctl: reading \\x1b\[2J\\nk+\.\.\. failed 15 times: .{,80}$")


if __name__ == "__main__":
    ctl.main()

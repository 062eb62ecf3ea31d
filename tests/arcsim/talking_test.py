"""How arcsim finds the daemon and gets along with one that does not answer as it should."""

import json
import os
import socket

import run


class Finding(run.ArcsimTest):
    def test_the_option_goes_before_the_environment(self):
        wanted = self.daemon(run.answers({}))
        other = os.path.join(self.folder, "other")
        environment = {"ARCSIM_SOCKET": other, "XDG_RUNTIME_DIR": self.folder}
        self.assertEqual(self.run_arcsim("reset", "--socket", self.socket, environment=environment).returncode, 0)
        self.assertEqual(len(wanted.take_requests(1)), 1)

    def test_the_socket_of_the_environment_goes_before_its_folder(self):
        wanted = self.daemon(run.answers({}))
        environment = {"ARCSIM_SOCKET": self.socket, "XDG_RUNTIME_DIR": "/nowhere"}
        self.assertEqual(self.run_arcsim("reset", environment=environment).returncode, 0)
        self.assertEqual(len(wanted.take_requests(1)), 1)

    def test_the_folder_of_the_environment_holds_the_socket(self):
        wanted = self.daemon(run.answers({}), os.path.join(self.folder, "arcsim.sock"))
        environment = {"ARCSIM_SOCKET": "", "XDG_RUNTIME_DIR": self.folder}
        self.assertEqual(self.run_arcsim("reset", environment=environment).returncode, 0)
        self.assertEqual(len(wanted.take_requests(1)), 1)

    def test_without_any_of_them_the_socket_is_named_after_the_user(self):
        path = f"/tmp/arcsim-{os.getuid()}.sock"
        there = self.pid_at(path)  # the user of this machine may have a daemon of their own
        ran = self.run_arcsim("status", "--json", environment={"XDG_RUNTIME_DIR": ""})
        if there is not None:
            self.assertEqual((ran.returncode, json.loads(ran.stdout)["result"]["pid"]), (0, there))
            return
        self.assertEqual(ran.returncode, 5)
        self.assertRegex(ran.stderr, rf"^arcsim: no daemon at {path} \([A-Z][a-z ]+\); start one with: arcsim serve\n$")

    @staticmethod
    def pid_at(path):
        """Of the daemon that serves there; None when there is none."""
        with socket.socket(socket.AF_UNIX, socket.SOCK_STREAM) as connection:
            try:
                connection.connect(path)
            except OSError:
                return None
            connection.sendall(b'{"id":1,"control":"status"}\n')
            return json.loads(connection.makefile("rb").readline())["result"]["pid"]

    def test_nobody_there(self):
        error = f"no daemon at {self.socket} (No such file or directory); start one with: arcsim serve"
        self.assert_run(self.ask("status"), 5, err=f"arcsim: {error}\n")
        self.assert_run(self.ask("status", "--json"), 5, err=f"arcsim: {error}\n",
                        out=json.dumps({"ok": False, "error": error}, separators=(",", ":")) + "\n")

    def test_a_socket_that_is_left_over_and_a_file_that_is_none(self):
        with socket.socket(socket.AF_UNIX, socket.SOCK_STREAM) as left:
            left.bind(self.socket)
        file = os.path.join(self.folder, "file")
        with open(file, "w", encoding="ascii"):
            pass
        for path in (self.socket, file):
            self.assert_run(self.run_arcsim("stop", "--socket", path), 5,
                            err=f"arcsim: no daemon at {path} (Connection refused); start one with: arcsim serve\n")

    def test_the_longest_path_is_taken_and_a_longer_one_is_refused(self):
        longest = os.path.join(self.folder, "x" * (106 - len(self.folder)))
        self.assertEqual(len(longest), 107)
        daemon = self.daemon(run.answers({}), longest)
        self.assertEqual(self.run_arcsim("reset", "--socket", longest).returncode, 0)
        self.assertEqual(len(daemon.take_requests(1)), 1)
        refusal = (f"'{longest}x' has 108 bytes; accepted: the path of a socket, of at most 107 bytes\n"
                   "Run 'arcsim reset --help' for more information.\n")
        self.assert_run(self.run_arcsim("reset", "--socket", longest + "x"), 2,
                        err="arcsim: reset: --socket: " + refusal)
        self.assert_run(self.run_arcsim("reset", environment={"ARCSIM_SOCKET": longest + "x"}), 2,
                        err="arcsim: reset: ARCSIM_SOCKET: " + refusal)
        folder = longest[:-11]
        self.assert_run(self.run_arcsim("reset", environment={"XDG_RUNTIME_DIR": folder}), 2,
                        err=f"arcsim: reset: XDG_RUNTIME_DIR: '{folder}/arcsim.sock' has 108 bytes; accepted: the path "
                            "of a socket, of at most 107 bytes\nRun 'arcsim reset --help' for more information.\n")


class Answers(run.ArcsimTest):
    def assert_fails(self, talk, exit_code, error, *options):
        """People and programs are told the same."""
        daemon = self.daemon(talk)
        error = error.replace("SOCKET", self.socket)
        self.assert_run(self.ask("status", *options), exit_code, err=f"arcsim: {error}\n")
        ran = self.ask("status", "--json", *options)
        self.assertEqual((ran.returncode, ran.stderr), (exit_code, f"arcsim: {error}\n"))
        document = json.loads(ran.stdout)
        self.assertEqual(document, {"ok": False, "error": error})
        self.assertEqual(ran.stdout.count("\n"), 1)
        self.assertEqual([request["control"] for request in daemon.take_requests(2)], ["status", "status"])

    def test_a_refusal_is_handed_on(self):
        error = "time: 'real' cannot be advanced; accepted: a daemon started with virtual time"
        self.assert_fails(run.refuses(error), 3, error)

    def test_a_refusal_without_a_reason(self):
        self.assert_fails(lambda line, request: line.say({"id": request["id"], "ok": False}), 3,
                          "the daemon refused without a reason")

    def test_the_error_before_the_daemon_hangs_up(self):
        self.assert_fails(lambda line, _: line.say({"error": "unknown control"}), 3, "unknown control")

    def test_a_refusal_cannot_move_the_cursor(self):
        self.daemon(run.refuses("a\x1b[2Jb\nc\x7fd\xc2\x9b"))
        self.assert_run(self.ask("status"), 3, err="arcsim: a\\x1b[2Jb\\nc\\x7fd\\xc2\\x9b\n")

    def test_what_is_not_the_answer_is_passed_over(self):
        def talk(line, request):
            line.say({"hello": "arcsim", "version": "1.0", "protocol": 1})
            line.say({"event": 34, "data": "00"})
            for number in (request["id"] - 1, request["id"] + 1, -1, 2 ** 53, 2 ** 64 - 1, 1.5, "1", None):
                line.say({"id": number, "ok": False, "error": "of somebody else"})
            line.say({"id": request["id"] + 1, "code": 0, "out": {}})
            line.say({"id": request["id"], "ok": True, "result": {"sent": 7}})

        self.daemon(talk)
        self.assert_run(self.ask("event", "1"), out="event 1: sent 7 times, 0 bytes\n")

    def test_an_answer_in_pieces(self):
        def talk(line, request):
            for byte in json.dumps({"id": request["id"], "ok": True, "result": {"sent": 7}}).encode("ascii"):
                line.say_bytes(bytes([byte]))
            line.say_bytes(b"\n")

        self.daemon(talk)
        self.assert_run(self.ask("event", "1"), out="event 1: sent 7 times, 0 bytes\n")

    def test_an_answer_without_result_counts_as_done(self):
        self.daemon(lambda line, request: line.say({"id": request["id"], "ok": True}))
        self.assert_run(self.ask("reset"), out="the modem is at its start; the scenario begins anew\n")

    def test_the_longest_answer_is_taken(self):
        def talk(line, request):
            answer = {"id": request["id"], "ok": True, "result": {"filler": ""}}
            answer["result"]["filler"] = "x" * (65535 - len(json.dumps(answer)))
            line.say(answer)

        self.daemon(talk)
        ran = self.ask("reset", "--json")
        self.assertEqual((ran.returncode, ran.stderr), (0, ""))
        self.assertGreater(len(json.loads(ran.stdout)["result"]["filler"]), 65400)

    def test_no_answer(self):
        self.assert_fails(lambda line, _: line.wait_for_hanging_up(), 4,
                          "the daemon at SOCKET did not answer within 300ms", "--timeout", "300ms")

    def test_half_an_answer(self):
        def talk(line, request):
            line.say_bytes(b'{"id":1,"ok":true')
            line.wait_for_hanging_up()

        self.assert_fails(talk, 4, "the daemon at SOCKET did not answer within 300ms", "--timeout=300ms")

    def test_events_without_end(self):
        def talk(line, _):
            while True:
                line.say({"event": 34, "data": "00" * 64})

        self.assert_fails(talk, 4, "the daemon at SOCKET did not answer within 300ms", "--timeout", "0.3s")

    def test_hanging_up_instead_of_answering(self):
        self.assert_fails(lambda line, request: None, 4, "the daemon at SOCKET hung up without an answer")

    def test_hanging_up_in_the_middle_of_the_answer(self):
        self.assert_fails(lambda line, _: line.say_bytes(b'{"id":1,"ok":true}'), 4,
                          "the daemon at SOCKET hung up without an answer")

    def test_a_daemon_that_accepts_nobody(self):
        with socket.socket(socket.AF_UNIX, socket.SOCK_STREAM) as listening:
            listening.bind(self.socket)
            listening.listen(0)
            waiting = []
            self.addCleanup(lambda: [each.close() for each in waiting])
            try:
                while True:
                    waiting.append(socket.socket(socket.AF_UNIX, socket.SOCK_STREAM))
                    waiting[-1].setblocking(False)
                    waiting[-1].connect(self.socket)
            except BlockingIOError:
                pass
            self.assert_run(self.ask("status", "--timeout", "300ms"), 4,
                            err=f"arcsim: the daemon at {self.socket} did not answer within 300ms\n")

    def test_somebody_else_at_the_socket(self):
        begin = "what answers at SOCKET is no daemon of ours, it says: "
        for said, shown in ((b"220 ready\n", "220 ready"), (b"[]\n", "[]"), (b"\n", ""), (b"7\n", "7"),
                            (b'{"id":1}\n', '{"id":1}'), (b'{"id":1,"ok":1}\n', '{"id":1,"ok":1}'),
                            (b'{"id":1,"ok":true} x\n', '{"id":1,"ok":true} x'),
                            (b'{"a":"' + b"y" * 100 + b'\n', '{"a":"' + "y" * 54 + "..."),
                            (b"[" * 60000 + b"\n", "[" * 60 + "..."),
                            (b'{"id":1,"ok":true,"result":' + b"[" * 100 + b"]" * 100 + b"}\n",
                             '{"id":1,"ok":true,"result":' + "[" * 33 + "..."),
                            (b"x" * 65536, "x" * 60 + "...")):
            with self.subTest(said[:40]):
                self.assert_fails_afresh(lambda line, _, said=said: line.say_bytes(said), 5, begin + shown)

    def test_bytes_that_are_no_text(self):
        self.daemon(lambda line, _: line.say_bytes(b"\xff\xfe\n"))
        ran = self.ask("status", "--json")
        self.assertEqual(ran.returncode, 5)
        self.assertEqual(ran.stderr, f"arcsim: what answers at {self.socket} is no daemon of ours, it says: "
                                     "\\xff\\xfe\n")
        self.assertTrue(json.loads(ran.stdout)["error"].endswith("it says: \xff\xfe"))

    def assert_fails_afresh(self, talk, exit_code, error):
        """With a daemon of its own, as one test has several."""
        self.socket = os.path.join(self.folder, str(len(os.listdir(self.folder))))
        self.assert_fails(talk, exit_code, error)


class Output(run.ArcsimTest):
    def assert_told(self, ran):
        self.assertEqual((ran.returncode, ran.stderr), (1, "arcsim: standard output could not be written\n"))

    def test_an_output_that_cannot_be_written_is_told_of(self):
        self.daemon(run.answers({"sent": 1}))
        read, write = os.pipe()
        os.close(read)
        with open("/dev/full", "wb") as full, os.fdopen(write, "wb") as closed:
            for out in (full, closed):
                for command in (["event", "1"], ["event", "1", "--json"]):
                    self.assert_told(self.run_arcsim(*command, "--socket", self.socket, stdout=out))
            for arguments in (["--help"], ["--version"]):
                self.assert_told(self.run_arcsim(*arguments, stdout=full))


if __name__ == "__main__":
    run.main()

"""The daemon's socket: who may connect, and what may already exist at its path."""

import os
import socket
import stat
import subprocess
import sys

import run

# Connects as the user of the number 65534 to a socket that everybody may connect to.
STRANGER = """
import os, socket, sys
os.setgid(65534)
os.setuid(65534)
connection = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
connection.connect(sys.argv[1])
try:
    connection.sendall(b'{"id":1,"control":"status"}\\n')
    print(repr(connection.recv(100)))
except (BrokenPipeError, ConnectionResetError):
    print(repr(b""))
"""


class Socket(run.DaemonTest):
    def refuse_to_serve(self, *arguments, path=None):
        """What a daemon that does not get its socket says."""
        ran = self.arcsim("serve", "--socket", path or self.socket, *arguments)
        self.assertEqual((ran.returncode, ran.stdout), (3, ""))
        return ran.stderr

    def test_is_for_its_user_alone(self):
        self.serve()
        mode = os.stat(self.socket).st_mode
        self.assertTrue(stat.S_ISSOCK(mode))
        self.assertEqual(stat.S_IMODE(mode), 0o600)
        self.assertEqual(stat.S_IMODE(os.stat(self.socket + ".memory").st_mode), 0o600)

    def test_does_not_answer_another_user_who_gets_through(self):
        self.serve()
        if os.geteuid() != 0:  # only root can be somebody else
            self.assertEqual(stat.S_IMODE(os.stat(self.socket).st_mode) & 0o077, 0)
            return
        os.chmod(self.folder, 0o755)
        os.chmod(self.socket, 0o666)
        ran = subprocess.run([sys.executable, "-c", STRANGER, self.socket], stdout=subprocess.PIPE, check=True,
                             timeout=run.LIMIT_S, encoding="ascii")
        self.assertEqual(ran.stdout, "b''\n")
        self.assertEqual(self.status()["clients"], [])

    def test_serves_one_daemon_only(self):
        self.serve()
        client = self.open_client('write Power/Cpu "max"')
        message = f"arcsim: {self.socket}: is served by another process already\n"
        self.assertEqual(self.refuse_to_serve(), message)
        self.assertEqual(self.refuse_to_serve("--fresh"), message)
        self.assertEqual(sorted(os.listdir(self.folder)), ["s", "s.memory", "s.nmea", "scenario.json"])
        self.assertEqual(client.call("read Power/Cpu"), (0, '"max"'))

    def test_a_daemon_that_is_refused_leaves_the_memory_of_the_other(self):
        daemon = self.serve()
        client = self.open_client('write Power/Cpu "max"')
        self.refuse_to_serve("--fresh")
        daemon.kill()
        self.serve()
        self.assertEqual(run.repeat_while_unreachable(client, "read Power/Cpu")[0], (0, '"max"'))

    def test_what_a_dead_daemon_left_is_replaced(self):
        self.serve().kill()
        self.assertEqual(sorted(os.listdir(self.folder)), ["s", "s.memory", "s.nmea", "scenario.json"])
        self.serve()
        with socket.socket(socket.AF_UNIX) as other:  # of no daemon of ours
            path = os.path.join(self.folder, "other")
            other.bind(path)
        self.socket = path
        self.serve()
        self.assertEqual(self.status()["engine"], "off")

    def start(self):
        """A daemon that may be refused: it either says that it serves or ends."""
        program = run.Program([os.environ["ARCSIM"], "serve", "--socket", self.socket])
        self.addCleanup(program.close)
        return program

    def test_of_many_daemons_that_start_at_once_where_one_has_died_one_serves(self):
        for _ in range(4):
            self.serve().kill()
            started = [self.start() for _ in range(8)]
            run.wait_until(lambda: sum(program.process.poll() is not None for program in started) >= 7,
                           "all daemons but one have ended")
            serving = [program for program in started if program.process.poll() is None]
            self.assertEqual(len(serving), 1)
            serving[0].wait_for(lambda: serving[0].lines, "the line that the daemon serves")
            self.assertEqual(self.status()["pid"], serving[0].pid)
            for program in started:
                if program is not serving[0]:
                    self.assertEqual(program.finish(), 3)
                    self.assertEqual(program.errors(),
                                     f"arcsim: {self.socket}: is served by another process already\n")
            serving[0].send(run.SIGTERM)
            self.assertEqual(serving[0].finish(), 0)
            self.assertEqual(sorted(os.listdir(self.folder)), ["scenario.json"])

    def test_a_daemon_that_ends_takes_nothing_of_the_next_one(self):
        ending = self.serve()
        for _ in range(10):
            ending.send(run.SIGTERM)
            following = self.start()
            while not following.prints():  # refused while the other one still ends
                following = self.start()
            self.assertEqual(ending.finish(), 0)
            self.assertEqual(sorted(os.listdir(self.folder)), ["s", "s.memory", "s.nmea", "scenario.json"])
            self.assertEqual(self.status()["pid"], following.pid)
            ending = following

    def test_what_is_no_socket_is_left_alone(self):
        self.write("s", "precious")
        self.assertEqual(self.refuse_to_serve(),
                         f"arcsim: {self.socket}: already exists and is not a socket; give another path\n")
        with open(self.socket, encoding="ascii") as file:
            self.assertEqual(file.read(), "precious")
        os.remove(self.socket)
        os.mkdir(self.socket)
        self.assertEqual(self.refuse_to_serve(),
                         f"arcsim: {self.socket}: already exists and is not a socket; give another path\n")
        os.rmdir(self.socket)
        os.symlink(self.write("target", "precious"), self.socket)
        self.refuse_to_serve()
        self.assertTrue(os.path.islink(self.socket))

    def test_a_file_in_the_place_of_the_link_to_the_output_is_left_alone(self):
        path = self.write("s.nmea", "precious")
        self.assertEqual(self.refuse_to_serve(), f"arcsim: {path}: is there and no link; accepted: a path for a link "
                                                 "to the raw output\n")
        self.assertEqual(sorted(os.listdir(self.folder)), ["s.nmea"])
        with open(path, encoding="ascii") as file:
            self.assertEqual(file.read(), "precious")

    def test_a_path_that_cannot_be_one_is_named(self):
        long = self.folder + "/" + "x" * (108 - len(self.folder) - 1)
        for arguments, environment, origin in ((["--socket", long], {}, "--socket"),
                                               ([], {"ARCSIM_SOCKET": long}, "ARCSIM_SOCKET")):
            ran = self.arcsim("serve", *arguments, environment=environment)
            self.assertEqual((ran.returncode, ran.stdout, ran.stderr), (
                2, "", f"arcsim: serve: {origin}: '{long}' has 108 bytes; accepted: the path of a socket, of at most "
                       "107 bytes\nRun 'arcsim serve --help' for more information.\n"))
        nowhere = self.folder + "/none/s"
        self.assertEqual(self.refuse_to_serve(path=nowhere),
                         f"arcsim: {nowhere}: there can be no socket: No such file or directory\n")

    def test_the_longest_path_is_served(self):
        self.socket = self.folder + "/" + "x" * (107 - len(self.folder) - 1)
        self.serve()
        self.open_client()

    def serve_relative(self, folder):
        daemon = run.Program([os.environ["ARCSIM"], "serve", "--socket", "s"], cwd=folder)
        self.addCleanup(daemon.close)
        daemon.wait_for(lambda: daemon.lines, "the line that the daemon serves")

    def test_a_relative_path_leads_applications_elsewhere_to_the_terminal(self):
        self.serve_relative(self.folder)
        client = self.open_client()  # in the folder of the tests
        self.assertEqual(client.call("start"), (0, self.folder + "/s.nmea"))
        with open(self.folder + "/s.nmea", "rb", buffering=0) as terminal:
            self.assertTrue(terminal.read(1))
        self.assertEqual(self.status()["output"]["path"], self.folder + "/s.nmea")

    def test_a_terminal_whose_path_would_be_too_long_is_told_by_its_own(self):
        deep = os.path.join(self.folder, "d" * 240)
        os.mkdir(deep)
        self.serve_relative(deep)
        os.symlink(deep, os.path.join(self.folder, "short"))
        client = self.open_client(path=os.path.join(self.folder, "short", "s"))
        code, path = client.call("start")
        self.assertEqual(code, 0)
        self.assertRegex(path, "^/dev/pts/[0-9]+$")

    def test_an_application_without_a_daemon_is_told(self):
        for path in (self.socket, self.folder, self.folder + "/" + "x" * 200):
            client = self.client(path)
            self.assert_calls(client, [("open", 31), ("versions", 31), ("version", (0, "ArcRilD 1.0 (simulated)"))])


if __name__ == "__main__":
    run.main()

"""An application whose daemon has stopped reading: its calls wait, but the application can end."""

import os
import signal
import socket

import run

SENDING = {"x86_64": "44", "aarch64": "206"}.get(os.uname().machine, "290")  # the number of sendto()


def threads_that_send(pid):
    count = 0
    for thread in os.listdir(f"/proc/{pid}/task"):
        try:
            with open(f"/proc/{pid}/task/{thread}/syscall", encoding="ascii") as file:
                count += file.read().split()[0] == SENDING
        except OSError:
            pass  # it has ended meanwhile
    return count


class StoppedDaemon(run.DaemonTest):
    def test_an_application_ends_while_its_threads_wait_to_send(self):
        daemon = self.serve()
        client = self.open_client()
        daemon.send(signal.SIGSTOP)
        self.addCleanup(daemon.send, signal.SIGCONT)
        for number in range(8):  # more than the socket has room for
            client.begin("at " + "A" * 60000, f"thread{number}")
        run.wait_until(lambda: threads_that_send(client.pid) > 0, "a thread waits until it can send")
        client.process.stdin.close()
        self.assertEqual(client.finish(), 0)

    def test_an_application_ends_while_its_threads_wait_for_answers(self):
        daemon = self.serve()
        client = self.open_client()
        daemon.send(signal.SIGSTOP)
        self.addCleanup(daemon.send, signal.SIGCONT)
        for thread in ("one", "two"):
            client.begin("versions", thread)
        client.process.stdin.close()
        self.assertEqual(client.finish(), 0)

    def test_waiting_calls_are_answered_when_the_daemon_goes_on(self):
        daemon = self.serve()
        client = self.open_client()
        daemon.send(signal.SIGSTOP)
        calls = [client.begin("at " + "A" * 60000, f"thread{number}") for number in range(8)]
        run.wait_until(lambda: threads_that_send(client.pid) > 0, "a thread waits until it can send")
        daemon.send(signal.SIGCONT)
        self.assertEqual([client.answer(call)[0] for call in calls], [24] * 8)
        self.assertEqual(client.call("versions")[0], 0)

    def test_a_server_that_takes_no_connections_is_as_none(self):
        with socket.socket(socket.AF_UNIX, socket.SOCK_STREAM) as server:
            server.bind(self.socket)
            server.listen(0)
            held = []
            try:
                while True:
                    held.append(socket.socket(socket.AF_UNIX, socket.SOCK_STREAM))
                    held[-1].setblocking(False)
                    held[-1].connect(self.socket)
            except BlockingIOError:
                pass  # one more would wait
            client = self.client()
            self.assertEqual(client.call("open"), (31, ""))
            self.assertEqual(client.call("version"), (0, "ArcRilD 1.0 (simulated)"))
            for each in held:
                each.close()


if __name__ == "__main__":
    run.main()

"""Stands between applications and the daemon and cuts their connection where it is told to."""

import os
import socket
import threading


class Cut:
    """Ends a connection once so many whole lines and then so much of the next have passed in one direction.

    `part`: 0 nothing of that line, 0.5 half of it, 1 all of it."""

    def __init__(self, direction, lines, part):
        self.direction = direction  # "up" to the daemon or "down" from it
        self.lines = lines
        self.part = part

    def __repr__(self):
        return f"{self.direction} after {self.lines + self.part} lines"


class Proxy:
    def __init__(self, path, daemon):
        self._daemon = daemon
        self._changed = threading.Condition()
        self._cut = None
        self._was_cut = False
        self._pairs = []
        self._listening = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
        self._listening.bind(path)
        self._listening.listen()
        threading.Thread(target=self._accept, daemon=True).start()

    def arm(self, cut):
        """Ends what is connected; the next connection is the one that is cut. Those after it are left alone."""
        with self._changed:
            pairs, self._pairs = self._pairs, []
            self._cut, self._was_cut = cut, False
        for pair in pairs:
            pair.end()

    @property
    def was_cut(self):
        with self._changed:
            return self._was_cut

    def note_cut(self):
        with self._changed:
            self._was_cut = True

    def _accept(self):
        while True:
            try:
                client, _ = self._listening.accept()
            except OSError:
                return
            daemon = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
            daemon.connect(self._daemon)
            with self._changed:
                cut, self._cut = self._cut, None
                pair = Pair(client, daemon, cut, self)
                self._pairs.append(pair)
            pair.start()

    def close(self):
        self._listening.shutdown(socket.SHUT_RDWR)
        self._listening.close()
        self.arm(None)


class Pair:
    def __init__(self, client, daemon, cut, proxy):
        self._client = client
        self._daemon = daemon
        self._cut = cut
        self._proxy = proxy
        self._passing = 2
        self._changed = threading.Lock()

    def start(self):
        for direction, source, target in (("up", self._client, self._daemon), ("down", self._daemon, self._client)):
            threading.Thread(target=self._pass, args=(direction, source, target), daemon=True).start()

    def _pass(self, direction, source, target):
        lines = 0
        pending = b""
        try:
            while True:
                received = os.read(source.fileno(), 65536)
                if not received:
                    break
                pending += received
                while b"\n" in pending:
                    line, _, pending = pending.partition(b"\n")
                    line += b"\n"
                    if self._cut and self._cut.direction == direction and self._cut.lines == lines:
                        target.sendall(line[:int(len(line) * self._cut.part)])
                        self.end()  # at once, so that the other side finds the end right behind
                        self._proxy.note_cut()
                        return
                    target.sendall(line)
                    lines += 1
        except OSError:
            pass
        finally:
            self.end()
            with self._changed:
                self._passing -= 1
                if self._passing == 0:
                    self._client.close()
                    self._daemon.close()

    def end(self):
        for each in (self._client, self._daemon):
            try:
                each.shutdown(socket.SHUT_RDWR)
            except OSError:
                pass

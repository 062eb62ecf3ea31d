"""Runs a program again and again and lets its first, second, third ... call of a function of the C library fail."""

import errno
import os

import run

# How each function may fail, for good reasons. "on": so do all later calls. "short": the call takes or gives one byte.
FAILURES = {
    "accept": ("EMFILE", "EINTR"),
    "bind": ("EADDRINUSE", "ENOSPC"),
    "close": ("EIO", "EINTR"),
    "connect": ("ECONNREFUSED", "ECONNREFUSED on", "EAGAIN"),
    "epoll_create1": ("EMFILE",),
    "epoll_ctl": ("ENOSPC", "ENOMEM"),
    "epoll_wait": ("EINTR",),
    "eventfd": ("EMFILE", "EMFILE on"),
    "fchmod": ("EPERM", "EIO"),
    "fcntl": ("EMFILE",),
    "flock": ("EINTR", "ENOLCK"),
    "fork": ("EAGAIN",),
    "fstat": ("EIO",),
    "fstatat": ("EIO", "EACCES"),
    "fsync": ("EIO", "EIO on", "EINTR"),
    "ftruncate": ("EIO", "EINTR"),
    "getrandom": ("ENOSYS", "EINTR"),
    "getsockopt": ("ENOBUFS",),
    "grantpt": ("EACCES",),
    "ioctl": ("EIO",),
    "listen": ("EADDRINUSE",),
    "lstat": ("EACCES", "EIO"),
    "open": ("EMFILE", "EMFILE on", "EACCES", "EINTR"),
    "openat": ("EMFILE", "ENOSPC", "ENOSPC on", "EINTR"),
    "pipe": ("EMFILE",),
    "pipe2": ("EMFILE",),
    "poll": ("EINTR", "ENOMEM"),
    "posix_openpt": ("EMFILE", "ENOSPC"),
    "pthread_create": ("EAGAIN", "EAGAIN on"),
    "ptsname_r": ("ENOTTY",),
    "read": ("EIO", "EINTR", "short"),
    "recv": ("ECONNRESET", "EINTR", "short"),
    "remove": ("EACCES", "EIO"),
    "renameat": ("ENOSPC", "EIO"),
    "send": ("EPIPE", "EINTR", "short"),
    "setsockopt": ("ENOBUFS",),
    "shutdown": ("ENOTCONN",),
    "socket": ("EMFILE", "EMFILE on"),
    "stat": ("EACCES", "EIO"),
    "symlink": ("ENOSPC",),
    "tcflush": ("EIO",),
    "tcgetattr": ("EIO",),
    "tcsetattr": ("EIO",),
    "timerfd_create": ("EMFILE",),
    "unlink": ("EACCES", "EIO"),
    "unlinkat": ("EACCES", "EIO"),
    "unlockpt": ("EIO",),
    "waitpid": ("EINTR",),
    "write": ("ENOSPC", "ENOSPC on", "EIO", "EINTR", "short"),
}
CANNOT_FAIL = {"sigaction", "timerfd_settime"}  # with what is given to them


class FailingTest(run.DaemonTest):
    """`action` runs the program in an environment and holds what must be so whatever fails."""

    most_open = 3  # descriptors at the program's end; what is forgotten once more each time would show

    def setUp(self):
        super().setUp()
        self.reports = os.path.join(self.folder, "reports")
        os.mkdir(self.reports)
        self.report = os.path.join(self.reports, "report")

    def files(self):
        """In the folder of the test, without what is the test's own."""
        return set(os.listdir(self.folder)) - {"reports", "scenario.json"}

    def has_come(self, function):
        """Whether a call of it has failed in this run."""
        if not os.path.exists(self.report):
            return False
        with open(self.report, encoding="ascii") as file:
            return function in file.read().split()

    def take_report(self):
        """The functions that were called, or the one that failed, and how many descriptors were open at the end."""
        calls, left_open = [], 0
        if os.path.exists(self.report):
            with open(self.report, encoding="ascii") as file:
                for line in file:
                    name, _, count = line.rstrip().partition(" ")
                    if count:
                        left_open = int(count)
                    else:
                        calls.append(name)
            os.unlink(self.report)
        return calls, left_open

    def has_failed(self, action, function, n, failure):
        """Whether there was an nth call."""
        error, _, how = failure.partition(" ")
        number, how = (0, "short") if error == "short" else (getattr(errno, error), how or "once")
        calls = []
        with self.subTest(f"{function} {n}: {failure}"):
            try:
                action(self.environment(f"{function} {n} {number} {how}"))
            finally:
                calls, left_open = self.take_report()
            self.assertLessEqual(left_open, self.most_open, "descriptors are forgotten")
        return bool(calls)

    def environment(self, plan):
        return {"LD_PRELOAD": os.environ["NTH_FAILURE"], "NTH_FAILURE": f"{plan} {self.report}"}

    def fail_every_call(self, action, expected, only=FAILURES, without=()):
        """Of all functions that the program calls, or of those of `only`; it must call those `expected`."""
        action(self.environment("* 0 0 once"))
        called = set(self.take_report()[0])
        self.assertLessEqual(expected, called)
        tried = 0
        for function in sorted((called & set(only)) if only is not FAILURES else called - CANNOT_FAIL):
            for failure in FAILURES[function]:
                n = 1
                while failure not in without and self.has_failed(action, function, n, failure):
                    n += 1
                tried += n - 1
        print(f"{self.id()}: {tried} failures of {len(called & set(only))} functions")
        self.assertGreater(tried, len(expected))

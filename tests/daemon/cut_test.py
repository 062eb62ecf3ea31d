"""The connection between application and daemon ends at every point of a session: before, in and after every line."""

import os

import proxy
import run
import session


class CutConnection(run.DaemonTest):
    def setUp(self):
        super().setUp()
        self.serve()
        self.path = os.path.join(self.folder, "p")
        self.proxy = proxy.Proxy(self.path, self.socket)
        self.addCleanup(self.proxy.close)
        self.application = self.client(self.path)
        self.number = 0  # of an event that nothing but the last check has sent

    def go_through_session(self, cut):
        """What the application is told is right, or 31; that but once, and only because of the cut."""
        lost = 0
        for call, right in session.SESSION:
            answer = self.application.call(call)
            if answer[0] == 31:
                lost += 1
                answer = self.application.call(call)
            self.assertTrue(session.is_right(answer, right), f"{cut}: {call}: {answer}")
        self.assertLessEqual(lost, 1 if cut else 0, cut)
        return lost

    def cut_everywhere(self, direction):
        losses = 0
        for lines in range(len(session.SESSION) + 1):  # one more for the greeting
            for part in (0, 0.5, 1):
                cut = proxy.Cut(direction, lines, part)
                self.proxy.arm(cut)
                self.application.call("version")  # whether or not it notices now that it was cut off
                losses += self.go_through_session(cut)
                run.wait_until(lambda: self.proxy.was_cut, f"the connection was cut {cut}")
                self.assertEqual(self.application.call("open"), (0, ""), cut)
                self.assert_events_come(cut)
                self.assert_calls(self.application, [("close", 0)])
        return losses

    def assert_events_come(self, cut):
        """Nothing was called since that would have registered the handler again."""
        self.number += 1
        event = (73, self.number.to_bytes(4, "little").hex())

        def arrives():
            # What comes before the connection is back is lost.
            self.ask("event", eventId=event[0], payload=event[1])
            return event in self.application.events

        run.wait_until(arrives, f"events come again, cut {cut}")

    def test_before_in_and_after_every_line_to_the_daemon(self):
        self.assertGreater(self.cut_everywhere("up"), len(session.SESSION))

    def test_before_in_and_after_every_line_from_the_daemon(self):
        self.assertGreater(self.cut_everywhere("down"), len(session.SESSION))

    def test_an_open_connection_is_back_without_a_call(self):
        """Cut as soon as the daemon has answered a call, which is when the application gets to know of it."""
        for number in range(50):
            self.proxy.arm(proxy.Cut("down", 3, 0))
            self.application.call("version")  # may be lost with the connection before
            self.proxy.arm(proxy.Cut("down", 2, 1))
            for call in ("register", "open"):
                run.repeat_while_unreachable(self.application, call)
            self.assert_events_come(number)
            self.assert_calls(self.application, [("versions", 0)])
            run.repeat_while_unreachable(self.application, "close")

    def test_in_the_middle_of_events(self):
        for part in (0, 0.5, 1):
            self.proxy.arm(proxy.Cut("down", 8, part))
            self.application.call("version")
            for call in ("register", "open"):
                run.repeat_while_unreachable(self.application, call)
            self.application.forget_events()
            self.ask("event", eventId=72, count=100, numbered=True)
            run.wait_until(lambda: self.proxy.was_cut, "the cut is made")
            self.assert_events_come(part)
            run.repeat_while_unreachable(self.application, "close")

    def test_calls_of_several_threads_are_told_each_for_itself(self):
        for call in ("register", "open"):
            self.application.call(call)
        for lines in range(0, 24, 3):
            self.proxy.arm(proxy.Cut("down", lines, 0.5))
            calls = {"read Power/Cpu": (0, '"std"'), "at AT+CGMM": (0, "Simulated modem\r\nOK"),
                     "lsta 14": (13, "0 0 0"), "versions": (0, "RIL 1.0 (simulated)|Modem 1.0 (simulated)")}
            begun = [(call, right, self.application.begin(call, f"{thread}"))
                     for thread in range(6) for call, right in calls.items()]
            for call, right, number in begun:
                answer = self.application.answer(number)
                if answer[0] != 31:
                    self.assertEqual(answer, right, call)
            self.assertEqual(run.repeat_while_unreachable(self.application, "at AT")[0], (0, "OK"))


if __name__ == "__main__":
    run.main()

"""Many applications and many calls at once: every answer is right, and no notification is lost or early."""

import threading

import run

CLIENTS = 8
KEYS = (("Power/Cpu", "max", "std"), ("Power/Psm", "1", "0"), ("Nmea/DRSync", "on", "off"),
        ("Nmea/Sbas", "off", "on"), ("Engine/Glonass", "0", "1"), ("Engine/Galileo", "0", "1"),
        ("Engine/Beidou", "0", "1"), ("Engine/Qzss", "1", "0"))
STORM = 10000


def numbered(count):
    return [(72, number.to_bytes(4, "little").hex()) for number in range(count)]


class Crowd(run.DaemonTest):
    def setUp(self):
        super().setUp()
        self.daemon = self.serve()

    def test_mixed_calls_of_many_clients_and_threads_amid_controls(self):
        clients = [self.open_client() for _ in range(CLIENTS)]
        begun = []
        for client, key in zip(clients, KEYS):
            begun.append((client, client.begin(f"mixed 360 {' '.join(key)}", "writer")))
            begun += [(client, client.begin("mixed 300", f"thread {number}".replace(" ", "-"))) for number in range(3)]
        controls = 0
        while not all(client.has_answered(number) for client, number in begun):
            for text in ("status", "set Sens/MinElevAngle 20", "jam gps", "event 72 0a", "no-fix on",
                         "fail ARC_ResetAGNSS --code 32", "lsta gps --status 1 --value 40", "set Sens/MinElevAngle 5",
                         "jam gps --off", "no-fix off", "clear", "lsta gps --auto", "delay ARC_ForceStopGNSS 1s",
                         "clear ARC_ForceStopGNSS"):
                self.control(text)
                controls += 1
        for client, number in begun:
            self.assertEqual(client.answer(number), (0, "right"))
        self.assertGreaterEqual(controls, 14)
        status = self.status()
        self.assertEqual([each["waiting"] for each in status["clients"]], [0] * CLIENTS)
        # method, register, open; the writer's 360, of which 40 are 3 calls; 3 times 300
        self.assertEqual([each["calls"] for each in status["clients"]], [3 + 360 + 2 * 40 + 900] * CLIENTS)

    def test_a_storm_reaches_one_client_whole_and_in_order(self):
        client = self.open_client()
        for number in range(2):
            self.assertEqual(self.control(f"event 72 --count {STORM} --numbered"),
                             f"event 72: sent {STORM} times, numbered from 0\n")
            self.assertEqual(client.wait_for_events(STORM), numbered(STORM), number)
            client.forget_events()

    def test_a_storm_reaches_every_client_whole_and_in_order(self):
        clients = [self.open_client() for _ in range(CLIENTS)]
        self.control(f"event 72 --count {STORM} --numbered")
        for client in clients:
            self.assertEqual(client.wait_for_events(STORM), numbered(STORM))

    def test_a_storm_that_takes_its_time_amid_calls(self):
        clients = [self.open_client() for _ in range(CLIENTS)]
        self.control("event 72 --count 500 --every 1ms --numbered")
        begun = [(client, client.begin("mixed 160", thread)) for client in clients for thread in ("one", "two")]
        for client, number in begun:
            self.assertEqual(client.answer(number), (0, "right"))
        for client in clients:
            self.assertEqual(client.wait_for_events(500), numbered(500))

    def test_a_handler_that_was_just_registered_gets_all_that_follows(self):
        client = self.client()
        self.assert_calls(client, [("open", 0)])
        for count in range(1, 20):
            self.assert_calls(client, [("register", 0)])
            self.ask("event", eventId=72, count=count, numbered=True)
            self.assertEqual(client.wait_for_events(count), numbered(count))
            client.forget_events()
            self.assert_calls(client, [("unregister", 0)])
            self.ask("event", eventId=73)
            self.assertEqual(client.events, [])
        self.assert_calls(client, [("register", 0)])
        self.ask("event", eventId=72, count=STORM, numbered=True)
        self.assertEqual(client.wait_for_events(STORM), numbered(STORM))

    def test_registering_in_the_middle_of_a_storm_loses_only_what_came_before(self):
        client = self.client()
        self.assert_calls(client, [("open", 0)])
        storm = threading.Thread(target=self.ask, args=("event",),
                                 kwargs={"eventId": 72, "count": 2000, "everyMs": 1, "numbered": True})
        storm.start()
        self.assert_calls(client, [("register", 0)])
        storm.join(run.LIMIT_S)
        last = (72, (1999).to_bytes(4, "little").hex())
        client.wait_for(lambda: last in client.events[-1:], "the last event")
        got = client.events
        self.assertEqual(got, numbered(2000)[2000 - len(got):])


if __name__ == "__main__":
    run.main()

"""What each command sends to the daemon, and what it says when that has been done."""

import run


class Controls(run.ControlTest):
    def test_set_says_what_the_value_was(self):
        self.assert_control("set Power/Cpu max", {"control": "set", "key": "Power/Cpu", "value": "max"},
                            "Power/Cpu: max (was std)\n", {"key": "Power/Cpu", "value": "max", "before": "std"})
        self.assert_control("set Power/Cpu max", {"control": "set", "key": "Power/Cpu", "value": "max"},
                            "Power/Cpu: max as before\n", {"key": "Power/Cpu", "value": "max", "before": "max"})
        self.assert_control("set New/Key 1 --force", {"control": "set", "key": "New/Key", "value": "1", "force": True},
                            "New/Key: 1 (was not there)\n", {"key": "New/Key", "value": "1", "before": None})

    def test_a_value_may_be_empty_have_blanks_or_be_named_as_a_command(self):
        self.assert_control(["set", "Power/Cpu", ""], {"control": "set", "key": "Power/Cpu", "value": ""},
                            "Power/Cpu:  (was std)\n", {"before": "std"})
        self.assert_control(["set", "Power/Cpu", " a b "], {"control": "set", "key": "Power/Cpu", "value": " a b "},
                            "Power/Cpu:  a b  (was std)\n", {"before": "std"})
        self.assert_control("set stop status", {"control": "set", "key": "stop", "value": "status"},
                            "stop: status (was x)\n", {"before": "x"})
        self.assert_control("set Power/Cpu -1", {"control": "set", "key": "Power/Cpu", "value": "-1"},
                            "Power/Cpu: -1 (was x)\n", {"before": "x"})
        self.assert_control(["set", "Power/Cpu", "[a]"], {"control": "set", "key": "Power/Cpu", "value": "[a]"},
                            "Power/Cpu: [a] (was x)\n", {"before": "x"})

    def test_bytes_travel_as_the_characters_of_their_numbers(self):
        self.assert_control(["set", "Key", "\udce4\udcff"], {"control": "set", "key": "Key", "value": "\xe4\xff"},
                            "Key: \\xe4\\xff (was \\x80)\n", {"before": "\x80"})

    def test_event_with_and_without_payload(self):
        self.assert_control("event 22", {"control": "event", "eventId": 22}, "event 22: sent 1 time, 0 bytes\n",
                            {"sent": 1})
        self.assert_control("event 34 00FFab", {"control": "event", "eventId": 34, "payload": "00ffab"},
                            "event 34: sent 1 time, 3 bytes\n", {"sent": 1})
        self.assert_control("event 2147483647 01", {"control": "event", "eventId": 2147483647, "payload": "01"},
                            "event 2147483647: sent 1 time, 1 byte\n", {"sent": 1})

    def test_event_as_a_storm(self):
        self.assert_control("event 72 --count 1000 --every 10ms --numbered",
                            {"control": "event", "eventId": 72, "count": 1000, "everyMs": 10, "numbered": True},
                            "event 72: sent 1000 times, one every 10ms, numbered from 0\n", {"sent": 1000})
        self.assert_control("event 0 0a --count 100000", {"control": "event", "eventId": 0, "payload": "0a",
                                                          "count": 100000},
                            "event 0: sent 100000 times, 1 byte\n", {"sent": 100000})

    def test_lsta_of_a_system(self):
        for given, system in (("gps", "gps"), ("GLONASS", "glonass"), ("BeiDou", "beidou"), ("galileo", "galileo")):
            self.assert_control(f"lsta {given} --status 1 --value 41.5",
                                {"control": "lsta", "system": system, "status": 1, "value": 41.5},
                                f"LSTA of {system}: status 1, value 41.5\n")
        self.assert_control("lsta gps --status 0", {"control": "lsta", "system": "gps", "status": 0},
                            "LSTA of gps: status 0, value 0.0\n")
        self.assert_control("lsta gps --status -7 --value -1e3",
                            {"control": "lsta", "system": "gps", "status": -7, "value": -1000.0},
                            "LSTA of gps: status -7, value -1000.0\n")
        self.assert_control("lsta gps --auto", {"control": "lsta", "system": "gps", "auto": True},
                            "LSTA of gps: by what is received\n")

    def test_no_fix_for_a_time_or_until_told_otherwise(self):
        self.assert_control("no-fix 1.5s", {"control": "no-fix", "forMs": 1500}, "no fix for 1.5s\n")
        self.assert_control("no-fix on", {"control": "no-fix"}, "no fix until 'arcsim no-fix off'\n")
        self.assert_control("no-fix off", {"control": "no-fix", "off": True}, "a fix is possible again\n")

    def test_jam_some_systems_or_all(self):
        self.assert_control("jam gps --for 20s", {"control": "jam", "systems": ["gps"], "forMs": 20000},
                            "gps: jammed for 20s\n")
        self.assert_control("jam SBAS qzss beidou galileo glonass gps sbas",
                            {"control": "jam", "systems": ["sbas", "qzss", "beidou", "galileo", "glonass", "gps"]},
                            "sbas, qzss, beidou, galileo, glonass, gps: jammed until 'arcsim jam' with --off\n")
        self.assert_control("jam --off gps", {"control": "jam", "systems": ["gps"], "off": True},
                            "gps: no longer jammed\n")
        self.assert_control("jam all", {"control": "jam", "systems": "all"},
                            "all systems: jammed until 'arcsim jam' with --off\n")

    def test_outage_and_advance_take_a_time(self):
        self.assert_control("outage 5s", {"control": "outage", "forMs": 5000},
                            "clients cannot reach the modem for 5s\n")
        self.assert_control("advance 1h", {"control": "advance", "ms": 3600000},
                            "scenario time has gone on by 1h\n")

    def test_times_in_every_unit(self):
        for given, ms, shown in (("1ms", 1, "1ms"), ("999ms", 999, "999ms"), ("1000ms", 1000, "1s"),
                                 ("0.1s", 100, "100ms"),
                                 ("1.001s", 1001, "1.001s"), ("1.250s", 1250, "1.25s"), ("90s", 90000, "90s"),
                                 ("1.5m", 90000, "90s"), ("2m", 120000, "2m"), ("60m", 3600000, "1h"),
                                 ("1.5h", 5400000, "90m"), ("24h", 86400000, "24h"), ("86400000ms", 86400000, "24h"),
                                 ("007s", 7000, "7s"), ("1.0ms", 1, "1ms"), ("0.0000025h", 9, "9ms"),
                                 ("23.9999h", 86399640, "86399.64s")):
            self.assert_control(f"advance {given}", {"control": "advance", "ms": ms},
                                f"scenario time has gone on by {shown}\n")

    def test_reset(self):
        self.assert_control("reset", {"control": "reset"}, "the modem is at its start; the scenario begins anew\n")

    def test_what_the_daemon_does_not_repeat_is_not_made_up(self):
        self.assert_control("event 1", {"control": "event", "eventId": 1}, "event 1: sent - times, 0 bytes\n")
        self.assert_control("clear", {"control": "clear"}, "- injected faults dropped, - hanging calls released\n",
                            {"dropped": None, "released": "3"})


class Stop(run.ArcsimTest):
    def test_stop_returns_when_the_daemon_has_hung_up(self):
        daemon = self.daemon(run.answers({}))
        self.assert_run(self.ask("stop"), out="the daemon has ended\n")
        self.assert_run(self.ask("stop", "--json"), out='{"ok":true,"result":{}}\n')
        self.assertEqual([request["control"] for request in daemon.take_requests(2)], ["stop", "stop"])

    def test_a_daemon_that_does_not_end_is_told_of(self):
        def talk(line, request):
            run.answers({})(line, request)
            line.wait_for_hanging_up()

        self.daemon(talk)
        self.assert_run(self.ask("stop", "--timeout", "3s"), 4,
                        err=f"arcsim: the daemon at {self.socket} has not ended within 3s\n")


if __name__ == "__main__":
    run.main()

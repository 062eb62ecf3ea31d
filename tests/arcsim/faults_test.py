"""Faults that are injected into calls, and how they are taken back."""

import run

FUNCTIONS = ("ARC_SetNotificationMethod", "ARC_Open", "ARC_Close", "ARC_RegisterNotification", "ARC_GetArcVersion",
             "ARC_GetRilVersion", "ARC_EnableLogging", "ARC_AtcTunneling", "ARC_CheckModuleSetting",
             "ARC_StartGNSSraw", "ARC_StopGNSS", "ARC_ForceStopGNSS", "ARC_ResetAGNSS", "ARC_CurrentLSTA",
             "ARC_EnableLSTA")


class Faults(run.ControlTest):
    def assert_fault(self, arguments, fault, text):
        self.assert_control(arguments, {"control": "fault", **fault}, text + "\n")

    def test_fail_the_next_call_some_calls_one_call_or_every_call(self):
        fault = {"function": "ARC_StopGNSS", "code": 2}
        self.assert_fault("fail ARC_StopGNSS --code 2", {**fault, "times": 1}, "ARC_StopGNSS: the next call answers 2")
        self.assert_fault("fail ARC_StopGNSS --code 2 --times 1", {**fault, "times": 1},
                          "ARC_StopGNSS: the next call answers 2")
        self.assert_fault("fail ARC_StopGNSS --code 2 --times 3", {**fault, "times": 3},
                          "ARC_StopGNSS: the next 3 calls answer 2")
        self.assert_fault("fail ARC_StopGNSS --code 2 --nth 4", {**fault, "call": 4},
                          "ARC_StopGNSS: call 4 from now answers 2")
        self.assert_fault("fail ARC_StopGNSS --code 2 --forever", fault, "ARC_StopGNSS: every call answers 2")
        self.assert_fault("fail ARC_StopGNSS --code -1 --times 2147483647",
                          {"function": "ARC_StopGNSS", "code": -1, "times": 2147483647},
                          "ARC_StopGNSS: the next 2147483647 calls answer -1")

    def test_fail_with_nonsense_instead_of_a_code(self):
        self.assert_fault("fail ARC_CurrentLSTA --indicator 1234",
                          {"function": "ARC_CurrentLSTA", "indicator": 1234, "times": 1},
                          "ARC_CurrentLSTA: the next call reports indicator 1234")
        self.assert_fault("fail ARC_GetRilVersion --reply-length 4096 --times 2",
                          {"function": "ARC_GetRilVersion", "replyLength": 4096, "times": 2},
                          "ARC_GetRilVersion: the next 2 calls return texts of 4096 characters")
        self.assert_fault("fail ARC_CheckModuleSetting --no-quotes --reply-length 1 --forever",
                          {"function": "ARC_CheckModuleSetting", "replyLength": 1, "quotes": False},
                          "ARC_CheckModuleSetting: every call returns texts of 1 characters and returns texts without "
                          "quotes")

    def test_delay_by_a_time_or_by_a_distribution(self):
        self.assert_fault("delay ARC_Open 800ms", {"function": "ARC_Open", "latencyMs": 800},
                          "ARC_Open: every call takes 800ms")
        self.assert_fault("delay ARC_Open 0ms --times 2", {"function": "ARC_Open", "latencyMs": 0, "times": 2},
                          "ARC_Open: the next 2 calls take 0ms")
        self.assert_fault("delay ARC_Open 2m --forever", {"function": "ARC_Open", "latencyMs": 120000},
                          "ARC_Open: every call takes 2m")
        self.assert_fault("delay ARC_Open 1s --nth 2", {"function": "ARC_Open", "latencyMs": 1000, "call": 2},
                          "ARC_Open: call 2 from now takes 1s")
        self.assert_fault("delay ARC_Open --between 5ms 30ms",
                          {"function": "ARC_Open", "latencyMs": {"min": 5, "max": 30}},
                          "ARC_Open: every call takes 5ms to 30ms")
        self.assert_fault("delay --between 5ms 5ms ARC_Open",
                          {"function": "ARC_Open", "latencyMs": {"min": 5, "max": 5}},
                          "ARC_Open: every call takes 5ms to 5ms")
        self.assert_fault("delay ARC_Open --normal 50ms 10ms --times 1",
                          {"function": "ARC_Open", "latencyMs": {"mean": 50, "deviation": 10}, "times": 1},
                          "ARC_Open: the next call takes 50ms on average, with a deviation of 10ms")

    def test_delay_off_clears_the_function(self):
        self.assert_control("delay ARC_Open off", {"control": "clear", "function": "ARC_Open"},
                            "ARC_Open: 1 injected fault dropped, 0 hanging calls released\n",
                            {"dropped": 1, "released": 0})

    def test_hang(self):
        fault = {"function": "ARC_Close", "hang": True}
        self.assert_fault("hang ARC_Close", {**fault, "times": 1}, "ARC_Close: the next call hangs")
        self.assert_fault("hang ARC_Close --times 2", {**fault, "times": 2}, "ARC_Close: the next 2 calls hang")
        self.assert_fault("hang ARC_Close --nth 1", {**fault, "call": 1}, "ARC_Close: call 1 from now hangs")
        self.assert_fault("hang ARC_Close --forever", fault, "ARC_Close: every call hangs")

    def test_clear_one_function_or_all(self):
        self.assert_control("clear", {"control": "clear"}, "2 injected faults dropped, 1 hanging call released\n",
                            {"dropped": 2, "released": 1})
        self.assert_control("clear ARC_Close", {"control": "clear", "function": "ARC_Close"},
                            "ARC_Close: 0 injected faults dropped, 3 hanging calls released\n",
                            {"dropped": 0, "released": 3})

    def test_every_function_is_known_in_any_case_with_or_without_its_prefix(self):
        for function in FUNCTIONS:
            for given in (function, function[4:], function.lower(), function[4:].upper()):
                with self.subTest(given):
                    self.assert_run(self.ask("hang", given), out=f"{function}: the next call hangs\n")
                    self.assertEqual(self.made.take_requests(1)[0]["function"], function)


class UnknownFunctions(run.ArcsimTest):
    def test_the_nearest_name_and_all_that_are_accepted_are_told(self):
        for given, meant in (("ARC_StopGNS", "ARC_StopGNSS"), ("ARC_StopGNSSS", "ARC_StopGNSS"),
                             ("stopgnsss", "ARC_StopGNSS"), ("ARC_SotpGNSS", "ARC_StopGNSS"),
                             ("force", "ARC_ForceStopGNSS"), ("currentlist", "ARC_CurrentLSTA"),
                             ("openn", "ARC_Open"), ("colse", "ARC_Close")):
            with self.subTest(given):
                self.assert_refused(given, f"did you mean {meant}? ")

    def test_nothing_is_suggested_when_nothing_is_near(self):
        for given in ("", "ARC_", "ARC_Get", "banana", "e", "ARC_StopGNSS2ARC_StopGNSS"):
            with self.subTest(given):
                self.assert_refused(given, "")

    def test_a_long_name_is_cut(self):
        self.assert_refused("x" * 10000, "", shown="x" * 40 + "...")

    def assert_refused(self, given, suggestion, shown=None):
        for command in (["fail", given, "--code", "2"], ["delay", given, "1s"], ["hang", given], ["clear", given]):
            self.assert_run(self.ask(*command), 2,
                            err=f"arcsim: {command[0]}: FUNCTION: unknown function '{shown or given}'; {suggestion}"
                                f"accepted: {', '.join(FUNCTIONS)}\n"
                                f"Run 'arcsim {command[0]} --help' for more information.\n")


if __name__ == "__main__":
    run.main()

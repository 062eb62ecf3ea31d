"""A client that sends an invalid message is told why and disconnected; others are served as before."""

import json

import run
from hostile import CALL, HELLO, HostileTest

LONG = 65536
NO_OBJECT = "a line is no JSON object; accepted: one object a line, at most 65536 bytes"
TOO_DEEP = "a line nests too deeply; accepted: objects and arrays at most 32 deep"
OTHERS = (None, True, 1, -1, 1.5, "x", [], {}, [[]], {"a": 1}, 1e300, 2 ** 63, -2 ** 63)


def without(message, key):
    return {name: value for name, value in message.items() if name != key}


class Rubbish(HostileTest):
    def assert_thrown_out(self, content, error=None, greets=False):
        """Told why, and hung up on."""
        raw = run.Raw(self.socket)
        try:
            if greets:
                self.assertEqual(raw.greet(), {"hello": "arcsim", "version": "1.0", "protocol": 1})
            raw.send(content)
            shown = content[:80] if isinstance(content, bytes) else content
            answer = raw.line()
            self.assertEqual(list(answer or []), ["error"], shown)
            if error:
                self.assertEqual(answer["error"], error, shown)
            self.assertIsNone(raw.line(), shown)
        finally:
            raw.close()
        return answer["error"]

    def test_lines_that_are_no_messages(self):
        for content in (b"\n", b"hello\n", b"{\n", b"[]\n", b"1\n", b"null\n", b'"{}"\n', b'{"a":}\n', b"\0\n",
                        bytes(range(256)) + b"\n", b'{"hello":"cli\0ent"}\n', b'{"hello":"\xff"}\n',
                        b'{"id":1e999999,"control":"status"}\n', b'{"id":1,"control":"status"} {}\n',
                        b"\x7fELF" + bytes(1000) + b"\n"):
            self.assert_thrown_out(content, NO_OBJECT)
        self.assert_others_are_served()

    def test_lines_that_are_too_long(self):
        error = "a line is longer than 65536 bytes"
        for content in (b"x" * (LONG + 1), b"x" * 1_000_000, b"x" * (LONG + 1) + b"\n", bytes(1_000_000),
                        json.dumps({**HELLO, "name": "x" * LONG}).encode("ascii") + b"\n"):
            self.assert_thrown_out(content, error)
        longest = json.dumps({**HELLO, "name": ""}).encode("ascii")
        raw = self.raw()
        raw.send(longest.replace(b'""', b'"' + b"n" * (LONG - len(longest)) + b'"') + b"\n")
        self.assertEqual(raw.line(), {"hello": "arcsim", "version": "1.0", "protocol": 1})
        self.assertIn("n" * 64, [each["name"] for each in self.status()["clients"]])
        self.assert_others_are_served()

    def test_lines_that_are_nested_deeply(self):
        deep = b"[" * 30000 + b"]" * 30000
        self.assert_thrown_out(deep + b"\n", TOO_DEEP)
        for member in (b'"control"', b'"hello"', b'"id"', b'"call"', b'"x"'):
            self.assert_thrown_out(b'{"id":1,' + member + b":" + deep + b"}\n", TOO_DEEP)
            self.assert_thrown_out(b'{"id":1,"control":"set",' + member + b":" + b'{"a":' * 9000 + b"1" + b"}" * 9001 +
                                   b"\n", TOO_DEEP)
        self.assert_thrown_out(b"[" * 60000 + b"\n")
        self.assert_others_are_served()

    def test_greetings_that_are_none(self):
        accepted = {"hello": (), "name": ("x",), "pid": (1, -1), "open": (True,), "handler": (True,)}
        for key, right in accepted.items():
            for value in OTHERS:
                if value in right and type(value) in map(type, right):
                    continue
                error = self.assert_thrown_out({**HELLO, key: value})
                self.assertIn(f"{key}: ", error)
                self.assertIn("; accepted: ", error)
            if key != "hello":
                self.assert_thrown_out(without(HELLO, key))
        self.assert_thrown_out({**HELLO, "hello": "server"}, 'hello: "server" is not accepted; accepted: "client"')
        self.assert_thrown_out({**HELLO, "name": "\u0100"}, 'name: "\u0100" is not accepted; accepted: a text of '
                                                           "characters up to U+00FF")
        self.assert_thrown_out({**HELLO, "pid": 2 ** 31}, "pid: 2147483648 is not accepted; accepted: a whole number "
                                                         "from -2147483648 to 2147483647")
        self.assert_thrown_out(HELLO, "a second hello; accepted: one, as the first message of a client", greets=True)
        self.assert_thrown_out({}, "a connection begins with hello or control")
        self.assert_thrown_out(CALL, "a connection begins with hello or control")
        self.assert_thrown_out({"x": 1}, "unknown message; accepted: hello, call, handler, control", greets=True)
        self.assert_thrown_out({"handler": 1}, "unknown message; accepted: hello, call, handler, control", greets=True)
        self.assert_others_are_served()

    def test_calls_that_are_none(self):
        texts = "a text of characters up to U+00FF"
        for changed, error in (
                ({**CALL, "call": "ARC_Nothing"}, None),
                ({**CALL, "call": None}, None),
                (without(CALL, "id"), "id: missing; accepted: a whole number from 0 to 9007199254740992"),
                ({**CALL, "id": -1}, "id: -1 is not accepted; accepted: a whole number from 0 to 9007199254740992"),
                ({**CALL, "id": 2 ** 64}, None),
                (without(CALL, "args"), "args: missing; accepted: an object with the parameters of ARC_AtcTunneling"),
                ({**CALL, "args": {}}, f"command: missing; accepted: {texts}"),
                ({**CALL, "args": {"command": "AT"}}, 'answer: missing; accepted: "set" or null'),
                ({**CALL, "args": {"command": "A\0T", "answer": None}},
                 'command: "A\\u0000T" is not accepted; accepted: a text without a zero in it'),
                ({**CALL, "args": {"command": "\u20ac", "answer": None}},
                 f'command: "\u20ac" is not accepted; accepted: {texts}'),
                ({**CALL, "args": {"command": "AT", "answer": None, "more": 1}}, None)):
            got = self.assert_thrown_out(changed, error, greets=True)
            self.assertIn("; accepted: ", got)
        for key in ("id", "call", "args"):
            for value in OTHERS:
                if key == "id" and value == 1 and value is not True:
                    continue
                self.assert_thrown_out({**CALL, key: value}, greets=True)
        self.assert_others_are_served()

    def test_arguments_of_other_kinds(self):
        right = {"ARC_SetNotificationMethod": {"method": 1}, "ARC_RegisterNotification": {"handler": "set"},
                 "ARC_EnableLogging": {"zone": 1, "text": "x"},
                 "ARC_GetRilVersion": {"primary": "set", "secondary": "set", "size": 1},
                 "ARC_CheckModuleSetting": {"key": "x", "value": None, "reply": "set", "replySize": 1,
                                            "writeIndicator": None},
                 "ARC_CurrentLSTA": {"arcTechnologyId": 10, "out": "set"},
                 "ARC_EnableLSTA": {"arcTechnologyId": 10, "enable": True, "parameter": 0}}
        for function, arguments in right.items():
            for name in arguments:
                for value in ([], {}, 1.5, "set\0", 2 ** 40):
                    self.assertIn(f"{name}: ", self.assert_thrown_out(
                        {"id": 1, "call": function, "args": {**arguments, name: value}}, greets=True))
        self.assert_others_are_served()

    def test_controls_that_are_none(self):
        raw = self.raw()
        names = ("status", "set", "event", "lsta", "fault", "clear", "no-fix", "jam", "outage", "advance", "reset",
                 "latencies", "quoted-settings")
        members = ("key", "value", "force", "quoted", "eventId", "payload", "count", "everyMs", "numbered", "system",
                   "status", "auto", "function", "code", "latencyMs", "forMs", "off", "systems", "ms", "on", "x")
        for name in names:
            for member in members:
                for value in (None, {}, [[]], -1, 1.5, "\0", 2 ** 63):
                    answer = raw.ask({"id": 7, "control": name, member: value})
                    self.assertEqual((answer["id"], answer["ok"]), (7, False), (name, member, value, answer))
                    self.assertTrue(answer["error"], answer)
        for name in ("", "Status", "nothing", None, 1, [], {}, "\0"):
            answer = raw.ask({"id": 8, "control": name})
            self.assertFalse(answer["ok"], answer)
            self.assertRegex(answer["error"], "^control: unknown; accepted: status, set, ")
        for value in (None, "1", -1, 1.5, [], {}, True, 2 ** 53 + 1):
            self.assertRegex(self.assert_thrown_out({"id": value, "control": "status"}),
                             "^id: .* is not accepted; accepted: a whole number from 0 to 9007199254740992$")
        self.assert_others_are_served()


if __name__ == "__main__":
    run.main()

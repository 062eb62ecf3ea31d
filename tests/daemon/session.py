"""The calls of the application in tests that disturb it, and the right answers.

The modem answers the same when it is asked once more, except for the indicator of a write, which tells whether that
very write has changed something."""

SESSION = (
    ("method 1", (0, "")),
    ("register", (0, "")),
    ("open", (0, "")),
    ("version", (0, "ArcRilD 1.0 (simulated)")),
    ("versions", (0, "RIL 1.0 (simulated)|Modem 1.0 (simulated)")),
    ("at AT+CGMM", (0, "Simulated modem\r\nOK")),
    ("read Power/Cpu", (0, '"std"')),
    ('write Power/Cpu "max"', (0, None)),
    ("read Power/Cpu", (0, '"max"')),
    ("start", (0, None)),
    ("lsta 14", (13, "0 0 0")),
    ("stop", (0, "")),
    ('write Power/Cpu "std"', (0, None)),
    ("close", (0, "")),
)

FUNCTIONS = {"method": "ARC_SetNotificationMethod", "register": "ARC_RegisterNotification", "open": "ARC_Open",
             "version": "ARC_GetArcVersion", "versions": "ARC_GetRilVersion", "at": "ARC_AtcTunneling",
             "read": "ARC_CheckModuleSetting", "write": "ARC_CheckModuleSetting", "start": "ARC_StartGNSSraw",
             "lsta": "ARC_CurrentLSTA", "stop": "ARC_StopGNSS", "close": "ARC_Close"}


def function_of(call):
    return FUNCTIONS[call.split()[0]]


def is_right(answer, right):
    return answer[0] == right[0] and right[1] in (None, answer[1])

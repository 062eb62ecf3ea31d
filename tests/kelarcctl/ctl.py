"""Runs kelarcctl, on the daemon at self.socket where there is one."""

import json
import os
import subprocess

import jsonschema

import run
from programs import LIMIT_S, Program, outside


class CtlTest(run.DaemonTest):
    def environment(self):
        """Where the modem is: in the program itself unless a daemon serves."""
        if os.path.exists(self.socket):
            return {**outside(), "ARCSIM_SOCKET": self.socket}
        return {**outside(), "ARCSIM_SCENARIO": self.scenario()}

    def ctl(self, *arguments):
        return subprocess.run([os.environ["KELARCCTL"], *arguments], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, encoding="utf-8", timeout=LIMIT_S, check=False,
                              env=self.environment())

    def as_a_stranger(self, *arguments):
        """On a daemon whose socket this user may not connect to."""
        os.chmod(self.folder, 0o755)
        os.chmod(self.socket, 0)
        options = {"user": 65534} if os.geteuid() == 0 else {}  # nobody, for nothing is forbidden to root
        return subprocess.run([os.environ["KELARCCTL"], *arguments], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, encoding="utf-8", timeout=LIMIT_S, check=False,
                              env=self.environment(), **options)

    def start(self, *arguments, before=()):
        """Without waiting for its end."""
        program = Program([*before, os.environ["KELARCCTL"], *arguments], self.environment())
        self.addCleanup(program.close)
        return program

    def says(self, line):
        """What a command prints that must succeed and have nothing to tell on stderr."""
        ran = self.ctl(*line.split())
        self.assertEqual((ran.returncode, ran.stderr), (0, ""), line)
        return ran.stdout.rstrip("\n")

    def document(self, line):
        """What a command says as JSON, as the schema has it; without the time."""
        return self.checked(json.loads(self.says(line + " --json")))

    def checked(self, document, definition=None):
        """A line of JSON without its time, once the schema's definition, or any of them, has been found to fit."""
        schema = Schema.get()
        if definition:
            schema = {"$ref": f"#/definitions/{definition}", "definitions": schema["definitions"]}
        jsonschema.Draft7Validator(schema).validate(document)
        self.assertEqual(next(iter(document)), "utc")
        return {key: value for key, value in document.items() if key != "utc"}


class Schema:
    """As it is installed; read once."""
    read = None

    @classmethod
    def get(cls):
        if cls.read is None:
            with open(os.path.join(os.environ["KELARCCTL_TEXTS"], "kelarcctl.schema.json"), encoding="utf-8") as file:
                cls.read = json.load(file)
            jsonschema.Draft7Validator.check_schema(cls.read)
        return cls.read


main = run.main

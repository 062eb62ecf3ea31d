"""An installed tree that is thrown away afterwards."""

import os
import pathlib
import re
import shutil
import subprocess
import tempfile
import unittest

BUILD = pathlib.Path(os.environ["BUILD"])
LIBDIR = os.environ["LIBDIR"]


def run(command, **options):
    """A command's exit code and output, which has what it said of errors, too."""
    return subprocess.run([str(word) for word in command], stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          encoding="utf-8", check=False, timeout=240, **options)


def ran(command, **options):
    """Output of a command that has to succeed."""
    done = run(command, **options)
    if done.returncode != 0:
        raise AssertionError(f"{' '.join(map(str, command))} ended with {done.returncode}\n{done.stdout}")
    return done.stdout


def install(prefix, *components):
    for component in components:
        ran(["cmake", "--install", BUILD, "--prefix", prefix, "--component", component])


def files(folder):
    return {path.relative_to(folder).as_posix() for path in folder.rglob("*") if not path.is_dir()}


def dynamic(library, tag):
    """What the dynamic section of a library says under a tag, for example NEEDED."""
    return re.findall(rf"\({tag}\).*\[(.*)\]", ran([os.environ["READELF"], "-d", "-W", library]))


class TreeTest(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)

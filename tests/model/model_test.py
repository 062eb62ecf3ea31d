"""Lets spin try every order of steps of the queue's start, stop, add, wait and read, and shows that it finds planted faults."""

import os
import pathlib
import re
import subprocess
import tempfile
import unittest

MODEL = pathlib.Path(__file__).with_name("task_queue.pml")


def check(*plants):
    """What spin's verifier prints."""
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run(["spin", "-a", *(f"-D{plant}" for plant in plants), MODEL], cwd=folder, check=True,
                       stdout=subprocess.DEVNULL, timeout=60)
        subprocess.run([os.environ.get("CC", "cc"), "-O2", "-w", "-DSAFETY", "-DCOLLAPSE", "-o", "verifier", "pan.c"],
                       cwd=folder, check=True, timeout=120)
        return subprocess.run([f"{folder}/verifier", "-m100000"], cwd=folder, check=True, capture_output=True, text=True,
                              timeout=200).stdout


class TheQueueModel(unittest.TestCase):
    def test_has_no_deadlock_no_lost_wake_up_and_runs_nothing_twice(self):
        told = check()
        self.assertIn("errors: 0", told)
        self.assertNotIn("max search depth too small", told)
        self.assertGreater(int(re.search(r"(\d+) states, stored", told).group(1)), 100_000, told)

    def test_has_no_step_that_is_never_taken(self):
        unreached = re.findall(r"unreached in proctype \w+\n((?:\t.*\n)*)", check())
        self.assertEqual(["\t(0 of "] * 4, [steps[:7] for steps in unreached])

    def test_finds_a_stop_that_notifies_once_without_the_lock(self):
        self.assertIn("invalid end state", check("PLANT_UNLOCKED_STOP"))

    def test_finds_an_adder_that_does_not_wake_the_worker(self):
        self.assertIn("invalid end state", check("PLANT_BEHIND_FRONT"))

    def test_finds_a_second_stop_that_returns_while_the_body_runs(self):
        self.assertIn("assertion violated ( !(bodyRuns)||running)", check("PLANT_EARLY_STOP"))

    def test_finds_a_name_that_dies_while_it_is_copied(self):
        self.assertIn("assertion violated recordLives[", check("PLANT_NAME_DIES"))


if __name__ == "__main__":
    unittest.main()

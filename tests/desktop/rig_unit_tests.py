"""The parts of the rig that need no desktop: waiting, finding an application, naming roles."""

import subprocess
import time
import unittest

import accessible
from waiting import WaitInVain, how_it_ended, wait_until

LONG = 600
AT_ONCE = 30  # what a busy machine may take for nothing


class Waiting(unittest.TestCase):
    def setUp(self):
        self.start = time.monotonic()

    def tearDown(self):
        self.assertLess(time.monotonic() - self.start, AT_ONCE)

    def wait_in_vain(self, command, condition=lambda: None):
        process = subprocess.Popen(command)
        self.addCleanup(process.wait)
        with self.assertRaises(WaitInVain) as caught:
            wait_until(condition, LONG, "the icon", lambda: how_it_ended("the program", process))
        return str(caught.exception)

    def test_fails_at_once_when_the_program_has_ended(self):
        self.assertEqual(self.wait_in_vain(["sh", "-c", "exit 3"]),
                         "the program has ended with code 3 while the icon was waited for")

    def test_says_by_which_signal_it_ended(self):
        self.assertEqual(self.wait_in_vain(["sh", "-c", "kill -SEGV $$"]),
                         "the program was ended by SIGSEGV while the icon was waited for")

    def test_a_look_that_fails_since_the_program_has_ended_says_so(self):
        answers = [None, "the program has ended with code 0"]

        def look():
            raise OSError("nobody answers")

        # It ends between the question whether it runs and the look.
        with self.assertRaisesRegex(WaitInVain, "the program has ended with code 0"):
            wait_until(look, LONG, "the icon", lambda: answers.pop(0))

    def test_a_look_that_fails_while_the_program_runs_is_a_failure_of_its_own(self):
        with self.assertRaises(ZeroDivisionError):
            wait_until(lambda: 1 / 0, LONG, "the icon")

    def test_what_the_program_did_just_before_its_end_counts(self):
        done = []

        def lost():
            # It does its work and ends after it was last found running.
            done.append("line")
            return "the program has ended"

        self.assertEqual(wait_until(lambda: done, LONG, "a line", lost), ["line"])


class Node:
    """As much of an accessible application as the search looks at."""

    def __init__(self, process, children=(), role="application"):
        self._process, self._children, self._role = process, list(children), role

    childCount = property(lambda self: len(self._children))

    def getChildAtIndex(self, index):
        return self._children[index]

    def get_process_id(self):
        return self._process

    def getRoleName(self):
        return self._role

    def clearCache(self):
        pass


class Finding(unittest.TestCase):
    def find(self, *nodes):
        before, accessible.applications = accessible.applications, lambda: nodes
        self.addCleanup(setattr, accessible, "applications", before)
        return accessible.application_of(7)

    def test_takes_the_application_of_the_process_even_before_it_has_a_window(self):
        mine = Node(7)
        self.assertIs(self.find(Node(6, [Node(6)]), mine), mine)

    def test_of_two_in_one_process_takes_the_one_with_windows(self):
        mine = Node(7, [Node(7)])
        self.assertIs(self.find(Node(7), mine), mine)

    def test_of_two_in_one_process_takes_none_before_one_has_a_window(self):
        self.assertIsNone(self.find(Node(7), Node(7)))

    def test_a_button_is_a_button_with_every_accessibility_library(self):
        for role in ("push button", "button"):
            button = Node(7, role=role)
            self.assertIs(accessible.find(button, role="button"), button)


if __name__ == "__main__":
    unittest.main(verbosity=2)

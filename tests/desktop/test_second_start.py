#!/usr/bin/python3 -B
"""A second start that no session bus tells of the first: both would write the same history."""

import signal
import subprocess

import desktop_test
from busless import BuslessTest
from desktop_test import PATIENCE

RUNS = "Kestrin is already running.\n"


class ASecondStart(BuslessTest):
    def second(self, address):
        """Starts it once more on the same state and says how it ended and what it said."""
        env = {**self.desktop.env, "XDG_DATA_HOME": str(self.data), **self.environment(address)}
        env.pop("QT_LOGGING_RULES")
        done = subprocess.run([desktop_test.PROGRAM], env=env, timeout=PATIENCE, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        return done.returncode, done.stdout, done.stderr

    def minimize(self):
        """Puts the window of the first out of the way."""
        self.wait_until_active()
        self.desktop.run(["xdotool", "getactivewindow", "windowminimize"])
        self.wait_until(lambda: not self.is_active(), "the window to go")

    def assert_only_the_first_checks(self):
        self.wait_until_active()
        self.press_on_until(lambda: all(self.history(site) for site in self.sites))
        self.assert_history_as_expected("--lines", "1")

    def test_says_so_ends_and_brings_the_window_of_the_first_forward(self):
        self.start_without_bus("")
        self.minimize()
        self.assertEqual(self.second(""), (0, "", RUNS))
        self.assert_only_the_first_checks()

    def test_on_a_bus_finds_the_first_without_one(self):
        self.start_without_bus("")
        self.minimize()
        self.assertEqual(self.second(self.desktop.env["DBUS_SESSION_BUS_ADDRESS"]), (0, "", RUNS))
        self.assert_only_the_first_checks()

    def test_without_a_bus_finds_the_first_on_one(self):
        self.start_without_bus(self.desktop.env["DBUS_SESSION_BUS_ADDRESS"])
        self.wait_until_active()
        self.minimize()
        self.assertEqual(self.second(""), (0, "", RUNS))
        self.assert_only_the_first_checks()

    def test_after_the_first_was_killed_is_a_first_one(self):
        self.start_without_bus("")
        self.wait_until_active()
        self.program.send_signal(signal.SIGKILL)
        self.exit_code()
        self.start_without_bus("")
        self.assert_only_the_first_checks()

    def test_many_at_once_leave_one(self):
        env = {**self.desktop.env, "XDG_DATA_HOME": str(self.data), **self.environment("")}
        starts = [self.desktop.spawn([desktop_test.PROGRAM], self.data.name, env=env) for _ in range(6)]
        self.wait_until(lambda: sum(start.poll() is None for start in starts) <= 1, "all but one to end")
        self.program = next((start for start in starts if start.poll() is None), None)
        self.assertIsNotNone(self.program, "none is left")
        self.assertEqual([start.poll() for start in starts if start is not self.program], [0] * 5)
        self.assert_only_the_first_checks()


if __name__ == "__main__":
    desktop_test.main()

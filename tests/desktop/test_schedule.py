#!/usr/bin/python3 -B
"""The time between two cycles, as the kernel has it: on the clock that goes on through machine sleep, and no other."""

import pathlib
import re

import desktop_test
from desktop_test import PATIENCE

INTERVAL = 3600
CLOCK_BOOTTIME = 7


class TheNextCycle(desktop_test.DesktopTest):
    def timers(self):
        """Clock and seconds left of each timer the program has; 0 seconds when it is not set."""
        found = []
        for entry in pathlib.Path(f"/proc/{self.program.pid}/fdinfo").iterdir():
            try:
                text = entry.read_text()
            except FileNotFoundError:
                continue
            if "clockid:" in text:
                clock = int(re.search(r"clockid: (\d+)", text).group(1))
                found.append((clock, int(re.search(r"it_value: \((\d+),", text).group(1))))
        return found

    def start_monitoring(self, interval):
        sites = self.write_sites("status-200", interval=interval)
        self.start_program()
        self.icon().choose("Start")
        self.wait_for_lines(sites, 1)

    def test_is_awaited_on_the_clock_that_goes_on_through_machine_sleep_and_given_up_by_stop(self):
        self.start_monitoring(INTERVAL)
        self.wait_until(lambda: any(left > 0 for _, left in self.timers()), "a timer to be set")
        ((clock, left),) = self.timers()
        self.assertEqual(clock, CLOCK_BOOTTIME)
        self.assertTrue(INTERVAL - PATIENCE <= left <= INTERVAL, left)
        self.icon().choose("Stop")
        self.wait_until(lambda: self.timers() == [(CLOCK_BOOTTIME, 0)], "the timer to be given up")


if __name__ == "__main__":
    desktop_test.main()

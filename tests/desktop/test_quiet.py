#!/usr/bin/python3 -B
"""What the program costs while there is nothing to do: almost no wake-ups, and nothing that grows.

Without accessibility, whose traffic would wake the program.
"""

import pathlib
import time

import desktop_test

SETTLING = 3
WATCHED = 20
WAKE_UPS = 3


class Quiet(desktop_test.DesktopTest):
    accessibility = False

    def wake_ups(self):
        """How often each thread has waited for something so far."""
        counts = {}
        for task in pathlib.Path(f"/proc/{self.program.pid}/task").iterdir():
            try:
                text = (task / "status").read_text()
            except (FileNotFoundError, ProcessLookupError):
                continue  # a thread that ended since the listing
            status = dict(line.split(":", 1) for line in text.splitlines())
            counts[f"{status['Name'].strip()} {task.name}"] = int(status["voluntary_ctxt_switches"])
        return counts

    def settle(self):
        """Comes back when the program has not stirred for a while."""
        since, before = time.monotonic(), self.wake_ups()

        def has_settled():
            nonlocal since, before
            now = self.wake_ups()
            if now != before:
                since, before = time.monotonic(), now
            return time.monotonic() - since >= SETTLING

        self.wait_until(has_settled, f"a program that does not stir for {SETTLING} s, as in {before}")

    def assert_quiet(self):
        self.settle()
        before = self.wake_ups()
        time.sleep(WATCHED)
        after = self.wake_ups()
        woken = {thread: count - before.get(thread, 0) for thread, count in after.items()
                 if count != before.get(thread)}
        self.assertLessEqual(sum(woken.values()), WAKE_UPS, f"woken in {WATCHED} s: {woken}")

    def wait_for_menu_entry(self, label):
        self.wait_until(lambda: label in self.icon().menu().values(), f"the entry {label!r}")

    def test_stopped_and_never_opened(self):
        self.write_sites("statuses")
        self.start_program()
        self.assert_quiet()

    def test_between_two_cycles(self):
        sites = self.write_sites("statuses")
        self.start_program()
        self.icon().choose("Start")
        self.wait_for_menu_entry("Stop")
        self.wait_for_lines(sites, 1)
        self.assert_quiet()

    def test_between_two_cycles_after_the_popover_was_open(self):
        sites = self.write_sites("statuses")
        self.start_program()
        self.icon().click()
        self.wait_until_active()
        self.icon().choose("Start")
        self.wait_for_lines(sites, 1)
        self.desktop.press_key("Escape")
        self.wait_until(lambda: not self.is_active(), "the popover to close")
        self.assert_quiet()


if __name__ == "__main__":
    desktop_test.main()

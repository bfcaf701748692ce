#!/usr/bin/python3 -B
"""How the program starts a second time, and how it ends: at once and with code 0, whatever it is doing."""

import contextlib
import os
import pathlib
import signal

import desktop_test
import logs
from desktop_test import PATIENCE

AT_ONCE = 5
SILENT_NAME = "name-silent.lab.kestrin-test.example"


class ASecondStart(desktop_test.DesktopTest):
    def test_it_opens_the_dashboard_of_the_first_and_ends_with_0(self):
        self.start_program()
        self.assertIsNone(self.window())
        second = self.desktop.spawn([desktop_test.PROGRAM], "second", env={
            **self.desktop.env, "XDG_DATA_HOME": str(self.data)})
        self.assertEqual(second.wait(PATIENCE), 0)
        self.wait_for_window()
        self.assertEqual(self.processes(), [self.program.pid])

    def test_many_at_once_leave_one(self):
        starts = [self.desktop.spawn([desktop_test.PROGRAM], "many", env={
            **self.desktop.env, "XDG_DATA_HOME": str(self.data)}) for _ in range(6)]
        self.wait_until(lambda: sum(start.poll() is None for start in starts) <= 1, "all but one to end")
        self.program = next((start for start in starts if start.poll() is None), None)
        self.assertIsNotNone(self.program, "none is left")
        self.wait_for_window()
        self.assertEqual([start.poll() for start in starts if start is not self.program], [0] * 5)

    def processes(self):
        """Every process of the program on this test's state."""
        mark = f"XDG_DATA_HOME={self.data}".encode()
        found = []
        for entry in pathlib.Path("/proc").iterdir():
            with contextlib.suppress(OSError):
                if entry.name.isdigit() and os.readlink(entry / "exe") == desktop_test.PROGRAM and \
                        mark in (entry / "environ").read_bytes().split(b"\0"):
                    found.append(int(entry.name))
        return found


class Quitting(desktop_test.DesktopTest):
    def assert_ends_at_once(self):
        self.assertEqual(self.exit_code(AT_ONCE), 0)
        self.desktop.wait_until(lambda: not self.icon_is_there(), "the icon to go", PATIENCE)

    def wait_for_visit(self, host, before):
        self.wait_until(lambda: visits(host) > before, f"a visit to {host}")

    def test_the_button_ends_the_program(self):
        self.write_sites("status-200")
        self.start_program()
        self.open_dashboard()
        self.press("Quit")
        self.assert_ends_at_once()

    def test_the_signals_that_end_a_session_end_the_program(self):
        for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
            with self.subTest(number):
                self.start_program()
                self.program.send_signal(number)
                self.assert_ends_at_once()

    def test_the_button_ends_it_during_a_cycle_and_nothing_is_written(self):
        self.write_sites("silent", "status-200")
        before = visits("silent.lab.kestrin-test.example")
        self.start_program()
        self.open_dashboard()
        self.press("Start")
        self.wait_for_visit("silent.lab.kestrin-test.example", before)
        self.press("Quit")
        self.assert_ends_at_once()
        self.assertEqual(self.history_sizes(), {})

    def test_a_signal_ends_it_during_a_cycle_and_nothing_is_written(self):
        self.write_sites("silent", "status-200")
        before = visits("silent.lab.kestrin-test.example")
        self.start_program()
        self.icon().choose("Start")
        self.wait_for_visit("silent.lab.kestrin-test.example", before)
        self.program.send_signal(signal.SIGTERM)
        self.assert_ends_at_once()
        self.assertEqual(self.history_sizes(), {})

    def test_a_name_server_that_says_nothing_does_not_hold_it_up(self):
        self.let_silent_names_hang()
        self.write_sites("name-silent")
        before = logs.lookups(SILENT_NAME)
        self.start_program()
        self.icon().choose("Start")
        self.wait_until(lambda: logs.lookups(SILENT_NAME) > before, "the look-up")
        self.program.send_signal(signal.SIGTERM)
        self.assert_ends_at_once()
        self.assertEqual(self.history_sizes(), {})


def visits(host):
    return sum(event["event"] == "request" and event["host"] == host for event in logs.events("requests"))


if __name__ == "__main__":
    desktop_test.main()

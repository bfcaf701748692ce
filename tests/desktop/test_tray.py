#!/usr/bin/python3 -B
"""The icon in the panel, in whichever order the two start, and its menu."""

import signal

import desktop_test
from desktop_test import PATIENCE


class AProgramThatWasThereFirst(desktop_test.DesktopTest):
    panel = False

    def test_its_icon_appears_with_the_panel_and_again_after_the_panels_crash(self):
        self.start_program()
        self.wait_for_window()  # nobody is left looking at nothing
        self.desktop.start_panel()
        self.addCleanup(lambda: self.desktop.panel and self.desktop.stop_panel())
        self.icon().wait_until_drawn()
        self.desktop.stop_panel(signal.SIGKILL)
        self.assertIsNone(self.program.poll())
        self.desktop.start_panel()
        self.icon().wait_until_drawn()


class TheMenu(desktop_test.DesktopTest):
    def setUp(self):
        super().setUp()
        self.sites = self.write_sites("status-200", "status-503")
        self.start_program()

    def wait_for_menu(self, *labels):
        self.wait_until(lambda: tuple(self.icon().menu().values()) == labels, f"the menu {labels}")

    def test_open_dashboard_opens_it(self):
        self.assertIsNone(self.window())
        self.icon().choose("Open dashboard")
        self.wait_for_window()

    def test_start_starts_and_stop_stops(self):
        self.wait_for_menu("Open dashboard", "Start", "Quit")
        self.icon().choose("Start")
        self.wait_for_menu("Open dashboard", "Stop", "Quit")
        self.wait_for_lines(self.sites, 1)
        self.icon().choose("Stop")
        self.wait_for_menu("Open dashboard", "Start", "Quit")
        self.open_dashboard()
        self.wait_for_text("Monitoring paused")

    def test_quit_ends_the_program(self):
        self.icon().choose("Quit")
        self.assertEqual(self.exit_code(), 0)
        self.desktop.wait_until(lambda: not self.icon_is_there(), "the icon to go", PATIENCE)


if __name__ == "__main__":
    desktop_test.main()

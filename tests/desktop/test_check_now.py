#!/usr/bin/python3 -B
"""Check now, as the user sees it and as the files show it."""

import accessible
import desktop_test
from desktop_test import middle


class CheckNowWhileMonitoringIsStopped(desktop_test.DesktopTest):
    def test_every_site_gets_exactly_one_line(self):
        sites = self.write_sites("statuses", "certificates", "relative")
        self.start_program()
        self.open_dashboard()
        button = self.press("Check now")
        self.wait_for_lines(sites, 1)
        self.wait_for_name(button, "Check now")
        self.assert_history_as_expected("--lines", "1")
        self.assertIn("Monitoring paused", self.texts())

        accessible.press(button)
        self.wait_for_lines(sites, 2)
        self.wait_for_name(button, "Check now")
        self.assert_history_as_expected("--lines", "2")

    def test_the_button_says_checking_and_cannot_be_pressed_until_the_end(self):
        sites = self.write_sites("crowd")
        self.start_program()
        self.open_dashboard()
        button = self.press("Check now")
        self.wait_for_name(button, "Checking")
        self.wait_until(lambda: not accessible.is_enabled(button), "the button to be disabled")
        self.assertEqual(desktop_test.name_of(button), "Checking")
        self.desktop.click(*middle(button))
        self.wait_for_name(button, "Check now")
        self.wait_until(lambda: accessible.is_enabled(button), "the button to be enabled again")
        self.assertEqual([len(self.history(site)) for site in sites], [1] * len(sites))

    def test_the_rows_show_what_the_check_saw(self):
        self.write_sites("status-200", "status-503", "refused", names={
            "status-200": "Shop", "status-503": "Blog", "refused": "Documentation"})
        self.start_program()
        self.open_dashboard()
        self.press("Check now")
        self.wait_for_text("HTTP 503")
        texts = self.texts()
        for expected in ("Shop", "UP", "HTTP 200", "Blog", "DOWN", "Documentation", "The connection was refused."):
            self.assertIn(expected, texts)


if __name__ == "__main__":
    desktop_test.main()

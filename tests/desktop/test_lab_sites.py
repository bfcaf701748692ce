#!/usr/bin/python3 -B
"""One whole cycle over the private internet: what is written about each site, and what its servers saw."""

import accessible
import desktop_test
import logs
from desktop_test import middle

# Several sites let their time-out of fifteen seconds pass, two at a time.
WHOLE_CYCLE = 300


class OneCycleOverEverySite(desktop_test.DesktopTest):
    def test_what_is_written_and_what_the_servers_saw_is_as_the_table_says(self):
        self.write_sites()
        self.start_program()
        self.open_dashboard()
        check_now = self.button("Check now")
        self.press("Start")
        self.wait_for_name(check_now, "Checking")
        self.wait_for_name(check_now, "Check now", WHOLE_CYCLE)
        self.assert_history_as_expected("--lines", "1")
        self.assertEqual(logs.canary_calls(), [], "somebody reached a private address")
        # The crowd keeps both places taken, and the servers never see a third visitor.
        self.assertEqual(logs.most_visitors(), 2)
        self.assertIn("Monitoring active", self.texts())


class StartingByTheIcon(desktop_test.DesktopTest):
    def test_a_click_on_the_icon_and_on_start_check_the_sites(self):
        sites = self.write_sites("status-200", "to-www-and-back", "status-503", "expired")
        self.start_program()
        self.icon().click()
        self.wait_for_window()
        self.desktop.click(*middle(self.button("Start")))
        self.wait_for_lines(sites, 1)
        self.wait_for_text("Monitoring active")
        self.assertEqual(accessible.find(self.application(), "Start", "button"), None)
        self.assert_history_as_expected("--lines", "1")


if __name__ == "__main__":
    desktop_test.main()

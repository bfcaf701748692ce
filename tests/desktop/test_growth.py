#!/usr/bin/python3 -B
"""What the program holds does not grow with the checks it makes."""

import accessible
import desktop_test


class CheckingAgainAndAgain(desktop_test.DesktopTest):
    def check(self, sites, count):
        accessible.press(self.check_now)
        self.wait_for_lines(sites, count)
        self.wait_for_name(self.check_now, "Check now")

    def test_five_more_cycles_need_no_more_threads_or_descriptors(self):
        sites = self.write_sites("statuses", "refused", "expired", "to-www-and-back", "unknown-name")
        self.start_program()
        self.open_dashboard()
        self.check_now = self.button("Check now")
        threads = self.at_rest(self.held()[0])[0]
        for count in (1, 2):
            self.check(sites, count)
        descriptors = self.at_rest(threads)[1]
        for count in range(3, 8):
            self.check(sites, count)
        self.assertLessEqual(self.at_rest(threads)[1], descriptors, "descriptors")
        self.assert_history_as_expected("--lines", "7")


if __name__ == "__main__":
    desktop_test.main()

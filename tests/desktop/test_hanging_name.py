#!/usr/bin/python3 -B
"""A name that nobody answers for: its check ends after half a minute, and nothing else suffers."""

import json

import accessible
import desktop_test
from desktop_test import PATIENCE

GIVEN_UP_MS = 30_000
AT_ONCE_MS = 5_000
AT_ONCE = 5
SENTENCE = "DNS: The lookup did not return"


class ANameThatHangs(desktop_test.DesktopTest):
    def last_check(self, site):
        return json.loads(self.history(site)[-1])

    def assert_given_up(self, check, least_ms, most_ms):
        self.assertEqual((check["dns_ok"], check["up"], check["error"]), (False, False, SENTENCE))
        self.assertTrue(least_ms <= check["elapsed_ms"] <= most_ms, check)

    def test_is_given_up_after_thirty_seconds_and_holds_up_neither_the_next_check_nor_quit(self):
        self.let_silent_names_hang()
        sites = self.write_sites("name-silent", "status-200")
        self.start_program()
        self.open_dashboard()
        check_now = self.press("Check now")
        self.wait_for_lines(sites, 1, GIVEN_UP_MS / 1000 + PATIENCE)
        self.assert_given_up(self.last_check("name-silent"), GIVEN_UP_MS, GIVEN_UP_MS + PATIENCE * 1000)
        self.assertTrue(self.last_check("status-200")["up"])
        self.wait_for_text(SENTENCE)

        # The lookup still hangs: its name is not asked again.
        self.wait_for_name(check_now, "Check now")
        accessible.press(check_now)
        self.wait_for_lines(sites, 2)
        self.assert_given_up(self.last_check("name-silent"), 0, AT_ONCE_MS)
        self.assertTrue(self.last_check("status-200")["up"])

        self.press("Quit")
        self.assertEqual(self.exit_code(AT_ONCE), 0)


if __name__ == "__main__":
    desktop_test.main()

#!/usr/bin/python3 -B
"""Three hundred sites in the list: the popover opens, fits, scrolls, and the keyboard is enough."""

import time

import accessible
import desktop_test
import scenarios
from desktop_test import name_of, spot

SITES = 300
SCREEN = 0, 0, 1280, 800
# Far beyond what it takes, and still short of what a user takes for a hang.
AT_ONCE = 5


class ThreeHundredSites(desktop_test.DesktopTest):
    def setUp(self):
        super().setUp()
        chosen = scenarios.everything_at_once(SITES, SITES)
        self.names = {scenario.id: f"Website {number}" for number, scenario in enumerate(chosen, 1)}
        self.write_scenarios(chosen, self.names)
        self.start_program()
        start = time.monotonic()
        self.icon().click()
        self.popover = self.wait_for_window()
        self.took = time.monotonic() - start
        self.wait_until_active()

    def rows(self):
        """The name labels of the list, by their text."""
        return {name_of(node): node for node in accessible.find_all(self.popover, role="label", showing=False)
                if name_of(node).startswith("Website ")}

    def lies_within_window(self, node):
        x, y, width, height = spot(node)
        left, top, whole_width, whole_height = spot(self.popover)
        return x >= left and y >= top and x + width <= left + whole_width and y + height <= top + whole_height

    def wait_until_in_sight(self, node):
        self.wait_until(lambda: self.lies_within_window(node), f"{name_of(node)!r} to scroll into the window")

    def test_it_opens_at_once_fits_the_screen_and_lists_every_site_in_order(self):
        self.assertLess(self.took, AT_ONCE)
        left, top, width, height = spot(self.popover)
        self.assertTrue(left >= 0 and top >= 0 and left + width <= SCREEN[2] and top + height <= SCREEN[3])
        self.assertEqual(list(self.rows()), list(self.names.values()))
        for name in ("Start", "Check now", "Quit"):
            self.assertTrue(self.lies_within_window(self.button(name)), name)

    def test_the_last_one_is_a_step_back_from_the_list_and_scrolls_into_sight(self):
        last = self.rows()[f"Website {SITES}"]
        self.assertFalse(self.lies_within_window(last))
        self.wait_until(lambda: accessible.is_focused(self.list()), "the list to have the focus")
        self.desktop.press_key("shift+Tab")
        self.wait_until_in_sight(last)

    def test_page_down_and_page_up_scroll_from_end_to_end(self):
        rows = self.rows()
        for key, name in (("Next", f"Website {SITES}"), ("Prior", "Website 1")):
            self.desktop.run(["xdotool", "key", "--repeat", str(SITES // 4), "--delay", "1", key])
            self.wait_until_in_sight(rows[name])

    def list(self):
        return accessible.find(self.popover, "Websites")


if __name__ == "__main__":
    desktop_test.main()

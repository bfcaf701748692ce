#!/usr/bin/python3 -B
"""A popover that is opened again right after it was closed has the keyboard as at its first opening."""

import accessible
import desktop_test

# Whether the windowing system tells of the lost focus before the next opening is a matter of chance.
TIMES = 12


class OpenedAgainAtOnce(desktop_test.DesktopTest):
    def setUp(self):
        super().setUp()
        self.write_sites("status-200")
        self.start_program()

    def wait_until_list_has_focus(self):
        self.wait_until(lambda: (found := self.list()) and accessible.is_focused(found), "the list to have focus")

    def list(self):
        return self.window() and accessible.find(self.window(), "Websites")

    def test_by_the_icon_it_has_the_keyboard(self):
        for _ in range(TIMES):
            self.icon().click()
            self.wait_until_list_has_focus()
            self.desktop.press_key("Escape")
            self.wait_until_closed()

    def test_by_a_second_start_it_has_the_keyboard(self):
        for _ in range(TIMES):
            self.start_again()
            self.wait_until_list_has_focus()
            self.desktop.press_key("Escape")
            self.wait_until_closed()


if __name__ == "__main__":
    desktop_test.main()

#!/usr/bin/python3 -B
"""The popover: where it opens, what closes it, that all of it can be read, and that the keyboard is enough."""

import accessible
import desktop_test
from desktop_test import PATIENCE, name_of, spot

SCREEN = 0, 0, 1280, 800
ICON_TO_POPOVER = 20
LONG = "A shop whose owner could not stop before the name of it had become longer than any popover is wide"
# A message of more than one line.
BLOCKED = "Invalid or disallowed destination: https://user:pw@to-credentials.lab.kestrin-test.example/landed"


def lies_within(inner, outer):
    x, y, width, height = inner
    left, top, whole_width, whole_height = outer
    return x >= left and y >= top and x + width <= left + whole_width and y + height <= top + whole_height


def overlap(one, other):
    return (one[0] < other[0] + other[2] and other[0] < one[0] + one[2]
            and one[1] < other[1] + other[3] and other[1] < one[1] + one[3])


class PopoverTest(desktop_test.DesktopTest):
    def open_by_icon(self):
        self.place = self.icon().click()
        self.wait_for_window()
        self.wait_until_active()

    def is_closed_for_good(self):
        """Nothing that the icon has told since is still to be dealt with."""
        self.wait_until_closed()
        self.icon().wait_until_heard()
        self.wait_until_closed()


class OpeningAndClosing(PopoverTest):
    def setUp(self):
        super().setUp()
        self.write_sites("status-200", "status-503")
        self.start_program()

    def test_a_click_on_the_icon_opens_it_beside_the_click_inside_the_screen(self):
        self.open_by_icon()
        self.wait_until(lambda: lies_within(spot(self.window()), SCREEN), "the popover inside the screen")
        x, y, width, height = spot(self.window())
        _, icon_y, _, icon_height = self.icon().area()
        self.assertTrue(icon_y + icon_height <= y <= icon_y + icon_height + ICON_TO_POPOVER, f"it lies at {y}")
        self.assertTrue(x <= self.place[0] <= x + width, f"it lies from {x} to {x + width}, the click at {self.place}")

    def test_a_second_click_closes_it_and_does_not_open_it_again(self):
        with self.watching_activations() as activations:
            self.open_by_icon()
            self.icon().click()
            self.wait_until(lambda: activations() == 2, "the panel to pass on the click")
            self.is_closed_for_good()
            self.icon().click()
            self.wait_until(lambda: activations() == 3, "the panel to pass on the click")
            self.wait_for_window()

    def test_escape_closes_it_and_the_program_goes_on(self):
        self.open_by_icon()
        self.desktop.press_key("Escape")
        self.wait_until_closed()
        self.assertIsNone(self.program.poll())
        self.open_by_icon()

    def test_another_window_that_takes_the_focus_closes_it(self):
        self.open_by_icon()
        other = self.desktop.spawn(["xmessage", "-title", "Another", "Look here"])
        self.addCleanup(other.wait)
        self.addCleanup(other.terminate)
        self.desktop.run(["xdotool", "search", "--sync", "--onlyvisible", "--name", "Another", "windowactivate"],
                         PATIENCE)
        self.wait_until_closed()
        self.assertIsNone(other.poll())

    def watching_activations(self):
        return Activations(self)


class Activations:
    """Counts what the panel tells the icon, by listening on the bus."""

    def __init__(self, test):
        self._desktop = test.desktop

    def __enter__(self):
        match = "type='method_call',interface='org.kde.StatusNotifierItem',member='Activate'"
        self._listener = self._desktop.spawn(["dbus-monitor", "--session", match], f"bus-{id(self)}")
        # Its own farewell to being an ordinary client is the first that it writes down.
        self._desktop.wait_until(lambda: "NameLost" in self._text(), "the listener on the bus", PATIENCE)
        return lambda: self._text().count("member=Activate")

    def __exit__(self, *_):
        self._listener.terminate()
        self._listener.wait()

    def _text(self):
        with open(self._desktop.log_path(f"bus-{id(self)}"), encoding="utf-8") as file:
            return file.read()


class WhatCanBeRead(PopoverTest):
    def assert_nothing_is_cut_off(self):
        frame = spot(self.window())
        self.assertTrue(lies_within(frame, SCREEN), frame)
        shown = [node for role in ("label", "button") for node in accessible.find_all(self.window(), role=role)
                 if name_of(node)]
        places = [(name_of(node), spot(node)) for node in shown]
        cut = [place for place in places if not lies_within(place[1], frame)]
        self.assertEqual(cut, [], f"beyond the window {frame}")
        crossing = [(one, other) for index, one in enumerate(places) for other in places[:index]
                    if overlap(one[1], other[1])]
        self.assertEqual(crossing, [], "one lies over the other")
        return [name for name, _ in places]

    def test_every_label_lies_within_the_window_before_and_after_a_check(self):
        sites = self.write_sites("status-200", "status-503", "to-credentials", names={"status-503": LONG})
        self.start_program()
        self.open_by_icon()
        self.assertIn(LONG, self.assert_nothing_is_cut_off())
        height = spot(self.window())[3]
        self.press("Check now")
        self.wait_for_lines(sites, 1)
        self.wait_for_text(BLOCKED)
        self.wait_for_text("Check now")
        self.wait_until(lambda: spot(self.window())[3] > height, "the popover to grow with its longest line")
        self.assertIn(BLOCKED, self.assert_nothing_is_cut_off())
        self.close_dashboard()
        self.open_by_icon()
        self.assertIn(BLOCKED, self.assert_nothing_is_cut_off())

    def test_a_long_message_about_a_bad_file_is_read_in_full(self):
        key = "key-" * 19
        self.put_sites_file('{"sites": [], "%s": 1, "%s": 2}' % (key, key))
        self.start_program()
        self.open_by_icon()
        message = f"sites.json: This is not valid JSON: the key “{key}” stands there twice."
        self.wait_for_text(message)
        self.assertIn(message, self.assert_nothing_is_cut_off())

    def test_a_long_notice_is_read_in_full(self):
        self.write_sites("status-200", "http-site", names={"http-site": LONG})
        self.start_program()
        self.open_by_icon()
        notice = f"“{LONG}” needs a public HTTPS URL. Open Settings to update it before monitoring."
        self.wait_for_text(notice)
        self.assertIn(notice, self.assert_nothing_is_cut_off())

    def test_many_sites_scroll_and_the_buttons_stay_within_the_screen(self):
        self.write_sites("redirects", "statuses")
        self.start_program()
        self.open_by_icon()
        frame = spot(self.window())
        self.assertTrue(lies_within(frame, SCREEN), frame)
        for name in ("Start", "Check now", "Quit"):
            self.assertTrue(lies_within(spot(self.button(name)), frame), name)


class TheKeyboard(PopoverTest):
    def setUp(self):
        super().setUp()
        self.sites = self.write_sites("status-200", "status-503")
        self.start_program()
        self.open_by_icon()

    def focused(self):
        """The name of the control that has the focus."""
        root = self.application()
        return next((name_of(node) for node in accessible.walk(root) if accessible.is_focused(node)), None)

    def go_to(self, name):
        passed = [self.focused()]
        while passed[-1] != name:
            self.assertLess(len(passed), 20, f"Tab led only to {passed}")
            self.desktop.press_key("Tab")
            self.wait_until(lambda: self.focused() not in (None, passed[-1]), f"Tab to lead on from {passed}")
            passed.append(self.focused())

    def test_tab_reaches_start_and_space_presses_it(self):
        self.go_to("Start")
        self.desktop.press_key("space")
        self.wait_for_text("Monitoring active")
        self.wait_for_lines(self.sites, 1)

    def test_tab_reaches_check_now_and_space_presses_it(self):
        self.go_to("Check now")
        self.desktop.press_key("space")
        self.wait_for_lines(self.sites, 1)
        self.assertIn("Monitoring paused", self.texts())

    def test_check_now_has_the_focus_again_after_the_check_and_quit_never_has_it(self):
        self.write_sites("slow-0", "slow-1")
        self.close_dashboard()
        self.open_by_icon()
        self.wait_for_text("slow-0")
        self.go_to("Check now")
        self.desktop.press_key("space")
        self.wait_until(lambda: self.focused() not in ("Check now", None), "the button to be disabled")
        self.assertEqual(self.focused(), "Websites")
        self.desktop.press_key("space")
        self.wait_for_lines(["slow-0", "slow-1"], 1)
        self.wait_until(lambda: self.focused() == "Check now", "the button to have the focus again")
        self.assertIsNone(self.program.poll())

    def test_tab_reaches_quit_and_space_presses_it(self):
        self.go_to("Quit")
        self.desktop.press_key("space")
        self.assertEqual(self.exit_code(), 0)


if __name__ == "__main__":
    desktop_test.main()

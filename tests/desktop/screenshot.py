#!/usr/bin/python3 -B
"""screenshot.py PROGRAM PICTURE - inside the private internet: makes the picture of the popover that the README shows.

Five websites of the scenario table, under names that a reader understands, checked once; the popover and the panel's
icon are cut out of the screen.
"""

import os
import sys

import desktop_test
from desktop_test import spot

SITES = {"status-200": "Shop", "to-www-and-back": "Blog", "status-503": "Documentation", "chain-5": "Customer portal",
         "drips-in-time": "Newsletter archive"}
MARGIN = 16
GROUND = "#6f8fa8"


class Screenshot(desktop_test.DesktopTest):
    def runTest(self):
        self.write_sites(*SITES, names=SITES, interval=300)
        self.start_program()
        self.icon().choose("Start")
        self.wait_for_lines(SITES, 1)
        self.icon().click()
        self.wait_for_window()
        self.wait_for_text("Check now")
        self.wait_until_active()
        self.cut_out(spot(self.window()), self.icon().area())
        print(f"The picture lies at {PICTURE}")

    def cut_out(self, popover, icon):
        """The panel's end and the popover as they stand to each other, on a plain ground."""
        x, y, width, height = popover
        left, panel_height = x - MARGIN, icon[1] + icon[3]
        right = icon[0] + icon[2]
        parts = [(left, 0, right - left, panel_height), (x, y, width, height)]
        command = ["convert", "-size", f"{right - left}x{y + height + MARGIN}", f"xc:{GROUND}"]
        for number, (at, down, wide, high) in enumerate(parts):
            part = self.desktop.screenshot(str(self.data / f"part-{number}.png"), f"{wide}x{high}+{at}+{down}")
            command += [part, "-geometry", f"+{at - left}+{down}", "-composite"]
        self.desktop.run(command + [PICTURE])


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    PICTURE = os.path.abspath(sys.argv.pop(2))
    os.makedirs(os.path.dirname(PICTURE), exist_ok=True)
    desktop_test.main()

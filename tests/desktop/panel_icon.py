"""The program's icon in the panel: where it is drawn, clicks on it, and its menu as a panel calls it."""

import re
import subprocess

PATIENCE = 60
MENU = "/MenuBar"
ITEM = "/StatusNotifierItem"
# The panel runs the tray in a process of its own, whose other windows are tiny or off the screen.
TRAY_WINDOW = re.compile(r'"wrapper-2\.0".* (\d\d)x(\d\d)\+0\+0 +\+(\d+)\+(\d+)')


class PanelIcon:
    def __init__(self, desktop, process):
        self._desktop = desktop
        self._process = process
        self._name = f"org.kde.StatusNotifierItem-{process}-1"

    def is_registered(self):
        return self._name in self._desktop.tray_items()

    def area(self):
        """Where the only icon of the tray is drawn: x, y, width, height; None while there is none or more."""
        if self._desktop.tray_items().count("StatusNotifierItem-") != 1 or not self.is_registered():
            return None
        try:
            found = TRAY_WINDOW.search(self._desktop.run(["xwininfo", "-root", "-tree"]))
            if not found:
                return None
            width, height, x, y = map(int, found.groups())
            return (x, y, width, height) if self._is_drawn(f"{width}x{height}+{x}+{y}") else None
        except subprocess.CalledProcessError:
            return None  # a window went away while it was asked about

    def wait_until_drawn(self):
        return self._desktop.wait_until(self.area, "the icon to be drawn in the panel", PATIENCE, self._process)

    def click(self):
        """A real click; returns its place."""
        x, y, width, height = self.wait_until_drawn()
        place = x + width // 2, y + height // 2
        self._desktop.click(*place)
        return place

    def menu(self):
        """The labels of the menu's entries, by their numbers. Separators are left out."""
        layout = self._menu_call("GetLayout", "0", "-1", "@as []")
        return {int(number): label for number, label in re.findall(r"<\((\d+), \{[^}]*'label': <'([^']*)'>", layout)}

    def choose(self, label):
        """What a panel does when the user takes an entry of the menu."""
        number = next((number for number, text in self.menu().items() if text == label), None)
        if number is None:
            raise AssertionError(f"no {label!r} among {list(self.menu().values())}")
        self._menu_call("Event", str(number), "clicked", "<''>", "0")

    def wait_until_heard(self):
        """Comes back when the program has dealt with everything the panel told it before."""
        for _ in range(2):
            self._desktop.call(self._name, ITEM, "org.freedesktop.DBus.Properties.Get", "org.kde.StatusNotifierItem",
                               "Title")

    def _menu_call(self, method, *arguments):
        return self._desktop.call(self._name, MENU, "com.canonical.dbusmenu." + method, *arguments)

    def _is_drawn(self, area):
        picture = subprocess.run(["import", "-silent", "-window", "root", "-crop", area, "-format", "%k", "info:"],
                                 env=self._desktop.env, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE)
        # An empty tray is of one colour.
        return picture.returncode == 0 and int(picture.stdout or b"0") > 4

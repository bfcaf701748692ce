"""The program with its dashboard open on a virtual desktop, for those who want to see it."""

import sys

import accessible
from panel_icon import PanelIcon
from waiting import WaitInVain


class ShownProgram:
    def __init__(self, desktop, program):
        self._desktop = desktop
        desktop.start_panel()
        desktop.spawn(["dunst"])
        self.process = desktop.spawn([program], "kestrin")
        self.wait_until(PanelIcon(desktop, self.process.pid).is_registered, "the icon in the panel")
        desktop.run([program])  # a second start opens the dashboard of the first
        accessible.connect(desktop.env)

    def wait_until(self, condition, what, timeout=30):
        """Ends this script when it does not come, and shows what the program said."""
        try:
            return self._desktop.wait_until(condition, what, timeout, self.process.pid)
        except (WaitInVain, TimeoutError) as error:
            sys.exit(f"{error}\n{self._desktop.log('kestrin')}".rstrip())

    def wait_for_button(self, name):
        return self.wait_until(lambda: self._button(name), f"the button {name!r}")

    def _button(self, name):
        application = accessible.application_of(self.process.pid)
        return application and accessible.find(application, name, "button")

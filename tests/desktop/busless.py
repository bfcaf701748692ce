"""The program without a session bus, driven by the keyboard."""

import contextlib

import desktop_test


class BuslessTest(desktop_test.DesktopTest):
    """Screen readers are found over the session bus, so here the keyboard drives the program. What it shows stands in
    its own log: the accessibility library writes down every control that it would tell about."""

    panel = False

    def start_without_bus(self, address):
        self.start_program(environment=self.environment(address))

    def environment(self, address):
        runtime = self.data / "runtime"
        runtime.mkdir(mode=0o700, exist_ok=True)
        return {"DBUS_SESSION_BUS_ADDRESS": address, "XDG_RUNTIME_DIR": str(runtime),
                "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1", "QT_LOGGING_RULES": "qt.accessibility.cache=true"}

    def press_on_until(self, condition):
        """Goes on to the next control and presses it, until one has that effect."""
        for _ in range(12):
            self.desktop.press_key("Tab")
            self.desktop.press_key("space")
            with contextlib.suppress(TimeoutError):
                self.wait_until(condition, "an effect", 4)
                return
        self.fail("no control had the effect")

    def setUp(self):
        super().setUp()
        self.sites = self.write_sites("status-200", "status-503")

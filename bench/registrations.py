"""Hears on a session bus when a tray icon has been registered, by the signal of the tray's watcher."""

import time

from gi.repository import Gio, GLib

WATCHER = "org.kde.StatusNotifierWatcher"
PATIENCE = 60


class Registrations:
    def __init__(self, address):
        flags = Gio.DBusConnectionFlags
        self._bus = Gio.DBusConnection.new_for_address_sync(
            address, flags.AUTHENTICATION_CLIENT | flags.MESSAGE_BUS_CONNECTION, None, None)
        self._heard = {"StatusNotifierItemRegistered": [], "StatusNotifierItemUnregistered": []}
        for signal in self._heard:
            self._bus.signal_subscribe(None, WATCHER, signal, None, None, Gio.DBusSignalFlags.NONE, self._hear)
        # The subscription is in force once the bus has answered something that was sent after it.
        self._bus.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "GetId", None, None,
                            Gio.DBusCallFlags.NONE, -1, None)

    def _hear(self, _bus, _sender, _path, _interface, signal, _what):
        self._heard[signal].append(time.monotonic())

    def forget(self):
        while GLib.MainContext.default().iteration(False):
            pass
        for moments in self._heard.values():
            moments.clear()

    def wait_for_icon(self):
        """The moment at which it was heard, on the monotonic clock."""
        return self._wait_for("StatusNotifierItemRegistered")

    def wait_for_end_of_icon(self):
        self._wait_for("StatusNotifierItemUnregistered")

    def _wait_for(self, signal):
        late = []
        timer = GLib.timeout_add_seconds(PATIENCE, lambda: late.append(True) or GLib.SOURCE_REMOVE)
        while not self._heard[signal] and not late:
            GLib.MainContext.default().iteration(True)
        if late:
            raise TimeoutError(f"waited {PATIENCE} s for {signal}")
        GLib.source_remove(timer)
        return self._heard[signal][0]

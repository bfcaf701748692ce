#!/usr/bin/python3 -B
"""The desktop's side of the settings portal, as a program of its own on the session bus, and how a test drives it.

`portal = SettingsPortal(desktop); portal.set("org.freedesktop.appearance", "color-scheme", "uint32 1")`
"""

import os
import signal

from virtual_desktop import wait_until

NAME = "org.freedesktop.portal.Desktop"
PATH = "/org/freedesktop/portal/desktop"
INTERFACES = """<node>
<interface name="org.freedesktop.portal.Settings">
  <method name="ReadAll"><arg type="as" direction="in"/><arg type="a{sa{sv}}" direction="out"/></method>
  <method name="Read"><arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="v" direction="out"/></method>
  <signal name="SettingChanged"><arg type="s"/><arg type="s"/><arg type="v"/></signal>
  <property name="version" type="u" access="read"/>
</interface>
<interface name="app.kestrin.Test.Settings">
  <method name="Set"><arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="v" direction="in"/></method>
</interface>
</node>"""


class SettingsPortal:
    """Runs on the desktop from its making to its stop()."""

    def __init__(self, desktop):
        self._desktop = desktop
        self._process = desktop.spawn(["/usr/bin/python3", "-B", os.path.abspath(__file__)], "portal")
        wait_until(self._is_there, what="the settings portal")

    def set(self, namespace, key, value):
        """`value` as gdbus reads it: "uint32 1", "'Cantarell 11'"."""
        self._desktop.call(NAME, PATH, "app.kestrin.Test.Settings.Set", f"'{namespace}'", f"'{key}'", f"<{value}>")

    def hang(self):
        self._process.send_signal(signal.SIGSTOP)

    def stop(self):
        self._process.kill()
        self._process.wait()
        wait_until(lambda: not self._is_there(), what="the end of the settings portal")

    def _is_there(self):
        return "true" in self._desktop.call("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                            "org.freedesktop.DBus.NameHasOwner", NAME)


def serve():
    from gi.repository import Gio, GLib

    settings = {}
    bus = Gio.bus_get_sync(Gio.BusType.SESSION)

    def called(_bus, _sender, path, _interface, method, arguments, invocation):
        given = [arguments.get_child_value(i) for i in range(arguments.n_children())]
        if method == "ReadAll":
            wanted = given[0].unpack()
            invocation.return_value(GLib.Variant("(a{sa{sv}})", (
                {space: found for space, found in settings.items() if not wanted or space in wanted},)))
            return
        space, key = given[0].unpack(), given[1].unpack()
        if method == "Read":
            # A variant inside a variant, as real portals answer.
            invocation.return_value(GLib.Variant("(v)", (GLib.Variant("v", settings[space][key]),)))
            return
        value = given[2].get_variant()
        settings.setdefault(space, {})[key] = value
        bus.emit_signal(None, path, "org.freedesktop.portal.Settings", "SettingChanged",
                        GLib.Variant("(ssv)", (space, key, value)))
        invocation.return_value(None)

    for interface in Gio.DBusNodeInfo.new_for_xml(INTERFACES).interfaces:
        bus.register_object(PATH, interface, called, lambda *_: GLib.Variant("u", 2), None)
    Gio.bus_own_name_on_connection(bus, NAME, Gio.BusNameOwnerFlags.NONE, None, None)
    GLib.MainLoop().run()


if __name__ == "__main__":
    serve()

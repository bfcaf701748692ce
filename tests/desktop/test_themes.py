#!/usr/bin/python3 -B
"""The program on desktops that offer Qt a platform theme: none is loaded, and what the theme would say is read from
the desktop's settings and followed while the program runs."""

import glob
import os
import pathlib
import re
import signal
import subprocess

import accessible
import desktop_test
from desktop_test import PATIENCE, spot
from fake_portal import SettingsPortal

GNOME = {"XDG_CURRENT_DESKTOP": "GNOME", "DESKTOP_SESSION": "gnome", "GNOME_DESKTOP_SESSION_ID": "this-is-deprecated"}
XFCE = {"XDG_CURRENT_DESKTOP": "XFCE", "DESKTOP_SESSION": "xfce"}
PLASMA = {"XDG_CURRENT_DESKTOP": "KDE", "DESKTOP_SESSION": "plasma", "KDE_FULL_SESSION": "true",
          "KDE_SESSION_VERSION": "6"}
SESSIONS = {"GNOME": GNOME, "Xfce": XFCE, "Plasma": PLASMA}
# Each is enough by itself to make Qt look for a theme, beside no name of a desktop.
SINGLE_VARIABLES = {"KDE_FULL_SESSION": "true", "GNOME_DESKTOP_SESSION_ID": "this-is-deprecated",
                    "DESKTOP_SESSION": "gnome", "QT_QPA_PLATFORMTHEME": "gtk3"}
THEME_LIBRARIES = re.compile(r"gtk-[34]|qgtk|KF[56]|Plasma|breeze|oxygen|platformthemes|/styles/", re.IGNORECASE)
APPEARANCE = "org.freedesktop.appearance"
INTERFACE = "org.gnome.desktop.interface"


def installed(pattern):
    """The platform themes of the machine of that name."""
    return glob.glob(f"/usr/lib/*/qt6/plugins/platformthemes/{pattern}")


class ThemesTest(desktop_test.DesktopTest):
    def setUp(self):
        super().setUp()
        self.programs = pathlib.Path(desktop_test.PROGRAM).parent / "tests/desktop/themes"
        self.sites = self.write_sites("status-200")

    def ordinary_program_maps(self, environment, without=()):
        """What an ordinary Qt program has mapped in that environment."""
        env = {**self.desktop.env, **environment}
        for name in without:
            env.pop(name, None)
        done = subprocess.run([self.programs / "ordinary_program"], env=env, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, timeout=PATIENCE, check=True)
        return done.stdout.decode()

    def foreign_libraries(self):
        maps = pathlib.Path(f"/proc/{self.program.pid}/maps").read_text()
        files = {line.split(maxsplit=5)[5] for line in maps.splitlines() if line.count("/")}
        return sorted(file for file in files if THEME_LIBRARIES.search(file))

    def assert_is_one_application_that_can_be_driven(self):
        self.open_dashboard()
        self.assertEqual(len(accessible.applications_of(self.program.pid)), 1)
        self.press("Start")
        self.wait_for_text("Monitoring active")
        self.wait_for_lines(self.sites, 1)


class AnOfferedTheme(ThemesTest):
    """By a stand-in for all themes that Qt may ask for, which says so when it is loaded."""

    def check(self, environment, without=()):
        environment = {**environment, "QT_PLUGIN_PATH": str(self.programs / "plugins")}
        self.assertIn("kestrin_stand_in_theme", self.ordinary_program_maps(environment, without))
        self.start_program(environment=environment, without=without)
        try:
            self.assertEqual(self.foreign_libraries(), [])
            self.assertNotIn("theme has been loaded", self.log.read_text(errors="replace"))
        finally:
            self.end_program()

    def test_is_not_loaded_in_the_session_of_any_desktop(self):
        for name, session in SESSIONS.items():
            with self.subTest(name):
                self.check(session)

    def test_is_not_loaded_because_of_any_single_variable(self):
        for name, value in SINGLE_VARIABLES.items():
            with self.subTest(name):
                self.check({name: value}, without=("XDG_CURRENT_DESKTOP",))

    def test_leaves_the_environment_as_it_was(self):
        self.start_program(environment=PLASMA)
        found = pathlib.Path(f"/proc/{self.program.pid}/environ").read_bytes().decode().split("\0")
        for name, value in PLASMA.items():
            self.assertIn(f"{name}={value}", found)


class AnInstalledTheme(ThemesTest):
    def check(self, session):
        self.start_program(environment=session)
        self.assert_is_one_application_that_can_be_driven()
        self.assertEqual(self.foreign_libraries(), [])

    def test_gtk_stays_out_on_gnome(self):
        self.assertIn("libgtk-3", self.ordinary_program_maps(GNOME))
        self.check(GNOME)

    def test_gtk_stays_out_on_xfce(self):
        self.assertIn("libgtk-3", self.ordinary_program_maps(XFCE))
        self.check(XFCE)

    def test_plasmas_stays_out_on_plasma(self):
        # Debian 12 has none for Qt 6, and Debian 13's brings 600 MB along, so it need not be there.
        if installed("KDEPlasma*"):
            self.assertIn("KDEPlasmaPlatformTheme", self.ordinary_program_maps(PLASMA))
        self.check(PLASMA)

    def test_is_not_needed(self):
        for directory in {os.path.dirname(theme) for theme in installed("*")}:
            subprocess.run(["mount", "-t", "tmpfs", "tmpfs", directory], check=True)
            self.addCleanup(subprocess.run, ["umount", directory], check=True)
        self.assertEqual(installed("*"), [])
        self.check(XFCE)


class TheSettings(ThemesTest):
    def start_portal(self):
        portal = SettingsPortal(self.desktop)
        self.addCleanup(portal.stop)
        return portal

    def brightness(self):
        """Of the ground of the window, from 0 for black to 1 for white."""
        x, y, width, height = spot(self.window())
        picture = self.desktop.screenshot(str(self.data / "window.png"), f"{width}x{height}+{x}+{y}")
        return float(self.desktop.run(["convert", picture, "-format", "%[fx:p{4,4}.g]", "info:"]))

    def height(self, text):
        return spot(self.wait_until(lambda: accessible.find(self.application(), text, "label"), repr(text)))[3]

    def heights(self):
        """Of a heading and of ordinary text."""
        return self.height("Kestrin"), self.height("Monitoring paused")

    def wait_for_heights(self, factor, before):
        def have_changed():
            return all(abs(now / old - factor) < 0.15 for now, old in zip(self.heights(), before))
        self.wait_until(have_changed, f"texts {factor} times as high as {before}")

    def test_dark_and_light_are_followed(self):
        portal = self.start_portal()
        portal.set(APPEARANCE, "color-scheme", "uint32 1")
        self.start_program(environment=GNOME)
        self.open_dashboard()
        self.wait_until(lambda: self.brightness() < 0.25, "a dark window")
        portal.set(APPEARANCE, "color-scheme", "uint32 2")
        self.wait_until(lambda: self.brightness() > 0.85, "a light window")
        portal.set(APPEARANCE, "color-scheme", "uint32 1")
        self.wait_until(lambda: self.brightness() < 0.25, "a dark window")

    def test_contrast_is_followed(self):
        portal = self.start_portal()
        portal.set(APPEARANCE, "color-scheme", "uint32 1")
        self.start_program(environment=GNOME)
        self.open_dashboard()
        self.wait_until(lambda: 0.05 < self.brightness() < 0.25, "a dark window")
        portal.set(APPEARANCE, "contrast", "uint32 1")
        self.wait_until(lambda: self.brightness() == 0, "a black window")

    def test_font_and_text_scale_of_gnome_are_followed(self):
        portal = self.start_portal()
        portal.set(INTERFACE, "font-name", "'DejaVu Sans 10'")
        self.start_program(environment=GNOME)
        self.open_dashboard()
        before = self.heights()
        portal.set(INTERFACE, "text-scaling-factor", "2.0")
        self.wait_for_heights(2, before)
        portal.set(INTERFACE, "font-name", "'DejaVu Sans Bold 15'")
        self.wait_for_heights(3, before)
        self.press("Start")
        self.wait_for_text("Monitoring active")

    def test_the_font_of_plasma_is_followed(self):
        self.write_plasma_font(10)
        portal = self.start_portal()
        self.start_program(environment={**PLASMA, "XDG_CONFIG_HOME": str(self.data)})
        self.open_dashboard()
        before = self.heights()
        self.write_plasma_font(20)
        portal.set("org.kde.kdeglobals.General", "font", "'as the file says'")
        self.wait_for_heights(2, before)

    def write_plasma_font(self, points):
        (self.data / "kdeglobals").write_text(f"[General]\nfont=DejaVu Sans,{points},-1,5,50,0,0,0,0,0\n")

    def test_the_font_of_other_desktops_is_followed_from_their_settings_manager(self):
        self.start_program(environment=XFCE)
        self.open_dashboard()
        before = self.heights()
        manager = self.start_settings_manager(20)
        self.wait_for_heights(2, before)
        self.write_settings(15)
        manager.send_signal(signal.SIGHUP)
        self.wait_for_heights(1.5, before)
        manager.kill()
        manager.wait()
        self.start_settings_manager(10)
        self.wait_for_heights(1, before)

    def test_the_text_scale_of_gnome_counts_once_where_the_x_server_scales_everything(self):
        portal = self.start_portal()
        portal.set(INTERFACE, "font-name", "'DejaVu Sans 10'")
        plain = self.width_at_opening(portal)
        portal.set(INTERFACE, "text-scaling-factor", "1.5")
        scaled = self.width_at_opening(portal)
        self.start_settings_manager(10, f"Xft/DPI {96 * 1024 * 3 // 2}\n")
        self.assertAlmostEqual(scaled / plain, 1.5, delta=0.1)
        self.assertAlmostEqual(self.width_at_opening(portal) / plain, 1.5, delta=0.1)

    def width_at_opening(self, portal):
        """In pixels of the screen."""
        self.start_program(environment=GNOME)
        portal.set(INTERFACE, "cursor-size", "24")  # once it has done that, it has answered the program
        self.open_dashboard()
        self.wait_until_active()
        found = self.desktop.run(["xdotool", "getwindowfocus", "getwindowgeometry", "--shell"])
        self.end_program()
        return int(re.search(r"WIDTH=(\d+)", found).group(1))

    def start_settings_manager(self, points, more=""):
        self.write_settings(points, more)
        manager = self.desktop.spawn(["xsettingsd", "-c", str(self.data / "xsettings")])
        self.desktop.wait_until(lambda: "Gtk/FontName" in self.announced_settings(), "the settings manager")
        self.addCleanup(manager.wait)
        self.addCleanup(manager.kill)
        return manager

    def announced_settings(self):
        try:
            return self.desktop.run(["dump_xsettings"])
        except subprocess.CalledProcessError:
            return ""

    def write_settings(self, points, more=""):
        (self.data / "xsettings").write_text(f'Gtk/FontName "DejaVu Sans Bold {points}"\n{more}')

    def test_a_portal_that_hangs_holds_nothing_up(self):
        portal = self.start_portal()
        portal.hang()
        self.start_program(environment=GNOME)
        self.assert_is_one_application_that_can_be_driven()


if __name__ == "__main__":
    desktop_test.main()

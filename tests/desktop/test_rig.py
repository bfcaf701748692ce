#!/usr/bin/python3 -B
"""The rig itself: it finds the program beside others of its name, and no wait goes on that has become hopeless."""

import contextlib
import pathlib
import signal
import subprocess
import tempfile
import time
import unittest

import desktop_test
from desktop_test import PATIENCE
from virtual_desktop import VirtualDesktop
from waiting import WaitInVain

# Starts the program beside one that registers with the accessibility bus under the same name, as GTK programs do, and
# has nothing to show.
NAMESAKE = """
import ctypes
gtk, glib = ctypes.CDLL("libgtk-3.so.0"), ctypes.CDLL("libglib-2.0.so.0")
glib.g_set_prgname(b"kestrin")
assert gtk.gtk_init_check(None, None)
gtk.gtk_main()
"""
BESIDE_A_NAMESAKE = """#!/usr/bin/python3 -B
import os, subprocess, sys
sys.path.insert(0, {rig!r})
import accessible, waiting
accessible.connect(os.environ)
there = lambda: any(node.name == "kestrin" for node in accessible.applications())
if not there():
    namesake = subprocess.Popen([sys.executable, "-c", {namesake!r}], stdout=subprocess.DEVNULL)
    waiting.wait_until(there, {patience}, "the namesake", lambda: waiting.how_it_ended("it", namesake))
os.execv({program!r}, ["kestrin"])
"""
RIG = pathlib.Path(__file__).resolve().parent
LONG = 600
AT_ONCE = 30  # what a busy machine may take for nothing


class TheScriptThatShowsTheProgram(unittest.TestCase):
    def setUp(self):
        self.directory = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))

    def show(self, program):
        file = self.directory / "program"
        file.write_text(program)
        file.chmod(0o755)
        shown = subprocess.Popen(["/usr/bin/python3", "-B", RIG / "run_on_virtual_desktop.py", file],
                                 stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        self.addCleanup(shown.communicate)
        self.addCleanup(shown.terminate)
        return shown

    def test_finds_it_beside_an_empty_application_of_its_name(self):
        shown = self.show(BESIDE_A_NAMESAKE.format(rig=str(RIG), namesake=NAMESAKE, patience=PATIENCE,
                                                   program=desktop_test.PROGRAM))
        self.assertIn("a screenshot lies at", shown.stdout.readline())
        shown.send_signal(signal.SIGINT)
        self.assertEqual(shown.wait(PATIENCE), 0)

    def test_says_at_once_what_a_program_said_that_does_not_start(self):
        start = time.monotonic()
        shown = self.show("#!/bin/sh\necho Something is missing.\nexit 5\n")
        self.assertEqual(shown.communicate(), ("", "the program has ended with code 5 while the icon in the panel was "
                                               "waited for\nSomething is missing.\n"))
        self.assertEqual(shown.returncode, 1)
        self.assertLess(time.monotonic() - start, AT_ONCE)


class AWait(desktop_test.DesktopTest):
    def test_for_the_icon_ends_with_a_program_that_does_not_start(self):
        self.addCleanup(setattr, desktop_test, "PROGRAM", desktop_test.PROGRAM)
        desktop_test.PROGRAM = "false"
        with assert_in_vain(self, "^the program has ended with code 1 while the icon was waited for$"):
            self.start_program()

    def test_for_a_window_ends_with_the_program(self):
        self.write_sites("status-200")
        self.start_program()
        self.program.send_signal(signal.SIGKILL)
        with assert_in_vain(self, "^the program was ended by SIGKILL while the dashboard was waited for$"):
            self.wait_for_window()


class ADesktopThatLoses(unittest.TestCase):
    def assert_is_missed(self, part):
        with VirtualDesktop(accessibility=False) as desktop:
            desktop.start_panel()
            desktop.parts[part].terminate()
            desktop.parts[part].wait()
            with assert_in_vain(self, f"^{part} (has ended with code|was ended by) .* while an icon was waited for$"):
                desktop.wait_until(lambda: "Kestrin" in desktop.tray_items(), "an icon", LONG)

    def test_its_X_server_is_not_waited_on(self):
        self.assert_is_missed("the X server")

    def test_its_bus_is_not_waited_on(self):
        self.assert_is_missed("the session bus")

    def test_its_panel_is_not_waited_on(self):
        self.assert_is_missed("the panel")


@contextlib.contextmanager
def assert_in_vain(test, sentence):
    start = time.monotonic()
    with test.assertRaisesRegex(WaitInVain, sentence):
        yield
    test.assertLess(time.monotonic() - start, AT_ONCE)


if __name__ == "__main__":
    desktop_test.main()

#!/usr/bin/python3 -B
"""Surroundings that lack something: a session bus, a home directory, a state directory that can be written."""

import subprocess

import accessible
import desktop_test
from busless import BuslessTest

HOME_VARIABLES = ("HOME", "XDG_DATA_HOME", "XDG_CONFIG_HOME")


class WithoutASessionBus(BuslessTest):
    def use_it(self, notice):
        self.wait_until_active()
        self.wait_until(lambda: f'name="{notice}" role=StaticText' in self.log.read_text(errors="replace"),
                        f"the notice {notice!r}")
        # Both buttons on the way to Quit make a check, so either shows that checks work.
        self.press_on_until(lambda: all(self.history(site) for site in self.sites))
        self.assert_history_as_expected("--lines", "1")
        self.press_on_until(lambda: self.program.poll() is not None)
        self.assertEqual(self.exit_code(), 0)

    def test_an_address_where_nobody_listens_is_told_and_checks_work(self):
        self.start_without_bus(f"unix:path={self.data}/nowhere")
        self.use_it("The session bus does not answer.")

    def test_no_address_at_all_is_told_and_checks_work(self):
        self.start_without_bus("")
        self.use_it("There is no session bus.")


class WithoutAHome(desktop_test.DesktopTest):
    def test_places_that_are_set_are_used_without_a_word(self):
        sites = self.write_sites("status-200")
        self.start_program(without=("HOME",))
        self.check(sites)

    def test_without_a_place_for_data_it_lies_below_the_home_directory(self):
        home = self.data / "home"
        self.state = home / ".local/share/Kestrin"
        sites = self.write_sites("status-200")
        self.start_program(environment={"HOME": str(home)}, without=("XDG_DATA_HOME",))
        self.check(sites)

    def check(self, sites):
        self.open_dashboard()
        self.press("Check now")
        self.wait_for_lines(sites, 1)
        self.wait_for_text("HTTP 200")
        self.assertEqual(self.texts()[:2], ["Kestrin", "Monitoring paused"])

    def test_the_reason_is_told_in_a_dialog_and_quit_ends_with_a_failure(self):
        self.start_program(without=HOME_VARIABLES, wait=False)
        self.wait_for_text("Your existing data was not removed or changed. "
                           "Kestrin can’t find your home directory: HOME is not set.")
        self.assertIn("Kestrin couldn’t prepare its local data", self.texts())
        self.press("Quit")
        self.assertEqual(self.exit_code(), 1)


class AStateDirectoryThatCannotBeWritten(desktop_test.DesktopTest):
    ERROR = "Could not save check history: Read-only file system"

    def mount(self, *options):
        subprocess.run(["mount", *options, self.state], check=True)

    def test_start_tells_that_history_was_not_saved_and_the_next_cycle_recovers(self):
        sites = self.write_sites("status-200", "status-503")
        self.mount("--bind", self.state)
        self.addCleanup(subprocess.run, ["umount", self.state], check=True)
        self.mount("-o", "remount,bind,ro")
        self.start_program()
        self.addCleanup(self.end_program)
        self.open_dashboard()
        start_stop = self.press("Start")
        self.wait_for_text(self.ERROR)
        self.assertIn("Monitoring active", self.texts())
        self.assertEqual(self.history_sizes(), {})

        self.mount("-o", "remount,bind,rw")
        self.wait_for_name(start_stop, "Stop")
        accessible.press(start_stop)
        self.wait_for_text("Monitoring paused")
        self.assertIn(self.ERROR, self.texts())
        accessible.press(start_stop)
        self.wait_for_lines(sites, 1)
        self.wait_until(lambda: self.ERROR not in self.texts(), "the message to go")
        self.assert_history_as_expected("--lines", "1")


if __name__ == "__main__":
    desktop_test.main()

#!/usr/bin/python3 -B
"""A state directory whose owner took away the permission to use it."""

import desktop_test


class WithoutPermission(desktop_test.DesktopTest):
    """The program runs without root's power to write anywhere, as for an ordinary user."""

    ERROR = "Could not save check history: Permission denied"

    def start_as_ordinary_user(self):
        powers = "-dac_override,-dac_read_search"
        command = ["setpriv", "--inh-caps", powers, "--bounding-set", powers, desktop_test.PROGRAM]
        self.program = self.desktop.spawn(command, self.data.name, env={
            **self.desktop.env, "XDG_DATA_HOME": str(self.data)})
        self.wait_until(self.icon_is_there, "the icon")
        self.open_dashboard()

    def test_the_reason_is_told_and_the_next_cycle_recovers(self):
        sites = self.write_sites("status-200", "status-503")
        self.state.chmod(0o555)
        self.start_as_ordinary_user()
        self.press("Check now")
        self.wait_for_text(self.ERROR)
        self.assertEqual(self.history_sizes(), {})
        self.state.chmod(0o755)
        self.press("Check now")
        self.wait_for_lines(sites, 1)
        self.wait_until(lambda: self.ERROR not in self.texts(), "the message to go")
        self.assert_history_as_expected("--lines", "1")

    def test_a_history_that_may_not_be_written_is_told_and_the_others_wait(self):
        sites = self.write_sites("status-200", "status-503")
        path = self.state / "data" / "status-200.jsonl"
        path.parent.mkdir()
        path.write_text("")
        path.chmod(0o444)
        self.start_as_ordinary_user()
        self.press("Check now")
        self.wait_for_text(self.ERROR)
        self.assertEqual(self.history_sizes(), {"status-200.jsonl": 0})
        path.chmod(0o644)
        self.press("Check now")
        self.wait_for_lines(sites, 1)
        self.assert_history_as_expected("--lines", "1")

    def test_a_list_that_may_not_be_read_is_told(self):
        self.write_sites("status-200")
        (self.state / "sites.json").chmod(0)
        self.start_as_ordinary_user()
        self.wait_for_text("Permission denied")
        self.assertIn("Couldn’t Read Monitor Data", self.texts())

    def test_a_directory_that_may_not_be_entered_is_told(self):
        self.write_sites("status-200")
        self.state.chmod(0)
        self.addCleanup(self.state.chmod, 0o755)
        self.start_as_ordinary_user()
        self.wait_for_text("Permission denied")
        self.assertIn("Couldn’t Read Monitor Data", self.texts())


if __name__ == "__main__":
    desktop_test.main()

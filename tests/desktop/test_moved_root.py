#!/usr/bin/python3 -B
"""The state directory is removed or replaced while the program runs: it says so in one sentence, writes nothing into
what it does not know, and goes on when the directory is back."""

import shutil

import accessible
import desktop_test
import logs

MISSING = "Could not save check history: Kestrin's state directory is missing sites.json."
INVITATION = "Add your first website"
NO_DIRECTORY = "Kestrin's state path is not a regular directory."


class AStateDirectoryThatMoves(desktop_test.DesktopTest):
    def setUp(self):
        super().setUp()
        self.sites = self.write_sites("slow-0", "slow-1", names={"slow-0": "Shop", "slow-1": "Blog"})
        self.away = self.data / "away"
        self.start_program()
        self.open_dashboard()
        self.check_now = self.button("Check now")

    def check_while(self, something_happens):
        """One round of checks; the servers have been asked but nothing is written when something happens."""
        before = self.visits()
        accessible.press(self.check_now)
        self.wait_until(lambda: self.visits() >= before + len(self.sites), "the visits")
        something_happens()
        self.wait_for_name(self.check_now, "Check now")

    @staticmethod
    def visits():
        return sum(event["event"] == "request" and event["host"].startswith("slow-") for event in logs.events("requests"))

    def check_once(self):
        self.check_while(lambda: None)
        self.wait_for_lines(self.sites, 1)

    def reopen(self):
        self.close_dashboard()
        self.open_dashboard()

    def take_away(self):
        self.state.rename(self.away)

    def bring_back(self):
        """Whatever stands in its place goes, and everything is as if nothing had been."""
        if self.state.is_symlink() or self.state.is_file():
            self.state.unlink()
        elif self.state.exists():
            shutil.rmtree(self.state)
        self.away.rename(self.state)
        self.reopen()
        self.wait_for_text("Shop")
        lines = [len(self.history(site)) for site in self.sites]
        self.check_while(lambda: None)
        self.wait_for_lines(self.sites, max(lines) + 1)
        self.assertEqual([len(self.history(site)) for site in self.sites], [count + 1 for count in lines])
        self.assertNotIn("Could not", " ".join(self.texts()))

    def test_removed_during_a_cycle(self):
        self.check_while(self.take_away)
        self.wait_for_text(MISSING)
        self.assertFalse(self.state.exists(), "nothing is made in the place of what was removed")
        self.reopen()
        self.wait_for_text(INVITATION)
        self.bring_back()

    def test_removed_with_histories_in_it(self):
        self.check_once()
        self.check_while(self.take_away)
        self.wait_for_text(MISSING)
        self.assertFalse(self.state.exists())
        self.bring_back()

    def test_recreated_empty(self):
        self.check_once()

        def recreate():
            self.take_away()
            self.state.mkdir()

        self.check_while(recreate)
        self.wait_for_text(MISSING)
        self.assertEqual(list(self.state.iterdir()), [])
        self.reopen()
        self.wait_for_text(INVITATION)
        self.bring_back()

    def test_replaced_by_another_one(self):
        self.check_once()

        def replace():
            self.take_away()
            self.write_sites("status-200", names={"status-200": "Newspaper"})

        self.check_while(replace)
        # What was checked is saved, and the list that is there now is seen when the dashboard opens.
        self.assertEqual([len(self.history(site)) for site in self.sites], [1, 1])
        self.assertEqual(self.lines_in(self.away), 1)
        self.reopen()
        self.wait_for_text("Newspaper")
        self.assertNotIn("Shop", self.texts())
        accessible.press(self.check_now)
        self.wait_for_lines(["status-200"], 1)
        self.wait_for_name(self.check_now, "Check now")
        self.bring_back()

    def test_replaced_by_a_link(self):
        self.check_once()

        def link():
            self.take_away()
            self.state.symlink_to(self.away)

        self.check_while(link)
        self.wait_for_text("Could not save check history: Symbolic links are not allowed in Kestrin state paths.")
        self.assertEqual(self.lines_in(self.away), 1)
        self.reopen()
        self.wait_for_text(NO_DIRECTORY)
        self.bring_back()

    def test_replaced_by_a_file(self):
        self.check_once()

        def file():
            self.take_away()
            self.state.write_text("mine")

        self.check_while(file)
        self.wait_for_text("Could not save check history: Not a directory")
        self.reopen()
        self.wait_for_text(NO_DIRECTORY)
        self.assertEqual(self.state.read_text(), "mine")
        self.bring_back()

    def test_its_list_is_removed_during_the_first_cycle(self):
        self.check_while((self.state / "sites.json").unlink)
        self.wait_for_text(MISSING)
        self.assertEqual(list(self.state.iterdir()), [], "nothing is made that would lock the next start")
        self.reopen()
        self.wait_for_text(INVITATION)

    def test_its_list_is_removed_during_a_later_cycle(self):
        self.check_once()
        self.check_while((self.state / "sites.json").unlink)
        self.wait_for_lines(self.sites, 2)
        self.assertNotIn("Could not", " ".join(self.texts()))
        self.reopen()
        self.wait_for_text("Kestrin's state directory contains data but is missing sites.json.")
        self.write_sites("slow-0", "slow-1", names={"slow-0": "Shop", "slow-1": "Blog"})
        self.reopen()
        self.wait_for_text("Shop")
        self.assert_history_as_expected("--lines", "2")

    @staticmethod
    def lines_in(directory):
        return len((directory / "data" / "slow-0.jsonl").read_text().splitlines())


if __name__ == "__main__":
    desktop_test.main()

#!/usr/bin/python3 -B
"""What others write into the state directory: new sites, and files that cannot be read."""

import json

import desktop_test

TITLE = "Couldn’t Read Monitor Data"


class ASiteAddedByHand(desktop_test.DesktopTest):
    def test_it_is_there_when_the_dashboard_opens_again(self):
        self.write_sites("status-200", names={"status-200": "Shop"})
        self.start_program()
        self.open_dashboard()
        self.wait_for_text("Shop")
        self.close_dashboard()
        sites = self.write_sites("status-200", "status-503", names={"status-200": "Shop", "status-503": "Blog"})
        self.open_dashboard()
        self.wait_for_text("Blog")
        self.press("Check now")
        self.wait_for_lines(sites, 1)
        self.assert_history_as_expected("--lines", "1")

    def test_the_first_one_takes_the_place_of_the_invitation(self):
        self.start_program()
        self.open_dashboard()
        self.wait_for_text("Add your first website")
        self.close_dashboard()
        self.write_sites("status-200", names={"status-200": "Shop"})
        self.open_dashboard()
        self.wait_for_text("Shop")
        self.assertNotIn("Add your first website", self.texts())

    def test_one_that_may_not_be_checked_is_named_and_the_others_are_checked(self):
        self.write_sites("status-200", "http-site", names={"http-site": "Old <b>shop</b>"})
        self.start_program()
        self.open_dashboard()
        self.wait_for_text("“Old <b>shop</b>” needs a public HTTPS URL. "
                           "Open Settings to update it before monitoring.")
        self.press("Check now")
        self.wait_for_lines(["status-200"], 1)
        self.assert_history_as_expected("--lines", "1")


class AListEditedWhileTheWindowStaysOpen(desktop_test.DesktopTest):
    """Without a panel the dashboard is an ordinary window, which may stay open for weeks."""

    panel = False

    def setUp(self):
        super().setUp()
        self.write_sites("status-200", names={"status-200": "Shop"})
        self.start_program()
        self.wait_for_window()
        self.wait_for_text("Shop")
        self.write_sites("status-200", "status-503", names={"status-200": "Shop", "status-503": "Blog"})

    def test_is_taken_up_when_a_second_start_brings_the_window_forward(self):
        self.start_again()
        self.wait_for_text("Blog")

    def test_is_taken_up_when_the_user_comes_back_to_the_window(self):
        self.wait_until_active()
        editor = self.desktop.spawn(["xmessage", "-title", "Editor", "sites.json"])
        self.addCleanup(editor.wait)
        self.addCleanup(editor.terminate)
        self.desktop.run(["xdotool", "search", "--sync", "--onlyvisible", "--name", "^Editor$", "windowactivate"])
        self.wait_until(lambda: not self.is_active(), "the editor to be active")
        self.assertNotIn("Blog", self.texts())
        self.desktop.run(["xdotool", "search", "--onlyvisible", "--name", "^Kestrin$", "windowactivate"])
        self.wait_for_text("Blog")


class ABadSitesFile(desktop_test.DesktopTest):
    def show_and_repair(self, message, unchanged):
        """`unchanged` gives what must stay as it is. The repaired file is taken up when the dashboard opens again."""
        before = unchanged()
        self.start_program()
        self.open_dashboard()
        self.wait_for_text(message)
        self.assertIn(TITLE, self.texts())
        self.close_dashboard()
        self.assertEqual(unchanged(), before)
        self.assertIsNone(self.program.poll())

        self.repair()
        self.open_dashboard()
        self.wait_for_text("Shop")
        self.assertNotIn(TITLE, self.texts())
        self.press("Check now")
        self.wait_for_lines(["status-200"], 1)

    def repair(self):
        self.write_sites("status-200", names={"status-200": "Shop"})

    def content(self):
        return (self.state / "sites.json").read_bytes()

    def test_json_that_breaks_off_is_told(self):
        self.put_sites_file('{"sites": [')
        self.show_and_repair("sites.json: This is not valid JSON: it ends too early.", self.content)

    def test_broken_json_is_told_by_its_place(self):
        self.put_sites_file('{"sites": x}')
        self.show_and_repair("sites.json: This is not valid JSON: byte 11 is not acceptable.", self.content)

    def test_a_value_of_the_wrong_type_is_told_by_its_path(self):
        self.put_sites_file(json.dumps({"sites": [{"id": "status-200", "name": 7, "url": "https://example.com/"}]}))
        self.show_and_repair("sites.json: “sites[0].name” must be text.", self.content)

    def test_a_list_instead_of_an_object_is_told(self):
        self.put_sites_file("[]\n")
        self.show_and_repair("sites.json: The JSON value must be an object.", self.content)

    def test_a_key_that_stands_twice_is_told(self):
        self.put_sites_file('{"sites": [], "sites": []}')
        self.show_and_repair("sites.json: This is not valid JSON: the key “sites” stands there twice.", self.content)

    def test_a_link_is_not_followed(self):
        self.write_sites("status-200")
        (self.state / "sites.json").rename(self.data / "elsewhere.json")
        (self.state / "sites.json").symlink_to(self.data / "elsewhere.json")
        target = (self.data / "elsewhere.json").read_bytes()
        self.show_and_repair("Kestrin state metadata is not a regular file.",
                             lambda: (self.state / "sites.json").readlink())
        self.assertEqual((self.data / "elsewhere.json").read_bytes(), target)

    def test_data_without_the_file_is_not_taken_for_a_first_run(self):
        (self.state / "data").mkdir(parents=True)
        (self.state / "data" / "shop.jsonl").write_text("kept\n")
        self.show_and_repair("Kestrin's state directory contains data but is missing sites.json.",
                             lambda: sorted(path.name for path in self.state.rglob("*")))
        self.assertEqual((self.state / "data" / "shop.jsonl").read_text(), "kept\n")

    def test_a_file_in_the_place_of_the_directory_is_told(self):
        self.state.write_text("mine")

        def repair():
            self.assertEqual(self.state.read_text(), "mine")
            self.state.unlink()
            ABadSitesFile.repair(self)

        self.repair = repair
        self.show_and_repair("Kestrin's state path is not a regular directory.", self.state.read_text)

    def test_a_file_that_breaks_while_monitoring_runs_is_told_and_nothing_is_lost(self):
        self.write_sites("status-200")
        self.start_program()
        self.open_dashboard()
        self.press("Start")
        self.wait_for_lines(["status-200"], 1)
        self.close_dashboard()
        self.put_sites_file("{")
        self.open_dashboard()
        self.wait_for_text("sites.json: This is not valid JSON: it ends too early.")
        self.assertEqual((self.content(), len(self.history("status-200"))), (b"{", 1))
        self.assertIn("Monitoring active", self.texts())


if __name__ == "__main__":
    desktop_test.main()

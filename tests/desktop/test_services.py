#!/usr/bin/python3 -B
"""Status services: what is written about each of them, what their servers saw, what the popover shows, and the two
files that say which of them are checked."""

import json
import socket

import accessible
import desktop_test
import logs
import scenarios
import services
from desktop_test import name_of, spot
from name_server import FORGET
from service_table import FIRST, SECOND

TEN_SITES = ("status-200", "status-503", "to-www-and-back", "chain-6", "expired", "refused", "slow-0", "slow-1",
             "slow-2", "slow-3")
TEN_SERVICES = ("openai", "claude", "outage", "maintenance", "better-stack", "instatus", "slack", "moved",
                "changed-shape", "private")
NOT_CHECKED = "Unknown", "No status recorded yet", "Not checked"


class ServicesTest(desktop_test.DesktopTest):
    def write_state(self, sites, labels, enabled=True):
        """Both files, for sites and services of the tables. Gives their histories."""
        chosen = [one for label in labels for one in services.selected([label])]
        listed = [one for one in scenarios.SCENARIOS if one.id in sites]
        self.put_sites_file(json.dumps({
            "sites": [{"id": one.id, "name": one.id, "url": one.url} for one in listed], "interval_seconds": 3600,
            "provider_status": services.provider_status(chosen, enabled)}))
        if any(not services.is_included(one) for one in chosen):
            self.put_added_services(services.custom_providers(chosen))
        self.services = chosen
        return [one.id for one in listed] + [f"providers/{one.id}" for one in chosen]

    def put_added_services(self, content):
        draft = self.data / "custom-providers.json.new"
        draft.write_text(json.dumps(content, indent=2))
        draft.rename(self.state / "custom-providers.json")

    def added_file(self):
        path = self.state / "custom-providers.json"
        return path.read_bytes(), path.stat().st_ino, path.stat().st_mtime_ns

    def row(self, name):
        """What the row of this name says below the name; None when there is no such row."""
        for node in accessible.find_all(self.application(), name, showing=False):
            labels = [name_of(label) for label in accessible.find_all(node, role="label", showing=False)]
            if len(labels) == 4 and labels[0] == name:
                return tuple(labels[1:])
        return None

    def wait_for_row(self, name, said):
        self.wait_until(lambda: self.row(name) == said, f"{said} in the row {name!r}")

    def assert_rows_as_expected(self):
        """Name, state and summary of each service, once all of them have been checked."""
        self.wait_until(lambda: all((self.row(one.name) or NOT_CHECKED)[2] != NOT_CHECKED[2] for one in self.services),
                        "a check in the row of every service")
        self.assert_lines_equal([" | ".join((one.name, *self.row(one.name)[:2])) for one in self.services],
                                [" | ".join((one.name, one.expected.state.capitalize(), one.expected.summary))
                                 for one in self.services], "the popover's rows")


class OneCycleOverEveryService(ServicesTest):
    def test_what_is_written_shown_and_seen_by_the_servers_is_as_the_table_says(self):
        histories = self.write_state(["status-200"], [one.label for one in services.SERVICES])
        self.start_program()
        self.open_dashboard()
        before = {one.label: len(logs.targets(one.host_name)) for one in services.SERVICES}
        socket.getaddrinfo(FORGET, None)
        self.press("Check now")
        self.wait_for_lines(histories, 1)
        self.assert_history_as_expected("--lines", "1")
        self.assertEqual(logs.canary_calls(), [], "somebody reached a private address")
        self.assert_rows_as_expected()
        # A redirect to what is no endpoint is not followed, and who gave a state is not asked again.
        asked = {one.label: logs.targets(one.host_name)[before[one.label]:] for one in services.SERVICES}
        for label, paths in (("redirected", [FIRST, SECOND]), ("redirected-to-the-other", [FIRST, SECOND]),
                             ("openai", [FIRST]), ("moved", [FIRST, SECOND]), ("in-a-circle", ["/summary.json"] * 3),
                             ("private", []), ("mixed", []), ("rebound", [])):
            self.assertEqual(asked[label], paths, label)


class TenWebsitesAndTenServices(ServicesTest):
    def test_one_start_and_four_checks_write_five_lines_of_each(self):
        histories = self.write_state(TEN_SITES, TEN_SERVICES)
        self.assertEqual(len(histories), 20)
        self.start_program()
        self.open_dashboard()
        self.press("Start")
        self.wait_for_lines(histories, 1)
        for count in range(2, 6):
            self.press("Check now")
            self.wait_for_lines(histories, count)
        self.button("Check now")
        self.assert_history_as_expected("--lines", "5")
        self.assertEqual(logs.canary_calls(), [], "somebody reached a private address")
        # Several of either kind take their time, and the servers never see a third visitor of one kind.
        self.assertEqual(logs.most_visitors(scenarios.SITE_HOSTS), 2)
        self.assertEqual(logs.most_visitors(services.HOSTS), 2)
        self.assert_rows_as_expected()
        self.assertEqual(self.row("status-503")[:2], ("DOWN", "HTTP 503"))
        self.assertIn("Monitoring active", self.texts())

    def test_services_stand_below_the_websites_under_a_heading_of_their_own(self):
        self.write_state(["status-200"], ["openai", "claude"])
        self.start_program()
        self.open_dashboard()
        self.wait_for_row("Claude", NOT_CHECKED)
        places = [spot(accessible.find(self.window(), text, "label"))[1]
                  for text in ("status-200", "Services", "OpenAI", "Claude")]
        self.assertEqual(places, sorted(places))
        self.assertEqual(len(set(places)), 4)


class AServiceAddedByHand(ServicesTest):
    def test_it_is_there_and_checked_when_the_dashboard_opens_again(self):
        before = self.write_state(["status-200"], ["openai", "moved"])
        self.start_program()
        self.open_dashboard()
        self.wait_for_row("Moved", NOT_CHECKED)
        self.press("Check now")
        self.wait_for_lines(before, 1)
        self.assert_rows_as_expected()
        self.close_dashboard()

        (added,) = services.selected(["instatus"])
        both = services.custom_providers([*self.services, added])
        self.put_added_services(both)
        self.open_dashboard()
        self.wait_for_row(added.name, NOT_CHECKED)
        self.press("Check now")
        self.wait_for_lines([f"providers/{added.id}"], 1)
        self.wait_for_lines(before, 2)
        self.services.append(added)
        self.assert_rows_as_expected()
        self.assert_history_as_expected()
        self.assertEqual([len(self.history(one)) for one in before], [2] * len(before))
        self.assertEqual(json.loads(self.added_file()[0]), both)

    def test_one_that_is_switched_off_in_the_file_is_neither_shown_nor_checked(self):
        self.write_state(["status-200"], ["openai", "moved", "instatus"])
        content = services.custom_providers(self.services)
        content["providers"][0]["enabled"] = False
        self.put_added_services(content)
        on, off = [(one["name"], f"providers/{one['id']}") for one in reversed(content["providers"])]
        self.start_program()
        self.open_dashboard()
        self.wait_for_row(on[0], NOT_CHECKED)
        self.press("Check now")
        self.wait_for_lines([on[1]], 1)
        self.assertEqual((self.row(off[0]), self.history(off[1])), (None, []))
        self.assert_history_as_expected("--lines", "1")


class AFileThatCannotBeRead(ServicesTest):
    def show_and_go_on(self, said):
        """The file is named in words, left as it is, and costs neither the websites nor the included services."""
        before = self.added_file()
        self.start_program()
        self.open_dashboard()
        self.wait_for_text(f"Could not read additional status services: {said}")
        self.wait_for_row("OpenAI", NOT_CHECKED)
        self.assertEqual(self.row("Moved"), None)
        self.press("Check now")
        self.wait_for_lines(["status-200", "providers/openai"], 1)
        self.assert_history_as_expected("--services", "openai", "--lines", "1")
        self.assert_history_as_expected("--only", "status-200", "--lines", "1")
        self.assertEqual(sorted(path.name for path in (self.state / "data").rglob("*.jsonl")),
                         ["openai.jsonl", "status-200.jsonl"])
        self.assertIn(f"Could not read additional status services: {said}", self.texts())
        self.assertEqual(self.added_file(), before)

    def test_a_newer_schema_is_named_and_the_repaired_file_taken_up(self):
        self.write_state(["status-200"], ["openai", "moved"])
        self.put_added_services(services.custom_providers(self.services, schema_version=3))
        said = "This status-service format needs a newer Kestrin version."
        self.show_and_go_on(said)
        self.close_dashboard()
        self.put_added_services(services.custom_providers(self.services))
        self.open_dashboard()
        self.wait_for_row("Moved", NOT_CHECKED)
        self.assertNotIn(f"Could not read additional status services: {said}", self.texts())

    def test_a_key_too_many_is_refused(self):
        self.write_state(["status-200"], ["openai", "moved"])
        content = services.custom_providers(self.services)
        content["providers"][0]["note"] = "mine"
        self.put_added_services(content)
        self.show_and_go_on("Kestrin refused unsupported custom-provider settings.")


class SwitchedOff(ServicesTest):
    def test_services_leave_the_popover_and_the_cycle_and_come_back_with_their_history(self):
        sites, labels = ["status-200"], ["openai", "slack"]
        histories = self.write_state(sites, labels)
        self.start_program()
        self.open_dashboard()
        self.press("Check now")
        self.wait_for_lines(histories, 1)
        self.assert_rows_as_expected()
        self.close_dashboard()
        seen = self.visits()

        self.write_state(sites, labels, enabled=False)
        self.open_dashboard()
        self.wait_until(lambda: "Services" not in self.texts(), "the services to leave")
        self.assertEqual([self.row(one.name) for one in self.services], [None, None])
        self.press("Check now")
        self.wait_for_lines(sites, 2)
        self.assertEqual([len(self.history(one)) for one in histories], [2, 1, 1])
        self.assertEqual(self.visits(), seen)
        self.close_dashboard()

        self.write_state(sites, labels)
        self.open_dashboard()
        self.wait_for_text("Services")
        self.assert_rows_as_expected()
        self.press("Check now")
        self.wait_for_lines(histories, 2)
        self.assertEqual([len(self.history(one)) for one in histories], [3, 2, 2])
        self.assert_history_as_expected()

    def visits(self):
        return [logs.targets(one.host_name) for one in self.services]


if __name__ == "__main__":
    desktop_test.main()

"""Asks every status service of the table from inside the private internet, as a monitor would."""

import json
import subprocess
import time
import unittest

import logs
import services
from service_table import FIRST, LIMIT, PATHS, SECOND, SLACK, STATUSPAGE, status_host
from table import Drip, Page

MONITOR = ("-A", "kestrin-service-status/2.0", "-H", "Cache-Control: no-cache, no-store, max-age=0",
           "-H", "Pragma: no-cache")


def ask(service, path, *options, seconds=5):
    """One run of curl to one path: exit code, status, media type, how long the body came out, and the body."""
    done = subprocess.run(["curl", "-gsS", "-m", str(seconds), *MONITOR, *options, "-w",
                           "\n%{http_code} %{size_download} %{content_type}", f"https://{service.host_name}{path}"],
                          capture_output=True)
    body, _, figures = done.stdout.decode().rpartition("\n")
    status, size, media = figures.split(" ", 2)
    return done.returncode, int(status), media, int(size), body


def labelled(label):
    (service,) = services.selected([label])
    return service


def answers(service):
    return bool(service.host.pages) and service.host.certificate == "good"


class Table(unittest.TestCase):
    def test_identifiers_hosts_and_labels_differ_and_fit_in_one_file(self):
        for texts in ([one.id for one in services.SERVICES], [one.host_name for one in services.SERVICES],
                      [one.label for one in services.SERVICES]):
            self.assertEqual(len(texts), len(set(texts)))
        self.assertLessEqual(len(services.SERVICES), 100)

    def test_every_format_state_and_category_is_there(self):
        self.assertEqual({one.adapter for one in services.SERVICES}, set(PATHS))
        self.assertEqual({one.expected.state for one in services.SERVICES},
                         {"operational", "degraded", "outage", "maintenance", "unknown"})
        self.assertEqual({one.expected.failure_category for one in services.SERVICES},
                         {None, "unreachable", "unsafe_destination", "unsupported_format", "changed_schema",
                          "unavailable", "malformed"})

    def test_the_written_file_has_the_added_services_and_the_switches_the_included_ones(self):
        chosen = services.selected(["openai", "slack", "moved"])
        self.assertEqual(services.provider_status(chosen), {"enabled": True, "provider_ids": ["openai"]})
        written = services.custom_providers(chosen)
        self.assertEqual(written["schema_version"], 2)
        self.assertEqual([(one["adapter"], one["status_page_url"]) for one in written["providers"]],
                         [(SLACK, "https://slack-status.com/"), (STATUSPAGE, f"https://{status_host('moved')}/")])


class Feeds(unittest.TestCase):
    def test_what_gives_a_state_is_json_of_the_limit_at_most(self):
        for service in services.SERVICES:
            expected = service.expected
            if expected.error or not answers(service):
                continue
            with self.subTest(service.label):
                path = PATHS[service.adapter][expected.endpoint]
                code, status, media, size, body = ask(service, path, "-L")
                self.assertEqual((code, status, media), (0, 200, "application/json; charset=utf-8"))
                self.assertLessEqual(size, LIMIT)
                self.assertIsInstance(json.loads(body), dict)

    def test_every_plain_page_has_its_status_type_and_body(self):
        for service in services.SERVICES:
            for page in service.host.pages:
                if isinstance(page, Page):
                    with self.subTest(service.label, path=page.path):
                        _, status, media, _, body = ask(service, page.path, "-k")
                        self.assertEqual(status, page.status)
                        if page.body:
                            self.assertEqual((media, body), (page.content_type, page.body))

    def test_the_first_path_of_a_moved_feed_is_gone(self):
        self.assertEqual(ask(labelled("moved"), FIRST)[1], 404)
        self.assertEqual(ask(labelled("moved"), SECOND)[1], 200)

    def test_redirects_lead_where_nobody_may_go_and_a_patient_client_gets_there(self):
        code, status, _, _, body = ask(labelled("redirected"), FIRST, "-L")
        self.assertEqual((code, status, body), (0, 200, services.GOOD))
        self.assertIn(services.ELSEWHERE, logs.targets(labelled("redirected").host_name))
        self.assertEqual(ask(labelled("in-a-circle"), "/summary.json", "-L", "--max-redirs", "2")[0], 47)

    def test_oversized_bodies_are_one_byte_beyond_the_limit(self):
        for label, size in (("oversized", LIMIT + 1), ("largest", LIMIT)):
            for told in ("declared", "undeclared"):
                service = labelled(f"{label}-{told}")
                code, _, _, came, body = ask(service, "/summary.json")
                self.assertEqual((code, came, json.loads(body)["page"]["status"]), (0, size, "UP"))
                head = subprocess.run(["curl", "-sS", "-o", "/dev/null", "-D", "-", *MONITOR,
                                       f"https://{service.host_name}/summary.json"], capture_output=True, text=True)
                self.assertEqual("content-length:" in head.stdout.lower(), told == "declared")

    def test_a_dripping_body_is_still_coming_after_the_others_are_there(self):
        service = labelled("drips")
        start = time.monotonic()
        code, status, _, size, _ = ask(service, SECOND, seconds=4)
        self.assertEqual((code, status), (28, 200))
        self.assertTrue(2 <= size <= 5, size)
        self.assertGreaterEqual(time.monotonic() - start, 3.5)
        (drip,) = [step for talk in service.host.pages for step in talk.steps if isinstance(step, Drip)]
        self.assertGreater(len(drip.data) * drip.pause, 20)

    def test_a_request_with_other_headers_is_turned_away(self):
        self.assertEqual(ask(labelled("headers"), FIRST)[1], 200)
        self.assertEqual(ask(labelled("headers"), FIRST, "-A", "kestrin-macos/2.0")[1], 418)

    def test_an_expired_certificate_is_not_trusted(self):
        self.assertEqual(ask(labelled("untrusted"), "/index.json")[0], 60)


class Visitors(unittest.TestCase):
    def test_visitors_are_told_apart_by_the_name_they_came_for(self):
        slow, quick = labelled("outage"), labelled("headers")
        start = time.time()
        asking = [subprocess.Popen(["curl", "-sS", "-o", "/dev/null", *MONITOR, f"https://{slow.host_name}{FIRST}"])
                  for _ in range(3)]
        ask(quick, FIRST)
        for process in asking:
            self.assertEqual(process.wait(), 0)
        self.assertLess(time.time() - start, 5)
        self.assertEqual(logs.most_visitors({slow.host_name}), 3)
        self.assertEqual(logs.most_visitors({quick.host_name}), 1)
        self.assertEqual(logs.most_visitors({"nobody.example"}), 0)


CASES = (Table, Feeds, Visitors)

"""What holds around the private internet: exit codes, nothing left behind, nothing changed outside."""

import json
import os
import pathlib
import signal
import subprocess
import tempfile
import time
import unittest

import scenarios
import services
from compare import KEYS, SERVICE_KEYS

HERE = pathlib.Path(__file__).resolve().parent
ROOTS = pathlib.Path("/etc/ssl/certs/ca-certificates.crt")


def enter(*command, **more):
    return subprocess.run([HERE / "enter", *command], capture_output=True, text=True, timeout=150, **more)


class Entering(unittest.TestCase):
    def test_the_lab_behaves_as_its_table_says(self):
        done = subprocess.run([HERE / "enter", HERE / "selftest"], timeout=170)
        self.assertEqual(done.returncode, 0)

    def test_the_exit_code_is_the_commands(self):
        self.assertEqual(enter("sh", "-c", "exit 17").returncode, 17)
        self.assertEqual(enter("sh", "-c", "kill -9 $$").returncode, 137)
        self.assertEqual(enter("/no/such/command").returncode, 127)
        self.assertEqual(enter().returncode, 2)

    def test_a_machine_that_refuses_namespaces_is_told_in_one_sentence(self):
        with tempfile.TemporaryDirectory() as directory:
            refusing = pathlib.Path(directory, "unshare")
            refusing.write_text("#!/bin/sh\nexit 1\n")
            refusing.chmod(0o755)
            done = enter("true", env={**os.environ, "PATH": f"{directory}:{os.environ['PATH']}"})
        self.assertEqual(done.returncode, 3)
        self.assertEqual(done.stderr.count("\n"), 1)

    def test_nothing_is_left_behind_and_nothing_outside_changes(self):
        covered = [pathlib.Path(path) for path in ("/etc/resolv.conf", "/etc/hosts", "/etc/nsswitch.conf", str(ROOTS))]
        before = [path.read_bytes() for path in covered]
        with tempfile.TemporaryDirectory() as directory:
            os.chmod(directory, 0o777)
            done = enter("sh", "-c", "sleep 60 & cat /etc/resolv.conf", env={**os.environ, "TMPDIR": directory})
            self.assertEqual(os.listdir(directory), [])
        self.assertIn("192.88.99.12", done.stdout)
        self.assertEqual([path.read_bytes() for path in covered], before)

    def test_ending_the_entry_ends_everything_inside(self):
        for number in (signal.SIGTERM, signal.SIGKILL):
            with tempfile.TemporaryDirectory() as directory, self.subTest(number):
                reader, writer = os.pipe()
                lab = subprocess.Popen([HERE / "enter", "sh", "-c", f"echo up >&{writer}; sleep 60"],
                                       pass_fds=[writer], env={**os.environ, "TMPDIR": directory})
                os.close(writer)
                with os.fdopen(reader) as pipe:
                    self.assertEqual(pipe.readline(), "up\n")
                    lab.send_signal(number)
                    lab.wait(timeout=20)
                    self.assertEqual(pipe.read(), "")  # comes when nobody holds the other end any more

    def test_the_machines_own_roots_stay_trusted(self):
        begin = "-----BEGIN CERTIFICATE-----"
        inside = enter("cat", ROOTS).stdout
        self.assertEqual(inside.count(begin), ROOTS.read_text().count(begin) + 1)

    def test_the_lab_stands_without_waiting_for_anything_in_vain(self):
        start = time.monotonic()
        self.assertEqual(enter("true").returncode, 0)
        # A second on a quiet machine, three on a busy one; more means that something is waited for in vain.
        self.assertLess(time.monotonic() - start, 20)


def line_as_expected(scenario):
    """A history line that the table admits."""
    expected = scenario.expected
    error = expected.error[0] if isinstance(expected.error, tuple) else expected.error
    record = {"timestamp": "2026-01-31T09:05:00Z", "site_id": scenario.id, "url": scenario.url,
              "dns_ok": expected.dns_ok, "ips": list(scenarios.expected_ips(scenario)),
              "http_status": expected.http_status, "elapsed_ms": expected.at_least_ms, "up": expected.up,
              "error": error}
    return {key: value for key, value in record.items() if value is not None}


class Comparing(unittest.TestCase):
    def setUp(self):
        self.directory = tempfile.TemporaryDirectory()
        self.addCleanup(self.directory.cleanup)
        self.state = pathlib.Path(self.directory.name, "Kestrin")
        (self.state / "data").mkdir(parents=True)

    def write(self, scenario, record):
        (self.state / "data" / f"{scenario.id}.jsonl").write_text(json.dumps(record) + "\n")

    def compare(self, *arguments):
        return subprocess.run([HERE / "compare.py", self.state, *arguments], capture_output=True, text=True)

    def test_the_sites_written_are_the_sites_compared(self):
        subprocess.run([HERE / "write_sites", self.state, "--only", "status-*", "certificates"], check=True)
        sites = json.loads((self.state / "sites.json").read_text())["sites"]
        self.assertEqual([site["id"] for site in sites],
                         [s.id for s in scenarios.selected(["status-*", "certificates"])])
        for scenario in scenarios.selected(["status-*", "certificates"]):
            self.write(scenario, line_as_expected(scenario))
        done = self.compare("--lines", "1")
        self.assertEqual((done.returncode, done.stdout.count("\n")), (0, 1), done.stdout)

    def test_history_as_the_table_says_is_accepted(self):
        for scenario in scenarios.SCENARIOS:
            if scenario.expected.in_history:
                self.write(scenario, line_as_expected(scenario))
        done = self.compare("--only", "*")
        self.assertEqual(done.returncode, 0, done.stdout)

    def test_copies_are_compared_with_the_line_of_their_original(self):
        chosen = scenarios.everything_at_once(200, 1000)
        self.assertEqual((len(chosen), len({scenario.id for scenario in chosen})), (200, 200))
        sites = [{"id": scenario.id, "name": "Any", "url": scenario.url} for scenario in chosen]
        (self.state / "sites.json").write_text(json.dumps({"sites": sites}))
        for scenario in chosen:
            if scenario.expected.in_history:
                self.write(scenario, line_as_expected(scenario))
        done = self.compare("--lines", "1")
        self.assertEqual((done.returncode, done.stdout), (0, "200 of 200 sites are as expected\n"))
        (copy,) = [scenario for scenario in chosen if scenario.id == "silent__2"]
        self.write(copy, line_as_expected(copy) | {"site_id": "silent"})
        self.assertIn("site_id: expected 'silent__2', found 'silent'", self.compare().stdout)

    def test_a_choice_of_sites_keeps_to_the_number_that_may_be_patient(self):
        waits = [s.id for s in scenarios.everything_at_once(300, 2) if s.expected.at_least_ms >= scenarios.PATIENT_MS]
        self.assertEqual(waits, ["dark", "handshake-silent"])

    def test_every_field_that_differs_is_told(self):
        (scenario,) = scenarios.selected(["drips-in-time"])
        wrong = {"timestamp": "now", "site_id": "x", "url": "https://x/", "dns_ok": False, "ips": [],
                 "http_status": 201, "elapsed_ms": 3, "up": 1, "error": "HTTP 200"}
        for key in KEYS:
            with self.subTest(key):
                self.write(scenario, line_as_expected(scenario) | {key: wrong[key]})
                done = self.compare("--only", scenario.id)
                self.assertEqual(done.returncode, 1)
                self.assertIn(f"{key}: ", done.stdout)

    def test_a_missing_field_history_or_line_is_told(self):
        (scenario,) = scenarios.selected(["status-200"])
        self.assertEqual(self.compare("--only", scenario.id).returncode, 1)
        record = line_as_expected(scenario)
        self.write(scenario, record)
        self.assertEqual(self.compare("--only", scenario.id, "--lines", "2").returncode, 1)
        del record["http_status"]
        self.write(scenario, record)
        self.assertEqual(self.compare("--only", scenario.id).returncode, 1)

    def test_a_history_of_a_site_that_may_not_be_checked_is_told(self):
        (scenario,) = scenarios.selected(["http-site"])
        self.assertEqual(self.compare("--only", scenario.id).returncode, 0)
        self.write(scenario, line_as_expected(scenario))
        self.assertEqual(self.compare("--only", scenario.id).returncode, 1)

    def test_identifiers_differ_and_can_name_files(self):
        identifiers = [scenario.id for scenario in scenarios.SCENARIOS]
        self.assertEqual(len(identifiers), len(set(identifiers)))
        for identifier in identifiers:
            self.assertRegex(identifier, "^[a-z0-9][a-z0-9_-]*$")


def service_line_as_expected(service):
    """A history line that the table admits."""
    expected = service.expected
    record = {"timestamp": "2026-01-31T09:05:00Z", "provider_id": service.id, "endpoint": service.endpoint(),
              "http_status": expected.http_status, "elapsed_ms": expected.at_least_ms, "state": expected.state,
              "summary": expected.summary, "official_updated_at": expected.official_updated_at,
              "error": expected.error, "failure_category": expected.failure_category}
    return {key: value for key, value in record.items() if value is not None}


class ComparingServices(unittest.TestCase):
    def setUp(self):
        self.directory = tempfile.TemporaryDirectory()
        self.addCleanup(self.directory.cleanup)
        self.state = pathlib.Path(self.directory.name, "Kestrin")
        (self.state / "data" / "providers").mkdir(parents=True)

    def write(self, service, record, times=1):
        (self.state / "data" / "providers" / f"{service.id}.jsonl").write_text((json.dumps(record) + "\n") * times)

    def compare(self, *arguments):
        return subprocess.run([HERE / "compare.py", self.state, *arguments], capture_output=True, text=True)

    def test_the_services_written_are_the_services_compared(self):
        subprocess.run([HERE / "write_sites", self.state, "--only", "status-200", "--services", "openai", "moved",
                        "instatus"], check=True)
        (site,) = scenarios.selected(["status-200"])
        (self.state / "data" / "status-200.jsonl").write_text(json.dumps(line_as_expected(site)) + "\n")
        for service in services.selected(["openai", "moved", "instatus"]):
            self.write(service, service_line_as_expected(service))
        done = self.compare("--lines", "1")
        self.assertEqual((done.returncode, done.stdout),
                         (0, "1 of 1 sites are as expected\n3 of 3 services are as expected\n"))
        self.assertEqual(self.compare("--lines", "2").returncode, 1)
        added = json.loads((self.state / "custom-providers.json").read_text())
        self.assertEqual([one["name"] for one in added["providers"]], ["Instatus", "Moved"])

    def test_without_services_nothing_is_switched_on_and_nothing_added(self):
        subprocess.run([HERE / "write_sites", self.state, "--only", "status-200"], check=True)
        self.assertEqual(json.loads((self.state / "sites.json").read_text())["provider_status"],
                         {"enabled": False, "provider_ids": []})
        self.assertFalse((self.state / "custom-providers.json").exists())
        self.assertEqual(services.configured(self.state), [])

    def test_history_as_the_table_says_is_accepted(self):
        for service in services.SERVICES:
            self.write(service, service_line_as_expected(service), 5)
        done = self.compare("--services", "*", "--lines", "5")
        self.assertEqual(done.returncode, 0, done.stdout)

    def test_every_field_that_differs_is_told(self):
        (service,) = services.selected(["drips"])
        wrong = {"timestamp": "now", "provider_id": "x", "endpoint": "https://x/", "http_status": 200.0,
                 "elapsed_ms": 3, "state": "degraded", "summary": "Fine", "official_updated_at": "never",
                 "error": "", "failure_category": "unavailable"}
        self.assertEqual(tuple(wrong), SERVICE_KEYS)
        for key in SERVICE_KEYS:
            with self.subTest(key):
                self.write(service, service_line_as_expected(service) | {key: wrong[key]})
                done = self.compare("--services", service.label)
                self.assertEqual(done.returncode, 1)
                self.assertIn(f"{key}: ", done.stdout)

    def test_a_field_too_many_and_fields_in_another_order_are_told(self):
        (service,) = services.selected(["openai"])
        record = service_line_as_expected(service)
        for other in (record | {"error": ""}, record | {"more": 1}, dict(reversed(record.items()))):
            self.write(service, other)
            self.assertEqual(self.compare("--services", "openai").returncode, 1)


CASES = (Entering, Comparing, ComparingServices)

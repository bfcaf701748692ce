"""Visits every host of the table from inside the private internet."""

import collections
import concurrent.futures
import errno
import os
import pathlib
import socket
import ssl
import subprocess
import time
import unittest
import urllib.parse

import logs
from addresses import CANARIES, HTTPS, PLAIN4, RESOLVER4, RUDE4
from name_server import FORGET
from scenarios import HOSTS, SCENARIOS, addresses_of, expected_ips
from table import Page, ascii_host, host_of

HERE = pathlib.Path(__file__).resolve().parent
REQUEST = ("-A", "kestrin-macos/2.0", "-H", "Cache-Control: no-cache, no-store, max-age=0", "-H", "Pragma: no-cache")

# Which of curl's exit codes each trouble gives; 28 is its own time-out. A header that is too large was a lack of memory
# before curl 8.6, and has been 100 since. A reset that a busy client sees only after it came ends the connecting, not the
# handshake.
TROUBLES = {
    "refused": {7}, "routeless": {7}, "dark": {28}, "garbage": {35}, "cleartext": {35}, "handshake-silent": {28},
    "handshake-reset": {7, 35}, "request-reset": {56}, "no-answer": {52}, "head-cut": {0, 1, 52, 56}, "silent": {28},
    "head-stalls": {28}, "head-drips": {28}, "lines-drip": {28}, "endless-line": {27, 56, 100},
    "endless-head": {27, 56, 100}, "http-0-9": {1},
}
CERTIFICATE_TROUBLES = {"expired": 10, "not-yet-valid": 9, "self-signed": 18, "wrong-host": 62, "unknown-ca": 20}

# curl 7.88 itself sleeps between refused addresses, so the last of fifteen is called without it.
CROWDED = "fourteen-refused"


def look_up(host):
    """The addresses as a monitor asks for them, or the resolver's sentence."""
    try:
        found = socket.getaddrinfo(host, None, socket.AF_UNSPEC, socket.SOCK_STREAM, socket.IPPROTO_TCP,
                                   socket.AI_ADDRCONFIG)
        return tuple(sorted({entry[4][0] for entry in found}))
    except socket.gaierror as error:
        return f"DNS: {error.strerror}"


Visit = collections.namedtuple("Visit", "exit_code status locations seconds")


def visit(url, *options, seconds=5):
    """One run of curl; status 0 without an answer, the Location lines of all answers."""
    parts = urllib.parse.urlsplit(url)
    wire = urllib.parse.quote(f"{parts.path}?{parts.query}" if parts.query else parts.path, safe="/?[]=&%")
    written = f"[{parts.hostname}]" if ":" in parts.hostname else f"{ascii_host(url)}"
    port = f":{parts.port}" if parts.port else ""
    done = subprocess.run(["curl", "-gsS", "-o", "/dev/null", "-D", "-", "-m", str(seconds), "--connect-timeout",
                           "4", "-w", "\nkestrin %{http_code} %{time_total}", *REQUEST, *options,
                           f"{parts.scheme}://{written}{port}{wire}"], capture_output=True)
    head, _, figures = done.stdout.decode("latin-1").rpartition("\nkestrin ")
    status, total = figures.split()
    locations = [line.split(":", 1)[1].strip() for line in head.splitlines() if line.lower().startswith("location:")]
    return Visit(done.returncode, int(status), locations, float(total))


def converse(host, seconds):
    """What the badly behaved server sends to an ordinary request in so many seconds."""
    context = ssl.create_default_context()
    with context.wrap_socket(socket.create_connection((RUDE4, HTTPS)), server_hostname=host) as connection:
        connection.sendall(f"GET / HTTP/1.1\r\nHost: {host}\r\n\r\n".encode())
        end, heard = time.monotonic() + seconds, b""
        while (left := end - time.monotonic()) > 0 and len(heard) < 1 << 20:
            connection.settimeout(left)
            try:
                piece = connection.recv(65536)
            except TimeoutError:
                break
            if not piece:
                break
            heard += piece
    return heard


def at_once(function, items):
    with concurrent.futures.ThreadPoolExecutor(12) as pool:
        return list(zip(items, pool.map(function, items)))


class Names(unittest.TestCase):
    def test_every_name_resolves_as_declared(self):
        steady = [name for name, host in HOSTS.items() if not host.name.lookups]
        later = "DNS: Temporary failure in name resolution"
        failures = {"unknown": "DNS: Name or service not known", "servfail": later, "refused": later, "silent": later,
                    "": "DNS: No address associated with hostname"}
        for name, found in at_once(look_up, steady):
            with self.subTest(name):
                self.assertEqual(found, addresses_of(name) or failures[HOSTS[name].name.failure])

    def test_every_failed_look_up_has_the_error_of_the_table(self):
        failing = [s for s in SCENARIOS if s.expected.error and str(s.expected.error).startswith("DNS: ")]
        self.assertGreater(len(failing), 3)
        for scenario, found in at_once(lambda s: look_up(ascii_host(s.url)), failing):
            with self.subTest(scenario.id):
                self.assertEqual(found, scenario.expected.error)

    def test_every_url_resolves_to_the_addresses_of_the_table(self):
        look_up(FORGET)
        for scenario in SCENARIOS:
            if scenario.expected.dns_ok:
                with self.subTest(scenario.id):
                    self.assertEqual(look_up(ascii_host(scenario.url)), expected_ips(scenario))

    def test_changing_names_change_look_up_by_look_up_and_can_be_forgotten(self):
        changing = [name for name, host in HOSTS.items() if host.name.lookups]
        self.assertEqual(len(changing), 4)
        for name in changing:
            wanted = HOSTS[name].name.lookups
            for _ in range(2):
                look_up(FORGET)
                self.assertEqual([look_up(name) for _ in range(len(wanted) + 1)], [*wanted, wanted[-1]])

    def test_a_truncated_answer_is_fetched_over_tcp(self):
        name = host_of("truncated")
        look_up(name)
        self.assertIn(True, [event["tcp"] for event in logs.events("dns") if event["name"] == name])

    def test_look_ups_are_counted(self):
        name = host_of("look-ups-are-counted")
        for _ in range(3):
            look_up(name)
        self.assertEqual(logs.lookups(name), 3)

    def test_a_silent_name_server_costs_two_seconds(self):
        start = time.monotonic()
        look_up(host_of("name-silent"))
        self.assertTrue(1.5 <= time.monotonic() - start <= 8)

    def test_other_names_do_not_exist(self):
        self.assertEqual(look_up("www.debian.org"), "DNS: Name or service not known")
        self.assertEqual(look_up("localhost")[0], "127.0.0.1")


class Answers(unittest.TestCase):
    def test_every_page_has_its_status_and_location(self):
        pages = [(name, host.port, page) for name, host in HOSTS.items() for page in host.pages
                 if isinstance(page, Page)]
        visits = at_once(lambda p: visit(f"https://{p[0]}:{p[1]}{p[2].path}", "-k", "--resolve",
                                         f"{p[0]}:{p[1]}:{PLAIN4}"), pages)
        for (name, _, page), found in visits:
            with self.subTest(name, path=page.path):
                wanted = [page.location] if page.location else []
                self.assertEqual((found.status, found.locations), (page.status, wanted))

    def test_a_patient_client_reaches_every_site_that_is_up_and_every_status(self):
        look_up(FORGET)
        answering = [s for s in SCENARIOS if s.expected.http_status and s.id != CROWDED]
        follow = lambda s: visit(s.url, *([] if 300 <= s.expected.http_status <= 399 else ["-L", "--max-redirs", "5"]),
                                 seconds=9)
        for scenario, found in at_once(follow, answering):
            with self.subTest(scenario.id):
                self.assertEqual(found.status, scenario.expected.http_status)
                self.assertGreaterEqual(found.seconds * 1000, scenario.expected.at_least_ms)

    def test_only_the_last_of_fifteen_addresses_answers(self):
        addresses = addresses_of(host_of(CROWDED))
        self.assertEqual(len(addresses), 15)
        refused = [socket.socket().connect_ex((address, HTTPS)) == errno.ECONNREFUSED for address in addresses]
        self.assertEqual(refused, [True] * 14 + [False])
        with socket.create_connection((addresses[-1], HTTPS)) as connection:
            ssl.create_default_context().wrap_socket(connection, server_hostname=host_of(CROWDED)).close()

    def test_the_sixth_redirect_is_there_to_be_refused(self):
        self.assertEqual(visit(f"https://{host_of('chain-6')}/", "-L", "--max-redirs", "5").exit_code, 47)
        self.assertEqual(visit(f"https://{host_of('chain-6')}/", "-L", "--max-redirs", "6").status, 200)
        self.assertEqual(visit(f"https://{host_of('loop')}/", "-L", "--max-redirs", "40").exit_code, 47)

    def test_odd_locations_are_as_declared(self):
        for id, wanted in (("no-location", []), ("empty-location", [""]), ("two-locations", ["/landed", "/other"]),
                           ("same-location-twice", ["/landed"] * 2), ("location-is-no-url", ["https://[nonsense/"])):
            found = visit(f"https://{host_of(id)}/")
            self.assertEqual((found.status, found.locations), (302, wanted))

    def test_a_request_with_other_headers_is_turned_away(self):
        url = f"https://{host_of('headers')}/"
        self.assertEqual(visit(url, "-H", "Accept-Encoding: gzip").status, 418)
        self.assertEqual(visit(url, "-A", "somebody else").status, 418)

    def test_nginx_speaks_http_2_and_1_1(self):
        for option, version in (("--http2", "2"), ("--http1.1", "1.1")):
            done = subprocess.run(["curl", "-sS", option, "-o", "/dev/null", "-w", "%{http_version}",
                                   f"https://{host_of('status-200')}/"], capture_output=True, text=True)
            self.assertEqual(done.stdout, version)

    def test_certificates_fail_for_the_reason_they_are_named_after(self):
        for id, reason in CERTIFICATE_TROUBLES.items():
            with self.subTest(id), socket.create_connection((PLAIN4, HTTPS)) as connection:
                with self.assertRaises(ssl.SSLCertVerificationError) as raised:
                    ssl.create_default_context().wrap_socket(connection, server_hostname=host_of(id))
                self.assertEqual(raised.exception.verify_code, reason)
                self.assertEqual(visit(f"https://{host_of(id)}/").exit_code, 60)


class Troubles(unittest.TestCase):
    def test_every_trouble_is_the_one_declared(self):
        troubled = {s.id for s in SCENARIOS if s.group == "transport" and not s.expected.up}
        self.assertEqual(troubled, set(TROUBLES))
        for id, found in at_once(lambda id: visit(f"https://{host_of(id)}/", seconds=3), sorted(troubled)):
            with self.subTest(id):
                self.assertIn(found.exit_code, TROUBLES[id])

    def test_errors_of_the_network_come_as_named(self):
        for id, number in (("refused", errno.ECONNREFUSED), ("routeless", errno.ENETUNREACH)):
            with socket.socket() as connection:
                self.assertEqual(connection.connect_ex((addresses_of(host_of(id))[0], HTTPS)), number)
        with socket.create_connection(addresses_of(host_of("handshake-reset")) + (HTTPS,)) as connection:
            with self.assertRaises(ConnectionResetError):
                connection.recv(1)

    def test_a_dripping_head_never_ends(self):
        heard = converse(host_of("head-drips"), 3.5).partition(b"X-Drip: ")[2]
        self.assertTrue(2 <= len(heard) <= 4, heard)

    def test_floods_do_not_end_a_head(self):
        for id in ("endless-line", "endless-head"):
            heard = converse(host_of(id), 5)
            self.assertGreaterEqual(len(heard), 1 << 20)
            self.assertNotIn(b"\r\n\r\n", heard)
        self.assertGreaterEqual(len(converse(host_of("endless-body"), 5)), 1 << 20)

    def test_a_hint_comes_before_the_answer(self):
        heard = converse(host_of("early-hint"), 3)
        self.assertLess(heard.index(b"HTTP/1.1 103"), heard.index(b"HTTP/1.1 200"))

    def test_cut_and_headless_answers_are_so(self):
        self.assertNotIn(b"\r\n\r\n", converse(host_of("head-cut"), 3))
        self.assertTrue(converse(host_of("http-0-9"), 3).startswith(b"<html>"))

    def test_requests_in_flight_are_counted(self):
        pathlib.Path(os.environ["KESTRIN_LAB"], "log", "requests.jsonl").open("r+").truncate()
        slow = [f"https://{host_of(f'slow-{number}')}/" for number in range(4)]
        for url in slow:
            visit(url)
        self.assertEqual(logs.most_in_flight(), 1)
        at_once(visit, slow)
        self.assertEqual(logs.most_in_flight(), 4)

    def test_a_visitor_who_leaves_a_silent_server_is_no_longer_in_flight(self):
        visit(f"https://{host_of('silent')}/", seconds=1)
        time.sleep(0.2)
        requests = logs.events("requests")
        (asked,) = [n for n, event in enumerate(requests) if event.get("host") == host_of("silent")][-1:]
        self.assertEqual(requests[asked - 1]["event"], "open")
        self.assertIn(requests[asked - 1]["connection"],
                      [event["connection"] for event in requests if event["event"] == "close"])


class Borders(unittest.TestCase):
    """Last, because it calls the canaries, which were silent until then."""

    def silent(self):
        return subprocess.run([HERE / "assert_silent"], capture_output=True, text=True)

    def test_canaries_were_silent_and_tell_of_every_call(self):
        self.assertEqual((self.silent().returncode, self.silent().stdout), (0, ""))
        for address, port in CANARIES:
            with self.subTest(address, port=port):
                scope = "%lo" if address.startswith("fe80") else ""
                socket.create_connection((address + scope, port), timeout=5).close()
        with socket.create_connection(("0.0.0.0", HTTPS), timeout=5) as connection:
            self.assertEqual(connection.recv(1), b"")
        time.sleep(0.2)
        called = [(address.partition("%")[0], port) for address, port in logs.canary_calls()]
        self.assertEqual(sorted(called), sorted([*CANARIES, ("127.0.0.1", HTTPS)]))
        self.assertEqual(self.silent().returncode, 1)

    def test_no_way_leads_out(self):
        for family, address in ((socket.AF_INET, "9.9.9.9"), (socket.AF_INET6, "2620:fe::fe")):
            with socket.socket(family) as connection:
                self.assertEqual(connection.connect_ex((address, HTTPS)), errno.ENETUNREACH)
        self.assertIn(RESOLVER4, pathlib.Path("/etc/resolv.conf").read_text())


CASES = (Names, Answers, Troubles, Borders)

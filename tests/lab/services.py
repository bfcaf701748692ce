"""The status services of the private internet and what a monitor must write about each of them.

The two services that come with the program and some that a user adds have their real names here; the name server
of the private internet gives its own addresses for them. To add a service, add a line: the added ones are numbered
in the order of the table, and go into "custom-providers.json" with that number.
"""

import fnmatch
import json
import pathlib

from addresses import FORBIDDEN4, PLAIN4
from sentences import BLOCKED, EXPIRED, TIMED_OUT, UNKNOWN_NAME
from service_table import *
from table import Drip, Host, Name, Page, Send, plain

WELL = "All Systems Operational"
GOOD = statuspage("none", WELL)
# A redirect leads here, and nobody may follow it.
ELSEWHERE = "/elsewhere.json"
HTML = "<!DOCTYPE html><title>Status</title><p>All Systems Operational</p>"


def included():
    yield "openai", STATUSPAGE, tells("operational", WELL), plain(page(FIRST, GOOD)), "status.openai.com"
    yield ("claude", STATUSPAGE,
           fails("unavailable", f"{FIRST}: HTTP 503", f"{SECOND}: HTTP 503", http_status=503, endpoint=1,
                 summary="Official status unavailable"),
           plain(Page(503, path=FIRST), Page(503, path=SECOND)), "status.claude.com")


def states():
    """Every state in every format that knows it."""
    yield ("degraded", STATUSPAGE, tells("degraded", "Slow builds, and queues", at_least_ms=500),
           slow(FIRST, statuspage("minor", "Slow\tbuilds,\u200b\n and  queues ")), "www.githubstatus.com")
    yield ("outage", STATUSPAGE, tells("outage", "Nothing is reachable", at_least_ms=500),
           slow(FIRST, statuspage("critical", "Nothing is reachable")), "www.cloudflarestatus.com")
    yield ("maintenance", STATUSPAGE, tells("maintenance", "Planned work", at_least_ms=500),
           slow(FIRST, statuspage("maintenance", "Planned work")))
    yield ("capitals-without-words", STATUSPAGE, tells("operational", "Operational"),
           plain(page(FIRST, statuspage("NONE", ""))))
    yield ("many-words", STATUSPAGE, tells("operational", "a" * 159),
           plain(page(FIRST, statuspage("none", "a" * 159 + " " + "b" * 40))))
    yield ("better-stack", BETTER_STACK, tells("degraded", "Degraded", at_least_ms=500),
           slow("/index.json", better_stack("degraded")))
    for label, state, told in (("well", "operational", "operational"), ("downtime", "DOWNTIME", "outage"),
                               ("maintenance", "maintenance", "maintenance")):
        yield (f"better-stack-{label}", BETTER_STACK, tells(told, told.capitalize()),
               plain(page("/index.json", better_stack(state))))
    live = dict(official_updated_at=None)
    yield ("instatus", INSTATUS, tells("outage", "Mail is late", at_least_ms=500, **live),
           slow("/summary.json", instatus("HASISSUES", (("Mail is late", "IDENTIFIED", "MINOROUTAGE"),
                                                        ("Mail is lost", "INVESTIGATING", "MAJOROUTAGE")))))
    yield ("instatus-well", INSTATUS, tells("operational", "Operational", **live),
           plain(page("/summary.json", instatus("UP"))))
    yield ("instatus-maintenance", INSTATUS, tells("maintenance", "New disks", **live),
           plain(page("/summary.json", instatus("UNDERMAINTENANCE", (), (("Later", "NOTSTARTEDYET"),
                                                                         ("New disks", "INPROGRESS"))))))
    yield ("slack", SLACK, tells("degraded", "Messages are late", at_least_ms=500),
           slow("/api/v2.0.0/current", slack("active", ("Messages are late", "notice", "active"))), "slack-status.com")


def troubles():
    """What gives no state, or only at the second try."""
    summary = "/summary.json"
    yield ("moved", STATUSPAGE, tells("operational", WELL, endpoint=1),
           plain(Page(404, path=FIRST), page(SECOND, GOOD)))
    yield ("changed-shape", STATUSPAGE,
           fails("changed_schema", f"{FIRST}: status format not recognized", f"{SECOND}: unrecognized status",
                 http_status=200, endpoint=1, summary="Purple haze", official_updated_at=UPDATED),
           plain(page(FIRST, '{"components": []}'), page(SECOND, statuspage("purple", "Purple haze"))))
    yield ("at-odds-with-itself", INSTATUS,
           fails("changed_schema", f"{summary}: unrecognized status", http_status=200, summary="Unknown"),
           plain(page(summary, instatus("UP", (("Mail is late", "IDENTIFIED", "MINOROUTAGE"),)))))
    yield ("not-json", BETTER_STACK,
           fails("malformed", "/index.json: malformed current status data", http_status=200),
           plain(page("/index.json", HTML)))
    yield ("html", STATUSPAGE,
           fails("unsupported_format", f"{FIRST}: unsupported Content-Type", f"{SECOND}: unsupported Content-Type",
                 http_status=200, endpoint=1),
           plain(*(Page(200, path=path, body=HTML, content_type="text/html") for path in (FIRST, SECOND))))
    yield ("html-then-503", STATUSPAGE,
           fails("unsupported_format", f"{FIRST}: unsupported Content-Type", f"{SECOND}: HTTP 503", http_status=503,
                 endpoint=1),
           plain(Page(200, path=FIRST, body=HTML, content_type="text/html"), Page(503, path=SECOND)))

    refused = "Redirect blocked: unapproved provider endpoint"
    yield ("redirected", STATUSPAGE,
           fails("unsafe_destination", f"{FIRST}: {refused}", f"{SECOND}: {refused}", endpoint=1),
           plain(Page(302, ELSEWHERE, FIRST), Page(301, ELSEWHERE, SECOND), page(ELSEWHERE, GOOD)))
    yield ("redirected-to-the-other", STATUSPAGE, tells("operational", WELL),
           plain(Page(302, SECOND, FIRST), page(SECOND, GOOD)))
    yield ("redirected-inside", INSTATUS,
           fails("unsafe_destination", f"{summary}: Redirect blocked: destination host 10.0.0.1"),
           plain(Page(302, f"https://10.0.0.1{summary}", summary)))
    yield ("downgraded", INSTATUS, fails("unsafe_destination", f"{summary}: Redirect blocked: HTTPS downgrade"),
           plain(Page(302, f"http://{status_host('downgraded')}{summary}", summary)))
    yield ("in-a-circle", INSTATUS,
           fails("unsafe_destination", f"{summary}: Redirect blocked: too many redirects"),
           plain(Page(302, summary, summary)))

    too_large = f"{summary}: Response exceeded the {LIMIT}-byte safety limit"
    for label, serve in (("declared", declared), ("undeclared", undeclared)):
        yield (f"oversized-{label}", INSTATUS, fails("malformed", too_large),
               talking({summary: (Send(serve(padded(instatus("UP"), LIMIT + 1))),)}))
        yield (f"largest-{label}", INSTATUS, tells("operational", "Operational", official_updated_at=None),
               talking({summary: (Send(serve(padded(instatus("UP"), LIMIT))),)}))
    # Seven and a half seconds of each request may pass without a byte, nine and a half in all.
    yield ("drips", STATUSPAGE,
           fails("changed_schema", f"{FIRST}: unrecognized status", f"{SECOND}: {TIMED_OUT}", http_status=200,
                 endpoint=1, summary="Purple haze", official_updated_at=UPDATED, at_least_ms=9000, at_most_ms=13000),
           talking({FIRST: (Send(declared(statuspage("purple", "Purple haze"))),),
                    SECOND: (Send(declared(GOOD).partition(b"{")[0]), Drip(GOOD.encode(), 1.0))}))
    yield ("headers", STATUSPAGE, tells("operational", WELL),
           talking({FIRST: (Send(declared(GOOD)),)}, requires=(
               "user-agent: kestrin-service-status/2.0", "cache-control: no-cache, no-store, max-age=0",
               "pragma: no-cache"), forbids=("accept-encoding", "cookie", "authorization", "referer",
                                             "if-modified-since", "if-none-match")))

    def judged(label, reason=BLOCKED):
        return fails("unsafe_destination", f"{BLOCKED}: {status_host(label)}: {reason}")

    yield "private", STATUSPAGE, judged("private"), Host(Name(("10.0.0.1",)))
    yield "mixed", STATUSPAGE, judged("mixed"), Host(Name((PLAIN4, "10.0.0.1")))
    yield "unknown-name", STATUSPAGE, judged("unknown-name", UNKNOWN_NAME), Host(Name(failure="unknown"))
    # One look-up judges the service, another the request.
    yield ("rebound", INSTATUS, fails("unsafe_destination", f"{summary}: {BLOCKED}: {status_host('rebound')}"),
           Host(Name(lookups=((FORBIDDEN4,), ("10.0.0.1",)))))
    yield ("untrusted", BETTER_STACK, fails("unreachable", f"/index.json: {EXPIRED}"),
           plain(page("/index.json", better_stack("operational")), certificate="expired"))


def _numbered():
    for label, adapter, expected, host, *name in included():
        yield Service(label, label, adapter, *name, host, expected)
    added = (line for group in (states, troubles) for line in group())
    for number, (label, adapter, expected, host, *name) in enumerate(added, 1):
        yield Service(f"provider-{number}", label, adapter, *(name or [status_host(label)]), host, expected)


SERVICES = tuple(_numbered())
HOSTS = {service.host_name: service.host for service in SERVICES}


def selected(patterns):
    """The services whose label or identifier is named by one of the shell patterns; all without patterns."""
    return [service for service in SERVICES if not patterns or any(
        fnmatch.fnmatchcase(text, pattern) for pattern in patterns for text in (service.label, service.id))]


def of_identifier(identifier):
    """The service with this identifier; None for a stranger."""
    return next((service for service in SERVICES if service.id == identifier), None)


def is_included(service):
    return service.label == service.id


# What the state directory says of them

def provider_status(chosen, enabled=True):
    """The value of "provider_status" in "sites.json"."""
    return {"enabled": enabled, "provider_ids": [service.id for service in chosen if is_included(service)]}


def custom_providers(chosen, schema_version=2):
    """The content of "custom-providers.json"."""
    return {"schema_version": schema_version, "providers": [
        {"id": service.id, "name": service.name, "status_page_url": service.page, "adapter": service.adapter,
         "adapter_version": 1, "enabled": True} for service in chosen if not is_included(service)]}


def configured(state):
    """The services that a state directory has checked, from its two files."""
    status = json.loads(pathlib.Path(state, "sites.json").read_text()).get("provider_status", {})
    if not status.get("enabled"):
        return []
    added = pathlib.Path(state, "custom-providers.json")
    providers = json.loads(added.read_text())["providers"] if added.exists() else []
    identifiers = status["provider_ids"] + [one["id"] for one in providers if one["enabled"]]
    return [service for service in map(of_identifier, identifiers) if service]

"""The vocabulary of the table of status services: feeds, how they are served, and what a monitor must make of them."""

import json
from dataclasses import dataclass

from addresses import DOMAIN, RUDE4
from table import Host, Name, Page, Send, Talk, Wait

STATUSPAGE, BETTER_STACK, INSTATUS, SLACK = "statuspage-v2", "betterstack-index", "instatus-summary", "slack-status-v2"

# The paths of each format, in the order in which they are tried.
PATHS = {
    STATUSPAGE: ("/api/v2/status.json", "/api/v2/summary.json"),
    BETTER_STACK: ("/index.json",),
    INSTATUS: ("/summary.json",),
    SLACK: ("/api/v2.0.0/current",),
}
FIRST, SECOND = PATHS[STATUSPAGE]

JSON = "application/json; charset=utf-8"
UPDATED = "2026-01-31T09:05:00.000Z"
LIMIT = 262144  # bytes of a feed that are read


# A history line without its time stamp and its service. Bounds are milliseconds, both included.
@dataclass(frozen=True)
class ExpectedStatus:
    state: str
    summary: str
    endpoint: int = 0  # which of the paths
    http_status: int | None = 200
    official_updated_at: str | None = UPDATED
    error: str | None = None
    failure_category: str | None = None
    at_least_ms: int = 0
    at_most_ms: int = 60000


@dataclass(frozen=True)
class Service:
    id: str  # as in the history file's name
    label: str  # what the table calls it
    adapter: str
    host_name: str
    host: Host
    expected: ExpectedStatus

    @property
    def name(self):
        """As the dashboard shows it."""
        return {"openai": "OpenAI", "claude": "Claude"}.get(self.id, self.label.replace("-", " ").capitalize())

    @property
    def page(self):
        return f"https://{self.host_name}/"

    def endpoint(self):
        return f"https://{self.host_name}{PATHS[self.adapter][self.expected.endpoint]}"


def status_host(label):
    return f"{label}.status.{DOMAIN}"


# What must come of it

def tells(state, summary, **more):
    return ExpectedStatus(state, summary, **more)


def fails(category, *lines, http_status=None, summary="Status unavailable", endpoint=0, official_updated_at=None,
          **more):
    return ExpectedStatus("unknown", summary, endpoint, http_status, official_updated_at, "; ".join(lines), category,
                          **more)


# What the feeds say

def statuspage(indicator, description):
    return json.dumps({"page": {"id": "lab", "name": "Lab", "url": "https://lab/", "updated_at": UPDATED},
                       "status": {"indicator": indicator, "description": description}})


def better_stack(state):
    return json.dumps({"data": {"id": "1", "type": "status_page", "attributes": {
        "company_name": "Lab", "aggregate_state": state, "updated_at": UPDATED}}, "included": []})


def instatus(status, incidents=(), maintenances=()):
    """Incidents are (name, status, impact), maintenances (name, status)."""
    return json.dumps({"page": {"name": "Lab", "url": "https://lab", "status": status},
                       "activeIncidents": [dict(zip(("name", "status", "impact"), one)) for one in incidents],
                       "activeMaintenances": [dict(zip(("name", "status"), one)) for one in maintenances]})


def slack(status, *incidents):
    """Incidents are (title, type, status)."""
    return json.dumps({"status": status, "date_created": UPDATED, "date_updated": UPDATED,
                       "active_incidents": [dict(zip(("title", "type", "status"), one)) for one in incidents]})


def padded(document, size):
    """The same document, with blanks behind it up to so many bytes."""
    return document + " " * (size - len(document.encode()))


# How they are served

def page(path, body, **more):
    """On nginx."""
    return Page(200, path=path, body=body, content_type=JSON, **more)


def declared(body, status="200 OK", content_type=JSON):
    """An answer that tells its length."""
    content = body.encode()
    return (f"HTTP/1.1 {status}\r\nContent-Type: {content_type}\r\n".encode()
            + b"Content-Length: %d\r\n\r\n" % len(content) + content)


def undeclared(body):
    """One that does not, until the last piece."""
    content = body.encode()
    return (f"HTTP/1.1 200 OK\r\nContent-Type: {JSON}\r\nTransfer-Encoding: chunked\r\n\r\n".encode()
            + b"%x\r\n" % len(content) + content + b"\r\n0\r\n\r\n")


def talking(steps_of_paths, **more):
    """A host on the badly behaved server; the steps for each path."""
    return Host(Name((RUDE4,)), tuple(Talk(tuple(steps), path, **more) for path, steps in steps_of_paths.items()))


def slow(path, body, seconds=0.5):
    """A host that takes so long for its answer that others would be seen beside it."""
    return talking({path: (Wait(seconds), Send(declared(body)))})

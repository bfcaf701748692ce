"""Reads what the servers of the private internet wrote down. Paths default to the lab this process runs in."""

import json
import os
import pathlib


def events(kind, root=None):
    """The lines of one log: "dns", "requests", "canaries" or "nginx". A line still being written is left out."""
    path = pathlib.Path(root or os.environ["KESTRIN_LAB"], "log", f"{kind}.jsonl")
    complete = path.read_text(encoding="utf-8").rpartition("\n")[0]
    return [json.loads(line) for line in complete.splitlines()]


def canary_calls(root=None):
    return [(event["address"], event["port"]) for event in events("canaries", root)]


def lookups(name, root=None):
    """How often an IPv4 address was asked for; one look-up asks once."""
    return sum(event["name"] == name and event["kind"] == 1 for event in events("dns", root))


def most_in_flight(root=None):
    """The most connections that the badly behaved server held at one moment."""
    most, present = 0, set()
    for event in events("requests", root):
        if event["event"] == "open":
            present.add(event["connection"])
        elif event["event"] == "close":
            present.discard(event["connection"])  # it may have come before this log began
        most = max(most, len(present))
    return most


def most_visitors(hosts=None, root=None):
    """The most connections that all servers together held at one moment; with `hosts` those alone that came for one
    of these names. Who never said a name is nobody's visitor."""
    badly = events("requests", root)
    wanted = {event["connection"] for event in badly if hosts is None or event.get("host") in hosts}
    moments = [(event["at"], {"open": 1, "close": -1}.get(event["event"], 0)) for event in badly
               if event["connection"] in wanted]
    for event in events("nginx", root):
        if hosts is None or event["host"] in hosts:
            moments += [(float(event["ended"]) - float(event["took"]), 1), (float(event["ended"]), -1)]
    # Times are told in milliseconds: of two at one moment the end is taken to have come first.
    most = present = 0
    for _, change in sorted(moments):
        present += change
        most = max(most, present)
    return most


def targets(host, root=None):
    """The paths that were asked for on one host, in the order in which each server wrote them down."""
    return [event["target"] for kind in ("nginx", "requests") for event in events(kind, root)
            if event.get("host") == host]

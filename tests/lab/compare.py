#!/usr/bin/python3 -B
"""Compares the history lines of a state directory with what the tables expect. Exit code 1: they differ."""

import argparse
import json
import pathlib
import re
import sys

import scenarios
import services

KEYS = ("timestamp", "site_id", "url", "dns_ok", "ips", "http_status", "elapsed_ms", "up", "error")
SERVICE_KEYS = ("timestamp", "provider_id", "endpoint", "http_status", "elapsed_ms", "state", "summary",
                "official_updated_at", "error", "failure_category")
MOMENT = re.compile(r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ")
ABSENT = "absent"


def differences_of_line(scenario, line):
    """What is wrong with one line about a site, as sentences."""
    expected = scenario.expected
    return _differences(line, KEYS, expected, {
        "site_id": scenario.id, "url": scenario.url, "dns_ok": expected.dns_ok,
        "ips": list(scenarios.expected_ips(scenario)), "http_status": expected.http_status, "up": expected.up,
        "error": expected.error})


def differences_of_service_line(service, line):
    """What is wrong with one line about a status service, as sentences."""
    expected = service.expected
    return _differences(line, SERVICE_KEYS, expected, {
        "provider_id": service.id, "endpoint": service.endpoint(), "http_status": expected.http_status,
        "state": expected.state, "summary": expected.summary, "official_updated_at": expected.official_updated_at,
        "error": expected.error, "failure_category": expected.failure_category})


def _differences(line, keys, expected, wanted):
    """`wanted` has the value of each key, None for a key that must not be there, a tuple where any of them will do."""
    try:
        record = json.loads(line)
    except ValueError as error:
        return [f"no JSON: {error}"]
    if not isinstance(record, dict):
        return ["no JSON object"]
    found = []
    for key, value in wanted.items():
        there = record.get(key, ABSENT)
        admitted = value if isinstance(value, tuple) else (ABSENT if value is None else value,)
        if not any(there == one and type(there) is type(one) for one in admitted):
            found.append(f"{key}: expected {' or '.join(map(repr, admitted))}, found {there!r}")
    if not MOMENT.fullmatch(str(record.get("timestamp"))):
        found.append(f"timestamp: found {record.get('timestamp', ABSENT)!r}")
    elapsed = record.get("elapsed_ms", ABSENT)
    if type(elapsed) is not int or not expected.at_least_ms <= elapsed <= expected.at_most_ms:
        found.append(f"elapsed_ms: expected {expected.at_least_ms} to {expected.at_most_ms}, found {elapsed}")
    if list(record) != [key for key in keys if key in record]:
        found.append(f"keys: found {', '.join(record)}")
    return found


def differences(directory, scenario, lines_wanted=None):
    """What is wrong with the history file of one scenario; `lines_wanted` is how many lines it must have."""
    path = pathlib.Path(directory, "data", f"{scenario.id}.jsonl")
    if not scenario.expected.in_history:
        return ["a site that may not be checked has a history"] if path.exists() else []
    return _differences_of_file(path, lines_wanted, lambda line: differences_of_line(scenario, line))


def differences_of_service(directory, service, lines_wanted=None):
    """The same for a status service."""
    path = pathlib.Path(directory, "data", "providers", f"{service.id}.jsonl")
    return _differences_of_file(path, lines_wanted, lambda line: differences_of_service_line(service, line))


def _differences_of_file(path, lines_wanted, differences_of_one):
    try:
        lines = path.read_text(encoding="utf-8").split("\n")
    except (OSError, UnicodeDecodeError) as error:
        return [f"no history: {error}"]
    found = [] if lines.pop() == "" else ["the last line has no line feed"]
    if not lines or (lines_wanted is not None and len(lines) != lines_wanted):
        found.append(f"expected {lines_wanted or 'some'} lines, found {len(lines)}")
    for number, line in enumerate(lines, 1):
        found += [f"line {number}: {difference}" for difference in differences_of_one(line)]
    return found


def _told(kind, found_of):
    """Prints what is wrong with each of one kind; how many are."""
    wrong = 0
    for title, found in found_of:
        if found:
            wrong += 1
            print(title)
            print("".join(f"    {line}\n" for line in found), end="")
    print(f"{len(found_of) - wrong} of {len(found_of)} {kind} are as expected")
    return wrong


def main():
    arguments = argparse.ArgumentParser(description=__doc__)
    arguments.add_argument("directory", type=pathlib.Path, help="the state directory, such as ~/.local/share/Kestrin")
    arguments.add_argument("--only", nargs="+", metavar="PATTERN", default=[],
                           help="identifiers or groups of sites; else the sites of \"sites.json\"")
    arguments.add_argument("--services", nargs="+", metavar="PATTERN", default=[],
                           help="identifiers or labels of status services; else those that are switched on, unless "
                                "sites were chosen")
    arguments.add_argument("--lines", type=int, metavar="COUNT", help="how many lines each history must have")
    given = arguments.parse_args()
    chosen, checked = scenarios.selected(given.only) if given.only else [], []
    if given.services:
        checked = services.selected(given.services)
    if not given.only and not given.services:
        configured = json.loads((given.directory / "sites.json").read_text())["sites"]
        chosen = [scenario for site in configured if (scenario := scenarios.of_site(site["id"]))]
        checked = services.configured(given.directory)
    wrong = 0
    if chosen or not checked:
        wrong += _told("sites", [(f"{one.id} ({one.url})", differences(given.directory, one, given.lines))
                                 for one in chosen])
    if checked:
        wrong += _told("services", [(f"{one.id} ({one.label}, {one.page})",
                                     differences_of_service(given.directory, one, given.lines)) for one in checked])
    return 1 if wrong or not (chosen or checked) else 0


if __name__ == "__main__":
    sys.exit(main())

#!/usr/bin/python3 -B
"""Compares the history lines of a state directory with what the scenario table expects. Exit code 1: they differ."""

import argparse
import json
import pathlib
import re
import sys

import scenarios

KEYS = ("timestamp", "site_id", "url", "dns_ok", "ips", "http_status", "elapsed_ms", "up", "error")
MOMENT = re.compile(r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ")
ABSENT = "absent"


def differences_of_line(scenario, line):
    """What is wrong with one line, as sentences."""
    try:
        record = json.loads(line)
    except ValueError as error:
        return [f"no JSON: {error}"]
    if not isinstance(record, dict):
        return ["no JSON object"]
    expected, found = scenario.expected, []

    def compare(key, wanted):
        value = record.get(key, ABSENT)
        admitted = wanted if isinstance(wanted, tuple) else (wanted,)
        if not any(value == one and type(value) is type(one) for one in admitted):
            found.append(f"{key}: expected {' or '.join(map(repr, admitted))}, found {value!r}")

    compare("site_id", scenario.id)
    compare("url", scenario.url)
    compare("dns_ok", expected.dns_ok)
    if record.get("ips") != list(scenarios.expected_ips(scenario)):
        found.append(f"ips: expected {list(scenarios.expected_ips(scenario))}, found {record.get('ips', ABSENT)}")
    compare("http_status", ABSENT if expected.http_status is None else expected.http_status)
    compare("up", expected.up)
    compare("error", ABSENT if expected.error is None else expected.error)
    if not MOMENT.fullmatch(str(record.get("timestamp"))):
        found.append(f"timestamp: found {record.get('timestamp', ABSENT)!r}")
    elapsed = record.get("elapsed_ms", ABSENT)
    if type(elapsed) is not int or not expected.at_least_ms <= elapsed <= expected.at_most_ms:
        found.append(f"elapsed_ms: expected {expected.at_least_ms} to {expected.at_most_ms}, found {elapsed}")
    if list(record) != [key for key in KEYS if key in record]:
        found.append(f"keys: found {', '.join(record)}")
    return found


def differences(directory, scenario, lines_wanted=None):
    """What is wrong with the history file of one scenario; `lines_wanted` is how many lines it must have."""
    path = pathlib.Path(directory, "data", f"{scenario.id}.jsonl")
    if not scenario.expected.in_history:
        return ["a site that may not be checked has a history"] if path.exists() else []
    try:
        lines = path.read_text(encoding="utf-8").split("\n")
    except (OSError, UnicodeDecodeError) as error:
        return [f"no history: {error}"]
    found = [] if lines.pop() == "" else ["the last line has no line feed"]
    if not lines or (lines_wanted is not None and len(lines) != lines_wanted):
        found.append(f"expected {lines_wanted or 'some'} lines, found {len(lines)}")
    for number, line in enumerate(lines, 1):
        found += [f"line {number}: {difference}" for difference in differences_of_line(scenario, line)]
    return found


def main():
    arguments = argparse.ArgumentParser(description=__doc__)
    arguments.add_argument("directory", type=pathlib.Path, help="the state directory, such as ~/.local/share/Kestrin")
    arguments.add_argument("--only", nargs="+", metavar="PATTERN", default=[],
                           help="identifiers or groups; else the sites of \"sites.json\"")
    arguments.add_argument("--lines", type=int, metavar="COUNT", help="how many lines each history must have")
    given = arguments.parse_args()
    if given.only:
        chosen = scenarios.selected(given.only)
    else:
        configured = json.loads((given.directory / "sites.json").read_text())["sites"]
        chosen = [scenario for site in configured if (scenario := scenarios.of_site(site["id"]))]
    wrong = 0
    for scenario in chosen:
        found = differences(given.directory, scenario, given.lines)
        if found:
            wrong += 1
            print(f"{scenario.id} ({scenario.url})")
            print("".join(f"    {line}\n" for line in found), end="")
    print(f"{len(chosen) - wrong} of {len(chosen)} sites are as expected")
    return 1 if wrong or not chosen else 0


if __name__ == "__main__":
    sys.exit(main())

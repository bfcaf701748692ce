"""Prints results as they come, and writes them for machines."""

import json
import os
import pathlib
import platform
import time

from rows import ROWS


def number(value):
    return f"{value:.0f}" if value == int(value) or abs(value) >= 1000 else f"{value:.3g}"


class Report:
    def __init__(self, path, quick, rounds):
        self._path = pathlib.Path(path)
        self._verdicts = not quick
        self._found = {"rounds": rounds, "quick": quick, "machine": _machine(), "rows": {}}
        if quick:
            print("A quick run: files are small and rounds are few, so no goal is judged.")
        print(f"{'':19}{'measured':>11}  {'at most':<19}{'':9}", flush=True)

    def add(self, result):
        row = ROWS[result.row]
        verdict = ("goal met" if result.is_met() else "MISSED") if self._verdicts else ""
        sides = ""
        if result.subject is not None:
            sides = f"{number(result.subject)} against {number(result.yardstick)} {result.in_}"
        more = [f"{name} {number(value)}" for name, value in result.also.items()]
        print(f"{result.row:<19}{number(result.value):>11}  {number(row.goal) + ' ' + row.unit:<19}{verdict:<9}"
              f"{row.what} / {row.yardstick}", flush=True)
        if sides or more:
            print(f"{'':62}{'; '.join(filter(None, [sides, *more]))}", flush=True)
        self._found["rows"][result.row] = result.as_json(self._verdicts)
        # After every row, so that an interrupted run leaves what it has.
        self._path.parent.mkdir(parents=True, exist_ok=True)
        draft = self._path.with_name(self._path.name + ".new")
        draft.write_text(json.dumps(self._found, indent=2) + "\n", encoding="utf-8")
        draft.rename(self._path)


def _machine():
    return {"processors": os.cpu_count(), "kernel": platform.release(), "load_before": os.getloadavg()[0],
            "at": time.strftime("%Y-%m-%dT%H:%M:%SZ", time.gmtime())}

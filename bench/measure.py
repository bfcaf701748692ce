#!/usr/bin/python3 -B
"""Measures the rows of the table, prints each as it is known, and writes all of them to a file for machines.

The files that are read and written while measuring lie in a temporary directory that goes in every case.
"""

import argparse
import ctypes
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import tempfile

from platformthemes import missing
from rows import ROWS

HERE = pathlib.Path(__file__).resolve().parent
SOURCE = HERE.parent
NEEDED_MB = 2500
NEEDED_QUICK_MB = 400
PR_SET_PDEATHSIG = 1


def parse():
    arguments = argparse.ArgumentParser(description=__doc__, prog="script/bench")
    arguments.add_argument("rows", nargs="*", metavar="ROW", help="rows to measure instead of all: " + ", ".join(ROWS))
    arguments.add_argument("--only", action="append", default=[], metavar="ROW", help="the same as naming it")
    arguments.add_argument("--quick", action="store_true", help="small files and few rounds, for trying out")
    arguments.add_argument("--rounds", type=int, help="of subject and yardstick in turns (default 9, quick 3)")
    arguments.add_argument("--json", type=pathlib.Path, default=SOURCE / "build/bench.json", metavar="FILE",
                           help="where the results go (default build/bench.json)")
    arguments.add_argument("--build", type=pathlib.Path, default=SOURCE / "build/release", metavar="DIRECTORY",
                           help="what to measure (default build/release)")
    given = arguments.parse_args()
    # Paths are the caller's, who may stand elsewhere than the script that called this.
    caller = pathlib.Path(os.environ.get("KESTRIN_BENCH_CALLER", "."))
    given.json, given.build = caller / given.json, caller / given.build
    named = list(dict.fromkeys(given.rows + given.only))
    for row in named:
        if row not in ROWS:
            arguments.error(f"there is no row {row!r}, only {', '.join(ROWS)}")
    lacking = {row: sentence for row in named or ROWS if (sentence := missing(row))}
    for sentence in lacking.values():
        print(sentence, file=sys.stderr)
    if lacking and named:
        sys.exit(1)
    given.rows = [row for row in named or ROWS if row not in lacking]
    given.rounds = given.rounds or (3 if given.quick else 9)
    return given


def die_with_parent():
    ctypes.CDLL(None).prctl(PR_SET_PDEATHSIG, signal.SIGTERM)


def main():
    given = parse()
    needed = NEEDED_QUICK_MB if given.quick else NEEDED_MB
    free = shutil.disk_usage(tempfile.gettempdir()).free // 1_000_000
    if free < needed:
        print(f"Measuring takes {needed} MB of free space in {tempfile.gettempdir()}, and there are {free} MB. "
              "TMPDIR names another place.", file=sys.stderr)
        return 1
    for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
        signal.signal(number, lambda number, _: sys.exit(128 + number))
    scratch = tempfile.mkdtemp(prefix="kestrin-bench-")
    measuring = None
    try:
        # Desktops of the measurement go there as well, and with it.
        measuring = subprocess.Popen(
            [SOURCE / "tests/lab/enter", "/usr/bin/python3", "-B", HERE / "inside_lab.py", "--build", given.build.resolve(),
             "--scratch", scratch, "--json", given.json.resolve(), "--rounds", str(given.rounds),
             *(["--quick"] if given.quick else []), *given.rows],
            env={**os.environ, "TMPDIR": scratch}, stdin=subprocess.DEVNULL, preexec_fn=die_with_parent,
            start_new_session=True)
        return measuring.wait()
    finally:
        if measuring and measuring.poll() is None:
            measuring.terminate()
            measuring.wait()
        shutil.rmtree(scratch, ignore_errors=True)


if __name__ == "__main__":
    sys.exit(main())

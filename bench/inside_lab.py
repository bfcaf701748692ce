"""The half of bench/measure.py that runs inside the private internet."""

import argparse
import pathlib
import subprocess
import sys

from appends import AppendRow
from checks import CheckRows
from dashboards import DashboardRow
from desktops import DesktopRows
from feeds import FeedRows
from histories import HistoryRows
from setting import Setting
from report import Report
from themes import ThemeRows
from waiting import WaitInVain


def main():
    arguments = argparse.ArgumentParser()
    arguments.add_argument("--build", type=pathlib.Path)
    arguments.add_argument("--scratch", type=pathlib.Path)
    arguments.add_argument("--json", type=pathlib.Path)
    arguments.add_argument("--rounds", type=int)
    arguments.add_argument("--quick", action="store_true")
    arguments.add_argument("rows", nargs="+")
    given = arguments.parse_args()
    setting = Setting(given.build, given.scratch, given.rounds, given.quick)
    report = Report(given.json, given.quick, given.rounds)
    for rows in (AppendRow, CheckRows, FeedRows, HistoryRows, DashboardRow, DesktopRows, ThemeRows):
        try:
            for result in rows(setting).measure(set(given.rows)):
                report.add(result)
        except (OSError, RuntimeError, WaitInVain, subprocess.SubprocessError) as error:
            print(f"{rows.__name__}: {error}", file=sys.stderr)
            return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())

"""What the dashboard shows, made from the model."""

import subprocess
import tempfile

import rounds
from rows import Result

DRAWINGS = 500


class DashboardRow:
    def __init__(self, setting):
        self._setting = setting

    def measure(self, wanted):
        if "dashboard-content" not in wanted:
            return
        samples = rounds.interleaved(self._setting.rounds, content=self._draw)["content"]
        again, first = (lambda sample: sample[0] / 1000), (lambda sample: sample[1] / 1000)
        yield Result("dashboard-content", rounds.median(samples, again),
                     also={"ms for the first one": rounds.median(samples, first)})

    def _draw(self):
        with tempfile.TemporaryDirectory(dir=self._setting.scratch) as root:
            done = subprocess.run([self._setting.program("dashboard_content"), root, str(DRAWINGS)], check=True,
                                  stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, text=True)
        again, first = done.stdout.split()
        return float(again), float(first)

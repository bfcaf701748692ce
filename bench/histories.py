"""Reading histories: one big file, one without two equal lists of addresses, and twenty-five as the program loads."""

import functools
import json
import pathlib

import processes
import rounds
from rows import Result

MB = 1_000_000
FILES = 25


class HistoryRows:
    def __init__(self, setting):
        self._setting = setting
        # In a quick run a fiftieth.
        self._size = 500 * MB // (50 if setting.quick else 1)

    def measure(self, wanted):
        for row, kind in (("fold", "recurring"), ("fold-distinct", "distinct")):
            if row in wanted:
                root = write_state(self._setting, row, 1, self._size, kind)
                yield self._against_wc(row, root)
        if wanted & {"load", "reload", "reload-bytes"}:
            root = write_state(self._setting, "load", FILES, self._size // FILES, "recurring")
            if "load" in wanted:
                yield self._against_wc("load", root)
            if wanted & {"reload", "reload-bytes"}:
                yield from self._reload(root)

    def _against_wc(self, row, root):
        files = [str(path) for path in sorted((root / "data").iterdir())]
        sites = [pathlib.Path(file).stem for file in files]
        lines = int(processes.run(["wc", "-l", *files]).said.split()[-2 if len(files) > 1 else 0])
        fold = [self._setting.program("history_fold"), str(root), *sites]
        said = int(processes.run(fold).said)
        if said != lines:
            raise RuntimeError(f"{said} checks were folded from {lines} lines.")
        samples = rounds.interleaved(self._setting.rounds, subject=functools.partial(processes.run, fold),
                                     yardstick=functools.partial(processes.run, ["wc", "-l", *files]))
        subject, yardstick = samples["subject"], samples["yardstick"]
        return Result(row, rounds.ratio(subject, yardstick, lambda took: took.wall),
                      rounds.median(subject, lambda took: took.wall), rounds.median(yardstick, lambda took: took.wall),
                      "s", {"CPU, times": rounds.ratio(subject, yardstick, lambda took: took.cpu)})

    def _reload(self, root):
        said = processes.run([self._setting.program("reload"), str(root), str(self._setting.rounds)]).said
        samples = [[float(word) for word in line.split()] for line in said.splitlines()]
        first, again = (rounds.median(samples, lambda sample: sample[index]) for index in (0, 1))
        yield Result("reload", again / first, again / 1000, first / 1000, "ms")
        yield Result("reload-bytes", max(sample[2] for sample in samples))


def write_state(setting, name, files, size, kind, *long_lines):
    """A state directory with so many websites and a history for each, all in the page cache afterwards."""
    root = setting.scratch / name / "Kestrin"
    if not root.exists():
        (root / "data").mkdir(parents=True)
        sites = [{"id": f"site-{n}", "name": f"Site {n}", "url": f"https://www.site-{n}.example/", "enabled": True}
                 for n in range(1, files + 1)]
        (root / "sites.json").write_text(json.dumps({"sites": sites, "interval_seconds": 300}), encoding="utf-8")
        for site in sites:
            processes.run([setting.program("history_writer"), str(root / "data" / f"{site['id']}.jsonl"), site["id"],
                           str(size), kind, *map(str, long_lines)])
    return root

"""One append against the system calls that it makes."""

import re
import subprocess

import rounds
from histories import write_state
from rows import Result

SERIES = 5000


class AppendRow:
    def __init__(self, setting):
        self._setting = setting

    def measure(self, wanted):
        if "append" not in wanted:
            return
        roots = {what: write_state(self._setting, f"append-{what}", 1, 1_000_000, "recurring")
                 for what in ("check", "calls", "six")}
        self._compare_calls(roots)
        samples = rounds.interleaved(
            self._setting.rounds,
            **{what: lambda what=what, root=root: self._run(what, root, SERIES) for what, root in roots.items()})
        wall, cpu = (lambda sample: sample[0]), (lambda sample: sample[1])
        check, calls = samples["check"], samples["calls"]
        # Nothing here waits for anything, so what other programs take from the wall clock is none of it.
        yield Result("append", rounds.ratio(check, calls, cpu), rounds.median(check, cpu), rounds.median(calls, cpu),
                     "µs of CPU", {"wall, times": rounds.ratio(check, calls, wall),
                                   "against open, read, write, fstat and close alone, times":
                                   rounds.ratio(check, samples["six"], cpu)})

    def _run(self, what, root, count, tracer=()):
        done = subprocess.run([*tracer, self._setting.program("append"), what, str(root), str(count)], check=True,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, text=True)
        wall, cpu = done.stdout.split()
        return float(wall), float(cpu)

    def _compare_calls(self, roots):
        """The yardstick has to be what the program does, also after the program has changed."""
        program, yardstick = (self._calls(what, roots[what]) for what in ("check", "calls"))
        if program != yardstick:
            raise RuntimeError("An append makes other system calls than its yardstick in bench/programs/append.cpp:\n"
                               f"  program:   {' '.join(program)}\n  yardstick: {' '.join(yardstick)}")

    def _calls(self, what, root):
        """What one append adds to the calls of a run: its trace with two appends less the one with one."""
        traces = []
        for count in (1, 2):
            file = self._setting.scratch / f"trace-{what}-{count}"
            self._run(what, root, count, ["strace", "-f", "-o", str(file), "-e",
                                          "trace=%file,read,pread64,write,lseek,fstat,close,fsync"])
            # From the first look at the state directory on.
            lines = file.read_text().splitlines()
            begin = next(n for n, line in enumerate(lines) if str(root) in line and "execve" not in line)
            traces.append([re.sub(r"^\d+ +", "", line).split("(")[0] for line in lines[begin:]])
        first, second = traces
        return second[:len(second) - len(first)]

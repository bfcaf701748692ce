"""What /proc tells of a process: memory, bytes read, wake-ups. Looking does not wake the process."""

import contextlib
import pathlib
import time

SETTLING = 3
PATIENCE = 120


def _fields(path):
    """The numbers that stand behind names; the unit is dropped."""
    lines = pathlib.Path(path).read_text().splitlines()
    pairs = ((key, rest.split()) for key, _, rest in (line.partition(":") for line in lines))
    return {key: int(words[0]) for key, words in pairs if words and words[0].isdigit()}


def memory(pid):
    """MB by kind: "Rss" counts every resident page, "Pss" a page shared by n processes as an n-th."""
    fields = _fields(f"/proc/{pid}/smaps_rollup")
    return {kind: fields[kind] / 1024 for kind in ("Rss", "Pss")}


def peak_resident(pid):
    """MB, the most since the process began."""
    return _fields(f"/proc/{pid}/status")["VmHWM"] / 1024


def bytes_read(pid):
    return _fields(f"/proc/{pid}/io")["rchar"]


def switches(pid):
    """How often each thread has been taken off a processor so far, by waiting or by another's turn."""
    counts = {}
    for task in pathlib.Path(f"/proc/{pid}/task").iterdir():
        with contextlib.suppress(FileNotFoundError, ProcessLookupError):  # a thread may end meanwhile
            fields = _fields(task / "status")
            name = (task / "comm").read_text().strip()
            counts[f"{name} {task.name}"] = fields["voluntary_ctxt_switches"] + fields["nonvoluntary_ctxt_switches"]
    return counts


def wait_until_settled(pid):
    """Comes back when the process has not stirred for a while."""
    deadline = time.monotonic() + PATIENCE
    since, before = time.monotonic(), switches(pid)
    while time.monotonic() - since < SETTLING:
        if time.monotonic() > deadline:
            raise TimeoutError(f"process {pid} did not come to rest within {PATIENCE} s")
        time.sleep(0.1)
        now = switches(pid)
        if now != before:
            since, before = time.monotonic(), now


class WakeUps:
    """Counts from its making on. A thread that came later counts whole, one that ended keeps what was seen last."""

    def __init__(self, pid):
        self._pid = pid
        self._before = switches(pid)
        self._latest = dict(self._before)

    def look(self):
        self._latest.update(switches(self._pid))

    @property
    def count(self):
        return sum(self.by_thread().values())

    def by_thread(self):
        woken = {thread: count - self._before.get(thread, 0) for thread, count in self._latest.items()}
        return {thread: count for thread, count in woken.items() if count}

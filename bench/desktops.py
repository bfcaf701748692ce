"""The program at rest on a virtual desktop, beside the least that a Qt program in the tray can be."""

import contextlib
import json
import pathlib
import sys
import time

TESTS = pathlib.Path(__file__).resolve().parent.parent / "tests"
sys.path += [str(TESTS / "desktop"), str(TESTS / "lab")]

import processfiles
import rounds
from histories import MB, write_state
from panel_icon import PanelIcon
from platformthemes import without_themes
from registrations import Registrations
from rows import Result
from virtual_desktop import VirtualDesktop, wait_until

PATIENCE = 120
# Of the private internet: hosts that answer at once.
SITES = ("status-200", "status-204", "status-304", "status-404", "status-503")
DOMAIN = "lab.kestrin-test.example"
MEMORY_ROWS = {"scan-memory": "text", "scan-memory-values": "values"}
WAKE_UP_ROWS = ("wake-ups-stopped", "wake-ups-between")


class DesktopRows:
    def __init__(self, setting):
        self._setting = setting
        self._program = [setting.kestrin]
        self._bare = [setting.program("bare_tray")]

    def measure(self, wanted):
        if wanted & {"idle-pss", "idle-rss", "start"}:
            yield from (result for result in self._starts() if result.row in wanted)
        for row, kind in MEMORY_ROWS.items():
            if row in wanted:
                yield self._scan_memory(row, kind)
        if wanted & set(WAKE_UP_ROWS):
            yield from self._wake_ups([row for row in WAKE_UP_ROWS if row in wanted])

    def _starts(self):
        """Start and memory at rest: one program after the other on one desktop."""
        state = few_sites(self._setting.scratch / "few")
        # A theme would make the yardstick heavier; rows of their own measure that.
        with without_themes(), desktop_with_panel() as desktop:
            registrations = Registrations(desktop.env["DBUS_SESSION_BUS_ADDRESS"])
            samples = rounds.interleaved(
                self._setting.rounds, subject=lambda: one_start(desktop, registrations, self._program, state),
                yardstick=lambda: one_start(desktop, registrations, self._bare, state))
        subject, yardstick = samples["subject"], samples["yardstick"]
        for row, part, unit in (("idle-pss", "Pss", "MB"), ("idle-rss", "Rss", "MB"), ("start", "ms", "ms")):
            yield Result(row, *(measure(subject, yardstick, lambda sample: sample[part]) for measure in (
                rounds.ratio, lambda s, y, of: rounds.median(s, of), lambda s, y, of: rounds.median(y, of))), unit)

    def _scan_memory(self, row, kind):
        """The program's peak while it loads such histories, above what it has at rest without any."""
        root = write_state(self._setting, row, 4, (4 if self._setting.quick else 50) * MB, "recurring", 3, kind)
        total = sum(path.stat().st_size for path in (root / "data").iterdir())

        def at_rest():
            with running(desktop, self._program, few_sites(self._setting.scratch / "few")) as program:
                processfiles.wait_until_settled(program.pid)
                return processfiles.memory(program.pid)["Rss"]

        def at_most():
            with running(desktop, self._program, root.parent) as program:
                wait_until(lambda: processfiles.bytes_read(program.pid) >= total, PATIENCE, "the whole load")
                processfiles.wait_until_settled(program.pid)
                return processfiles.peak_resident(program.pid), processfiles.memory(program.pid)["Rss"]

        with desktop_with_panel() as desktop:
            samples = rounds.interleaved(self._setting.rounds, peak=at_most, idle=at_rest)
        peak, after = (rounds.median(samples["peak"], lambda sample: sample[part]) for part in (0, 1))
        idle = rounds.median(samples["idle"])
        return Result(row, peak - idle, peak, idle, "MB", {"at rest after the load, MB": after})

    def _wake_ups(self, rows):
        """Each on a desktop of its own, and all at the same time."""
        with contextlib.ExitStack() as stack:
            watched = {row: stack.enter_context(self._resting(row)) for row in rows}
            for pid in watched.values():
                processfiles.wait_until_settled(pid)
            counters = {row: processfiles.WakeUps(pid) for row, pid in watched.items()}
            end = time.monotonic() + (10 if self._setting.quick else 300)
            # Often, so that no thread comes and goes unseen.
            while time.monotonic() < end:
                time.sleep(0.2)
                for counter in counters.values():
                    counter.look()
            for row, counter in counters.items():
                yield Result(row, counter.count, also=counter.by_thread())

    @contextlib.contextmanager
    def _resting(self, row):
        state = few_sites(self._setting.scratch / row)
        with desktop_with_panel() as desktop, running(desktop, self._program, state) as program:
            icon = PanelIcon(desktop, program.pid)
            wait_until(icon.is_registered, PATIENCE, "the icon")
            if row == "wake-ups-between":
                icon.choose("Start")
                wait_until(lambda: len(list(state.glob("Kestrin/data/*"))) == len(SITES), PATIENCE, "a whole cycle")
            yield program.pid


@contextlib.contextmanager
def desktop_with_panel():
    # Accessibility would wake the program.
    with VirtualDesktop(accessibility=False) as desktop:
        desktop.start_panel()
        yield desktop


@contextlib.contextmanager
def running(desktop, command, data):
    program = desktop.spawn(command, env={**desktop.env, "XDG_DATA_HOME": str(data)})
    try:
        yield program
    finally:
        program.terminate()
        program.wait()


def one_start(desktop, registrations, command, data):
    """Milliseconds to the icon, and the memory once the program has come to rest."""
    registrations.forget()
    begin = time.monotonic()
    with running(desktop, command, data) as program:
        milliseconds = (registrations.wait_for_icon() - begin) * 1000
        processfiles.wait_until_settled(program.pid)
        sample = {"ms": milliseconds, **processfiles.memory(program.pid)}
    registrations.wait_for_end_of_icon()
    return sample


def few_sites(data):
    """A data directory with websites that have no history yet; an hour between two cycles."""
    root = data / "Kestrin"
    if not root.exists():
        root.mkdir(parents=True)
        sites = [{"id": id, "name": id, "url": f"https://{id}.{DOMAIN}/", "enabled": True} for id in SITES]
        (root / "sites.json").write_text(json.dumps({"sites": sites, "interval_seconds": 3600}), encoding="utf-8")
    return data

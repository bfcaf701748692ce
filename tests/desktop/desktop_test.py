"""What every test of the real program has: one virtual desktop a file, a state directory for each test, and
the accessible tree, the program's output and the history lines told when a test fails.

A test file ends with `desktop_test.main()` and is run inside the private internet:
tests/lab/enter tests/desktop/test_something.py PROGRAM [unittest's arguments]
"""

import contextlib
import difflib
import json
import os
import pathlib
import signal
import subprocess
import sys
import tempfile
import unittest

HERE = pathlib.Path(__file__).resolve().parent
LAB = HERE.parent / "lab"
sys.path.insert(0, str(LAB))

import accessible
import scenarios
from panel_icon import PanelIcon
from virtual_desktop import VirtualDesktop

# The machine may be compiling: a wait that ends late is no failure, one that never ends is.
PATIENCE = 60
PROGRAM = None
# A name server that says nothing is waited for longer than any test lasts.
PATIENT_RESOLVER = "nameserver 192.88.99.12\noptions timeout:30 attempts:5\n"


_desktop = None


def the_desktop(accessibility):
    """The desktop of this process. There can be one only, since the accessibility library joins one bus for good."""
    global _desktop
    if _desktop is None:
        _desktop = VirtualDesktop(accessibility=accessibility)
        _desktop.start()
        unittest.addModuleCleanup(_desktop.stop)
        if accessibility:
            accessible.connect(_desktop.env)
    return _desktop


class DesktopTest(unittest.TestCase):
    """Starts the program on the desktop of its file. A panel is there when `panel` says so."""

    panel = True
    accessibility = True
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.desktop = the_desktop(cls.accessibility)
        if cls.panel and not cls.desktop.panel:
            cls.desktop.start_panel()
        if not cls.panel and cls.desktop.panel:
            cls.desktop.stop_panel()

    def setUp(self):
        self.data = pathlib.Path(tempfile.mkdtemp(prefix="data-", dir=self.desktop.root))
        self.state = self.data / "Kestrin"
        self.program = None
        self.log = pathlib.Path(self.desktop.log_path(self.data.name))
        self.addCleanup(self.end_program)

    # The program

    def start_program(self, environment=None, without=(), wait=None):
        """Starts it on this test's state. By default waits for the icon, where there is a panel."""
        env = {**self.desktop.env, "XDG_DATA_HOME": str(self.data), **(environment or {})}
        for name in without:
            env.pop(name, None)
        self.program = self.desktop.spawn([PROGRAM], self.data.name, env=env)
        if self.panel if wait is None else wait:
            self.wait_until(self.icon_is_there, "the icon")
        return self.program

    def start_again(self):
        """A second start, which opens the dashboard of the first."""
        return self.desktop.run([PROGRAM], PATIENCE)

    def end_program(self):
        if self.program and self.program.poll() is None:
            self.program.send_signal(signal.SIGKILL)
            self.program.wait()

    def let_silent_names_hang(self):
        """Until the end of the test, asking for a name that is answered by silence takes 150 seconds."""
        resolver = self.data / "resolv.conf"
        resolver.write_text(PATIENT_RESOLVER)
        subprocess.run(["mount", "--bind", resolver, "/etc/resolv.conf"], check=True)
        self.addCleanup(subprocess.run, ["umount", "/etc/resolv.conf"], check=True)

    def exit_code(self, timeout=PATIENCE):
        return self.program.wait(timeout)

    def icon_is_there(self):
        return self.icon().is_registered()

    def wait_until(self, condition, what, timeout=PATIENCE):
        """Returns the first true value of `condition`. Fails at once when the program or the desktop has ended; what
        comes after the program's end is waited for with `self.desktop.wait_until`."""
        return self.desktop.wait_until(condition, what, timeout, self.program and self.program.pid)

    # What it holds

    def held(self):
        """How many threads and descriptors the program has, without those of the threads that Qt paints with: they
        have one descriptor each and come and go as there is to paint."""
        while True:
            names = self.thread_names()
            descriptors = len(os.listdir(f"/proc/{self.program.pid}/fd"))
            if self.thread_names() == names:
                painting = names.count("Thread (pooled)")
                return len(names) - painting, descriptors - painting

    def thread_names(self):
        names = []
        for task in pathlib.Path(f"/proc/{self.program.pid}/task").iterdir():
            with contextlib.suppress(FileNotFoundError, ProcessLookupError):
                names.append((task / "comm").read_text().strip())
        return sorted(names)

    def at_rest(self, threads):
        """What is held once the threads that checks borrowed have ended, and no more than `threads` are left."""
        self.wait_until(lambda: self.held()[0] <= threads, f"no more than {threads} threads")
        return self.held()

    # What it shows

    def application(self):
        """The accessible root of this test's program, not of one that has just ended."""
        return accessible.application_of(self.program.pid)

    def window(self):
        """The window that shows, or None."""
        root = self.application()
        return root and next(iter(accessible.windows(root)), None)

    def wait_for_window(self):
        return self.wait_until(self.window, "the dashboard")

    def wait_until_closed(self):
        self.wait_until(lambda: not self.window(), "the dashboard to close")

    def open_dashboard(self):
        self.start_again()
        return self.wait_for_window()

    def button(self, *names):
        """The button that bears one of these names now. It stays the same control when its name changes."""
        return self.wait_until(lambda: next((node for name in names for node in accessible.find_all(
            self.application(), name, "button")), None), f"the button {names}")

    def press(self, *names):
        button = self.button(*names)
        self.wait_until(lambda: accessible.is_enabled(button), f"the button {names} to be enabled")
        accessible.press(button)
        return button

    def wait_for_name(self, control, name, timeout=PATIENCE):
        self.wait_until(lambda: name_of(control) == name, f"{name!r} where {name_of(control)!r} stood", timeout)

    def wait_for_text(self, text, timeout=PATIENCE):
        """A label with exactly this text."""
        return self.wait_until(lambda: self.application() and accessible.find(self.application(), text),
                               f"the text {text!r}", timeout)

    def texts(self):
        """Every label that shows, in the order of the tree."""
        root = self.application()
        return [name_of(node) for node in accessible.find_all(root, role="label")] if root else []

    # Its place in the panel and on the screen

    def icon(self):
        return PanelIcon(self.desktop, self.program.pid)

    def close_dashboard(self):
        self.wait_until_active()
        self.desktop.press_key("Escape")
        self.wait_until_closed()

    def is_active(self):
        return self.desktop.active_process() == self.program.pid

    def wait_until_active(self):
        self.wait_until(self.is_active, "the keyboard's focus")

    # Its state

    def write_sites(self, *patterns, names=None, interval=3600):
        """Writes "sites.json" beside itself and moves it in, as an editor does. `names` are shown instead."""
        return self.write_scenarios(scenarios.selected(patterns), names, interval)

    def write_scenarios(self, chosen, names=None, interval=3600):
        sites = [{"id": s.id, "name": (names or {}).get(s.id, s.id), "url": s.url, "enabled": True} for s in chosen]
        self.put_sites_file(json.dumps({"sites": sites, "interval_seconds": interval}, ensure_ascii=False))
        return [s.id for s in chosen]

    def put_sites_file(self, content):
        self.state.mkdir(parents=True, exist_ok=True)
        draft = self.data / "sites.json.new"
        draft.write_bytes(content if isinstance(content, bytes) else content.encode())
        draft.rename(self.state / "sites.json")

    def history(self, site):
        path = self.state / "data" / f"{site}.jsonl"
        return path.read_text(encoding="utf-8").splitlines() if path.exists() else []

    def history_sizes(self):
        return {path.name: path.stat().st_size for path in sorted(self.state.glob("data/*"))}

    def wait_for_lines(self, sites, count, timeout=PATIENCE):
        self.wait_until(lambda: all(len(self.history(site)) >= count for site in sites),
                        f"{count} lines of each of {', '.join(sites)}", timeout)

    def assert_history_as_expected(self, *arguments):
        done = subprocess.run([LAB / "compare.py", self.state, *arguments], stdout=subprocess.PIPE, text=True)
        self.assertEqual(done.returncode, 0, done.stdout)

    def assert_lines_equal(self, found, expected, what):
        """Two lists of lines; a failure shows their difference."""
        if found != expected:
            self.fail(what + ":\n" + "\n".join(difflib.unified_diff(expected, found, "expected", "found", lineterm="")))

    # What a failure shows

    def evidence(self):
        found = []
        if self.program:
            code = self.program.poll()
            found.append(f"The program {'runs' if code is None else f'has ended with {code}'}. It said:")
            found.append(self.log.read_text(errors="replace") if self.log.exists() else "")
        if self.accessibility and self.program and self.program.poll() is None:
            root = self.application()
            found += ["Its accessible tree:", accessible.description(root) if root else "none"]
        if self.state.exists():
            found += ["Its files:", *(f"{path.relative_to(self.state)} {path.lstat().st_size}"
                                      for path in sorted(self.state.rglob("*")))]
        return "\n".join(found)


def name_of(node):
    try:
        node.clearCache()
        return node.name or ""
    except Exception:
        return ""


def spot(node):
    """Where a control lies on the screen: x, y, width, height."""
    box = node.queryComponent().getExtents(0)
    return box.x, box.y, box.width, box.height


def middle(node):
    x, y, width, height = spot(node)
    return x + width // 2, y + height // 2


class TellingResult(unittest.TextTestResult):
    """Adds to every failure what the program looked like at that moment."""

    def addError(self, test, error):
        super().addError(test, error)
        self._tell(self.errors, test)

    def addFailure(self, test, error):
        super().addFailure(test, error)
        self._tell(self.failures, test)

    @staticmethod
    def _tell(found, test):
        if not isinstance(test, DesktopTest):
            return
        try:
            more = test.evidence()
        except Exception as trouble:
            more = f"The evidence could not be gathered: {trouble!r}"
        case, text = found[-1]
        found[-1] = (case, f"{text}\n{more}")


def main():
    global PROGRAM
    if len(sys.argv) < 2 or "KESTRIN_LAB" not in os.environ:
        print(f"usage: tests/lab/enter {sys.argv[0]} PROGRAM [unittest's arguments]", file=sys.stderr)
        sys.exit(2)
    PROGRAM = os.path.abspath(sys.argv.pop(1))
    unittest.main("__main__", testRunner=unittest.TextTestRunner(verbosity=2, resultclass=TellingResult))

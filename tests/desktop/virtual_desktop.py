"""A desktop of its own for one test: X server, session bus, window manager, accessibility and, when asked, a panel
with a tray. Everything it starts lives in one temporary directory and is gone after stop().

X and D-Bus listen on path sockets, so a program in another network namespace reaches them too; abstract sockets
would be invisible there. Waiting ends when what was waited for happens, as soon as it cannot happen any more, or with
a TimeoutError.
"""

import contextlib
import os
import select
import shutil
import signal
import subprocess
import tempfile

from waiting import WaitInVain, how_it_ended, wait_until

PANEL_CONFIGURATION = """<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array">
    <value type="int" value="1"/>
    <property name="dark-mode" type="bool" value="{dark}"/>
    <property name="panel-1" type="empty">
      <property name="position" type="string" value="p={position};x=0;y=0"/>
      <property name="length" type="uint" value="100"/>
      <property name="position-locked" type="bool" value="true"/>
      <property name="mode" type="uint" value="{mode}"/>
      <property name="icon-size" type="uint" value="{icon_size}"/>
      <property name="size" type="uint" value="30"/>
      <property name="plugin-ids" type="array">
        <value type="int" value="1"/>
        <value type="int" value="2"/>
      </property>
    </property>
  </property>
  <property name="plugins" type="empty">
    <property name="plugin-1" type="string" value="separator">
      <property name="expand" type="bool" value="true"/>
      <property name="style" type="uint" value="0"/>
    </property>
    <property name="plugin-2" type="string" value="systray">
      <property name="square-icons" type="bool" value="true"/>
      <property name="known-items" type="array">
        <value type="string" value="kestrin"/>
      </property>
    </property>
  </property>
</channel>
"""

# The panel's own numbers: where it snaps on the screen, and which way it runs.
EDGES = {"top": (6, 0), "bottom": (8, 0), "left": (5, 1), "right": (1, 1)}

WATCHER = "org.kde.StatusNotifierWatcher"
MARK = "KESTRIN_VIRTUAL_DESKTOP"


class VirtualDesktop:
    """`with VirtualDesktop() as desktop: desktop.start_panel(); desktop.spawn(["kestrin"])`

    `env` is the whole environment for programs on this desktop, with a home directory of its own.
    """

    def __init__(self, size="1280x800x24", dark_panel=True, panel_edge="top", icon_size=16, accessibility=True):
        self.size = size
        self.dark_panel = dark_panel
        self.panel_edge = panel_edge
        self.icon_size = icon_size
        self.accessibility = accessibility
        self.env = {}
        self.root = None
        self.panel = None
        self._processes = []
        self.parts = {}

    def __enter__(self):
        self.start()
        return self

    def __exit__(self, *_):
        self.stop()

    def start(self):
        self.root = tempfile.mkdtemp(prefix="kestrin-desktop-")
        try:
            self._make_home()
            self._start_x()
            self._start_bus()
            self._spawn_part("the window manager", ["openbox", "--sm-disable"], "openbox")
            self.wait_until(self._has_window_manager, "the window manager")
            if self.accessibility:
                self._start_accessibility()
        except BaseException:
            self.stop()
            raise

    def stop(self):
        """Ends whatever was started on this desktop, also what left its parent, and removes the directory."""
        if self.root is None:
            return
        for process in reversed(self._processes):
            if process.poll() is None:
                process.terminate()
        for signal_number in (signal.SIGTERM, signal.SIGKILL):
            for pid in self._own_processes():
                with contextlib.suppress(ProcessLookupError):
                    os.kill(pid, signal_number)
            with contextlib.suppress(TimeoutError):
                wait_until(lambda: not self._own_processes(), timeout=5)
                break
        for process in self._processes:
            process.wait()
        self._processes.clear()
        self.parts.clear()
        self.panel = None
        shutil.rmtree(self.root, ignore_errors=True)
        self.root = None

    def spawn(self, command, log=None, **options):
        """Starts a program on the desktop; its output goes to `log` (a name) in the directory of logs."""
        name = log or os.path.basename(command[0])
        options.setdefault("env", self.env)
        with open(self.log_path(name), "ab") as out:
            process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=out, stderr=out, **options)
        self._processes.append(process)
        return process

    def wait_until(self, condition, what, timeout=30, program=None):
        """As waiting.wait_until, in vain once a part of the desktop has ended, or the process `program`, a number."""
        return wait_until(condition, timeout, what, lambda: self.loss(program))

    def loss(self, program=None):
        """Says which part of the desktop has ended, or how the program has; None while all run."""
        needed = [*self.parts.items(), *(("the program", one) for one in self._processes if one.pid == program)]
        return next(filter(None, (how_it_ended(name, process) for name, process in needed)), None)

    def run(self, command, timeout=30):
        """Runs a program to its end and returns what it printed."""
        done = subprocess.run(command, env=self.env, timeout=timeout, check=True, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        return done.stdout.decode()

    def log_path(self, name):
        return os.path.join(self.root, "logs", name + ".log")

    def log(self, name):
        with open(self.log_path(name), encoding="utf-8", errors="replace") as file:
            return file.read()

    def start_panel(self):
        """Returns when the panel's tray is ready to take icons."""
        command = ["xfce4-panel", "--disable-wm-check", "--sm-client-disable"]
        self.panel = self._spawn_part("the panel", command, "panel")
        self.wait_until(self.has_tray_host, "the panel's tray")

    def stop_panel(self, how=signal.SIGTERM):
        """Ends the panel; SIGKILL stands for a crash."""
        del self.parts["the panel"]
        self.panel.send_signal(how)
        self.panel.wait()
        self.panel = None
        self.wait_until(lambda: not self._call_bus("NameHasOwner", WATCHER), "the end of the panel's tray")

    def has_tray_host(self):
        if not self._call_bus("NameHasOwner", WATCHER):
            return False
        answer = self._tray_property("IsStatusNotifierHostRegistered")
        return answer is not None and "true" in answer

    def tray_items(self):
        """What is registered in the panel, as the watcher names it."""
        return self._tray_property("RegisteredStatusNotifierItems") or ""

    def accessibility_bus(self):
        """Its address."""
        return self.call("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus.GetAddress").split("'")[1]

    def screenshot(self, path, crop=None):
        """Writes a picture of the whole screen, or of `crop` ("200x30+1080+0")."""
        command = ["import", "-silent", "-window", "root"]
        self.run(command + (["-crop", crop, "+repage"] if crop else []) + [path])
        return path

    def click(self, x, y, button=1):
        self.run(["xdotool", "mousemove", str(x), str(y), "click", str(button)])

    def press_key(self, key):
        """Into whichever window has the focus."""
        self.run(["xdotool", "key", key])

    def active_process(self):
        """The process whose window has the keyboard's focus, or None. The window manager's own note of the active
        window may name one that is hidden already."""
        try:
            return int(self.run(["xdotool", "getwindowfocus", "getwindowpid"]))
        except subprocess.CalledProcessError:
            return None

    def call(self, name, path, method, *arguments):
        """A call over the session bus; the answer as gdbus writes it."""
        return self.run(["gdbus", "call", "--session", "--dest", name, "--object-path", path, "--method", method,
                         "--", *arguments])

    # How it is made

    def _spawn_part(self, name, command, log, **options):
        """Starts a part of the desktop; nothing is worth waiting for without it."""
        self.parts[name] = self.spawn(command, log, **options)
        return self.parts[name]

    def _make_home(self):
        for name in ("home", "config", "data", "cache", "runtime", "logs"):
            os.makedirs(os.path.join(self.root, name), mode=0o700)
        channel = os.path.join(self.root, "config/xfce4/xfconf/xfce-perchannel-xml")
        os.makedirs(channel)
        position, mode = EDGES[self.panel_edge]
        with open(os.path.join(channel, "xfce4-panel.xml"), "w", encoding="utf-8") as file:
            file.write(PANEL_CONFIGURATION.format(dark=str(self.dark_panel).lower(), position=position, mode=mode,
                                                  icon_size=self.icon_size))
        self.env = {
            "PATH": os.environ.get("PATH", "/usr/bin:/bin"),
            "LANG": os.environ.get("LANG", "C.UTF-8"),
            "HOME": os.path.join(self.root, "home"),
            "XDG_CONFIG_HOME": os.path.join(self.root, "config"),
            "XDG_DATA_HOME": os.path.join(self.root, "data"),
            "XDG_CACHE_HOME": os.path.join(self.root, "cache"),
            "XDG_RUNTIME_DIR": os.path.join(self.root, "runtime"),
            "XDG_CURRENT_DESKTOP": "XFCE",
            "XDG_SESSION_TYPE": "x11",
            "GDK_BACKEND": "x11",
            "QT_QPA_PLATFORM": "xcb",
            "GIO_USE_VFS": "local",
            "GSETTINGS_BACKEND": "memory",
            "NO_AT_BRIDGE": "1",
            MARK: self.root,
        }

    def _start_x(self):
        reading, writing = os.pipe()
        try:
            self._spawn_part("the X server", [
                "Xvfb", "-displayfd", str(writing), "-screen", "0", self.size, "-nolisten", "tcp", "-noreset", "-ac"],
                "xvfb", pass_fds=[writing])
        finally:
            os.close(writing)
        with os.fdopen(reading, "rb") as pipe:
            ready, _, _ = select.select([pipe], [], [], 30)
            number = pipe.readline().decode().strip() if ready else ""
        if not number:
            raise RuntimeError("the X server did not start: " + self.log("xvfb"))
        self.env["DISPLAY"] = ":" + number

    def _start_bus(self):
        path = os.path.join(self.root, "runtime", "bus")
        address = "unix:path=" + path
        self.env["DBUS_SESSION_BUS_ADDRESS"] = address
        self._spawn_part("the session bus", [
            "dbus-daemon", "--session", "--nofork", "--nopidfile", "--address=" + address], "bus")
        try:
            self.wait_until(lambda: os.path.exists(path) and self._call_bus("NameHasOwner", "org.freedesktop.DBus"),
                            "the session bus")
        except WaitInVain as vain:
            with open(self.log_path("bus"), encoding="utf-8", errors="replace") as log:
                raise WaitInVain(f"{vain}: {log.read()}") from None

    def _start_accessibility(self):
        self.env.pop("NO_AT_BRIDGE")
        self.call("org.a11y.Bus", "/org/a11y/bus", "org.freedesktop.DBus.Properties.Set", "org.a11y.Status",
                    "IsEnabled", "<true>")
        self.accessibility_bus()

    def _has_window_manager(self):
        shown = self.run(["xprop", "-root", "_NET_SUPPORTING_WM_CHECK"])
        return "window id" in shown

    def _call_bus(self, method, name):
        try:
            return "true" in self.call("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                         "org.freedesktop.DBus." + method, name)
        except subprocess.CalledProcessError:
            return False

    def _tray_property(self, name):
        try:
            return self.call(WATCHER, "/StatusNotifierWatcher", "org.freedesktop.DBus.Properties.Get", WATCHER,
                               name)
        except subprocess.CalledProcessError:
            return None

    def _own_processes(self):
        """Every living process with this desktop's mark in its environment, services of the bus included."""
        mark = f"{MARK}={self.root}".encode()
        found = []
        for entry in os.listdir("/proc"):
            if not entry.isdigit() or int(entry) == os.getpid():
                continue
            with contextlib.suppress(OSError):
                with open(f"/proc/{entry}/environ", "rb") as file:
                    if mark in file.read().split(b"\0"):
                        found.append(int(entry))
        return found

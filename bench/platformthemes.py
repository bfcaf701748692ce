"""Which platform themes for Qt the machine has, and how to measure as if it had none."""

import contextlib
import glob
import os
import subprocess
from dataclasses import dataclass


@dataclass(frozen=True)
class Theme:
    pattern: str  # of its plugin
    package: str
    session: dict


THEMES = {
    "idle-rss-gtk": Theme("libqgtk3.so", "qt6-gtk-platformtheme", {"XDG_CURRENT_DESKTOP": "XFCE"}),
    "idle-rss-plasma": Theme("KDEPlasmaPlatformTheme*.so", "plasma-integration", {
        "XDG_CURRENT_DESKTOP": "KDE", "DESKTOP_SESSION": "plasma", "KDE_FULL_SESSION": "true",
        "KDE_SESSION_VERSION": "6"}),
}


def installed(pattern="*"):
    return glob.glob(f"/usr/lib/*/qt6/plugins/platformthemes/{pattern}")


def missing(row):
    """What the row needs and the machine lacks, as a sentence; None for rows that can be measured."""
    theme = THEMES.get(row)
    if theme is None or installed(theme.pattern):
        return None
    return f"{row} is not measured: the Debian package {theme.package} with a theme for Qt 6 is not installed."


@contextlib.contextmanager
def without_themes():
    """No program that is started meanwhile finds a platform theme. In the mount namespace of the measurement alone."""
    hidden = {os.path.dirname(theme) for theme in installed()}
    try:
        for directory in hidden:
            subprocess.run(["mount", "-t", "tmpfs", "tmpfs", directory], check=True)
        yield
    finally:
        for directory in hidden:
            subprocess.run(["umount", directory], stderr=subprocess.DEVNULL)

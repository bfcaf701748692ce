"""Drives a program the way a screen reader's user does: by the names and roles of its controls.

Needs the system's Python (/usr/bin/python3 with pyatspi) and the environment of the desktop that the program runs
on, so connect(desktop.env) comes first. A control that went away while it was looked at counts as not found.
"""

import os

# Newer releases of the accessibility library have other names for some roles. Here one vocabulary holds for all.
ROLES = {"push button": "button"}
_atspi = None


def connect(env):
    """Joins the accessibility bus of the desktop with this environment. Once per process."""
    global _atspi
    for name in ("DISPLAY", "DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR", "HOME"):
        os.environ[name] = env[name]
    os.environ.pop("NO_AT_BRIDGE", None)
    os.environ.pop("AT_SPI_BUS_ADDRESS", None)
    import pyatspi
    _atspi = pyatspi


def _children(node):
    try:
        _refresh(node)
        return [child for child in (node.getChildAtIndex(i) for i in range(node.childCount)) if child is not None]
    except Exception:  # GLib.Error and its kin: the program closed the control meanwhile
        return []


def _refresh(node):
    # The library keeps what it has seen; a test wants what is there now.
    node.clearCache()


def _name(node):
    try:
        return node.name or ""
    except Exception:
        return ""


def _role(node):
    try:
        role = node.getRoleName()
        return ROLES.get(role, role)
    except Exception:
        return ""


def applications():
    return _children(_atspi.Registry.getDesktop(0))


def _process(node):
    try:
        return node.get_process_id()
    except Exception:
        return None


def applications_of(process_id):
    """Everything that a process has registered."""
    return [node for node in applications() if _process(node) == process_id]


def application_of(process_id):
    """The accessible root of a running program, or None. Libraries that a Qt program loads may register further, empty
    applications for it; which of several is meant shows only once one has a window. Asking for the toolkit's name would
    tell sooner, but crashes the accessibility library when the program ends meanwhile."""
    own = applications_of(process_id)
    return own[0] if len(own) == 1 else next(filter(_children, own), None)


def windows(application):
    """Its windows that show."""
    return [child for child in _children(application) if is_showing(child)]


def walk(node):
    """The control and everything below it, parents first."""
    yield node
    for child in _children(node):
        yield from walk(child)


def find_all(root, name=None, role=None, showing=True):
    return [node for node in walk(root)
            if (name is None or _name(node) == name) and (role is None or _role(node) == role)
            and (not showing or node is root or is_showing(node))]


def find(root, name=None, role=None, showing=True):
    """The first control of that accessible name and role ("button", "check box", "label"...), or None."""
    return next(iter(find_all(root, name, role, showing)), None)


def _has_state(node, state):
    try:
        _refresh(node)
        return node.getState().contains(state)
    except Exception:
        return False


def is_showing(node):
    return _has_state(node, _atspi.STATE_SHOWING)


def is_enabled(node):
    return _has_state(node, _atspi.STATE_ENABLED) and _has_state(node, _atspi.STATE_SENSITIVE)


def is_checked(node):
    return _has_state(node, _atspi.STATE_CHECKED)


def is_focused(node):
    return _has_state(node, _atspi.STATE_FOCUSED)


def press(node):
    """Presses or toggles the control. Assert what it causes: the answer says only that the request arrived."""
    action = node.queryAction()
    names = [action.getName(i).lower() for i in range(action.nActions)]
    for wanted in ("press", "click", "toggle", "activate", "showmenu"):
        if wanted in names:
            action.doAction(names.index(wanted))
            return
    raise AssertionError(f"{_name(node)!r} cannot be pressed, only {names}")


def read_text(node):
    """What the control shows: its text where it has one, its name otherwise."""
    try:
        text = node.queryText()
        return text.getText(0, text.characterCount)
    except NotImplementedError:
        return _name(node)


def write_text(node, text):
    node.queryEditableText().setTextContents(text)


def description(root, depth=0):
    """The tree as indented lines, for a failing test to show."""
    lines = ["  " * depth + f"{_role(root)} {_name(root)!r}"]
    for child in _children(root):
        lines.append(description(child, depth + 1))
    return "\n".join(lines)

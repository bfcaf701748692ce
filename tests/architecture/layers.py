#!/usr/bin/env python3
"""Holds the rooms of src/ to the arrows that their CMakeLists.txt declare.

- Qt headers only in src/platform, src/monitoring/application and the folders named view.
- Every quoted include reads "room/Header.h", of the file's own room or of one under DEPENDS; the header exists.
- nlohmann/json.hpp only in src/json/*.cpp.
- No cycle among the rooms.

Usage: layers.py SOURCE_FOLDER
Before it reads anything it proves on planted examples that it finds each offence.
"""
import pathlib
import re
import sys
import tempfile

INCLUDE = re.compile(r'^\s*#\s*include\s*(?:"([^"]+)"|<([^>]+)>)', re.MULTILINE)


def declared_rooms(root):
    """Each room and the rooms that it names."""
    rooms = {}
    for path in sorted(root.rglob("CMakeLists.txt")):
        text = re.sub(r"#[^\n]*", "", path.read_text(encoding="utf-8"))
        for call in re.finditer(r"kestrin_room\(\s*([\w/]+)([^)]*)\)", text):
            words = call.group(2).split()
            needed = []
            if "DEPENDS" in words:
                for word in words[words.index("DEPENDS") + 1:]:
                    if word in ("SOURCES", "LIBRARIES"):
                        break
                    needed.append(word)
            rooms[call.group(1)] = needed
    return rooms


def room_of(path, root, rooms):
    """The innermost room whose folder holds the file, or its folder when no room is declared there."""
    folder = path.relative_to(root).parent.as_posix()
    return folder if folder in rooms else None


def cycle(rooms):
    """Rooms that need each other in a ring, or nothing."""
    finished = set()

    def visit(room, road):
        if room in road:
            return road[road.index(room):] + [room]
        if room in finished:
            return None
        for needed in rooms.get(room, []):
            ring = visit(needed, road + [room])
            if ring:
                return ring
        finished.add(room)
        return None

    for room in sorted(rooms):
        ring = visit(room, [])
        if ring:
            return ring
    return None


def may_use_qt(folder):
    return folder == "platform" or folder == "monitoring/application" or folder.split("/")[-1] == "view"


def offences(root):
    rooms = declared_rooms(root)
    found = []
    ring = cycle(rooms)
    if ring:
        found.append("the rooms need each other: " + " -> ".join(ring))
    for room, needed in sorted(rooms.items()):
        for other in needed:
            if other not in rooms:
                # The desktop rooms may be left out of a build, never out of the tree.
                found.append(f"{room} names {other}, which is no room")
    for path in sorted(root.rglob("*")):
        if path.suffix not in (".h", ".cpp"):
            continue
        text = path.read_text(encoding="utf-8")
        name = path.relative_to(root).as_posix()
        folder = path.relative_to(root).parent.as_posix()
        room = room_of(path, root, rooms)
        for match in INCLUDE.finditer(text):
            where = f"{name}:{text.count(chr(10), 0, match.start(1) if match.group(1) else match.start(2)) + 1}"
            quoted, angled = match.groups()
            header = quoted or angled
            if re.match(r"(Qt\w*/)?Q[A-Z]\w*(\.h)?$|Qt\w+$|q[a-z]+\.h$", header) and not may_use_qt(folder):
                found.append(f"{where}: {header} is a Qt header outside the desktop rooms")
            if header.startswith("nlohmann/") and not (folder == "json" and path.suffix == ".cpp"):
                found.append(f"{where}: {header} belongs in the sources of json alone")
            if not quoted:
                continue
            other = quoted.rpartition("/")[0]
            if not re.fullmatch(r"(?:\w+/)+\w+\.h", quoted):
                found.append(f"{where}: \"{quoted}\" does not read \"room/Header.h\"")
            elif not (root / quoted).is_file():
                found.append(f"{where}: \"{quoted}\" does not exist")
            elif room is None:
                if other != folder:
                    found.append(f"{where}: {folder} declares no room and so may not use {other}")
            elif other != room and other not in rooms[room]:
                found.append(f"{where}: {room} does not name {other} under DEPENDS")
    return found


def planted(files):
    """The offences of a small tree of two or more rooms."""
    with tempfile.TemporaryDirectory() as folder:
        root = pathlib.Path(folder)
        for name, text in files.items():
            path = root / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(text, encoding="utf-8")
        return offences(root)


LOW = {"low/CMakeLists.txt": "kestrin_room(low)\n", "low/Low.h": "#include <vector>\n"}
HIGH = "kestrin_room(high\n  SOURCES High.cpp\n  DEPENDS low # below\n  LIBRARIES CURL::libcurl)\n"
HARMLESS = [
    LOW | {"high/CMakeLists.txt": HIGH, "high/High.h": '#include "low/Low.h"\n',
           "high/High.cpp": '#include "high/High.h"\n'},
    LOW | {"platform/CMakeLists.txt": "kestrin_room(platform DEPENDS low)", "platform/Tray.h": "#include <QObject>\n"},
    {"high/view/CMakeLists.txt": "kestrin_room(high/view)", "high/view/Window.h": "#include <QWidget>\n",
     "high/view/Window.cpp": '#include "high/view/Window.h"\n'},
    {"json/CMakeLists.txt": "kestrin_room(json SOURCES A.cpp)", "json/A.cpp": "#include <nlohmann/json.hpp>\n"},
]
PLANTED = {
    "Qt header": LOW | {"low/Bad.h": "#include <QString>\n"},
    "a Qt header outside": LOW | {"low/Bad.h": "#include <QtCore/QString>\n"},
    "Qt header outside": LOW | {"low/Bad.cpp": "#include <QtGlobal>\n"},
    "does not name low": LOW | {"high/CMakeLists.txt": "kestrin_room(high)", "high/High.h": '#include "low/Low.h"\n'},
    "does not name high": LOW | {"high/CMakeLists.txt": HIGH, "high/High.h": "",
                                 "low/Up.h": '  #  include "high/High.h"\n'},
    "does not name high/view": {"high/CMakeLists.txt": "kestrin_room(high)", "high/view/W.h": "",
                                "high/view/CMakeLists.txt": "kestrin_room(high/view DEPENDS high)",
                                "high/Bad.h": '#include "high/view/W.h"\n'},
    "does not read": LOW | {"low/Bad.cpp": '#include "Low.h"\n'},
    "\"low/../low/Low.h\" does not read": LOW | {"low/Bad.cpp": '#include "low/../low/Low.h"\n'},
    "does not exist": LOW | {"low/Bad.cpp": '#include "low/Missing.h"\n'},
    "belongs in the sources": LOW | {"low/Bad.cpp": "#include <nlohmann/json.hpp>\n"},
    "json alone": {"json/CMakeLists.txt": "kestrin_room(json)", "json/Bad.h": "#include <nlohmann/json_fwd.hpp>\n"},
    "a -> b -> c -> a": {"a/CMakeLists.txt": "kestrin_room(a DEPENDS b)", "b/CMakeLists.txt": "kestrin_room(b DEPENDS c)",
                         "c/CMakeLists.txt": "kestrin_room(c DEPENDS a)"},
    "which is no room": {"a/CMakeLists.txt": "kestrin_room(a DEPENDS nowhere)"},
    "declares no room": LOW | {"shed/CMakeLists.txt": "# Filled later.", "shed/Bad.h": '#include "low/Low.h"\n'},
}


def check_itself():
    for files in HARMLESS:
        if planted(files):
            sys.exit(f"the check is broken: it refuses {sorted(files)}: {planted(files)}")
    for expected, files in PLANTED.items():
        found = planted(files)
        if len(found) != 1 or expected not in found[0]:
            sys.exit(f"the check is broken: instead of \"{expected}\" it found {found}")


def main():
    check_itself()
    root = pathlib.Path(sys.argv[1])
    if not declared_rooms(root):
        sys.exit("no room is declared there")
    found = offences(root)
    print("\n".join(found))
    print(f"{len(declared_rooms(root))} rooms, {len(found)} offences")
    sys.exit(1 if found else 0)


main()

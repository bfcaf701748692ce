#!/usr/bin/env python3
"""Holds rooms and programs to the arrows that their CMakeLists.txt declare.

- Qt headers only in src/platform, src/monitoring/application and the folders named view.
- Every quoted include in src/ reads "room/Header.h", and the header exists.
- A room names under DEPENDS exactly the other rooms that its files include.
- A program (the executable, a test program, a fuzz target, a benchmark) names under DEPENDS exactly the rooms that
  its sources include, directly or through headers outside src/ such as the fakes.
- nlohmann/json.hpp only in src/json/*.cpp.
- No cycle among the rooms.

Usage: layers.py PROJECT_FOLDER
Before it reads anything it proves on planted examples that it finds each offence. It builds nothing.
"""
import pathlib
import re
import sys
import tempfile

from declarations import declarations, includes, rooms_included
from planted_projects import HARMLESS, PLANTED

QT_HEADER = re.compile(r"(Qt\w*/)?Q[A-Z]\w*(\.h)?|Qt\w+|q[a-z]+\.h")


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


def header_offences(path, project, rooms):
    """What is wrong with the file's includes, whichever rooms its own room names."""
    root = project / "src"
    folder = path.relative_to(root).parent.as_posix()
    for line, header, quoted in includes(path):
        where = f"{path.relative_to(project).as_posix()}:{line}"
        if QT_HEADER.fullmatch(header) and not may_use_qt(folder):
            yield f"{where}: {header} is a Qt header outside the desktop rooms"
        if header.startswith("nlohmann/") and not (folder == "json" and path.suffix == ".cpp"):
            yield f"{where}: {header} belongs in the sources of json alone"
        if not quoted:
            continue
        if not re.fullmatch(r"(?:\w+/)+\w+\.h", header):
            yield f"{where}: \"{header}\" does not read \"room/Header.h\""
        elif not (root / header).is_file():
            yield f"{where}: \"{header}\" does not exist"
        elif folder not in rooms and header.rpartition("/")[0] != folder:
            yield f"{where}: {folder} declares no room and so may not use {header}"


def arrow_offences(declaration, included, rooms, project):
    """Where the rooms under DEPENDS differ from those that are included."""
    for room, where in sorted(included.items()):
        if room not in declaration.depends:
            yield f"{where}: {declaration.name} does not name {room} under DEPENDS"
    place = declaration.place.relative_to(project).as_posix()
    for room in declaration.depends:
        if room not in rooms:
            # The desktop rooms may be left out of a build, never out of the tree.
            yield f"{place}: {declaration.name} names {room}, which is no room"
        elif room not in included:
            yield f"{place}: {declaration.name} names {room} under DEPENDS and includes none of its headers"


def offences(project):
    project = project.resolve()
    declared = declarations(project / "src", of_rooms=True)
    rooms = {room.name: room.depends for room in declared}
    programs = [program for folder in ("src", "tests", "bench")
                for program in declarations(project / folder, of_rooms=False)]
    files = [path for path in sorted((project / "src").rglob("*")) if path.suffix in (".h", ".cpp")]
    found = []
    ring = cycle(rooms)
    if ring:
        found.append("the rooms need each other: " + " -> ".join(ring))
    for path in files:
        found += header_offences(path, project, rooms)
    # The executable's main.cpp is in the folder of a room but is no part of it.
    of_programs = {source for program in programs for source in program.sources}
    for room in declared:
        folder = project / "src" / room.name
        own = [path for path in files if path.parent == folder and path not in of_programs]
        included = rooms_included(own, project)
        included.pop(room.name, None)
        found += arrow_offences(room, included, rooms, project)
    for program in programs:
        missing = [path for path in program.sources if not path.is_file()]
        found += [f"{program.name} is built from {path.name}, which does not exist" for path in missing]
        if not missing:
            found += arrow_offences(program, rooms_included(program.sources, project), rooms, project)
    return found


def planted(files):
    """The offences of a small project."""
    with tempfile.TemporaryDirectory() as folder:
        project = pathlib.Path(folder)
        for name, text in files.items():
            path = project / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(text, encoding="utf-8")
        return offences(project)


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
    project = pathlib.Path(sys.argv[1])
    rooms = len(declarations(project / "src", of_rooms=True))
    programs = sum(len(declarations(project / folder, of_rooms=False)) for folder in ("src", "tests", "bench"))
    if not rooms or not programs:
        sys.exit("no room or no program is declared there")
    found = offences(project)
    for offence in found:
        print(offence)
    print(f"{rooms} rooms and {programs} programs, {len(found)} offences")
    sys.exit(1 if found else 0)


main()

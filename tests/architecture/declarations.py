"""Reads what the CMakeLists.txt files declare and what sources include, for layers.py."""
import dataclasses
import pathlib
import re

INCLUDE = re.compile(r'^\s*#\s*include\s*(?:"([^"]+)"|<([^>]+)>)', re.MULTILINE)
CALL = re.compile(r"\bkestrin_(room|room_tests|bench_program|fuzz_target|program)\(\s*([^\s()]+)([^()]*)\)")


@dataclasses.dataclass
class Declaration:
    """A call of kestrin_room or of one of the functions that make a program."""
    name: str
    place: pathlib.Path  # its CMakeLists.txt
    sources: list
    depends: list


def declarations(folder, of_rooms):
    """The rooms or the programs of a folder. A function that passes its arguments on declares nothing."""
    found = []
    for place in sorted(folder.rglob("CMakeLists.txt")):
        text = re.sub(r"#[^\n]*", "", place.read_text(encoding="utf-8"))
        for kind, name, arguments in CALL.findall(text):
            lists = {"SOURCES": [], "DEPENDS": [], "LIBRARIES": []}
            words = []
            for word in arguments.split():
                words = lists.get(word, words)
                if word not in lists:
                    words.append(word)
            if (kind == "room") != of_rooms or any("$" in word for word in lists["DEPENDS"]):
                continue
            if kind == "bench_program":
                lists["SOURCES"].append(f"programs/{name}.cpp")
            sources = [(place.parent / word).resolve() for word in lists["SOURCES"] if "$" not in word]
            found.append(Declaration(name, place, sources, lists["DEPENDS"]))
    return found


def includes(path):
    """Line, header, and whether the header is in quotes, for each include of the file."""
    text = path.read_text(encoding="utf-8")
    for match in INCLUDE.finditer(text):
        quoted, angled = match.groups()
        line = text.count("\n", 0, match.start(1 if quoted else 2)) + 1
        yield line, quoted or angled, quoted is not None


def rooms_included(sources, project):
    """Where the sources, and the headers outside src/ that they include, first include each room."""
    found = {}
    waiting = list(sources)
    seen = set(waiting)
    while waiting:
        path = waiting.pop(0)
        for line, header, quoted in includes(path):
            if not quoted:
                continue
            places = (path.parent, project / "tests", project / "src")
            header = next((place / header for place in places if (place / header).is_file()), None)
            if header is None:
                continue
            header = header.resolve()
            if header.is_relative_to(project / "src"):
                room = header.parent.relative_to(project / "src").as_posix()
                found.setdefault(room, f"{path.relative_to(project).as_posix()}:{line}")
            elif header not in seen:
                seen.add(header)
                waiting.append(header)
    return found

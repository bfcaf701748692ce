"""Small projects for layers.py to judge before the real one: file names and their text."""

LOW = {"src/low/CMakeLists.txt": "kestrin_room(low)\n", "src/low/Low.h": "#include <vector>\n"}
MIDDLE = {"src/middle/CMakeLists.txt": "kestrin_room(middle DEPENDS low)",
          "src/middle/Middle.h": '#include "low/Low.h"\n'}
HIGH = "kestrin_room(high\n  SOURCES High.cpp\n  DEPENDS low # below\n  LIBRARIES CURL::libcurl)\n"
FAKE = {"tests/fakes/Fake.h": '#include "low/Low.h"\n'}
TEST = {"tests/high/HighTests.cpp": '#include "fakes/Fake.h"\n\n#include "middle/Middle.h"\n'}
BENCH = {"bench/programs/speed.cpp": '#include "Speed.h"\n', "bench/programs/Speed.h": '#include "low/Low.h"\n'}
MAIN = {"src/high/High.h": "", "src/high/main.cpp": '#include "low/Low.h"\n'}

HARMLESS = [
    LOW | {"src/high/CMakeLists.txt": HIGH, "src/high/High.h": '#include "low/Low.h"\n',
           "src/high/High.cpp": '#include "high/High.h"\n'},
    LOW | MIDDLE | {"src/high/CMakeLists.txt": "kestrin_room(high DEPENDS middle)",
                    "src/high/High.h": '#include "middle/Middle.h"\n'},
    {"src/platform/CMakeLists.txt": "kestrin_room(platform)", "src/platform/Tray.h": "#include <QObject>\n"},
    {"src/high/view/CMakeLists.txt": "kestrin_room(high/view)", "src/high/view/Window.h": "#include <QWidget>\n",
     "src/high/view/Window.cpp": '#include "high/view/Window.h"\n'},
    {"src/json/CMakeLists.txt": "kestrin_room(json SOURCES A.cpp)", "src/json/A.cpp": "#include <nlohmann/json.hpp>\n"},
    LOW | MIDDLE | FAKE | TEST | {
        "tests/CMakeLists.txt": "kestrin_room_tests(high\n  SOURCES high/HighTests.cpp\n  DEPENDS low middle)"},
    LOW | BENCH | {"bench/CMakeLists.txt": "function(kestrin_bench_program name)\n"
                   "  kestrin_program(${name} SOURCES ${SOURCES} DEPENDS ${DEPENDS})\nendfunction()\n"
                   "kestrin_bench_program(speed DEPENDS low LIBRARIES CURL::libcurl)"},
    LOW | MAIN | {
        "src/high/CMakeLists.txt": "kestrin_room(high)\nkestrin_program(kestrin SOURCES main.cpp DEPENDS low)"},
]

# What the offence says, and the project with no other.
PLANTED = {
    "QString is a Qt header": LOW | {"src/low/Bad.h": "#include <QString>\n"},
    "QtCore/QString is a Qt header": LOW | {"src/low/Bad.h": "#include <QtCore/QString>\n"},
    "QtGlobal is a Qt header": LOW | {"src/low/Bad.cpp": "#include <QtGlobal>\n"},
    "src/high/High.h:1: high does not name low": LOW | {
        "src/high/CMakeLists.txt": "kestrin_room(high)", "src/high/High.h": '#include "low/Low.h"\n'},
    "src/low/Up.h:2: low does not name high": LOW | {
        "src/high/CMakeLists.txt": "kestrin_room(high)", "src/high/High.h": "",
        "src/low/Up.h": '\n  #  include "high/High.h"\n'},
    "high does not name high/view": {
        "src/high/CMakeLists.txt": "kestrin_room(high)", "src/high/Bad.h": '#include "high/view/W.h"\n',
        "src/high/view/CMakeLists.txt": "kestrin_room(high/view)", "src/high/view/W.h": ""},
    # Linked through middle, and still an arrow of its own.
    "last does not name low": LOW | MIDDLE | {
        "src/last/CMakeLists.txt": "kestrin_room(last DEPENDS middle)",
        "src/last/Last.h": '#include "low/Low.h"\n#include "middle/Middle.h"\n'},
    "high/CMakeLists.txt: high names low under DEPENDS and includes none": LOW | {
        "src/high/CMakeLists.txt": HIGH, "src/high/High.cpp": '#include "high/High.h"\n', "src/high/High.h": ""},
    "last names low under DEPENDS and includes none": LOW | MIDDLE | {
        "src/last/CMakeLists.txt": "kestrin_room(last DEPENDS middle low)",
        "src/last/Last.h": '#include "middle/Middle.h"\n'},
    "names nowhere, which is no room": {"src/a/CMakeLists.txt": "kestrin_room(a DEPENDS nowhere)"},
    "does not read": LOW | {"src/low/Bad.cpp": '#include "Low.h"\n'},
    "\"low/../low/Low.h\" does not read": LOW | {"src/low/Bad.cpp": '#include "low/../low/Low.h"\n'},
    "does not exist": LOW | {"src/low/Bad.cpp": '#include "low/Missing.h"\n'},
    "belongs in the sources": LOW | {"src/low/Bad.cpp": "#include <nlohmann/json.hpp>\n"},
    "json alone": {"src/json/CMakeLists.txt": "kestrin_room(json)",
                   "src/json/Bad.h": "#include <nlohmann/json_fwd.hpp>\n"},
    "a -> b -> c -> a": {
        "src/a/CMakeLists.txt": "kestrin_room(a DEPENDS b)", "src/a/A.h": '#include "b/B.h"\n',
        "src/b/CMakeLists.txt": "kestrin_room(b DEPENDS c)", "src/b/B.h": '#include "c/C.h"\n',
        "src/c/CMakeLists.txt": "kestrin_room(c DEPENDS a)", "src/c/C.h": '#include "a/A.h"\n'},
    "declares no room": LOW | {
        "src/shed/CMakeLists.txt": "# Filled later.", "src/shed/Bad.h": '#include "low/Low.h"\n'},
    "tests/fakes/Fake.h:1: high does not name low": LOW | MIDDLE | FAKE | TEST | {
        "tests/CMakeLists.txt": "kestrin_room_tests(high SOURCES high/HighTests.cpp DEPENDS middle)"},
    "tests/high/HighTests.cpp:3: high does not name middle": LOW | MIDDLE | FAKE | TEST | {
        "tests/high/CMakeLists.txt": "kestrin_room_tests(high SOURCES HighTests.cpp DEPENDS low)"},
    "tests/CMakeLists.txt: low names middle under DEPENDS and includes none": LOW | MIDDLE | FAKE | {
        "tests/LowTests.cpp": '#include "fakes/Fake.h"\n',
        "tests/CMakeLists.txt": "kestrin_room_tests(low SOURCES LowTests.cpp DEPENDS low middle)"},
    "bench/programs/Speed.h:1: speed does not name low": LOW | BENCH | {
        "bench/CMakeLists.txt": "kestrin_bench_program(speed)"},
    "speed names middle under DEPENDS and includes none": LOW | MIDDLE | BENCH | {
        "bench/CMakeLists.txt": "kestrin_bench_program(speed DEPENDS low middle)"},
    "bytes does not name low": LOW | {
        "tests/fuzz/BytesTarget.cpp": '#include "low/Low.h"\n',
        "tests/fuzz/CMakeLists.txt": "kestrin_fuzz_target(bytes SOURCES BytesTarget.cpp)"},
    "src/high/main.cpp:1: kestrin does not name low": LOW | MAIN | {
        "src/high/CMakeLists.txt": "kestrin_room(high)\nkestrin_program(kestrin SOURCES main.cpp)"},
    "kestrin is built from gone.cpp, which does not exist": LOW | MAIN | {
        "src/high/CMakeLists.txt": "kestrin_room(high)\n"
                                   "kestrin_program(kestrin SOURCES main.cpp gone.cpp DEPENDS low)"},
    # What only main.cpp includes is no arrow of the room.
    "high names low under DEPENDS and includes none": LOW | MAIN | {
        "src/high/CMakeLists.txt": "kestrin_room(high DEPENDS low)\n"
                                   "kestrin_program(kestrin SOURCES main.cpp DEPENDS low)"},
}

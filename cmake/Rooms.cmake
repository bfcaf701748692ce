# A room is one folder of src/ and one library: static, or INTERFACE if the room has only headers. Everything compiles
# with one include root, src/, so every include reads "room/Header.h" and editors open the file itself.
# DEPENDS lists the rooms whose headers are included, no more and no fewer; what those depend on is linked through them.
# The compiler would find any header, so tests/architecture/layers.py compares the includes with DEPENDS.

# The targets of rooms: "monitoring/application" -> kestrin_monitoring_application.
function(kestrin_room_targets out)
  list(TRANSFORM ARGN REPLACE "/" "_")
  list(TRANSFORM ARGN PREPEND kestrin_)
  set(${out} ${ARGN} PARENT_SCOPE)
endfunction()

# kestrin_room(state SOURCES a.cpp b.cpp DEPENDS model json LIBRARIES simdjson::simdjson)
function(kestrin_room room)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPENDS;LIBRARIES" ${ARGN})
  kestrin_room_targets(target ${room})
  kestrin_room_targets(rooms ${ARG_DEPENDS})
  file(GLOB headers CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.h)
  if(ARG_SOURCES)
    add_library(${target} STATIC ${ARG_SOURCES} ${headers})
    target_link_libraries(${target} PRIVATE kestrin_options)
    set(reach PUBLIC)
  else()
    add_library(${target} INTERFACE ${headers})
    set(reach INTERFACE)
  endif()
  target_include_directories(${target} ${reach} ${CMAKE_SOURCE_DIR}/src)
  target_link_libraries(${target} ${reach} Threads::Threads ${ARG_LIBRARIES} ${rooms})
endfunction()

# kestrin_program(kestrin SOURCES main.cpp DEPENDS monitoring LIBRARIES Qt6::Widgets)
function(kestrin_program target)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPENDS;LIBRARIES" ${ARGN})
  kestrin_room_targets(rooms ${ARG_DEPENDS})
  add_executable(${target} ${ARG_SOURCES})
  target_link_libraries(${target} PRIVATE kestrin_options ${ARG_LIBRARIES} ${rooms})
endfunction()

# kestrin_room_tests(state SOURCES StateTests.cpp DEPENDS state model LIBRARIES ...): one test program for a room.
# Tests also see tests/ itself, where the fakes of the outside live. DEPENDS includes the rooms that the fakes name.
function(kestrin_room_tests name)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPENDS;LIBRARIES" ${ARGN})
  set(target kestrin_${name}_tests)
  kestrin_program(${target}
    SOURCES ${ARG_SOURCES}
    DEPENDS ${ARG_DEPENDS}
    LIBRARIES GTest::gmock GTest::gtest_main ${ARG_LIBRARIES})
  target_include_directories(${target} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
  # What is tested is optimised; the tests themselves need not be, and so compile in half the time, above all with
  # sanitizers.
  target_compile_options(${target} PRIVATE $<$<CONFIG:RelWithDebInfo>:-O1;-g1>)
  if(KESTRIN_SANITIZE)
    target_compile_options(${target} PRIVATE -O0)
  endif()
  gtest_discover_tests(${target} TEST_PREFIX "${name}." DISCOVERY_MODE PRE_TEST
    PROPERTIES TIMEOUT 120 LABELS unit)
endfunction()

# A room is one folder of src/ and one static library. It sees the headers of the rooms it names under DEPENDS and
# no others: each room's headers are linked into an include root of their own, and the roots are not passed on.
# A test stands beside the rooms and proves that an undeclared include does not compile.

set(KESTRIN_ROOM_ROOTS ${CMAKE_BINARY_DIR}/rooms)

# The target that stands for a room: "monitoring/application" -> kestrin_monitoring_application.
function(kestrin_room_target out room)
  string(REPLACE "/" "_" name ${room})
  set(${out} kestrin_${name} PARENT_SCOPE)
endfunction()

# Lets a target see its own room and the rooms named, and links them.
function(kestrin_use_rooms target)
  foreach(room IN LISTS ARGN)
    string(REPLACE "/" "-" root ${room})
    target_include_directories(${target} PRIVATE ${KESTRIN_ROOM_ROOTS}/${root})
    kestrin_room_target(library ${room})
    if(NOT library STREQUAL target)
      target_link_libraries(${target} PUBLIC ${library})
    endif()
  endforeach()
endfunction()

# kestrin_room(state SOURCES a.cpp b.cpp DEPENDS model json LIBRARIES simdjson::simdjson)
function(kestrin_room room)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPENDS;LIBRARIES" ${ARGN})
  kestrin_room_target(target ${room})
  string(REPLACE "/" "-" root ${room})
  file(GLOB headers CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.h)
  file(REMOVE_RECURSE ${KESTRIN_ROOM_ROOTS}/${root})
  file(MAKE_DIRECTORY ${KESTRIN_ROOM_ROOTS}/${root}/${room})
  foreach(header IN LISTS headers)
    get_filename_component(name ${header} NAME)
    file(CREATE_LINK ${header} ${KESTRIN_ROOM_ROOTS}/${root}/${room}/${name} SYMBOLIC)
  endforeach()

  if(ARG_SOURCES)
    add_library(${target} STATIC ${ARG_SOURCES} ${headers})
  else()
    # Headers alone: an empty translation unit keeps one kind of target for every room.
    set(empty ${CMAKE_CURRENT_BINARY_DIR}/headers_only.cpp)
    if(NOT EXISTS ${empty})
      file(WRITE ${empty} "// This room consists of headers.\n")
    endif()
    add_library(${target} STATIC ${empty} ${headers})
  endif()
  target_link_libraries(${target} PRIVATE kestrin_options PUBLIC Threads::Threads ${ARG_LIBRARIES})
  kestrin_use_rooms(${target} ${room} ${ARG_DEPENDS})
endfunction()

# kestrin_room_tests(state SOURCES StateTests.cpp DEPENDS state model LIBRARIES ...): one test program for a room.
# Tests also see tests/ itself, where the fakes of the outside live.
function(kestrin_room_tests name)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPENDS;LIBRARIES" ${ARGN})
  set(target kestrin_${name}_tests)
  add_executable(${target} ${ARG_SOURCES})
  target_link_libraries(${target} PRIVATE kestrin_options GTest::gmock GTest::gtest_main ${ARG_LIBRARIES})
  target_include_directories(${target} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
  # What is tested is optimised; the tests themselves need not be, and so compile in half the time, above all with
  # sanitizers.
  target_compile_options(${target} PRIVATE $<$<CONFIG:RelWithDebInfo>:-O1;-g1>)
  if(KESTRIN_SANITIZE)
    target_compile_options(${target} PRIVATE -O0)
  endif()
  kestrin_use_rooms(${target} ${ARG_DEPENDS})
  gtest_discover_tests(${target} TEST_PREFIX "${name}." DISCOVERY_MODE PRE_TEST
    PROPERTIES TIMEOUT 120 LABELS unit)
endfunction()

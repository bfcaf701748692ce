# Warnings, hardening and sanitizers, the same for every target.
find_program(CCACHE ccache)
if(CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
endif()

set(KESTRIN_SANITIZE "" CACHE STRING "Sanitizers to build with, as the compiler names them: address,undefined or thread")

add_library(kestrin_options INTERFACE)
target_compile_options(kestrin_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wold-style-cast -Woverloaded-virtual -Wcast-align
  -Wconversion -Wsign-conversion -Wnull-dereference -Wformat=2 -Wimplicit-fallthrough -Werror
  -fstack-protector-strong)
target_link_options(kestrin_options INTERFACE -Wl,-z,relro,-z,now,-z,noexecstack)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # g++ 12 reports null dereferences and uninitialised reads inside its own coroutine frames and std::variant.
  target_compile_options(kestrin_options INTERFACE -Wno-null-dereference -Wno-maybe-uninitialized)
endif()
if(KESTRIN_SANITIZE)
  target_compile_options(kestrin_options INTERFACE
    -fsanitize=${KESTRIN_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(kestrin_options INTERFACE -fsanitize=${KESTRIN_SANITIZE})
elseif(CMAKE_BUILD_TYPE STREQUAL "Release" OR CMAKE_BUILD_TYPE STREQUAL "RelWithDebInfo")
  target_compile_options(kestrin_options INTERFACE -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3 -fstack-clash-protection)
endif()
if(NOT KESTRIN_SANITIZE)
  set(CMAKE_EXE_LINKER_FLAGS "${CMAKE_EXE_LINKER_FLAGS} -pie")
endif()

# What the cross builds for Windows have in common: where libraries come from, how programs are linked and run.

# Headers and libraries come from the target's own folder, never from those of this machine.
set(CMAKE_FIND_ROOT_PATH ${CMAKE_CURRENT_LIST_DIR}/../../build/windows/${ZT_WINDOWS_TARGET}/libraries)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# The runtime libraries go into each program, so that it runs on any Windows.
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
set(CMAKE_SHARED_LINKER_FLAGS_INIT -static)

# Tests are compiled once and run once, so they are not worth more.
list(APPEND ZT_TEST_COMPILE_OPTIONS -O1)

set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../../scripts/windows/run-${ZT_WINDOWS_TARGET})

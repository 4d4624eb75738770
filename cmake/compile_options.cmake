# What every target of the project is compiled with: link zt_compile_options privately.

add_library(zt_compile_options INTERFACE)
target_include_directories(zt_compile_options INTERFACE ${PROJECT_SOURCE_DIR})

if(WIN32)
  # The system's header would otherwise define macros named min and max, and bring in much that is not used.
  target_compile_definitions(zt_compile_options INTERFACE NOMINMAX WIN32_LEAN_AND_MEAN)
endif()
if(MSVC)
  # The C library's functions are used as every system has them.
  target_compile_definitions(zt_compile_options INTERFACE _CRT_SECURE_NO_WARNINGS _CRT_NONSTDC_NO_WARNINGS)
  target_compile_options(zt_compile_options INTERFACE /W4 /permissive- /utf-8)
  if(ZT_WARNINGS_AS_ERRORS)
    target_compile_options(zt_compile_options INTERFACE /WX)
  endif()
else()
  target_compile_options(zt_compile_options INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
  if(ZT_WARNINGS_AS_ERRORS)
    target_compile_options(zt_compile_options INTERFACE -Werror)
  endif()
endif()

# GCC 12 and 13 see an overlap in std::string's operator+ that is not there, when they optimise.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 14)
  target_compile_options(zt_compile_options INTERFACE -Wno-restrict)
endif()

# An inline function that several objects hold is linked from one of them. GCC for Windows relies all the same on the registers
# that its own copy leaves alone, which the linked one may use.
if(WIN32 AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(zt_compile_options INTERFACE -fno-ipa-ra)
endif()

if(ZT_SANITIZE)
  target_compile_options(zt_compile_options INTERFACE
    -fsanitize=${ZT_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(zt_compile_options INTERFACE -fsanitize=${ZT_SANITIZE})
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # GCC sees uninitialised values that are not there once it has put the sanitizers' code in.
    target_compile_options(zt_compile_options INTERFACE -Wno-maybe-uninitialized)
  endif()
endif()

if(ZT_COVERAGE)
  target_compile_options(zt_compile_options INTERFACE --coverage -fprofile-update=atomic -O0)
  target_link_options(zt_compile_options INTERFACE --coverage)
endif()

# Checks in the code that is released. Sanitizers look closer, and code that is not optimised has no room for the second.
set(ZT_COMPILED_CHECKS OFF)
if(UNIX AND NOT ZT_SANITIZE AND CMAKE_BUILD_TYPE MATCHES "^Rel")
  set(ZT_COMPILED_CHECKS ON)
  target_compile_options(zt_compile_options INTERFACE -fstack-protector-strong -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
endif()
# On Windows the system checks the targets of calls, where the compiler knows how to list them: those on Debian do not, as their
# C library lacks the tables.
if(MSVC)
  target_compile_options(zt_compile_options INTERFACE /guard:cf)
endif()

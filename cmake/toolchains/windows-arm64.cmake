# Windows on Arm64 by clang on Debian. scripts/windows/setup-arm64-toolchain makes the machine ready for it.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR ARM64)
get_filename_component(zt_tools ${CMAKE_CURRENT_LIST_DIR}/../../build/windows/arm64/toolchain/bin ABSOLUTE)
if(NOT EXISTS ${zt_tools})
  message(FATAL_ERROR "There is no compiler for Windows on Arm64: run scripts/windows/setup-arm64-toolchain")
endif()
set(CMAKE_C_COMPILER ${zt_tools}/aarch64-w64-mingw32-clang)
set(CMAKE_CXX_COMPILER ${zt_tools}/aarch64-w64-mingw32-clang++)
set(CMAKE_RC_COMPILER ${zt_tools}/aarch64-w64-mingw32-windres)
set(CMAKE_AR ${zt_tools}/aarch64-w64-mingw32-ar)
set(CMAKE_RANLIB ${zt_tools}/aarch64-w64-mingw32-ranlib)
# Wine's functions for Arm64, some of them, change the register by which a program finds its thread-local variables. Real Windows
# does not. Tests do without the register.
set(ZT_TEST_COMPILE_OPTIONS -femulated-tls)
set(ZT_WINDOWS_TARGET arm64)
include(${CMAKE_CURRENT_LIST_DIR}/windows_cross.cmake)

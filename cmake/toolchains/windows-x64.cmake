# Windows on x64 by MinGW-w64 on Debian. scripts/windows/setup-x64 makes the machine ready for it.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR AMD64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
# This version of GCC sees an overlap in some std::string operations that cannot be.
set(CMAKE_CXX_FLAGS_INIT -Wno-restrict)
set(ZT_WINDOWS_TARGET x64)
include(${CMAKE_CURRENT_LIST_DIR}/windows_cross.cmake)

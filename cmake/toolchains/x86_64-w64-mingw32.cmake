# Debian's MinGW-w64 for 64-bit Windows, with POSIX threads. Programs run here under Wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR AMD64)

set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../../scripts/run-under-wine.sh)

# Packages of the target lie where scripts/cross-packages.sh puts them; nothing is taken from the
# machine that builds, but what CMAKE_PREFIX_PATH names.
set(CMAKE_FIND_ROOT_PATH
    ${CMAKE_PREFIX_PATH} ${CMAKE_CURRENT_LIST_DIR}/../../build/cross/x86_64-w64-mingw32
    /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Debian's cross compiler for Linux on ARM64. Programs run here under qemu-user.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)

set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_LIBRARY_ARCHITECTURE aarch64-linux-gnu)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64 -L /usr/aarch64-linux-gnu)

# Packages of the target lie where scripts/cross-packages.sh puts them; nothing is taken from the
# machine that builds, but what CMAKE_PREFIX_PATH names.
set(CMAKE_FIND_ROOT_PATH
    ${CMAKE_PREFIX_PATH} ${CMAKE_CURRENT_LIST_DIR}/../../build/cross/aarch64-linux-gnu
    /usr/aarch64-linux-gnu)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

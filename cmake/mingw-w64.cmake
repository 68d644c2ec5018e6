# SPDX-License-Identifier: Apache-2.0
#
# Cross-building for 64-bit Windows with MinGW-w64; what is built runs under Wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(MINGW_TARGET x86_64-w64-mingw32)
# The variant with POSIX threads: the other has no std::thread.
set(CMAKE_C_COMPILER ${MINGW_TARGET}-gcc-posix)
set(CMAKE_CXX_COMPILER ${MINGW_TARGET}-g++-posix)
set(CMAKE_RC_COMPILER ${MINGW_TARGET}-windres)

# Packages come from there, and from where the caller says.
set(CMAKE_FIND_ROOT_PATH /usr/${MINGW_TARGET} ${CMAKE_PREFIX_PATH})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Windows 10, version 1809: the oldest with all that the libraries ask for.
add_compile_definitions(_WIN32_WINNT=0x0A00 WINVER=0x0A00 NTDDI_VERSION=0x0A000006)

set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/wine-run)

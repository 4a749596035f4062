# 64-bit Windows (Debian: g++-mingw-w64-x86-64-posix).
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(triplet x86_64-w64-mingw32)
set(bits 64)
include(${CMAKE_CURRENT_LIST_DIR}/MinGW.cmake)

# 32-bit Linux on a 64-bit machine, by the second library set of its GCC (Debian: g++-12-multilib,
# where 12 is GCC's version). What is built runs here, so to CMake this is no cross-build.
set(CMAKE_SYSTEM_PROCESSOR i686)
# Tests, too, run on emulated processors without SSE.
set(CMAKE_CXX_FLAGS_INIT "-m32 -march=i686")
# The kernel's headers, which serve both word sizes. Debian's g++-multilib has a link to them, but
# cannot be installed beside a compiler for another processor.
string(APPEND CMAKE_CXX_FLAGS_INIT " -idirafter /usr/include/x86_64-linux-gnu")
set(CMAKE_C_FLAGS_INIT "${CMAKE_CXX_FLAGS_INIT}")
set(CMAKE_LIBRARY_ARCHITECTURE i386-linux-gnu)

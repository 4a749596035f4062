# 32-bit Linux on a 64-bit machine, by the second library set of its GCC (Debian: g++-multilib). What
# is built runs here, so to CMake this is no cross-build.
set(CMAKE_SYSTEM_PROCESSOR i686)
# Tests, too, run on emulated processors without SSE.
set(CMAKE_CXX_FLAGS_INIT "-m32 -march=i686")
set(CMAKE_LIBRARY_ARCHITECTURE i386-linux-gnu)

# Windows, by the MinGW-w64 compiler for `triplet` whose C++ library has std::thread, which the tests
# use. The library needs none of that.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_CXX_COMPILER ${triplet}-g++-posix)
set(CMAKE_C_COMPILER ${triplet}-gcc-posix)
set(CMAKE_RC_COMPILER ${triplet}-windres)
include(${CMAKE_CURRENT_LIST_DIR}/Tree.cmake)
# Test programs, too, bring the runtime with them.
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
# A copy of Wine that can run them; scripts/wine.sh says which.
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../../scripts/wine.sh ${bits})

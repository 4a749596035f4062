# 64-bit ARM Linux, by Debian's cross compiler (g++-aarch64-linux-gnu); what is built runs in
# QEMU's user-mode emulation (qemu-user-static; the programs of qemu-user 7.2 give up in a forked
# child that starts threads).
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(triplet aarch64-linux-gnu)
include(${CMAKE_CURRENT_LIST_DIR}/Tree.cmake)
# The C library of the target lies with the compiler, not where a program looks for it.
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64-static -L /usr/aarch64-linux-gnu)

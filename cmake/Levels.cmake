# The levels: every row source is compiled once for each of them, pinned at both ends, so that a
# level neither misses what it may use nor uses what its processors lack. Built are those of the roll
# (dispatch/Levels.h) that have flags here, or those that -DQV_LEVELS= names.
string(REGEX MATCH "^(i.86|x86|x86_64|AMD64|amd64)$" QV_X86 "${CMAKE_SYSTEM_PROCESSOR}")
set(QV_VECTOR_OPTIMIZATION -O3 CACHE STRING "Of the vector levels; less for quick or exact builds")
mark_as_advanced(QV_VECTOR_OPTIMIZATION)
set(vector_flags ${QV_VECTOR_OPTIMIZATION})

if(NOT QV_X86)
  set(QV_BASELINE_FLAGS)
elseif(CMAKE_SIZEOF_VOID_P EQUAL 4)
  # The oldest processor has no SSE: its doubles are x87 registers, which keep more than a double
  # holds. Whatever is built for it rounds what it assigns by storing it (see FloatControl.h for
  # what it does not assign).
  set(QV_BASELINE_FLAGS -march=i686 -mno-mmx -mno-sse -mfpmath=387 -ffloat-store)
  list(PREPEND vector_flags -mfpmath=sse)
else()
  set(QV_BASELINE_FLAGS -mno-sse3)
endif()
set(QV_LEVEL_FLAGS_generic ${QV_BASELINE_FLAGS} -O2)
if(QV_X86)
  # GCC 12 forgets that registers are still wide after a call of a function that it knows to leave
  # them alone, and returns without VZEROUPPER: the host's SSE code then runs at half its speed. It
  # makes none at all below -O2 without its expensive optimizations.
  set(wide_flags $<$<CXX_COMPILER_ID:GNU>:-fno-ipa-ra>
      $<$<CXX_COMPILER_ID:GNU>:-fexpensive-optimizations>)
  set(QV_LEVEL_FLAGS_sse2 -msse2 -mno-sse3 ${vector_flags})
  set(QV_LEVEL_FLAGS_ssse3 -mssse3 -mno-sse4.1 -mno-sse4a ${vector_flags})
  set(QV_LEVEL_FLAGS_avx2 -mavx2 -mno-fma -mno-avx512f ${wide_flags} ${vector_flags})
  set(QV_LEVEL_FLAGS_avx512 -mavx512f -mavx512bw -mavx512vl -mavx512dq -mavx512vbmi
      -mprefer-vector-width=512 ${wide_flags} ${vector_flags}
      -Wno-uninitialized  # GCC 12 warns of its own _mm512_undefined_*
      $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
endif()

# In the order of the roll.
set(roll_file ${CMAKE_CURRENT_LIST_DIR}/../dispatch/Levels.h)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${roll_file})
file(READ ${roll_file} roll)
string(REGEX MATCHALL "\n  LEVEL[(][a-z0-9_]+" roll "${roll}")
list(TRANSFORM roll REPLACE ".*[(]" "")
if(NOT DEFINED CACHE{QV_LEVELS})
  set(QV_LEVELS)
  foreach(level IN LISTS roll)
    if(DEFINED QV_LEVEL_FLAGS_${level})
      list(APPEND QV_LEVELS ${level})
    endif()
  endforeach()
endif()

list(JOIN QV_LEVELS " " names)
message(STATUS "Levels: ${names}")

# In our own builds the assembler refuses what a level's processors lack, so that neither the compiler
# nor a wrongly written row brings it in. Carry-less multiplication is asked for apart from the level.
if(QV_X86 AND QV_WERROR AND CMAKE_CXX_COMPILER_ID STREQUAL GNU)
  if(CMAKE_SIZEOF_VOID_P EQUAL 4)
    set(isa_generic i686)
    set(isa_sse2 i686+mmx+sse+sse2)
  else()
    set(isa_generic generic64)
    set(isa_sse2 generic64)
  endif()
  set(isa_ssse3 ${isa_sse2}+sse3+ssse3+pclmul)
  set(isa_avx2 ${isa_ssse3}+sse4.2+popcnt+avx2)
  set(isa_avx512 ${isa_avx2}+avx512f+avx512bw+avx512vl+avx512dq+avx512vbmi+vpclmulqdq+gfni)
  foreach(level IN LISTS QV_LEVELS)
    list(APPEND QV_LEVEL_FLAGS_${level} -Wa,-march=${isa_${level}})
  endforeach()
  set(QV_PINNED_BASELINE ${isa_generic}+xsave)  # XGETBV, asked for by CPUID
  list(APPEND QV_BASELINE_FLAGS -Wa,-march=${QV_PINNED_BASELINE})
endif()

# 32-bit Windows promises a stack aligned to 4 bytes, to hosts' calls as to new threads and to the DLL's
# entry point.
if(WIN32 AND CMAKE_SIZEOF_VOID_P EQUAL 4)
  add_compile_options(-mincoming-stack-boundary=2)
endif()

# GCC for 64-bit Windows takes the stack to be aligned to 16 bytes, as it is, and yet keeps wider
# vectors there with moves that want more (GCC bug 54412, open as of GCC 12). The assembler makes
# unaligned ones of them, which are as fast.
if(WIN32 AND CMAKE_SIZEOF_VOID_P EQUAL 8)
  foreach(level IN LISTS QV_LEVELS)
    if(QV_LEVEL_FLAGS_${level} MATCHES -mavx)
      list(APPEND QV_LEVEL_FLAGS_${level} -Wa,-muse-unaligned-vector-move)
    endif()
  endforeach()
endif()

# One object library a level, qvRows_<level>, from the one list of row sources.
function(qv_add_levels)
  foreach(level IN LISTS QV_LEVELS)
    add_library(qvRows_${level} OBJECT ${ARGN})
    target_link_libraries(qvRows_${level} PRIVATE qvCommonFlags)
    target_compile_definitions(qvRows_${level} PRIVATE QV_LEVEL=${level})
    target_compile_options(qvRows_${level} PRIVATE ${QV_LEVEL_FLAGS_${level}} -fno-lto)
    set_target_properties(qvRows_${level} PROPERTIES POSITION_INDEPENDENT_CODE ON)
  endforeach()
endfunction()

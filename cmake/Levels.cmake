# The levels: every row source is compiled once for each of them, pinned at both ends, so that a
# level neither misses what it may use nor uses what its processors lack.
set(QV_LEVELS generic sse2 ssse3 avx2 avx512)

if(CMAKE_SIZEOF_VOID_P EQUAL 4)
  set(QV_LEVEL_FLAGS_generic -march=i686 -mno-mmx -mno-sse -O2)
  set(fp_in_sse -mfpmath=sse)
else()
  set(QV_LEVEL_FLAGS_generic -mno-sse3 -O2)
  set(fp_in_sse)
endif()
set(QV_LEVEL_FLAGS_sse2 -msse2 -mno-sse3 ${fp_in_sse} -O3)
set(QV_LEVEL_FLAGS_ssse3 -mssse3 -mno-sse4.1 -mno-sse4a ${fp_in_sse} -O3)
set(QV_LEVEL_FLAGS_avx2 -mavx2 -mno-fma -mno-avx512f ${fp_in_sse} -O3)
set(QV_LEVEL_FLAGS_avx512 -mavx512f -mavx512bw -mavx512vl -mavx512dq -mavx512vbmi
    -mprefer-vector-width=512 ${fp_in_sse} -O3
    -Wno-uninitialized -Wno-maybe-uninitialized)  # GCC 12 warns of its own _mm512_undefined_*

# One object library a level, qvRows_<level>, from the one list of row sources.
function(qv_add_levels)
  foreach(level IN LISTS QV_LEVELS)
    add_library(qvRows_${level} OBJECT ${ARGN})
    target_link_libraries(qvRows_${level} PRIVATE qvCommonFlags)
    target_compile_definitions(qvRows_${level} PRIVATE QV_LEVEL=${level} QV_LEVEL_${level}=1)
    target_compile_options(qvRows_${level} PRIVATE ${QV_LEVEL_FLAGS_${level}} -fno-lto)
    set_target_properties(qvRows_${level} PROPERTIES POSITION_INDEPENDENT_CODE ON)
  endforeach()
endfunction()

# The DLL: exported names for the C++ ABIs of MinGW and of Visual C++, and nothing of the compiler's
# runtime to be found beside it.
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
  set(exports windows32.def)
else()
  set(exports windows64.def)
endif()

# Operations that this version does not have yet are left out.
file(STRINGS exports/${exports} lines REGEX "^(LIBRARY|EXPORTS|  )")
set(kept)
foreach(line IN LISTS lines)
  string(REGEX MATCH "CqvAccLib[0-9]+(qv[A-Za-z0-9]+)ENS_" named "${line}")
  if(NOT named OR CMAKE_MATCH_1 IN_LIST operations)
    string(APPEND kept "${line}\n")
  endif()
endforeach()
file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/${exports} "${kept}")
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS exports/${exports})

target_sources(qvAcceleratedLib PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/${exports})
set_target_properties(qvAcceleratedLib PROPERTIES PREFIX "")
target_link_options(qvAcceleratedLib PRIVATE -static)
set_target_properties(qvAcceleratedLib PROPERTIES
  QV_EXPORT_LIST ${CMAKE_CURRENT_BINARY_DIR}/${exports})

# The import library for Visual C++, from its names alone. Without LLVM's tool there is only MinGW's.
find_program(QV_LLVM_DLLTOOL NAMES llvm-dlltool llvm-dlltool-14)
if(QV_LLVM_DLLTOOL)
  string(REGEX REPLACE "\n  \"_Z[^\n]*" "" visual "${kept}")
  string(REGEX REPLACE "(\"[^\"]*\") = [^\n]*" "\\1" visual "${visual}")
  file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/visual.def "${visual}")
  add_custom_command(TARGET qvAcceleratedLib POST_BUILD
    COMMAND ${QV_LLVM_DLLTOOL} -m $<IF:$<EQUAL:${CMAKE_SIZEOF_VOID_P},4>,i386,i386:x86-64>
      -d ${CMAKE_CURRENT_BINARY_DIR}/visual.def -l ${CMAKE_CURRENT_BINARY_DIR}/qvAcceleratedLib.lib)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/qvAcceleratedLib.lib TYPE LIB)
endif()

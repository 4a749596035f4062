# The DLL: exported names for the C++ ABIs of MinGW and of Visual C++, and nothing of the compiler's
# runtime to be found beside it.
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
  set(exports ${CMAKE_CURRENT_SOURCE_DIR}/exports/windows32.def)
else()
  set(exports ${CMAKE_CURRENT_SOURCE_DIR}/exports/windows64.def)
endif()
target_sources(qvAcceleratedLib PRIVATE ${exports})
enable_language(RC)  # what the system shows of a file's version
configure_file(version.rc.in version.rc @ONLY)
target_sources(qvAcceleratedLib PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/version.rc)
set_target_properties(qvAcceleratedLib PROPERTIES PREFIX "" QV_EXPORT_LIST ${exports})
# Its own start-up code, which resolves no addresses in other DLLs' data: none may be asked for.
target_sources(qvAcceleratedLib PRIVATE DllEntry.cpp)
target_link_libraries(qvAcceleratedLib PRIVATE qvBaselineFlags)
target_link_options(qvAcceleratedLib PRIVATE -static -nostartfiles -Wl,--disable-auto-import)
# Half of a release's DLL would be symbols, which nothing on Windows reads.
target_link_options(qvAcceleratedLib PRIVATE $<$<CONFIG:Release,MinSizeRel>:-s>)

# The import library for Visual C++, from its names alone. Without LLVM's tool there is only MinGW's.
find_program(QV_LLVM_DLLTOOL NAMES llvm-dlltool llvm-dlltool-14)
if(QV_LLVM_DLLTOOL)
  file(STRINGS ${exports} visual REGEX "^(LIBRARY|EXPORTS|  \"\\?)")
  list(JOIN visual "\n" visual)
  string(REGEX REPLACE "(\"[^\"]*\") = [^\n]*" "\\1" visual "${visual}\n")
  file(GENERATE OUTPUT visual.def CONTENT "${visual}")
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${exports})
  add_custom_command(OUTPUT qvAcceleratedLib.lib
    COMMAND ${QV_LLVM_DLLTOOL} -m $<IF:$<EQUAL:${CMAKE_SIZEOF_VOID_P},4>,i386,i386:x86-64>
      -d visual.def -l qvAcceleratedLib.lib
    DEPENDS ${CMAKE_CURRENT_BINARY_DIR}/visual.def
    VERBATIM)
  add_custom_target(qvVisualImports ALL DEPENDS ${CMAKE_CURRENT_BINARY_DIR}/qvAcceleratedLib.lib)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/qvAcceleratedLib.lib TYPE LIB COMPONENT development)
endif()

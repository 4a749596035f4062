# What both shared libraries have in common, that of the class and that of C.
function(qv_shared_library target)
  set_target_properties(${target} PROPERTIES
    LINKER_LANGUAGE CXX
    VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
  target_link_libraries(${target} PRIVATE Threads::Threads ${CMAKE_DL_LIBS})
  target_link_options(${target} PRIVATE -Wl,--gc-sections -Wl,--no-undefined)
  if(NOT WIN32)
    # Threads of the team sleep in it between calls: it stays where it is, whoever unloads it.
    target_link_options(${target} PRIVATE -Wl,-z,nodelete)
  endif()
  target_include_directories(${target} INTERFACE
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
  install(TARGETS ${target} EXPORT qvAcceleratedLibTargets
    RUNTIME COMPONENT runtime
    LIBRARY COMPONENT runtime NAMELINK_COMPONENT development
    ARCHIVE COMPONENT development)
endfunction()

# The DLL `target` exports the names of a list, one under each C++ ABI if it is the class's, and has nothing of
# the compiler's runtime to be found beside it.
function(qv_windows_dll target exports)
  target_sources(${target} PRIVATE ${exports})
  set(QV_DLL ${target})
  configure_file(${PROJECT_SOURCE_DIR}/qvAcceleratedLib/version.rc.in version.rc @ONLY)
  target_sources(${target} PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/version.rc)
  set_target_properties(${target} PROPERTIES PREFIX "" QV_EXPORT_LIST ${exports})
  # Its own start-up code, which resolves no addresses in other DLLs' data: none may be asked for.
  target_sources(${target} PRIVATE ${PROJECT_SOURCE_DIR}/qvAcceleratedLib/DllEntry.cpp)
  target_link_libraries(${target} PRIVATE qvBaselineFlags)
  target_link_options(${target} PRIVATE -static -nostartfiles -Wl,--disable-auto-import)
  # Half of a release's DLL would be symbols, which nothing on Windows reads.
  target_link_options(${target} PRIVATE $<$<CONFIG:Release,MinSizeRel>:-s>)

  # The import library for Visual C++, from its names alone. Without LLVM's tool there is only MinGW's.
  find_program(QV_LLVM_DLLTOOL NAMES llvm-dlltool llvm-dlltool-14)
  if(QV_LLVM_DLLTOOL)
    file(STRINGS ${exports} visual REGEX "^(LIBRARY|EXPORTS|  \"(\\?|qv_))")
    list(JOIN visual "\n" visual)
    string(REGEX REPLACE "(\"[^\"]*\") = [^\n]*" "\\1" visual "${visual}\n")
    file(GENERATE OUTPUT visual.def CONTENT "${visual}")
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${exports})
    add_custom_command(OUTPUT ${target}.lib
      COMMAND ${QV_LLVM_DLLTOOL} -m $<IF:$<EQUAL:${CMAKE_SIZEOF_VOID_P},4>,i386,i386:x86-64>
        -d visual.def -l ${target}.lib
      DEPENDS ${CMAKE_CURRENT_BINARY_DIR}/visual.def
      VERBATIM)
    add_custom_target(${target}VisualImports ALL
      DEPENDS ${CMAKE_CURRENT_BINARY_DIR}/${target}.lib)
    install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${target}.lib TYPE LIB COMPONENT development)
  endif()
endfunction()

# `cmake --install` of a tree in which not all is built that it would install says what to build,
# before it has copied anything. Included ahead of everything that installs: rules run in their order.
function(qv_install_needs target component file)
  install(CODE "
    if(NOT EXISTS \"${file}\")
      message(FATAL_ERROR \"${target} is to be installed and is not built. Build everything:\\n\"
        \"  cmake --build ${PROJECT_BINARY_DIR}\\n\"
        \"or install a component alone: runtime, development or tools\\n\"
        \"  cmake --install ${PROJECT_BINARY_DIR} --component NAME\")
    endif()" COMPONENT ${component})
endfunction()

foreach(library qvAcceleratedLib qvAcceleratedLibC)
  qv_install_needs(${library} runtime $<TARGET_FILE:${library}>)
  qv_install_needs(${library} development $<TARGET_FILE:${library}>)
endforeach()
if(WIN32)
  find_program(QV_LLVM_DLLTOOL NAMES llvm-dlltool llvm-dlltool-14)
  if(QV_LLVM_DLLTOOL)
    qv_install_needs(qvAcceleratedLibVisualImports development
      ${PROJECT_BINARY_DIR}/qvAcceleratedLib/qvAcceleratedLib.lib)
    qv_install_needs(qvAcceleratedLibCVisualImports development
      ${PROJECT_BINARY_DIR}/bindings/c/qvAcceleratedLibC.lib)
  endif()
endif()
if(QV_BUILD_TOOLS)
  qv_install_needs(qvtool tools $<TARGET_FILE:qvtool>)
endif()
if(QV_BUILD_TOOLS OR QV_BUILD_TESTS)
  qv_install_needs(qvselftest tools $<TARGET_FILE:qvselftest>)
endif()

# The compiler's run-time DLLs, beside the programs of the build tree and in the installed bin folder: a Windows machine
# has none of them.
if(MINGW)
  set(zol_runtime)
  foreach(name libgcc_s_dw2-1 libgcc_s_seh-1 libgomp-1 libstdc++-6 libwinpthread-1)
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${name}.dll
      OUTPUT_VARIABLE file OUTPUT_STRIP_TRAILING_WHITESPACE)
    # The compiler answers with the bare name where it has no such file: each width has one of the two libgcc.
    if(IS_ABSOLUTE "${file}")
      list(APPEND zol_runtime "${file}")
    endif()
  endforeach()
  file(COPY ${zol_runtime} DESTINATION "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}")
  install(FILES ${zol_runtime} DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT library)
endif()

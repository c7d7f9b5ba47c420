# What the checks of this folder share; include it.

# run(COMMAND...): must succeed; ${output} is what it printed on both streams.
function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "failed (${result}): ${ARGN}\n${output}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()

# expect_consumer_output(TEXT): what the small separate project prints when its two pixels are right.
function(expect_consumer_output text)
  if(NOT text MATCHES "centre 0x808080, corner 0x0")
    message(FATAL_ERROR "the consumer printed something else:\n${text}")
  endif()
endfunction()

# install_into(PREFIX): the build tree BUILD, anew.
function(install_into prefix)
  file(REMOVE_RECURSE ${prefix})
  run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${prefix})
endfunction()

# consume_through_cmake(FOLDER PACKAGE_DIR [OPTION...]): builds the separate project in FOLDER with the package that lies
# in PACKAGE_DIR.
function(consume_through_cmake folder package_dir)
  run(${CMAKE_COMMAND} -S ${SOURCE}/consumer -B ${folder} -G Ninja -Dzolwebcs_DIR=${package_dir} ${ARGN})
  run(${CMAKE_COMMAND} --build ${folder})
endfunction()

# consume_through_pkgconfig(PROGRAM PC_DIR COMPILER [FLAG...]): builds the separate project with what the pkg-config file
# in PC_DIR says, and nothing else.
function(consume_through_pkgconfig program pc_dir compiler)
  set(ENV{PKG_CONFIG_LIBDIR} ${pc_dir})
  run(pkg-config --cflags --libs zolwebcs)
  separate_arguments(flags UNIX_COMMAND "${output}")
  cmake_path(GET program PARENT_PATH folder)
  file(MAKE_DIRECTORY ${folder})
  run(${compiler} -std=c++17 ${SOURCE}/consumer/main.cpp -o ${program} ${flags} ${ARGN})
endfunction()

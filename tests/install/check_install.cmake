# usage: cmake -DWAY=package|pkgconfig -DBUILD=... -DSOURCE=... -DSCRATCH=... -DCXX=... -P check_install.cmake
function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "failed (${result}): ${ARGN}\n${output}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE ${SCRATCH})
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${SCRATCH}/prefix)

# Nothing of the private folders may be installed.
file(GLOB_RECURSE headers RELATIVE ${SCRATCH}/prefix/include ${SCRATCH}/prefix/include/*.h)
foreach(header IN LISTS headers)
  if(header MATCHES "zolcs/(resample|mapping|drawing)/|imagelock|report\\.h")
    message(FATAL_ERROR "a private header was installed: ${header}")
  endif()
endforeach()

if(WAY STREQUAL "package")
  run(${CMAKE_COMMAND} -S ${SOURCE} -B ${SCRATCH}/build -G Ninja -DCMAKE_PREFIX_PATH=${SCRATCH}/prefix
    -DCMAKE_CXX_COMPILER=${CXX})
  run(${CMAKE_COMMAND} --build ${SCRATCH}/build)
  run(${SCRATCH}/build/consumer)
else()
  file(GLOB_RECURSE pc ${SCRATCH}/prefix/*/zolwebcs.pc)
  cmake_path(GET pc PARENT_PATH pc_dir)
  set(ENV{PKG_CONFIG_PATH} ${pc_dir})
  # The installed prefix is the scratch one, not the one that the file was configured for.
  run(pkg-config --define-variable=prefix=${SCRATCH}/prefix --cflags --libs zolwebcs)
  string(STRIP "${output}" flags)
  separate_arguments(flags UNIX_COMMAND "${flags}")
  cmake_path(GET pc_dir PARENT_PATH lib_dir)
  run(${CXX} -std=c++20 ${SOURCE}/main.cpp -o ${SCRATCH}/consumer ${flags} -Wl,-rpath,${lib_dir}
    -Wl,-rpath-link,${lib_dir})
  run(${SCRATCH}/consumer)
endif()

if(NOT output MATCHES "centre 0x808080, corner 0x0")
  message(FATAL_ERROR "the consumer printed something else:\n${output}")
endif()

# Installs the project into a scratch prefix, moves that elsewhere, and builds and runs a small separate project from it.
# usage: cmake -DWAY=package|pkgconfig -DBUILD=... -DSOURCE=... -DSCRATCH=... -DCXX=... -P check_install.cmake
include(${CMAKE_CURRENT_LIST_DIR}/common.cmake)
file(REMOVE_RECURSE ${SCRATCH})
install_into(${SCRATCH}/first)
file(RENAME ${SCRATCH}/first ${SCRATCH}/prefix)

# Nothing of the private folders may be installed.
file(GLOB_RECURSE headers RELATIVE ${SCRATCH}/prefix/include ${SCRATCH}/prefix/include/*.h)
foreach(header IN LISTS headers)
  if(header MATCHES "zolcs/(resample|mapping|drawing)/|imagelock|report\\.h")
    message(FATAL_ERROR "a private header was installed: ${header}")
  endif()
endforeach()

file(GLOB_RECURSE pc ${SCRATCH}/prefix/*/zolwebcs.pc)
cmake_path(GET pc PARENT_PATH pc_dir)
cmake_path(GET pc_dir PARENT_PATH lib_dir)
if(WAY STREQUAL "package")
  consume_through_cmake(${SCRATCH}/build ${lib_dir}/cmake/zolwebcs -DCMAKE_CXX_COMPILER=${CXX})
  run(${SCRATCH}/build/consumer)
else()
  consume_through_pkgconfig(${SCRATCH}/build/consumer ${pc_dir} ${CXX} -Wl,-rpath,${lib_dir})
  run(${SCRATCH}/build/consumer)
endif()
expect_consumer_output("${output}")

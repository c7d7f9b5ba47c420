# Every installed header compiles alone as C++17, without a warning.
# usage: cmake -DBUILD=... -DSCRATCH=... -DCXX=... -P check_headers.cmake
include(${CMAKE_CURRENT_LIST_DIR}/common.cmake)
install_into(${SCRATCH}/prefix)
set(root ${SCRATCH}/prefix/include/zolwebcs)
file(GLOB_RECURSE headers RELATIVE ${root} ${root}/*.h)
list(LENGTH headers count)
if(count LESS 30)
  message(FATAL_ERROR "only ${count} headers were installed")
endif()
foreach(header IN LISTS headers)
  # Not as a system folder, whose warnings would be kept back.
  file(WRITE ${SCRATCH}/alone.cpp "#include \"${header}\"\n#include \"${header}\"\n")
  run(${CXX} -std=c++17 -pedantic -Wall -Wextra -Wconversion -Wsign-conversion -Werror -fsyntax-only -I${root}
    ${SCRATCH}/alone.cpp)
endforeach()
message(STATUS "${count} headers")

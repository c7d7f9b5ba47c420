# The CMake package takes requests by the same rule as the library's name: what a program was built with runs on exactly
# with what the package would accept.
# usage: cmake -DBUILD=... -DSCRATCH=... -DVERSION=0.2.0 -DCXX=... -P check_versions.cmake
include(${CMAKE_CURRENT_LIST_DIR}/common.cmake)
install_into(${SCRATCH}/prefix)
file(WRITE ${SCRATCH}/ask/CMakeLists.txt [[
cmake_minimum_required(VERSION 3.25)
project(ask LANGUAGES CXX)
find_package(zolwebcs ${WANTED} QUIET)
file(WRITE "${CMAKE_BINARY_DIR}/answer" "${zolwebcs_FOUND}")
]])
string(REGEX MATCH "^([0-9]+)\\.([0-9]+)\\.([0-9]+)$" version "${VERSION}")
set(major ${CMAKE_MATCH_1})
set(minor ${CMAKE_MATCH_2})
math(EXPR before "${minor} - 1")
math(EXPR behind "${minor} + 1")
foreach(request IN ITEMS "${VERSION} 1" "${major}.${minor} 1" "${major}.${minor}.99 0" "${major}.${before} 0"
    "${major}.${behind} 0" "1.0 0")
  separate_arguments(pair UNIX_COMMAND "${request}")
  list(GET pair 0 wanted)
  list(GET pair 1 expected)
  run(${CMAKE_COMMAND} -S ${SCRATCH}/ask -B ${SCRATCH}/asked -DWANTED=${wanted} -DCMAKE_PREFIX_PATH=${SCRATCH}/prefix
    -DCMAKE_CXX_COMPILER=${CXX})
  file(READ ${SCRATCH}/asked/answer answer)
  if(NOT answer STREQUAL expected)
    message(FATAL_ERROR "a request for ${wanted} of ${VERSION} was answered with ${answer}, not ${expected}")
  endif()
endforeach()

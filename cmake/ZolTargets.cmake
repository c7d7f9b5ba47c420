# Settings that every target of the project shares, and the functions that make targets with them.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME dev)
# Programs find the libraries beside their own folder, in the build tree as where they are installed: both have the same
# folders. So no path of the build machine gets into a file, nor do the empty entries (the current folder!) with which
# CMake makes room for a change of the path.
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
  set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/lib")
  set(CMAKE_INSTALL_RPATH "${CMAKE_INSTALL_LIBDIR}")
else()
  set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/${CMAKE_INSTALL_LIBDIR}")
  file(RELATIVE_PATH CMAKE_INSTALL_RPATH "/${CMAKE_INSTALL_BINDIR}" "/${CMAKE_INSTALL_LIBDIR}")
  string(PREPEND CMAKE_INSTALL_RPATH "$ORIGIN/")
  if(NOT DEFINED CMAKE_BUILD_WITH_INSTALL_RPATH)
    set(CMAKE_BUILD_WITH_INSTALL_RPATH ON)
  endif()
endif()

# Programs run on with every version that shares this number, in the file's name and in the rule of the CMake package.
# Below 1.0 a new minor version may change the interface.
if(PROJECT_VERSION_MAJOR EQUAL 0)
  set(ZOL_ABI_VERSION 0.${PROJECT_VERSION_MINOR})
  set(ZOL_ABI_COMPATIBILITY SameMinorVersion)
else()
  set(ZOL_ABI_VERSION ${PROJECT_VERSION_MAJOR})
  set(ZOL_ABI_COMPATIBILITY SameMajorVersion)
endif()

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "" FORCE)
endif()

# A compiler cache where there is one; it must not tell checkouts in different folders apart.
find_program(ZOL_CCACHE ccache)
if(ZOL_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env CCACHE_BASEDIR=${PROJECT_SOURCE_DIR} CCACHE_NOHASHDIR=1
    CCACHE_SLOPPINESS=pch_defines,time_macros ${ZOL_CCACHE})
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    add_compile_options(-fpch-preprocess)
  endif()
endif()

# Flags of our own code. Contraction is off everywhere: a fused multiply-add rounds once where two operations round
# twice, and the same picture must come out of every build.
add_library(zol_build_flags INTERFACE)
if(MSVC)
  target_compile_options(zol_build_flags INTERFACE /W4 $<$<BOOL:${ZOLWEBCS_WERROR}>:/WX> /fp:precise /utf-8)
else()
  target_compile_options(zol_build_flags INTERFACE
    -Wall -Wextra -Wconversion -Wsign-conversion $<$<CXX_COMPILER_ID:GNU>:-Wshadow=local> -Wnon-virtual-dtor -Wold-style-cast -Wvla
    $<$<BOOL:${ZOLWEBCS_WERROR}>:-Werror> -ffp-contract=off -fno-fast-math)
  # 32-bit x86 computes in 80-bit registers unless it is told not to. Its 64-bit sister and other processors do not.
  if(CMAKE_SIZEOF_VOID_P EQUAL 4 AND CMAKE_SYSTEM_PROCESSOR MATCHES "86|AMD64|amd64")
    target_compile_options(zol_build_flags INTERFACE -msse2 -mfpmath=sse)
  endif()
endif()
if(WIN32)
  target_compile_definitions(zol_build_flags INTERFACE UNICODE _UNICODE _WIN32_WINNT=0x0601)
endif()
if(ZOLWEBCS_SANITIZE)
  target_compile_options(zol_build_flags INTERFACE -fsanitize=${ZOLWEBCS_SANITIZE} -fno-omit-frame-pointer)
  target_link_options(zol_build_flags INTERFACE -fsanitize=${ZOLWEBCS_SANITIZE})
  if(ZOLWEBCS_SANITIZE MATCHES "undefined")
    target_compile_options(zol_build_flags INTERFACE -fno-sanitize-recover=undefined)
  endif()
endif()
if(ZOLWEBCS_FUZZ)
  # The fuzzer finds its way by the branches that an input takes in all of our code.
  target_compile_options(zol_build_flags INTERFACE -fsanitize=fuzzer-no-link)
endif()

# What ships is hardened against files that were made to break it: guarded stack frames, checked copies, and tables of
# addresses that are read-only once the program runs. Fortified functions need an optimiser; sanitizers see more than both.
add_library(zol_hardening INTERFACE)
if(UNIX AND NOT ZOLWEBCS_SANITIZE AND NOT ZOLWEBCS_FUZZ)
  include(CheckPIESupported)
  check_pie_supported()
  set(release_only $<CONFIG:Release,RelWithDebInfo,MinSizeRel>)
  target_compile_options(zol_hardening INTERFACE $<${release_only}:-fstack-protector-strong>)
  # A builder who chooses a level of his own keeps it.
  if(NOT CMAKE_CXX_FLAGS MATCHES "_FORTIFY_SOURCE")
    target_compile_options(zol_hardening INTERFACE $<${release_only}:-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2>)
  endif()
  target_link_options(zol_hardening INTERFACE $<${release_only}:LINKER:-z,relro,-z,now>)
endif()

# zol_library(NAME SOURCES ... [HEADERS ...] [PUBLIC libs] [PRIVATE libs] [HIGHWAY]): one shared library of source/.
# Defines <NAME>_BUILDING in upper case while it is compiled; HEADERS are installed below include/zolwebcs/. Its objects
# are also there as the static library <NAME>_internal: for tests of what the shared library does not export.
function(zol_library name)
  cmake_parse_arguments(ARG "HIGHWAY" "" "SOURCES;HEADERS;PUBLIC;PRIVATE" ${ARGN})
  string(TOUPPER ${name} upper)
  add_library(${name}_objects OBJECT ${ARG_SOURCES} ${ARG_HEADERS})
  target_compile_definitions(${name}_objects PRIVATE ${upper}_BUILDING)
  add_library(${name} SHARED $<TARGET_OBJECTS:${name}_objects>)
  add_library(zolwebcs::${name} ALIAS ${name})
  add_library(${name}_internal STATIC EXCLUDE_FROM_ALL $<TARGET_OBJECTS:${name}_objects>)
  target_compile_definitions(${name}_internal INTERFACE ${upper}_STATIC)
  if(ARG_HIGHWAY)
    zol_use_highway(${name}_objects)
    zol_use_highway(${name}_internal)
    zol_use_highway(${name})
  endif()
  foreach(target IN ITEMS ${name}_objects ${name} ${name}_internal)
    # What hosts include is C++17; the sources themselves are C++20.
    target_compile_features(${target} PUBLIC cxx_std_17)
    target_include_directories(${target} PUBLIC
      $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/source>
      $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/zolwebcs>)
    target_link_libraries(${target} PUBLIC ${ARG_PUBLIC} PRIVATE ${ARG_PRIVATE} $<BUILD_INTERFACE:zol_build_flags>
      $<BUILD_INTERFACE:zol_hardening>)
  endforeach()
  set_target_properties(${name} PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${ZOL_ABI_VERSION}
    INSTALL_RPATH "$ORIGIN" LINKER_LANGUAGE CXX)
  set_target_properties(${name}_internal PROPERTIES LINKER_LANGUAGE CXX)
  if(WIN32)
    set_target_properties(${name} PROPERTIES PREFIX "")
  elseif(NOT ZOLWEBCS_SANITIZE)
    target_link_options(${name} PRIVATE LINKER:--no-undefined)
  endif()
  install(TARGETS ${name} EXPORT zolwebcsTargets
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT library
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library NAMELINK_COMPONENT dev
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT dev)
  foreach(header IN LISTS ARG_HEADERS)
    file(RELATIVE_PATH relative "${PROJECT_SOURCE_DIR}/source" "${CMAKE_CURRENT_SOURCE_DIR}/${header}")
    cmake_path(GET relative PARENT_PATH folder)
    install(FILES ${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/zolwebcs/${folder})
  endforeach()
endfunction()

# Vector code with run-time dispatch. The cross compilers have no Highway (and misalign wide vectors on the stack): there
# the portable loops give the same bits.
function(zol_use_highway name)
  if(NOT CMAKE_CROSSCOMPILING)
    find_package(hwy REQUIRED)
    target_link_libraries(${name} PRIVATE $<BUILD_INTERFACE:hwy::hwy>)
    target_compile_definitions(${name} PRIVATE ZOL_USE_HIGHWAY=1)
  endif()
endfunction()

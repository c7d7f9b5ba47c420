# Boost's headers as the target zol_boost. The cross compilers must not see the rest of the build machine's
# include folder, so they get a folder that holds one link to the boost/ headers and nothing else.
add_library(zol_boost INTERFACE)
if(CMAKE_CROSSCOMPILING)
  find_path(ZOL_BOOST_ROOT boost/version.hpp PATHS /usr/include NO_CMAKE_FIND_ROOT_PATH REQUIRED)
  file(MAKE_DIRECTORY "${CMAKE_BINARY_DIR}/boost-headers")
  file(CREATE_LINK "${ZOL_BOOST_ROOT}/boost" "${CMAKE_BINARY_DIR}/boost-headers/boost" SYMBOLIC)
  target_include_directories(zol_boost SYSTEM INTERFACE "${CMAKE_BINARY_DIR}/boost-headers")
else()
  find_package(Boost 1.74 REQUIRED GLOBAL)
  target_link_libraries(zol_boost INTERFACE Boost::headers)
endif()

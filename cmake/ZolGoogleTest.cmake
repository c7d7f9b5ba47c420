# GTest::gtest_main for cross builds, from the sources that Debian's googletest package installs.
find_path(ZOL_GOOGLETEST src/gtest-all.cc PATHS /usr/src/googletest/googletest NO_CMAKE_FIND_ROOT_PATH REQUIRED)
add_library(zol_googletest STATIC "${ZOL_GOOGLETEST}/src/gtest-all.cc" "${ZOL_GOOGLETEST}/src/gtest_main.cc")
target_include_directories(zol_googletest SYSTEM PUBLIC "${ZOL_GOOGLETEST}/include")
target_include_directories(zol_googletest PRIVATE "${ZOL_GOOGLETEST}")
add_library(GTest::gtest_main ALIAS zol_googletest)

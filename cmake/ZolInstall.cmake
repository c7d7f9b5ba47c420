# The installed package: find_package(zolwebcs) with the target zolwebcs::zolwebcs, and a pkg-config file.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/zolwebcs)
install(EXPORT zolwebcsTargets NAMESPACE zolwebcs:: DESTINATION ${package_dir})
configure_package_config_file(cmake/zolwebcsConfig.cmake.in ${PROJECT_BINARY_DIR}/zolwebcsConfig.cmake
  INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/zolwebcsConfigVersion.cmake
  COMPATIBILITY ${ZOL_ABI_COMPATIBILITY})
install(FILES ${PROJECT_BINARY_DIR}/zolwebcsConfig.cmake ${PROJECT_BINARY_DIR}/zolwebcsConfigVersion.cmake
  DESTINATION ${package_dir})

# The file says where it lies itself: what is installed may be moved, or unpacked under another folder, as a whole.
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
  set(ZOL_PC_PREFIX "${CMAKE_INSTALL_PREFIX}")
else()
  file(RELATIVE_PATH up "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
  string(REGEX REPLACE "/$" "" up "${up}")
  set(ZOL_PC_PREFIX "\${pcfiledir}/${up}")
endif()
foreach(folder IN ITEMS LIBDIR INCLUDEDIR)
  cmake_path(APPEND ZOL_PC_${folder} "\${prefix}" "${CMAKE_INSTALL_${folder}}")
endforeach()
set(ZOL_PC_LIBS "-lzolwebcs -lzolmemmap -lzollog")
if(WIN32)
  string(APPEND ZOL_PC_LIBS " -lgdi32 -luser32")
else()
  string(APPEND ZOL_PC_LIBS " -lzolgdi")
endif()
configure_file(cmake/zolwebcs.pc.in ${PROJECT_BINARY_DIR}/zolwebcs.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/zolwebcs.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
install(FILES LICENSE README.md DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT library)

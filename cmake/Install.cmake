# Headers, the two libraries, the data files, a CMake package and a pkg-config file.
include(CMakePackageConfigHelpers)

install(DIRECTORY include/halvorine DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(TARGETS dicomdir halvocom
  EXPORT halvorineTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES ${HALVORINE_DATA_FILES} DESTINATION ${CMAKE_INSTALL_DATADIR}/halvorine)

set(HALVORINE_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/halvorine)
install(EXPORT halvorineTargets NAMESPACE halvorine:: DESTINATION ${HALVORINE_CMAKE_DIR})
configure_package_config_file(cmake/halvorineConfig.cmake.in
  ${PROJECT_BINARY_DIR}/halvorineConfig.cmake
  INSTALL_DESTINATION ${HALVORINE_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/halvorineConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/halvorineConfig.cmake
  ${PROJECT_BINARY_DIR}/halvorineConfigVersion.cmake
  DESTINATION ${HALVORINE_CMAKE_DIR})

# The pkg-config file finds the prefix from its own folder, so that an install with --prefix
# elsewhere than the configured prefix still gives the right paths.
file(RELATIVE_PATH HALVORINE_PC_TO_PREFIX /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
string(REGEX REPLACE "/$" "" HALVORINE_PC_TO_PREFIX ${HALVORINE_PC_TO_PREFIX})
configure_file(cmake/halvorine.pc.in ${PROJECT_BINARY_DIR}/halvorine.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/halvorine.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

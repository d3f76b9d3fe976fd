include(CMakePackageConfigHelpers)

set(CORVANE_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/corvane)

install(TARGETS corvane EXPORT corvaneTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
  FILE_SET generated_headers DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

install(EXPORT corvaneTargets
  NAMESPACE corvane::
  DESTINATION ${CORVANE_CMAKE_DIR})

configure_package_config_file(cmake/corvaneConfig.cmake.in
  ${PROJECT_BINARY_DIR}/corvaneConfig.cmake
  INSTALL_DESTINATION ${CORVANE_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/corvaneConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)

install(FILES
  ${PROJECT_BINARY_DIR}/corvaneConfig.cmake
  ${PROJECT_BINARY_DIR}/corvaneConfigVersion.cmake
  DESTINATION ${CORVANE_CMAKE_DIR})

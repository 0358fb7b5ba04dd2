include(CMakePackageConfigHelpers)

set(ORVO_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/orvo)

install(TARGETS orvo EXPORT orvoTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/orvo/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/orvo
  FILES_MATCHING PATTERN "*.h" PATTERN "src" EXCLUDE)
install(EXPORT orvoTargets NAMESPACE orvo:: DESTINATION ${ORVO_CMAKE_DIR})

set(ORVO_INSTALL_MOTIONS ${CMAKE_INSTALL_DATADIR}/orvo/motions)
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/orvoConfig.cmake.in
  ${PROJECT_BINARY_DIR}/orvoConfig.cmake INSTALL_DESTINATION ${ORVO_CMAKE_DIR}
  PATH_VARS ORVO_INSTALL_MOTIONS)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/orvoConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/orvoConfig.cmake
  ${PROJECT_BINARY_DIR}/orvoConfigVersion.cmake
  ${PROJECT_SOURCE_DIR}/cmake/OrvoPlugin.cmake
  DESTINATION ${ORVO_CMAKE_DIR})

# Relative to the .pc file, so that the package works wherever it is unpacked.
file(RELATIVE_PATH ORVO_PC_PREFIX /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(${PROJECT_SOURCE_DIR}/cmake/orvo.pc.in ${PROJECT_BINARY_DIR}/orvo.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/orvo.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# Keyframe motions every team can play (ready stance, wave, head scan).
# Consumers find them through ORVO_MOTIONS_DIR, set by find_package(orvo) and,
# in this tree, to the sources.
install(DIRECTORY ${PROJECT_SOURCE_DIR}/motions/ DESTINATION ${ORVO_INSTALL_MOTIONS}
  FILES_MATCHING PATTERN "*.motion")
set(ORVO_MOTIONS_DIR ${PROJECT_SOURCE_DIR}/motions)

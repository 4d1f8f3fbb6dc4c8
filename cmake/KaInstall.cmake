# What `cmake --install` adds to the targets: the CMake package and the pkg-config file. The version comes from project().

include(CMakePackageConfigHelpers)

set(config_at ${CMAKE_INSTALL_LIBDIR}/cmake/kaAnimation)
set(config_in ${CMAKE_BINARY_DIR}/cmake)

configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/kaAnimationConfig.cmake.in ${config_in}/kaAnimationConfig.cmake
  INSTALL_DESTINATION ${config_at}
  NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${config_in}/kaAnimationConfigVersion.cmake COMPATIBILITY SameMajorVersion)

install(FILES ${config_in}/kaAnimationConfig.cmake ${config_in}/kaAnimationConfigVersion.cmake
  DESTINATION ${config_at} COMPONENT development)
install(EXPORT kaAnimation NAMESPACE ka:: FILE kaAnimationTargets.cmake
  DESTINATION ${config_at} COMPONENT development)

# The pkg-config file finds its prefix from where it lies, so that an installed tree can be moved.
cmake_path(RELATIVE_PATH CMAKE_INSTALL_FULL_LIBDIR BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX} OUTPUT_VARIABLE KA_PC_LIBDIR)
cmake_path(RELATIVE_PATH CMAKE_INSTALL_FULL_INCLUDEDIR BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX}
  OUTPUT_VARIABLE KA_PC_INCLUDEDIR)
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig
  OUTPUT_VARIABLE KA_PC_UP)
configure_file(${CMAKE_CURRENT_LIST_DIR}/kaAnimation.pc.in ${config_in}/kaAnimation.pc @ONLY)
install(FILES ${config_in}/kaAnimation.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

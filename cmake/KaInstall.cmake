# What `cmake --install` adds to the targets: the CMake packages and the pkg-config files. The version comes from project().

include(CMakePackageConfigHelpers)

# The pkg-config files find their prefix from where they lie, so that an installed tree can be moved.
cmake_path(RELATIVE_PATH CMAKE_INSTALL_FULL_LIBDIR BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX} OUTPUT_VARIABLE KA_PC_LIBDIR)
cmake_path(RELATIVE_PATH CMAKE_INSTALL_FULL_INCLUDEDIR BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX}
  OUTPUT_VARIABLE KA_PC_INCLUDEDIR)
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig
  OUTPUT_VARIABLE KA_PC_UP)

function(ka_install_package name)
  set(config_at ${CMAKE_INSTALL_LIBDIR}/cmake/${name})
  set(config_in ${CMAKE_BINARY_DIR}/cmake)
  configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/${name}Config.cmake.in ${config_in}/${name}Config.cmake
    INSTALL_DESTINATION ${config_at}
    NO_SET_AND_CHECK_MACRO)
  write_basic_package_version_file(${config_in}/${name}ConfigVersion.cmake COMPATIBILITY SameMajorVersion)
  install(FILES ${config_in}/${name}Config.cmake ${config_in}/${name}ConfigVersion.cmake
    DESTINATION ${config_at} COMPONENT development)
  install(EXPORT ${name} NAMESPACE ka:: FILE ${name}Targets.cmake
    DESTINATION ${config_at} COMPONENT development)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/${name}.pc.in ${config_in}/${name}.pc @ONLY)
  install(FILES ${config_in}/${name}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
endfunction()

ka_install_package(kaAnimation)
if(TARGET ka::Motion)
  ka_install_package(kaMotion)
endif()

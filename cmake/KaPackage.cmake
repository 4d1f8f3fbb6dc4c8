# Debian packages of the installed components: the libraries, what it takes to build against them, and the tools.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME kaanimation)
set(CPACK_PACKAGE_VENDOR "kaAnimation developers")
set(CPACK_PACKAGE_CONTACT "kaAnimation developers <developers@kaanimation.invalid>")
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_COMPONENTS_ALL library development tools)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_STRIP_FILES ON)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY =)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME libkaanimation${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libkaanimation-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libboost1.81-dev, qtbase5-dev (>= 5.15)")
set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME ka-anim)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_TOOLS_PACKAGE_RECOMMENDS "assimp-testmodels, fonts-dejavu-core")

include(CPack)
cpack_add_component(library DESCRIPTION "Keyframe animation for interactive 3D scenes: libraries")
cpack_add_component(development DEPENDS library
  DESCRIPTION "Keyframe animation for interactive 3D scenes: headers and build files")
cpack_add_component(tools DEPENDS library
  DESCRIPTION "Keyframe animation for interactive 3D scenes: the ka-anim tool")

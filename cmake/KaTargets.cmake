# One helper per kind of target, so that every target has the same language level, warnings and checks.

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release)
endif()

option(KA_SANITIZE "Address and undefined-behaviour sanitizers, float casts included (clang)" OFF)
option(KA_COVERAGE "Line and branch coverage (g++)" OFF)

find_program(KA_CCACHE ccache)
if(KA_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${KA_CCACHE})
endif()

# Warnings and checks of every target of the project.
function(ka_target_defaults target)
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Wshadow -Wcast-align -Woverloaded-virtual -Wold-style-cast
    -Wformat=2 -Werror)
  # No contraction of a*b+c: a sample must be the same float whatever the compiler finds to fuse.
  target_compile_options(${target} PRIVATE -ffp-contract=off)
  if(KA_SANITIZE)
    target_compile_options(${target} PRIVATE
      -fsanitize=address,undefined,float-cast-overflow -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(${target} PUBLIC -fsanitize=address,undefined,float-cast-overflow)
  endif()
  if(KA_COVERAGE)
    target_compile_options(${target} PRIVATE --coverage -fprofile-update=atomic)
    target_link_options(${target} PUBLIC --coverage)
  endif()
endfunction()

# ka_add_library(<target> EXPORT <name> SOURCES ...): a shared library libka<Name>.so, alias ka::<name>.
function(ka_add_library target)
  cmake_parse_arguments(arg "" "EXPORT" "SOURCES" ${ARGN})
  add_library(${target} SHARED ${arg_SOURCES})
  add_library(ka::${arg_EXPORT} ALIAS ${target})
  ka_target_defaults(${target})
  set_target_properties(${target} PROPERTIES
    EXPORT_NAME ${arg_EXPORT}
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR})
endfunction()

# ka_add_program(<target> SOURCES ... LIBRARIES ...)
function(ka_add_program target)
  cmake_parse_arguments(arg "" "" "SOURCES;LIBRARIES" ${ARGN})
  add_executable(${target} ${arg_SOURCES})
  target_link_libraries(${target} PRIVATE ${arg_LIBRARIES})
  ka_target_defaults(${target})
endfunction()

# ka_add_test(<target> SOURCES ... LIBRARIES ...): a GoogleTest program, run by ctest as one test.
function(ka_add_test target)
  cmake_parse_arguments(arg "" "" "SOURCES;LIBRARIES" ${ARGN})
  ka_add_program(${target} SOURCES ${arg_SOURCES} LIBRARIES ${arg_LIBRARIES} GTest::gtest GTest::gmock GTest::gtest_main)
  add_test(NAME ${target} COMMAND ${target})
endfunction()

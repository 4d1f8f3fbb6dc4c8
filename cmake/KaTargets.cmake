# One helper per kind of target, so that every target has the same language level, warnings and checks.

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON) # the same program whatever folder it is built in
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release)
endif()

option(KA_SANITIZE "Address and undefined-behaviour sanitizers, float casts included (clang)" OFF)
option(KA_RELOCATABLE "Installed programs and libraries find each other wherever the prefix is moved" ON)
option(KA_FUZZ "Build the fuzzers and let the libraries guide them (clang)" OFF)
option(KA_WARNINGS_ARE_ERRORS "Warnings end the build; off where compilers that nobody has tried may come" ON)
option(KA_COVERAGE "Line and branch coverage (g++)" OFF)

find_program(KA_CCACHE ccache)
if(KA_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  # What precompiled headers need of the cache, here so that it holds for every way to start a build.
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros ${KA_CCACHE})
endif()

# Warnings and checks of every target of the project.
function(ka_target_defaults target)
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Wshadow -Wcast-align -Woverloaded-virtual -Wold-style-cast
    -Wformat=2 $<$<BOOL:${KA_WARNINGS_ARE_ERRORS}>:-Werror>)
  # No contraction of a*b+c: a sample must be the same float whatever the compiler finds to fuse.
  target_compile_options(${target} PRIVATE -ffp-contract=off)
  if(KA_SANITIZE)
    target_compile_definitions(${target} PRIVATE KA_WATCHED_MEMORY)
    target_compile_options(${target} PRIVATE
      -fsanitize=address,undefined,float-cast-overflow -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(${target} PUBLIC -fsanitize=address,undefined,float-cast-overflow)
  endif()
  if(KA_FUZZ)
    target_compile_options(${target} PRIVATE -fsanitize=fuzzer-no-link)
  endif()
  if(KA_COVERAGE)
    target_compile_options(${target} PRIVATE --coverage -fprofile-update=atomic)
    target_link_options(${target} PUBLIC --coverage)
  endif()
endfunction()

# ka_add_library(<target> EXPORT <name> [PACKAGE <name>] SYMBOLS <prefix>... SOURCES ... HEADERS ... [HEADER_BASE <folder>])
#   a shared library lib<target>.so, alias ka::<name>, of the CMake package named, else kaAnimation. HEADERS are those that hosts include: found, and installed, by
#   their path below HEADER_BASE, which is the current folder unless given. What is marked for export and whose name
#   begins with a prefix, which is part of a mangled name, is exported.
function(ka_add_library target)
  cmake_parse_arguments(arg "" "EXPORT;HEADER_BASE;PACKAGE" "SYMBOLS;SOURCES;HEADERS" ${ARGN})
  if(NOT arg_PACKAGE)
    set(arg_PACKAGE kaAnimation)
  endif()
  set(headers_at ${CMAKE_INSTALL_INCLUDEDIR}/${arg_PACKAGE})
  add_library(${target} SHARED ${arg_SOURCES})
  add_library(ka::${arg_EXPORT} ALIAS ${target})
  ka_target_defaults(${target})
  target_compile_features(${target} PUBLIC cxx_std_17)
  target_sources(${target} PUBLIC
    FILE_SET HEADERS BASE_DIRS ${CMAKE_CURRENT_SOURCE_DIR}/${arg_HEADER_BASE} FILES ${arg_HEADERS})
  set(node KA_${PROJECT_VERSION_MAJOR}.0)
  set(patterns "")
  foreach(name IN LISTS arg_SYMBOLS)
    foreach(kind _Z _ZN _ZNK _ZZ _ZZN _ZZNK _ZGVZN _ZGVZNK _ZGVN _ZTI _ZTIN _ZTS _ZTSN _ZTV _ZTVN _ZTT _ZTTN _ZThn?_N
                 _ZThn??_N _ZTv0_n??_N)
      string(APPEND patterns "    ${kind}${name}*;\n")
    endforeach()
  endforeach()
  configure_file(${PROJECT_SOURCE_DIR}/cmake/symbols.map.in ${CMAKE_CURRENT_BINARY_DIR}/${target}.map @ONLY)
  target_link_options(${target} PRIVATE -Wl,--version-script=${CMAKE_CURRENT_BINARY_DIR}/${target}.map)
  set_target_properties(${target} PROPERTIES
    LINK_DEPENDS ${CMAKE_CURRENT_BINARY_DIR}/${target}.map
    EXPORT_NAME ${arg_EXPORT}
    INSTALL_RPATH "$<$<BOOL:${KA_RELOCATABLE}>:$ORIGIN>"
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR})
  install(TARGETS ${target} EXPORT ${arg_PACKAGE}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library NAMELINK_COMPONENT development
    FILE_SET HEADERS DESTINATION ${headers_at} COMPONENT development
    INCLUDES DESTINATION ${headers_at})
endfunction()

# ka_add_program(<target> [INSTALL] SOURCES ... LIBRARIES ...)
function(ka_add_program target)
  cmake_parse_arguments(arg "INSTALL" "" "SOURCES;LIBRARIES" ${ARGN})
  add_executable(${target} ${arg_SOURCES})
  target_link_libraries(${target} PRIVATE ${arg_LIBRARIES})
  ka_target_defaults(${target})
  if(arg_INSTALL)
    cmake_path(RELATIVE_PATH CMAKE_INSTALL_FULL_LIBDIR BASE_DIRECTORY ${CMAKE_INSTALL_FULL_BINDIR} OUTPUT_VARIABLE libraries)
    set_target_properties(${target} PROPERTIES INSTALL_RPATH "$<$<BOOL:${KA_RELOCATABLE}>:$ORIGIN/${libraries}>")
    install(TARGETS ${target} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
  endif()
endfunction()

# ka_add_test(<target> [OPTIMIZED] [FIRST] SOURCES ... LIBRARIES ...): a GoogleTest program, run by ctest as one test.
#   Program and test are called after the folder: Tests/Core gives ka-test-core. FIRST is for those that take longest:
#   started first they end with the others.
function(ka_add_test target)
  cmake_parse_arguments(arg "OPTIMIZED;FIRST" "" "SOURCES;LIBRARIES" ${ARGN})
  cmake_path(GET CMAKE_CURRENT_SOURCE_DIR FILENAME area)
  string(TOLOWER ka-test-${area} name)
  ka_add_program(${target} SOURCES ${arg_SOURCES} LIBRARIES ${arg_LIBRARIES} ka_test_main)
  set_target_properties(${target} PROPERTIES OUTPUT_NAME ${name})
  # What is tested is optimised; a test itself runs once and would spend most of a build in the optimiser, and most of
  # the rest reading the test framework again for each file.
  if(NOT arg_OPTIMIZED)
    target_compile_options(${target} PRIVATE -O0)
  endif()
  # A test watches memory as well, since inlined code of the libraries runs in it; the costlier checks stay with these.
  if(KA_SANITIZE)
    target_compile_options(${target} PRIVATE -fno-sanitize=undefined,float-cast-overflow)
  endif()
  if(KA_FUZZ)
    target_compile_options(${target} PRIVATE -fno-sanitize=fuzzer-no-link)
  endif()
  if("ka_test_support" IN_LIST arg_LIBRARIES) # then nearly every file sees the whole module
    set(headers <gmock/gmock.h> <gtest/gtest.h> <kaAnimationController.h> <kaAnimationManager.h>)
  else()
    set(headers <gmock/gmock.h> <gtest/gtest.h>)
  endif()
  # Compiled once, by the first program that needs these headers with these options; it has no definitions of its own.
  target_compile_options(${target} PRIVATE -fPIC) # as Qt has it for those that use Qt
  string(MAKE_C_IDENTIFIER "ka_${headers}_${arg_OPTIMIZED}" kind)
  get_property(first GLOBAL PROPERTY ${kind})
  if(first)
    target_precompile_headers(${target} REUSE_FROM ${first})
  else()
    target_precompile_headers(${target} PRIVATE ${headers})
    set_property(GLOBAL PROPERTY ${kind} ${target})
  endif()
  add_test(NAME ${name} COMMAND ${target})
  if(KA_SANITIZE) # programs that a test starts say nothing of what was passed over
    set_tests_properties(${name} PROPERTIES
      ENVIRONMENT "LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/Tests/leaks.supp:print_suppressions=0")
  endif()
  if(arg_FIRST)
    set_tests_properties(${name} PROPERTIES COST 1000)
  endif()
endfunction()

# Compile options shared by everything that is ours. A product of two numbers must come out the
# same on every machine, so the compiler may not fuse it with a following sum.
add_library(qv_options INTERFACE)
target_include_directories(qv_options INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_options(
  qv_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wold-style-cast
                       -Wconversion -Wno-sign-conversion -ffp-contract=off)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # GCC 12 sees overlapping copies in its own std::string (GCC bug 105651).
  target_compile_options(qv_options INTERFACE -Wno-restrict)
endif()
if(QV3_WARNINGS_AS_ERRORS)
  target_compile_options(qv_options INTERFACE -Werror)
endif()
if(QV3_SANITIZE)
  target_compile_options(qv_options INTERFACE -fsanitize=address,undefined
                                              -fno-omit-frame-pointer)
  target_link_options(qv_options INTERFACE -fsanitize=address,undefined)
endif()

# qv_precompile(TARGET KIND LINKS... HEADERS...): reading the toolkit's and GoogleTest's headers is
# most of what a whole build costs. They are compiled once for all targets of a kind; every file
# still includes what it uses.
function(qv_precompile name kind)
  cmake_parse_arguments(ARG "" "" "LINKS;HEADERS;OPTIONS" ${ARGN})
  if(NOT QV3_PRECOMPILE)
    return()
  endif()
  set(owner precompiled_${kind})
  if(NOT TARGET ${owner})
    file(TOUCH ${CMAKE_BINARY_DIR}/${owner}.cpp)
    add_library(${owner} OBJECT ${CMAKE_BINARY_DIR}/${owner}.cpp)
    target_link_libraries(${owner} PRIVATE qv_options ${ARG_LINKS})
    target_compile_options(${owner} PRIVATE ${ARG_OPTIONS})
    target_precompile_headers(${owner} PRIVATE ${ARG_HEADERS})
  endif()
  target_precompile_headers(${name} REUSE_FROM ${owner})
endfunction()

# qv_library(NAME SOURCES... LINKS ...): one static library a folder. LINKS is what this folder's
# headers may include; the link graph is the architecture.
function(qv_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_link_libraries(${name} PUBLIC qv_options ${ARG_LINKS})
  if("Qt6::Widgets" IN_LIST ARG_LINKS)
    qv_precompile(
      ${name} toolkit
      LINKS Qt6::Widgets
      HEADERS <QtWidgets/QtWidgets> <functional> <memory> <string> <vector>)
  endif()
endfunction()

# qv_test(NAME SOURCES... LINKS ...): a GoogleTest program whose tests ctest lists one by one.
# WINDOW gives the tests a toolkit on the offscreen platform. ALONE ones run with no other test
# beside them: real sound and real meters do not wait for a busy machine.
function(qv_test name)
  cmake_parse_arguments(ARG "WINDOW;ALONE" "" "SOURCES;LINKS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE qv_options ${ARG_LINKS} GTest::gmock)
  # Optimizing the expectations would take longer than all the rest of the build. With the
  # toolkit or without, all fit the same precompiled headers.
  set(test_options -O0 -fPIC)
  target_compile_options(${name} PRIVATE ${test_options})
  set(environment "QV3_TEST_DATA=${PROJECT_SOURCE_DIR}/tests/data")
  if(ARG_WINDOW)
    qv_precompile(
      ${name} window_tests
      LINKS GTest::gmock Qt6::Widgets
      HEADERS <gmock/gmock.h> <QtWidgets/QtWidgets>
      OPTIONS ${test_options})
    target_link_libraries(${name} PRIVATE Qt6::Widgets Qt6::Test)
    list(APPEND environment "QT_QPA_PLATFORM=offscreen")
  else()
    qv_precompile(${name} tests LINKS GTest::gmock HEADERS <gmock/gmock.h> OPTIONS ${test_options})
    target_link_libraries(${name} PRIVATE GTest::gtest_main)
  endif()
  gtest_discover_tests(
    ${name}
    DISCOVERY_MODE PRE_TEST
    DISCOVERY_TIMEOUT 60
    PROPERTIES RUN_SERIAL ${ARG_ALONE} ENVIRONMENT "${environment}")
endfunction()

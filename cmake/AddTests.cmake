# renderengine_add_test(NAME SOURCES file... [LIBRARIES lib...])
#
# Makes the program NAME from GoogleTest sources and registers each of its cases with CTest. CTest runs each case in a
# process of its own, so that a case may set a preference that the library caches for the life of the process.

include(GoogleTest)
find_package(GTest REQUIRED)

function(renderengine_add_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBRARIES" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/src ${CMAKE_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE ${ARG_LIBRARIES} GTest::gmock GTest::gtest GTest::gtest_main)
  renderengine_target_settings(${name})
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST PROPERTIES TIMEOUT 120)
endfunction()
